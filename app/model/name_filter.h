// What is typed into a filter box. Case and accents do not count.
//
// Parts are separated by commas or semicolons, and one that matches is enough. A part with '*' (any
// characters) or '?' (one) describes the whole name: "*.pdf, img?.tif". Any other part may stand
// anywhere in the name.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace console {

class NameFilter {
 public:
  NameFilter() = default;
  explicit NameFilter(std::string_view text);

  // Everything matches.
  bool empty() const { return parts_.empty(); }
  // Whether a part has an ending, as "*.pdf" and ".png" have: it asks for files of a kind.
  bool AsksForEnding() const { return ending_; }
  // Of a name that Folded has made.
  bool MatchesFolded(std::string_view folded) const;
  bool Matches(std::string_view name) const;

 private:
  struct Part {
    std::string folded;
    bool pattern;
  };
  std::vector<Part> parts_;
  bool ending_ = false;
};

}  // namespace console
