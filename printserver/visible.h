// Names as a person reads them, in the console and on a terminal.
#ifndef QUORVIK_PRINTSERVER_VISIBLE_H
#define QUORVIK_PRINTSERVER_VISIBLE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace nc {

constexpr uint32_t kNotUtf8 = UINT32_MAX;
// Takes the next character off, which must not be empty; kNotUtf8 for a byte that is not UTF-8.
uint32_t TakeCharacter(std::string_view* text);

// Whether a reader would not see it for what it is: control characters, invisible ones, those that
// change the direction, blanks that look like the plain one.
bool IsUnseen(uint32_t code);

// Valid UTF-8 that a terminal takes for text alone. A byte that is not UTF-8 is shown as \xNN and
// an unseen character as \u{NNNN}; backslashes right before such a sequence, and before text that
// reads like one, are doubled. So two names that differ in these never read the same.
std::string VisibleName(std::string_view name);

}  // namespace nc

#endif
