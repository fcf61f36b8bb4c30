#include "app/panes/side_list.h"

#include <algorithm>
#include <cmath>

#include "app/format/folding.h"
#include "app/look/controls.h"

namespace console {
namespace {

constexpr int kBar = 15;

}  // namespace

void SideList::MakeControls(XwWindow* window, int id, const char* name) {
  id_ = id;
  name_ = name;
  bar_ = XwScrollBar(window, id, 0, 0, 0, 0, XWC_ENABLED, 0, 0, row_height_, 1, 0);
  XwDescribeControl(bar_, name);
}

bool SideList::Scrolled(int id, int value) {
  if (!bar_ || id != id_) return false;
  ScrollTo(value);
  return true;
}

void SideList::Enable(bool on) {
  EnableControl(bar_, on);
}

void SideList::UpdateBar() {
  Area a = area_;
  PlaceControl(bar_, Scrolls() ? a.TakeRight(kBar) : Area{});
  if (Scrolls()) XwSetScrollRange(bar_, 0, rows_ * row_height_ - 1, row_height_, area_.h, top_);
}

void SideList::Place(const Area& a) {
  // In a list that comes into sight, too.
  const bool seen = at_ >= 0 && (area_.Empty() || !Visible(RowArea(at_)).Empty());
  area_ = a;
  top_ = std::clamp(top_, 0, MostTop());
  UpdateBar();
  if (seen) GoTo(at_);
}

void SideList::SetRows(int rows, int at) {
  rows_ = rows;
  at_ = at < rows ? at : -1;
  top_ = std::clamp(top_, 0, MostTop());
  UpdateBar();
}

void SideList::GoTo(int row) {
  at_ = std::clamp(row, -1, rows_ - 1);
  if (at_ < 0 || area_.Empty()) return;
  const int y = at_ * row_height_;
  ScrollTo(std::clamp(top_, y + row_height_ - area_.h, std::max(y, y + row_height_ - area_.h)));
}

bool SideList::Key(int type) {
  const int page = std::max(1, area_.h / row_height_ - 1);
  const struct {
    int key, row;
  } kKeys[] = {
      {XWE_UP, std::max(0, at_ - 1)}, {XWE_DOWN, at_ + 1}, {XWE_PAGE_UP, std::max(0, at_ - page)},
      {XWE_PAGE_DOWN, at_ + page},    {XWE_HOME, 0},       {XWE_END, rows_ - 1}};
  for (const auto& [key, row] : kKeys) {
    if (key != type) continue;
    GoTo(row);
    return true;
  }
  return false;
}

bool SideList::Type(int character, uint32_t now_ms,
                    const std::function<std::string(int row)>& name) {
  if (character < ' ' || character > '~' || !typed_.Type(uint32_t(character), now_ms)) return false;
  const int found = typed_.Row(at_, [&](std::string_view text, int from) {
    const std::string wanted = Folded(text);
    for (int i = 0; i < rows_; ++i) {
      const int row = (std::max(from, 0) + i) % rows_;
      if (Folded(name(row)).starts_with(wanted)) return row;
    }
    return -1;
  });
  if (found >= 0) GoTo(found);
  return true;
}

bool SideList::Wheel(float dy) {
  const int before = top_;
  const float whole = std::trunc(std::clamp(wheel_ + dy, -1e6f, 1e6f));
  wheel_ += dy - whole;
  ScrollTo(top_ + int(whole));
  if (top_ == before && whole != 0) wheel_ = 0;
  return top_ != before;
}

int SideList::MostTop() const {
  return std::max(0, rows_ * row_height_ - area_.h);
}

void SideList::ScrollTo(int top) {
  top_ = std::clamp(top, 0, MostTop());
  if (Scrolls() && top_ != XwGetValue(bar_)) UpdateBar();
}

Area SideList::Body() const {
  Area a = area_;
  if (Scrolls()) a.TakeRight(kBar);
  return a;
}

Area SideList::RowArea(int row) const {
  const Area body = Body();
  return {body.x, body.y + row * row_height_ - top_, body.w, row_height_};
}

Area SideList::Visible(const Area& a) const {
  const Area body = Body();
  const int y = std::max(a.y, body.y);
  return {a.x, y, a.w, std::min(a.bottom(), body.bottom()) - y};
}

int SideList::Last() const {
  return area_.Empty() ? First() : std::min(rows_, (top_ + area_.h - 1) / row_height_ + 1);
}

void SideList::DrawRows(const std::function<void(int row, const Area&)>& draw) const {
  const Area body = Body();
  if (body.Empty()) return;
  XwClip(uint16_t(body.x), uint16_t(body.y), uint16_t(body.w), uint16_t(body.h));
  for (int row = First(); row < Last(); ++row) draw(row, RowArea(row));
  XwClip(0, 0, 0, 0);
}

void SideList::AddHits(Hits* hits, bool focused, const std::function<Words(int row)>& words,
                       const std::function<void(int row)>& add_mark) const {
  if (area_.Empty()) return;
  const uint32_t state = XWT_FOCUSABLE | (focused ? uint32_t{XWT_FOCUSED} : 0);
  hits->Add({owner_, kBody, 0}, Body(), {XWA_LIST, state, name_, std::to_string(rows_)});
  for (int row = First(); row < Last(); ++row) {
    Words said = words(row);
    if (row == at_ && focused) said.state |= XWT_FOCUSED;
    hits->Add({owner_, kRow, row}, Visible(RowArea(row)), said);
    if (add_mark) add_mark(row);
  }
}

}  // namespace console
