// The characters of keys that type none, and of Space.
#pragma once
#include <cstdint>

namespace platform {

enum KeyCharacter : uint8_t {
  kHomeKey = 1,
  kEnterKey = 3,
  kEndKey = 4,
  kInsertKey = 5,
  kBackspaceKey = 8,
  kTabKey = 9,
  kPageUpKey = 11,
  kPageDownKey = 12,
  kReturnKey = 13,
  kEscapeKey = 27,
  kLeftKey = 28,
  kRightKey = 29,
  kUpKey = 30,
  kDownKey = 31,
  kSpaceKey = ' ',
  kDeleteKey = 127,
};

}  // namespace platform
