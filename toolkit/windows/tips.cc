#include "toolkit/windows/tips.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "platform/access/access.h"
#include "platform/events/timers.h"
#include "platform/text/utf8.h"
#include "platform/windows/tip.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/target/clip.h"
#include "toolkit/windows/boxes.h"

using namespace platform;
using toolkit::state;

namespace toolkit {

struct Tips {
  struct Window {
    std::map<int, std::string> now;  // by position
    bool being_made = false;         // its list of boxes is being rebuilt
  };
  std::unordered_map<const XwWindow*, Window> windows;
};

}  // namespace toolkit

namespace {

constexpr double kRest = 0.5;      // seconds
constexpr int kHighest = 40;       // a thing below whose border its tip comes
constexpr int kPointerDepth = 16;  // the pointer's picture reaches so far down

// What the pointer is over.
struct Thing {
  const XwWindow* w = nullptr;  // alive
  int position = 0;
  bool operator==(const Thing&) const = default;
};
struct Pointing {
  Thing thing;
  Point where{};
  EventLoopTimerRef timer = nullptr;
  bool shows = false, over = false;  // it has been shown, or will not be
  std::string text;                  // that was shown last
};
Pointing pointing;

toolkit::Tips::Window* Find(const XwWindow* w) {
  if (!state.tips) return nullptr;
  const auto at = state.tips->windows.find(w);
  return at == state.tips->windows.end() ? nullptr : &at->second;
}

void StopTimer() {
  RemoveEventLoopTimer(pointing.timer);
  pointing.timer = nullptr;
}

void Hide() {
  StopTimer();
  if (pointing.shows) HideTip();
  pointing.shows = false;
}

// The row of the pointer in the content of the native window, or all of a low thing.
Rect AnchorOf(const Thing& thing) {
  const Rect content = GetWindowBounds(NativeWindow(thing.w), kWindowContentRgn);
  const int x = pointing.where.x - content.left, y = pointing.where.y - content.top;
  Rect r{x, y, x + 1, y + kPointerDepth};
  Rect box;
  if (IsControl(thing.w)) {
    const XwWindow* parent = thing.w->parent;
    const Point origin = ContentOrigin(parent);
    box = {0, origin.y + thing.w->y, 0, origin.y + thing.w->y + thing.w->height};
  } else if (thing.position && BoxAt(thing.w, thing.position, &box)) {
    box = Offset(box, 0, ContentOrigin(thing.w).y);
  }
  if (box.height() > 0 && box.height() <= kHighest) {
    r.top = box.top;
    r.bottom = std::max(box.bottom, y + kPointerDepth / 2);
  }
  return r;
}

void Show() {
  const Thing& thing = pointing.thing;
  if (!thing.w) return;
  const std::string& text = TipOf(thing.w, thing.position);
  if (text.empty()) return;
  pointing.shows = true;
  pointing.text = text;
  ShowTip(NativeWindow(thing.w), AnchorOf(thing), text);
}

void Rested(EventLoopTimerRef, void*) {
  StopTimer();
  Show();
}

// Shows the new tip of the thing under the pointer, or none, if its old one shows.
void TipChanged(const XwWindow* w, int position) {
  if (pointing.thing.w != w || pointing.thing.position != position || !pointing.shows) return;
  Hide();
  Show();
}

void SetTip(XwWindow* w, int position, const char* utf8) {
  const std::string text = utf8 ? ValidUtf8(utf8) : "";
  if (text == TipOf(w, position)) return;
  if (!state.tips) state.tips = new toolkit::Tips;
  auto& all = state.tips->windows[w];
  if (text.empty())
    all.now.erase(position);
  else
    all.now[position] = text;
  if (!all.being_made || position == 0) TipChanged(w, position);
}

int PositionUnder(const XwWindow* w, Point where) {
  const Rect content = GetWindowBounds(NativeWindow(w), kWindowContentRgn);
  const Point origin = ContentOrigin(w);
  return BoxUnder(w, where.x - content.left - origin.x, where.y - content.top - origin.y);
}

}  // namespace

const std::string& TipOf(const XwWindow* w, int position) {
  static const std::string none;
  const auto* all = Find(w);
  if (!all) return none;
  const auto at = all->now.find(position);
  return at == all->now.end() ? none : at->second;
}

void BeginTips(const XwWindow* w) {
  auto* all = Find(w);
  if (!all) return;
  all->being_made = true;
  const std::string own = TipOf(w, 0);
  all->now.clear();
  if (!own.empty()) all->now[0] = own;
}

// What the pointer rests on may have another position in the new list.
void EndTips(const XwWindow* w) {
  auto* all = Find(w);
  if (!all) return;
  all->being_made = false;
  Thing& thing = pointing.thing;
  if (thing.w != w || thing.position == 0) return;
  thing.position = PositionUnder(w, pointing.where);
  const std::string& text = TipOf(w, thing.position);
  if (pointing.shows && text == pointing.text) return;
  const bool shows = pointing.shows;
  if (shows || text.empty()) Hide();
  if (text.empty())
    thing = Thing();
  else if (shows)
    Show();
}

void ForgetTips(const XwWindow* w) {
  if (pointing.thing.w == w) {
    Hide();
    pointing.thing = Thing();
  }
  if (state.tips) state.tips->windows.erase(w);
}

void DropTips() {
  Hide();
  pointing = Pointing();
  delete state.tips;
  state.tips = nullptr;
}

void PointAtTip(XwWindow* w, XwWindow* control, int position, Point where) {
  if (!state.tips) return;
  Thing thing;
  if (control && !TipOf(control, 0).empty())
    thing = {control, 0};
  else if (!control && position && !TipOf(w, position).empty())
    thing = {w, position};
  else if (!TipOf(w, 0).empty())
    thing = {w, 0};
  const bool moved = where.x != pointing.where.x || where.y != pointing.where.y;
  pointing.where = where;
  if (thing != pointing.thing) {
    Hide();
    pointing.thing = thing;
    pointing.over = false;
  } else if (pointing.shows || pointing.over || !moved) {
    return;
  }
  StopTimer();
  if (thing.w) pointing.timer = InstallEventLoopTimer(kRest, 0, Rested, nullptr);
}

void EndTip() {
  if (!state.tips) return;
  Hide();
  pointing.over = true;
}

void XwSetTip(XwWindow* w, int position, const char* utf8) {
  if (!CheckWindow(w) || position < 0) return;
  Rect box;
  if (position > 0 && (IsControl(w) || !BoxAt(w, position, &box))) return;
  SetTip(w, position, utf8);
}
