#include "app/model/crumbs.h"

#include <algorithm>

#include "app/format/texts.h"

namespace console {

std::vector<Crumb> CrumbsOf(const std::string& path) {
  std::vector<Crumb> crumbs{{"/", "Root"}};
  for (size_t at = 0; at < path.size();) {
    const size_t begin = path.find_first_not_of('/', at);
    if (begin == std::string::npos) break;
    at = std::min(path.find('/', begin), path.size());
    crumbs.push_back({path.substr(0, at), Shown(path.substr(begin, at - begin))});
  }
  return crumbs;
}

std::vector<int> FitCrumbs(const std::vector<int>& widths, int gap, int room) {
  const int n = int(widths.size());
  if (n == 0) return {};
  int all = 0;
  for (const int w : widths) all += w;
  int first = 1;  // after the gap, where there is one
  if (all > room && n > 2) {
    int used = widths.front() + gap + widths.back();
    first = n - 1;
    while (first > 2 && used + widths[size_t(first) - 1] <= room) used += widths[size_t(--first)];
  }
  std::vector<int> shown{0};
  if (first > 1) shown.push_back(kCrumbGap);
  for (int i = first; i < n; ++i) shown.push_back(i);
  return shown;
}

}  // namespace console
