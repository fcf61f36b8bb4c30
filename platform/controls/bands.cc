// Finding the controls of a pane that meet a rectangle without asking all of them: the pane keeps
// them by bands of its height.
#include <algorithm>

#include "platform/controls/control.h"

namespace platform {
namespace {

constexpr int kBandHeight = 64, kLastBand = 511;

int BandAt(int y) {
  return std::clamp(y / kBandHeight, 0, kLastBand);
}

struct Span {
  int first, last;
};
Span BandsOf(const Rect& area) {
  return {BandAt(area.top), BandAt(std::max(area.top, area.bottom - 1))};
}

}  // namespace

void EnterBands(Control* c) {
  auto& bands = c->pane->bands;
  const Span span = BandsOf(c->area);
  if (int(bands.size()) <= span.last) bands.resize(size_t(span.last) + 1);
  for (int i = span.first; i <= span.last; ++i) bands[size_t(i)].push_back(c);
}

void LeaveBands(Control* c) {
  const Span span = BandsOf(c->area);
  for (int i = span.first; i <= span.last; ++i) {
    auto& band = c->pane->bands[size_t(i)];
    // Usually the newest control is the one that is removed.
    const auto at = std::find(band.rbegin(), band.rend(), c);
    if (at != band.rend()) band.erase(std::next(at).base());
  }
}

std::vector<Control*> FindInBands(const Pane* pane, const Rect& area, uint64_t from) {
  std::vector<Control*> found;
  const Span span = BandsOf(area);
  for (int i = span.first; i <= std::min(span.last, int(pane->bands.size()) - 1); ++i)
    for (Control* c : pane->bands[size_t(i)])
      if (c->object.serial >= from && !Intersect(c->area, area).empty()) found.push_back(c);
  std::sort(found.begin(), found.end(),
            [](const Control* a, const Control* b) { return a->object.serial < b->object.serial; });
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

}  // namespace platform
