#include "app/panes/queue_head.h"

#include "app/look/controls.h"
#include "app/look/style.h"
#include "app/panes/ids.h"

namespace console {
namespace {

// A narrower window has the menu for what is left out.
constexpr int kAgainFrom = 860, kListsFrom = 1080;
// The ring of the control with the keyboard needs 5 pixels above a list and 6 below a push button,
// and does not cover the hairlines of the head.
constexpr int kTop = 6, kControl = 22;
constexpr int kEnd = 12, kGap = 6, kText = 130, kList = 114, kLabel = 36;
constexpr const char* kTitle = "Queue";
constexpr const char* kOwners[] = {"Everyone’s", "Mine", nullptr};
// By QueueFilter::Part.
constexpr const char* kParts[] = {"All jobs", "Active jobs", "Ended jobs", nullptr};

XwWindow* List(XwWindow* window, const char* const* items, int id, const char* name) {
  XwWindow* list =
      XwComboBox(window, nullptr, id, 0, 0, 9, 9, XWC_ENABLED | XWC_VISIBLE | XWC_VARIANT, 0);
  XwSetTextUtf8(list, items);
  XwSetValue(list, 0);
  XwDescribeControl(list, name);
  return list;
}

}  // namespace

void QueueHead::MakeControls(XwWindow* w) {
  constexpr uint32_t kShown = XWC_ENABLED | XWC_VISIBLE;
  hold = XwButton(w, "Hold", kHoldCommand, 0, 0, 9, 9, kShown, 0);
  release = XwButton(w, "Release", kReleaseCommand, 0, 0, 9, 9, kShown, 0);
  again = XwButton(w, "Print Again", kPrintAgainCommand, 0, 0, 9, 9, kShown, 0);
  remove = XwButton(w, "Remove", kRemoveCommand, 0, 0, 9, 9, kShown, 0);
  XwDescribeControl(hold, "Hold Job");
  text = XwEditBox(w, "", kQueueFilterControl, 0, 0, 9, 9, kShown | XWC_DROPS_FOCUS);
  XwDescribeControl(text, "Filter Queue");
  XwSetTip(text, 0, "Shows jobs whose document, owner, printer or number has this text");
  owner = List(w, kOwners, kQueueOwnerControl, "Whose Jobs");
  part = List(w, kParts, kQueuePartControl, "Which Jobs");
}

void QueueHead::Place(const Area& head) {
  Area bar = head;
  bar.TakeRight(kEnd);
  auto last = [&bar](int width, int dy, int height, int gap = kGap) {
    const Area piece = bar.TakeRight(width);
    bar.TakeRight(gap);
    return Area{piece.x, piece.y + dy, piece.w, height};
  };
  const bool lists = head.w >= kListsFrom;
  part_area = lists ? last(kList, kTop, kControl) : Area{};
  owner_area = lists ? last(kList, kTop, kControl) : Area{};
  text_area = last(kText, kTop, kControl);
  label = last(kLabel, 0, head.h - 2);
  bar.TakeRight(kGap);
  remove_area = last(78, kTop, kControl);
  again_area = head.w >= kAgainFrom ? last(92, kTop, kControl) : Area{};
  release_area = last(72, kTop, kControl);
  hold_area = last(58, kTop, kControl);
  PlaceControl(hold, hold_area);
  PlaceControl(release, release_area);
  PlaceControl(again, again_area);
  PlaceControl(remove, remove_area);
  PlaceControl(text, text_area);
  PlaceControl(owner, owner_area);
  PlaceControl(part, part_area);
}

void QueueHead::Enable(bool on) {
  for (XwWindow* control : {text, owner, part}) EnableControl(control, on);
}

void QueueHead::ShowFilter(const QueueFilter& filter) {
  if (XwGetValue(owner) != int(filter.mine)) XwSetValue(owner, filter.mine);
  if (XwGetValue(part) != int(filter.part)) XwSetValue(part, filter.part);
  if (Filter().text != filter.text) XwSetTextUtf8(text, filter.text.c_str());
}

QueueFilter QueueHead::Filter() const {
  QueueFilter filter;
  filter.mine = XwGetValue(owner) == 1;
  filter.part = QueueFilter::Part(XwGetValue(part));
  std::string typed(size_t(XwGetTextUtf8(text, nullptr, 0)) + 1, 0);
  XwGetTextUtf8(text, typed.data(), int(typed.size()));
  typed.pop_back();
  filter.text = std::move(typed);
  return filter;
}

Area QueueHead::SummaryArea(const Area& head) const {
  Area a = head.Inset(kEnd, 0);
  a.w = hold_area.x - a.x - kEnd;
  a.TakeLeft(XwTextWidthUtf8(TheStyle().bold, kTitle) + 8);
  return a;
}

void QueueHead::Draw(const Area& area, const std::string& summary) const {
  const Style& l = TheStyle();
  Fill(area, l.tool_bar);
  LineAtTop(area);
  LineAtBottom(area);
  const Area a = SummaryArea(area);
  DrawLabel(l.bold, Align::kLeft, {area.x + kEnd, area.y, a.x - area.x - kEnd, area.h}, kTitle,
            l.ink);
  DrawLabel(l.small_text, Align::kLeft, a, summary, l.second);
  DrawLabel(l.small_text, Align::kRight, label, "Filter", l.second);
}

}  // namespace console
