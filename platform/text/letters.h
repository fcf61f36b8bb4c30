// Letters that press something: of a text, and of a key.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// A letter or digit without case; 0 for what is none.
char32_t FoldLetter(char32_t c);
// The first character of a text, so; 0 when it is none.
char32_t FirstLetter(std::string_view utf8);
// Without case where it is a letter, else as it is.
char32_t FoldTyped(char32_t c);
// Whether a text begins so, when case does not count.
bool BeginsWithTyped(std::string_view utf8, const std::u32string& typed);
// What a key stands for whatever is held with it, by its symbols and the text that it typed.
char32_t LetterOfKey(uint32_t base_keysym, uint32_t keysym, const char* text);

}  // namespace platform
