#include "app/panes/scrolled_area.h"

#include <algorithm>
#include <cmath>

#include "app/look/controls.h"

namespace console {
namespace {

constexpr int kBar = 15;

}  // namespace

void ScrolledArea::MakeControls(XwWindow* window, int id, const char* name) {
  id_ = id;
  bar_ = XwScrollBar(window, id, 0, 0, 0, 0, XWC_ENABLED | XWC_EDGE, 0, 0, step_, 1, 0);
  XwDescribeControl(bar_, name);
}

bool ScrolledArea::Scrolled(int id, int value) {
  if (!bar_ || id != id_) return false;
  ScrollTo(value);
  return true;
}

void ScrolledArea::Enable(bool on) {
  EnableControl(bar_, on);
}

void ScrolledArea::UpdateBar() {
  Area a = area_;
  PlaceControl(bar_, Scrolls() ? a.TakeRight(kBar) : Area{});
  if (Scrolls()) XwSetScrollRange(bar_, 0, height_ - 1, step_, area_.h, top_);
}

void ScrolledArea::Place(const Area& a) {
  area_ = a;
  top_ = std::clamp(top_, 0, MostTop());
  UpdateBar();
}

void ScrolledArea::SetHeight(int height) {
  if (height == height_) return;
  height_ = height;
  top_ = std::clamp(top_, 0, MostTop());
  UpdateBar();
}

void ScrolledArea::ScrollTo(int top) {
  top_ = std::clamp(top, 0, MostTop());
  if (Scrolls() && top_ != XwGetValue(bar_)) UpdateBar();
}

void ScrolledArea::Reveal(int top, int height) {
  const int least = top + height - area_.h;
  ScrollTo(std::clamp(top_, least, std::max(top, least)));
}

bool ScrolledArea::Key(int type) {
  const int page = std::max(step_, area_.h - step_);
  const struct {
    int key, top;
  } kKeys[] = {{XWE_UP, top_ - step_},
               {XWE_DOWN, top_ + step_},
               {XWE_PAGE_UP, top_ - page},
               {XWE_PAGE_DOWN, top_ + page},
               {XWE_HOME, 0},
               {XWE_END, MostTop()}};
  for (const auto& [key, top] : kKeys) {
    if (key != type) continue;
    ScrollTo(top);
    return true;
  }
  return false;
}

bool ScrolledArea::Wheel(float dy) {
  const int before = top_;
  const float whole = std::trunc(std::clamp(wheel_ + dy, -1e6f, 1e6f));
  wheel_ += dy - whole;
  ScrollTo(top_ + int(whole));
  if (top_ == before && whole != 0) wheel_ = 0;
  return top_ != before;
}

Area ScrolledArea::Body() const {
  Area a = area_;
  if (Scrolls()) a.TakeRight(kBar);
  return a;
}

Area ScrolledArea::Visible(const Area& a) const {
  const Area body = Body();
  const int y = std::max(a.y, body.y);
  return {a.x, y, a.w, std::min(a.bottom(), body.bottom()) - y};
}

}  // namespace console
