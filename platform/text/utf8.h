// UTF-8, one character at a time. Bytes that are not UTF-8 count as U+FFFD, one each.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// Takes one character from *text and moves behind it. The end of the string gives 0 and stays.
char32_t NextUtf8(const char** text);
// Takes one character off a text that is not empty; a zero byte is a character.
char32_t TakeUtf8(std::string_view* text);
// Writes 1 to 4 bytes and returns how many.
int PutUtf8(char32_t c, char out[4]);
// Whether all characters are below 128.
bool IsAscii(std::string_view text);
bool IsUtf8(std::string_view text);
// The text with U+FFFD in place of each byte that is not UTF-8.
std::string ValidUtf8(std::string_view text);
// The length of the longest beginning of at most `size` bytes that ends between two characters.
size_t CutUtf8(std::string_view text, size_t size);
// Copies what fits of it with an ending zero, cut so; nothing when `size` is 0.
void CopyUtf8(std::string_view text, char* out, size_t size);

}  // namespace platform
