// Tables of Unicode, all sorted. Private to characters.cc.
#pragma once
#include <cstddef>
#include <cstdint>

namespace platform {

struct CharacterRange {
  char32_t first, last;
};
extern const CharacterRange kMarks[], kSpacingMarks[];
extern const size_t kMarkCount, kSpacingMarkCount;

struct Composition {
  char32_t letter, mark, composed;
};
extern const Composition kCompositions[];
extern const size_t kCompositionCount;

}  // namespace platform
