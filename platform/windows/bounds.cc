// Where windows are: bounds asked for by the program, granted by the desktop, and what follows.
#include <algorithm>
#include <cstring>

#include "platform/access/access.h"
#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/windows/state.h"

namespace platform {
namespace {

constexpr int kWidestFrame = 4096;
constexpr double kLeastScale = 0.5, kMostScale = 8;

Rect Structure(const Window& w) {
  return {w.content.left - w.frame.left, w.content.top - w.menu_bar_height - w.frame.top,
          w.content.right + w.frame.right, w.content.bottom + w.frame.bottom};
}

void SetContent(WindowRef w, const Rect& content) {
  if (w->content == content) return;
  w->content = content;
  NoticeChange(w->object.serial, Change::kBounds);
}

// The windows of a group that moves together follow the first window, without events of their own.
// The first window follows none of them: a move of one by the desktop changes only that one.
void MoveGroup(const Window& leader, int dx, int dy) {
  if (&leader != MenuBarWindow()) return;
  if (!leader.group || !(leader.group->attributes & kWindowGroupAttrMoveTogether)) return;
  if (dx == 0 && dy == 0) return;
  for (WindowRef w : WindowList()) {
    if (w == &leader || w->group != leader.group) continue;
    SetContent(w, Offset(w->content, dx, dy));
    CurrentDisplay()->move_resize(w);
    PlacePopUps(w);
  }
}

int Clamp(int v, int low, int high) {
  return std::max(low, std::min(v, std::max(low, high)));
}

// The nearest size within the limits that differs from `size` by whole steps; where there is none,
// the first such size from the lower limit on.
int WithinBySteps(int size, int low, int high, int step) {
  low = std::max(low, 1);
  if (step == 0) return Clamp(size, low, high);
  if (size > high) size -= (size - high + step - 1) / step * step;
  if (size < low) size += (low - size + step - 1) / step * step;
  return size;
}

// The bounds that the window takes when the desktop reports `reported`: within the limits, in
// steps as its handlers say.
Rect Constrained(WindowRef w, const Rect& reported) {
  if (reported.width() == w->content.width() && reported.height() == w->content.height())
    return reported;
  // Full screen and the way back from it are the desktop's, and so is the place of a pop-up.
  if (w->parent) return reported;
  if ((w->state & kStateFullScreen) || w->full_bounds) return reported;
  SizeLimits l = LimitsOf(*w);
  Event e(kEventClassWindow, kEventWindowBoundsChanging, w);
  e.bounds.original = w->content;
  e.bounds.current = reported;
  e.bounds.current.right = reported.left + Clamp(reported.width(), l.min_width, l.max_width);
  e.bounds.current.bottom = reported.top + Clamp(reported.height(), l.min_height, l.max_height);
  SendEventToEventTarget(&e, &w->object.target);
  if (!IsValidWindow(w)) return reported;
  // The nearest whole step may lie a little outside the limits.
  Rect& c = e.bounds.current;
  c.right = c.left + WithinBySteps(c.width(), l.min_width, l.max_width, l.step_x);
  c.bottom = c.top + WithinBySteps(c.height(), l.min_height, l.max_height, l.step_y);
  return c;
}

bool SameSize(const Rect& a, const Rect& b) {
  return a.width() == b.width() && a.height() == b.height();
}

}  // namespace

Rect GetWindowBounds(WindowRef w, int region) {
  if (!IsValidWindow(w)) return {};
  switch (region) {
    case kWindowStructureRgn:
      return Structure(*w);
    case kWindowGrowRgn:
      return {w->content.right, w->content.bottom, w->content.right, w->content.bottom};
    default:
      return w->content;
  }
}

void ResizeSurface(WindowRef w) {
  DeviceRect d = DeviceBounds(*w);
  Surface& s = w->surface;
  // The display gives the first pixels the backdrop's colour.
  const bool has_backdrop = !s.pixels && !w->parent;
  int old_width = s.pixels ? s.width : 0, old_height = s.pixels ? s.height : 0;
  if (s.pixels && s.width == d.width() && s.height == d.height()) return;
  int stride = 0;
  uint32_t* pixels = CurrentDisplay()->resize_buffer(w, d.width(), d.height(), &stride);
  if (!pixels) return;
  s.pixels = pixels;
  s.width = d.width();
  s.height = d.height();
  s.stride = stride;
  ++*s.generation;
  s.damage.Reset(s.width, s.height);
  // What is new takes the background; what was there stays.
  const uint32_t background = WindowBackground(w);
  if (!has_backdrop || background != (w->backdrop != kNoColor ? w->backdrop : 0xFFFFFF)) {
    FillSurface(&s, {old_width, 0, s.width, std::min(old_height, s.height)}, background);
    FillSurface(&s, {0, old_height, s.width, s.height}, background);
  }
  s.damage.Mark(0, 0, s.width, s.height);
  if (old_width != s.width) DrawFrame(w);
}

// Makes `content` the window's bounds. True when it grew.
static bool ApplyBounds(WindowRef w, const Rect& content) {
  Rect old = w->content;
  SetContent(w, content);
  if (SameSize(old, content)) return false;
  if (w->visible || w->surface.pixels) ResizeSurface(w);
  const int width = content.width(), height = content.height();
  const bool grew = width > old.width() || height > old.height();
  if (grew && w->visible) {
    InvalidateWindow(w, {old.width(), 0, width, height}, false);
    InvalidateWindow(w, {0, old.height(), width, height}, false);
  }
  return grew;
}

void SetWindowBounds(WindowRef w, const Rect& content) {
  if (!IsValidWindow(w) || w->parent) return;
  Rect old = w->content;
  if (old == content) return;
  if (!w->has_limits || SameSize(old, content)) {
    // A fixed window keeps the size that the program gives it.
  } else {
    SizeLimits& l = w->limits;
    l.min_width = std::min(l.min_width, content.width());
    l.min_height = std::min(l.min_height, content.height());
    w->widest = std::max(w->widest, content.width());
    w->tallest = std::max(w->tallest, content.height());
  }
  ApplyBounds(w, content);
  w->refused = {};
  w->full_bounds = false;
  if (!SameSize(old, content)) CurrentDisplay()->update(w, kUpdateHints);
  CurrentDisplay()->move_resize(w);
  MoveGroup(*w, content.left - old.left, content.top - old.top);
  Event e(kEventClassWindow, kEventWindowBoundsChanged, w);
  e.time = GetCurrentEventTime();
  PlacePopUps(w);
  e.bounds = {old, content, true, false, false, 0};
  SendEventToEventTarget(&e, &w->object.target);
}

double WindowScale(WindowRef w) {
  return IsValidWindow(w) ? w->surface.scale : MainScreen().scale;
}

static bool IsScale(double scale) {
  return scale >= kLeastScale && scale <= kMostScale;
}

// The window keeps its place on the screen and its logical size; its pixels are made again. `ask`:
// the display is asked for the size that this makes.
static void Rescale(WindowRef w, double scale, bool ask) {
  if (w->surface.scale == scale) return;
  const DeviceRect at = DeviceBounds(*w);
  const Rect old = w->content;
  Surface& s = w->surface;
  s.scale = scale;
  SetContent(w, Offset(old, LogicalSize(at.left, scale) - old.left,
                       LogicalSize(at.top, scale) + w->menu_bar_height - old.top));
  if (s.pixels) {
    s.width = s.height = 0;  // nothing of the old picture fits
    ResizeSurface(w);
  }
  w->refused = {};
  CurrentDisplay()->update(w, kUpdateHints | kUpdateCursor);
  if (ask) CurrentDisplay()->move_resize(w);
  if (w->visible) InvalidateWindow(w, {0, 0, w->content.width(), w->content.height()}, false);
  for (WindowRef p : PopUpsOf(w)) Rescale(p, scale, true);
  Event e(kEventClassWindow, kEventWindowBoundsChanged, w);
  e.time = GetCurrentEventTime();
  e.bounds = {old, w->content, true, false, false, 0};
  SendEventToEventTarget(&e, &w->object.target);
}

// Takes the bounds that the display reports (device pixels, menu bar included) and tells the
// handlers.
OSStatus TakeReportedBounds(HandlerCall*, Event* event, void*) {
  WindowRef w = event->window;
  if (IsScale(event->bounds.scale)) Rescale(w, event->bounds.scale, false);
  if (!IsValidWindow(w)) return noErr;
  Rect reported = event->bounds.current, old = w->content;
  if (reported == old) return noErr;
  Rect wanted = Constrained(w, reported);
  if (!IsValidWindow(w)) return noErr;
  if (!SameSize(wanted, reported)) {
    // A size is refused once; when the desktop reports it again it is accepted.
    if (w->refused == reported) {
      wanted = reported;
    } else {
      w->refused = reported;
      ApplyBounds(w, wanted);
      CurrentDisplay()->move_resize(w);
    }
  }
  if (!(w->content == wanted)) ApplyBounds(w, wanted);
  // The desktop does not know of replayed bounds, so they are asked for.
  if (event->bounds.replayed) CurrentDisplay()->move_resize(w);
  // The desktop may report the place before the size that comes back.
  const bool was_full = w->full_bounds;
  w->full_bounds = (w->state & kStateFullScreen) || (was_full && SameSize(old, wanted));
  if (was_full && !w->full_bounds) CurrentDisplay()->update(w, kUpdateHints);
  if (wanted == old) return noErr;
  MoveGroup(*w, wanted.left - old.left, wanted.top - old.top);
  PlacePopUps(w);
  Event changed(kEventClassWindow, kEventWindowBoundsChanged, w);
  changed.time = event->time;
  changed.bounds = {old, wanted, event->bounds.placement && SameSize(old, wanted), false, false, 0};
  return SendEventToEventTarget(&changed, &w->object.target);
}

void ReadScreens() {
  const bool main_changed = UpdateScreens();
  PlacePopUps(nullptr);
  if (!main_changed) return;
  // The figures of the screen are updated before the windows get their events.
  Event e(kEventClassSystem, kEventSystemDisplayReconfigured);
  e.time = GetCurrentEventTime();
  SendEventToEventTarget(&e, GetApplicationEventTarget());
  for (WindowRef w : WindowList())
    if (w->has_limits) CurrentDisplay()->update(w, kUpdateHints);  // the screen may be its limit
}

void HandleScale(WindowRef w, double scale) {
  // A pop-up has its parent's.
  if (IsScale(scale) && !w->parent) Rescale(w, scale, true);
}

void HandleFrame(WindowRef w, const DeviceRect& widths) {
  auto logical = [w](int device) {
    return LogicalSize(std::clamp(device, 0, kWidestFrame), w->surface.scale);
  };
  w->frame = {logical(widths.left), logical(widths.top), logical(widths.right),
              logical(widths.bottom)};
}

void HandleState(WindowRef w, uint32_t state) {
  constexpr uint32_t kDesktops = kStateFullScreen;
  w->state = (w->state & ~kDesktops) | (state & kDesktops);
}

void MoveWindowStructure(WindowRef w, int left, int top) {
  if (!IsValidWindow(w) || w->parent) return;
  Rect s = Structure(*w);
  if (s.left == left && s.top == top) return;
  SetContent(w, Offset(w->content, left - s.left, top - s.top));
  CurrentDisplay()->move_resize(w);
  PlacePopUps(w);
}

Rect ConstrainWindowToScreen(WindowRef w) {
  if (!IsValidWindow(w)) return {};
  Rect s = Structure(*w);
  int dx = std::min(0, ScreenWidth() - s.right), dy = std::min(0, ScreenHeight() - s.bottom);
  dx = std::max(dx, -s.left);
  dy = std::max(dy, -s.top);
  return Offset(s, dx, dy);
}

int FindWindow(Point where, WindowRef w) {
  if (!IsValidWindow(w)) return inDesk;
  const Rect& c = w->content;
  if (c.contains(where)) return inContent;
  return Rect{c.left, c.top - w->menu_bar_height, c.right, c.top}.contains(where) ? inMenuBar
                                                                                  : inDesk;
}

void SetSystemUIMode(int mode, uint32_t) {
  SetWindowFullScreen(MenuBarWindow(), mode != kUIModeNormal);
}

void SetWindowFullScreen(WindowRef w, bool full) {
  if (!IsValidWindow(w)) return;
  uint32_t state = full ? w->state | kStateFullScreen : w->state & ~uint32_t{kStateFullScreen};
  if (state == w->state) return;
  w->state = state;
  CurrentDisplay()->update(w, kUpdateHints);
}

}  // namespace platform
