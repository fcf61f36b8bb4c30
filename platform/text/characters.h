// What text layout has to know of a character.
#pragma once
#include <cstdint>

namespace platform {

enum class CharacterKind : uint8_t {
  kUnknown,    // not looked up; never an answer of KindOf
  kLetter,     // stands for itself
  kMark,       // over or under the letter before it
  kFollower,   // behind the letter before it and never without it: no caret stands between
  kInvisible,  // takes no room and belongs to what stands before it
  kJoiner,     // an invisible one that ties the picture behind it, too
  kPicture,    // a letter that a joiner may tie
  kFlag,       // half of a flag: two of them stand together
  kControl,    // takes no room
};
CharacterKind KindOf(char32_t c);

// The one character that stands for a letter and the mark or Hangul vowel or final behind it; 0
// when there is none.
char32_t ComposeCharacters(char32_t letter, char32_t mark);

}  // namespace platform
