#include "platform/text/characters.h"

#include <algorithm>
#include <iterator>

#include "platform/text/tables.h"

namespace platform {
namespace {

bool In(const CharacterRange* ranges, size_t count, char32_t c) {
  const CharacterRange* at = std::partition_point(
      ranges, ranges + count, [c](const CharacterRange& r) { return r.last < c; });
  return at != ranges + count && at->first <= c;
}

// Format characters, fillers and variation selectors: a display leaves them out.
constexpr CharacterRange kInvisibles[] = {
    {0xAD, 0xAD},       {0x34F, 0x34F},     {0x61C, 0x61C},   {0x115F, 0x1160}, {0x17B4, 0x17B5},
    {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E}, {0x2060, 0x206F}, {0x3164, 0x3164},
    {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
};

// Hangul vowels and finals, and the tones of skin.
constexpr CharacterRange kFollowers[] = {
    {0x1161, 0x11FF}, {0xD7B0, 0xD7FF}, {0xFF9E, 0xFF9F}, {0x1F3FB, 0x1F3FF}};

constexpr char32_t kJoiner = 0x200D;

// Hangul syllables stand in the order of their leads, vowels and finals.
constexpr char32_t kSyllables = 0xAC00, kLeads = 0x1100, kVowels = 0x1161, kFinals = 0x11A7;
constexpr char32_t kLeadCount = 19, kVowelCount = 21, kFinalCount = 28;
constexpr char32_t kSyllableCount = kLeadCount * kVowelCount * kFinalCount;

char32_t ComposeHangul(char32_t a, char32_t b) {
  if (a - kLeads < kLeadCount && b - kVowels < kVowelCount)
    return kSyllables + ((a - kLeads) * kVowelCount + (b - kVowels)) * kFinalCount;
  bool open = a - kSyllables < kSyllableCount && (a - kSyllables) % kFinalCount == 0;
  return open && b - kFinals - 1 < kFinalCount - 1 ? a + (b - kFinals) : 0;
}

}  // namespace

CharacterKind KindOf(char32_t c) {
  if (c < 0x20 || (c >= 0x7F && c < 0xA0)) return CharacterKind::kControl;
  if (c < 0xAD) return CharacterKind::kLetter;
  if (c == kJoiner) return CharacterKind::kJoiner;
  if (In(kInvisibles, std::size(kInvisibles), c)) return CharacterKind::kInvisible;
  if (In(kFollowers, std::size(kFollowers), c)) return CharacterKind::kFollower;
  if (In(kMarks, kMarkCount, c)) return CharacterKind::kMark;
  if (In(kSpacingMarks, kSpacingMarkCount, c)) return CharacterKind::kFollower;
  if (c >= 0x1F1E6 && c <= 0x1F1FF) return CharacterKind::kFlag;
  if ((c >= 0x2190 && c < 0x2C00) || (c >= 0x1F000 && c < 0x20000)) return CharacterKind::kPicture;
  return CharacterKind::kLetter;
}

char32_t ComposeCharacters(char32_t letter, char32_t mark) {
  if (char32_t syllable = ComposeHangul(letter, mark)) return syllable;
  const Composition* end = kCompositions + kCompositionCount;
  const Composition* at =
      std::partition_point(kCompositions, end, [letter, mark](const Composition& c) {
        return c.letter != letter ? c.letter < letter : c.mark < mark;
      });
  return at != end && at->letter == letter && at->mark == mark ? at->composed : 0;
}

}  // namespace platform
