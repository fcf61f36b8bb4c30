#include "app/panes/side_list.h"

#include <algorithm>

#include "app/format/folding.h"

namespace console {

void SideList::MakeControls(XwWindow* window, int id, const char* name) {
  name_ = name;
  scroll_.MakeControls(window, id, name);
}

void SideList::Place(const Area& a) {
  // In a list that comes into sight, too.
  const bool seen = at_ >= 0 && (area().Empty() || !Visible(RowArea(at_)).Empty());
  scroll_.Place(a);
  if (seen) GoTo(at_);
}

void SideList::SetRows(int rows, int at) {
  rows_ = rows;
  at_ = at < rows ? at : -1;
  scroll_.SetHeight(rows_ * row_height_);
}

void SideList::GoTo(int row) {
  at_ = std::clamp(row, -1, rows_ - 1);
  if (at_ < 0 || area().Empty()) return;
  scroll_.Reveal(at_ * row_height_, row_height_);
}

bool SideList::Key(int type) {
  const int page = std::max(1, area().h / row_height_ - 1);
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

Area SideList::RowArea(int row) const {
  const Area body = Body();
  return {body.x, body.y + row * row_height_ - scroll_.top(), body.w, row_height_};
}

int SideList::Last() const {
  if (area().Empty()) return First();
  return std::min(rows_, (scroll_.top() + area().h - 1) / row_height_ + 1);
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
  if (area().Empty()) return;
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
