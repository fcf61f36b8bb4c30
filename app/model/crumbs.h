// The way to a folder as crumbs.
#pragma once
#include <string>
#include <vector>

namespace console {

struct Crumb {
  std::string path;  // bytes of the file system
  std::string text;  // as it is shown
};

// From the root to the folder itself, which is the last one. An absolute path; what stands twice
// between slashes counts once.
std::vector<Crumb> CrumbsOf(const std::string& path);

constexpr int kCrumbGap = -1;
// Which crumbs have room, by their places; kCrumbGap stands for those left out. The root and the
// folder itself always stay, and of the others as many as there is room for, from the folder
// upwards. `widths` with what separates them, `gap` of the "…".
std::vector<int> FitCrumbs(const std::vector<int>& widths, int gap, int room);

}  // namespace console
