// The one table between the toolkit's characters and Unicode.
#pragma once
#include <cstdint>
#include <string>

#include "platform/base.h"
#include "platform/text/utf8.h"

namespace platform {

char32_t MacRomanToUnicode(uint8_t c);
// -1 when the set has no such character.
int UnicodeToMacRoman(char32_t c);

// Both write at most `size` bytes with the ending zero, never cut a character in two, and return
// the length. A null text is the empty string; size 0 writes nothing.
size_t MacRomanToUtf8(const char* text, char* out, size_t size);
// What the set does not have, and bytes that are not UTF-8, become `substitute`; a zero leaves them
// out.
size_t Utf8ToMacRoman(const char* text, char* out, size_t size, char substitute = '?');

std::string MacRomanToUtf8(const char* text);
std::string Utf8ToMacRoman(const char* text);

}  // namespace platform
