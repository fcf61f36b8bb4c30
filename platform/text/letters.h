// Access keys: the letter of a text, and the letter of a key.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// A letter or digit without case; 0 for what is none.
char32_t FoldLetter(char32_t c);
// The same for the first character of a text.
char32_t FirstLetter(std::string_view utf8);
// Without case where it is a letter, else as it is.
char32_t FoldTyped(char32_t c);
// Whether a text begins so, when case does not count.
bool BeginsWithTyped(std::string_view utf8, const std::u32string& typed);
// The letter of a key, whatever modifiers are held, from its symbols and the text that it typed.
char32_t LetterOfKey(uint32_t base_keysym, uint32_t keysym, const char* text);

}  // namespace platform
