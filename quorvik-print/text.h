// Text as a terminal and as JSON may get it.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// Valid UTF-8 without characters that a terminal obeys: control characters (also those from U+0080
// on), separators of lines and paragraphs, controls of the direction. Each of them, and each byte
// that is not UTF-8, becomes `?`.
std::string Shown(std::string_view text);

// How many places it takes: characters, not bytes.
size_t Width(std::string_view shown);

// In quotes and escaped. Bytes that are not UTF-8 become U+FFFD.
std::string Quoted(std::string_view text);

}  // namespace cli
