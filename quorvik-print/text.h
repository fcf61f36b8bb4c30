// Text as a terminal and as JSON may get it.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// How many places of a terminal it takes.
size_t Width(std::string_view shown);

// In quotes and escaped. Bytes that are not UTF-8 become U+FFFD.
std::string Quoted(std::string_view text);

}  // namespace cli
