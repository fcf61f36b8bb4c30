// Texts that are too long for their place: cut where nobody misses it, between characters as a
// person counts them (a letter and the marks on it are one).
#pragma once
#include <functional>
#include <string>
#include <string_view>

namespace console {

// How many characters a person sees; a byte that is no UTF-8 is one.
int CharacterCount(std::string_view utf8);

// The text when it has at most `most` characters; else its beginning, "…" and its end, together
// that many (at least 3). The ending of a file's name stays where it leaves room for a beginning.
std::string CutMiddle(std::string_view utf8, int most);

// The longest of these for which `fits` is true; the shortest one when none is. `fits` is asked
// about a dozen times at most, and what is shorter than a text that fits has to fit too.
std::string CutMiddleTo(std::string_view utf8, const std::function<bool(const std::string&)>& fits);

}  // namespace console
