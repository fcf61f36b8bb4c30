#include "platform/lists/lists.h"

#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/lists/list.h"
#include "platform/text/utf8.h"
#include "platform/theme/roles.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

constexpr int kSideInset = 1, kEndInset = 2;  // from the border to the rows
constexpr int kTextMargin = 6;

bool IsList(ControlRef c) {
  return IsValidControl(c) && c->kind == &kListKind;
}
bool HasRow(ControlRef c, int row) {
  return IsList(c) && row >= 0 && row < ListOf(c).rows.count();
}

// Most texts need no copy.
template <typename Function>
void WithValid(std::string_view utf8, Function function) {
  if (IsAscii(utf8))
    function(utf8);
  else
    function(ValidUtf8(utf8));
}

Rect RowRect(const Control* c, int row) {
  const Rect area = RowsArea(c);
  const int top = area.top + (row - ListOf(c).top) * kListRow;
  return {area.left, top, area.right, top + kListRow};
}

// Of the rows in view.
int EndOfView(const Control* c) {
  const List& l = ListOf(c);
  return std::min(l.rows.count(), l.top + RowsInView(c));
}

void DrawRow(const Control* c, ContextRef context, int row) {
  const WindowControls& all = OwnerOf(c);
  const bool selected = ListOf(c).selected == row;
  const bool keyboard = all.focus == c && all.window->active;
  const Rect r = RowRect(c, row);
  const int alpha = c->active ? kOpaqueAlpha : kThemeDisabledAlpha;
  if (selected)
    FillRoundRect(context, r, 0, RoleColor(keyboard ? Role::kAccent : Role::kInactiveSelection),
                  alpha);
  // A list that is lower than a row shows no part of a text.
  if (r.bottom > RowsArea(c).bottom) return;
  ThemeTextStyle style;
  style.view = true;
  style.justification = TextJustification::kLeft;
  style.rgb = RoleColor(selected && keyboard ? Role::kDocument : Role::kInk);
  style.alpha = alpha;
  DrawThemeText(context, {r.left + kTextMargin, r.top, r.right - kTextMargin, r.bottom},
                std::string(ListOf(c).rows[row]), style);
}

void Draw(Control* c, ContextRef context) {
  const int state = c->active ? kThemeStateActive : kThemeStateInactive;
  DrawThemeGenericWell(context, GetControlBounds(c), state, true);
  ClipContextToRect(context, RowsArea(c));
  for (int row = ListOf(c).top; row < EndOfView(c); ++row) DrawRow(c, context, row);
  RestoreContextClip(context);
}

// --- The bar, which has no width while all rows are in view.

int LargestTop(const Control* c) {
  return std::max(0, ListOf(c).rows.count() - RowsInView(c));
}

// The bar fits the place and the rows.
void PlaceBar(Control* c) {
  List& l = ListOf(c);
  const int most = LargestTop(c);
  const Rect& r = c->bounds;
  const int right = r.right - kSideInset;
  SetControlBounds(
      c->part, {right - (most ? kScrollBar : 0), r.top + kEndInset, right, r.bottom - kEndInset});
  SetControlViewSize(c->part, RowsInView(c));
  SetControlRange(c->part, 0, most);
  ScrollList(c, l.top);
}

void BarMoves(ControlRef bar, int part) {
  static constexpr struct {
    int part, lines, pages;
  } kRows[] = {{kControlUpButtonPart, -1, 0},
               {kControlDownButtonPart, 1, 0},
               {kControlPageUpPart, 0, -1},
               {kControlPageDownPart, 0, 1}};
  Control* c = bar->whole;
  int top = bar->value;
  for (const auto& row : kRows)
    if (row.part == part) top += row.lines + row.pages * RowsInView(c);
  ScrollList(c, top);
  Draw1Control(c);
}

void Wheel(Control* c, float, float dy) {
  constexpr int kRowsANotch = 3;
  ScrollList(c, ListOf(c).top + TakeWheelSteps(c, 0, dy, kWheelNotch / kRowsANotch));
  Draw1Control(c);
}

void Describe(const Control* c, Description* out) {
  out->value = ListRowText(const_cast<Control*>(c), ListOf(c).selected);
  out->actions &= ~uint32_t{kActionPress};
}

void End(Control* c) {
  StopListScrolling(&ListOf(c));
  delete &ListOf(c);
}

}  // namespace

const KindRow kListKind = {.draw = Draw,
                           .press = PressList,
                           .drag = DragList,
                           .release = ReleaseList,
                           .key = ListKey,
                           .describe = Describe,
                           .border = nullptr,
                           .act = nullptr,
                           .minimum = 0,
                           .maximum = 0,
                           .has_title = false,
                           .role = ObjectRole::kList,
                           .wheel = Wheel,
                           .placed = PlaceBar,
                           .front_looks = true,
                           .lost = LoseList,
                           .end = End,
                           .focus_by_press = true};

ControlRef CreateListBoxControl(PaneRef pane, const Rect& bounds) {
  ControlRef c = NewControl(pane, kListKind, bounds);
  if (!c) return nullptr;
  c->data = new List;
  SetControlKeys(c, kKeysByTab | kKeysByRequest);
  AttachControl(c, CreateScrollBarControl(pane, bounds, 0, 0, 0, 0, true, BarMoves));
  PlaceBar(c);
  return c;
}

Rect RowsArea(const Control* c) {
  const Rect r = GetControlBounds(const_cast<Control*>(c));
  const int bar = c->part ? c->part->bounds.width() : 0;
  return {r.left + kSideInset, r.top + kEndInset, r.right - kSideInset - bar, r.bottom - kEndInset};
}

int RowsInView(const Control* c) {
  return std::max(1, RowsArea(c).height() / kListRow);
}

void ScrollList(Control* c, int top) {
  List& l = ListOf(c);
  l.top = std::clamp(top, 0, LargestTop(c));
  SetControl32BitValue(c->part, l.top);
}

void SelectAndShow(Control* c, int row) {
  ListSelectRow(c, row);
  ListAutoScroll(c);
  Draw1Control(c);
}

void HitRow(Control* c, bool by_key) {
  ListOf(c).last_click = ListOf(c).selected;
  DispatchScope scope;
  SendControlEvent(c, kEventControlHit, kControlListBoxPart, by_key);
}

int ListRowCount(ControlRef c) {
  return IsList(c) ? ListOf(c).rows.count() : 0;
}

std::string_view ListRowText(ControlRef c, int row) {
  return HasRow(c, row) ? ListOf(c).rows[row] : std::string_view();
}

void ListAddRow(ControlRef c, std::string_view utf8) {
  if (IsList(c)) WithValid(utf8, [&](std::string_view text) { ListOf(c).rows.Add(text); });
}

void ListSetRow(ControlRef c, int row, std::string_view utf8) {
  if (!HasRow(c, row)) return;
  WithValid(utf8, [&](std::string_view text) { ListOf(c).rows.Set(row, text); });
  const auto described = ListOf(c).serials.find(row);
  if (described != ListOf(c).serials.end()) NoticeChange(described->second, Change::kName);
}

void ListDeleteRows(ControlRef c, int row) {
  if (!HasRow(c, row)) return;
  List& l = ListOf(c);
  l.rows.Cut(row);
  if (l.selected >= row) ListSelectRow(c, -1);
  std::erase_if(l.serials, [&](const auto& described) { return described.first >= row; });
}

void ListShowRows(ControlRef c) {
  if (!IsList(c)) return;
  ListOf(c).selected_before = -1;  // a row of the old texts
  PlaceBar(c);
  NoticeChange(c->object.serial, Change::kChildren);
  Draw1Control(c);
}

void ListSelectRow(ControlRef c, int row) {
  if (!IsList(c)) return;
  List& l = ListOf(c);
  if (!HasRow(c, row)) row = -1;
  if (l.selected == row) return;
  for (int changed : {l.selected, row})
    if (const auto at = l.serials.find(changed); at != l.serials.end())
      NoticeChange(at->second, Change::kState);
  l.selected = row;
  NoticeChange(c->object.serial, Change::kValue);
}

int ListSelectedRow(ControlRef c) {
  return IsList(c) ? ListOf(c).selected : -1;
}

void ListAutoScroll(ControlRef c) {
  if (!IsList(c) || ListOf(c).selected < 0) return;
  const int row = ListOf(c).selected, view = RowsInView(c);
  ScrollList(c, std::clamp(ListOf(c).top, row - view + 1, row));
}

int ListLastClick(ControlRef c) {
  return IsList(c) ? ListOf(c).last_click : -1;
}
void SetListLastClick(ControlRef c, int row) {
  if (IsList(c)) ListOf(c).last_click = row;
}

void DescribeListRows(ControlRef c, std::vector<DescribedNode>* rows) {
  if (!IsList(c)) return;
  List& l = ListOf(c);
  uint64_t serial;
  Description list;
  DescribeControl(c, &serial, &list);
  const Rect content = GetWindowBounds(GetControlOwner(c), kWindowContentRgn);
  for (int row = l.top; row < EndOfView(c); ++row) {
    DescribedNode node;
    uint64_t& known = l.serials[row];
    if (!known) known = TakeSerial();
    node.serial = known;
    Description& d = node.what;
    d.role = ObjectRole::kRow;
    d.name = l.rows[row];
    d.state = list.state & (kIsShown | kIsEnabled);
    if (row == l.selected) d.state |= kIsSelected;
    if (c->active) d.actions = kActionPress;
    d.bounds = Offset(Intersect(RowRect(c, row), RowsArea(c)), content.left, content.top);
    rows->push_back(node);
  }
}

bool PressListRow(ControlRef c, uint64_t serial) {
  if (!IsList(c) || !c->active) return false;
  for (const auto& [row, known] : ListOf(c).serials) {
    if (known != serial) continue;
    SelectAndShow(c, row);
    HitRow(c, false);
    return true;
  }
  return false;
}

}  // namespace platform
