// Names compared as a person does: case and accents do not count, and numbers count as numbers.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace console {

// The text without case and accents: "Émile" is "emile", "Straße" is "strasse". What is no UTF-8
// stays as it is.
std::string Folded(std::string_view utf8);
// The same, appended.
void FoldInto(std::string_view utf8, std::string* out);

// Two keys compared byte by byte are in the order of their names: letters with accents among their
// letters, 2 before 10, "a.pdf" before "a 2.pdf". Names that differ in case, accents or leading
// zeros alone have the same key.
std::string NaturalKey(std::string_view name);
// The order of all names: by key, then by their bytes.
bool NaturalLess(std::string_view a, std::string_view b);

// Appends a character as UTF-8, at most 0x10ffff.
void AppendCharacter(uint32_t code, std::string* out);

// The ending of a file's name, without its dot: "" of ".profile", "a" and "a.".
std::string_view EndingOf(std::string_view name);

}  // namespace console
