#include "app/model/name_filter.h"

#include <algorithm>
#include <cstdint>

#include "app/format/folding.h"

namespace console {
namespace {

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

size_t CharacterLength(std::string_view text, size_t at) {
  size_t end = at + 1;
  while (end < text.size() && (uint8_t(text[end]) & 0xc0) == 0x80) ++end;
  return end - at;
}

// The last star is the only one that is ever tried again, so it takes no more than the product of
// both lengths.
bool MatchesPattern(std::string_view pattern, std::string_view name) {
  constexpr size_t kNone = std::string_view::npos;
  size_t p = 0, n = 0, star = kNone, tried = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      tried = n;
    } else if (p < pattern.size() && pattern[p] == '?') {
      ++p;
      n += CharacterLength(name, n);
    } else if (p < pattern.size() && pattern[p] == name[n]) {
      ++p;
      ++n;
    } else if (star != kNone) {
      p = star + 1;
      tried += CharacterLength(name, tried);
      // What comes after the star has to begin somewhere.
      if (p < pattern.size() && pattern[p] != '?') tried = name.find(pattern[p], tried);
      if (tried == kNone) return false;
      n = tried;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

// A dot with something behind it that can be an ending, stars included.
bool HasEnding(std::string_view part) {
  const size_t dot = part.rfind('.');
  return dot != std::string_view::npos && dot + 1 < part.size() &&
         part.find(' ', dot) == std::string_view::npos;
}

}  // namespace

NameFilter::NameFilter(std::string_view text) {
  for (;;) {
    const size_t end = text.find_first_of(",;");
    const std::string_view part = Trimmed(text.substr(0, end));
    const bool pattern = part.find_first_of("*?") != std::string_view::npos;
    if (!part.empty()) parts_.push_back({Folded(part), pattern});
    ending_ = ending_ || HasEnding(part);
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
}

bool NameFilter::MatchesFolded(std::string_view folded) const {
  return parts_.empty() || std::any_of(parts_.begin(), parts_.end(), [&](const Part& part) {
           return part.pattern ? MatchesPattern(part.folded, folded)
                               : folded.find(part.folded) != std::string_view::npos;
         });
}

bool NameFilter::Matches(std::string_view name) const {
  return MatchesFolded(Folded(name));
}

}  // namespace console
