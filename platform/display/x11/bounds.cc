// Where windows are: what the program asks for, and what comes back.
//
// A window manager answers in its own time, and on the way to what was asked it reports other
// bounds: those of requests before, those from before the request, and those that new size hints
// make of the present ones. Taken for the user's doing they would undo what the program has just
// done. So while requests are open only the answer to the last is passed on at once; anything else
// is held until no answer has come for a while: then it is what the window manager grants instead.
//
// A window manager also sends bounds in events of its own making, and so can any other program.
// What such an event says is believed when it is what the program has asked for, or known already;
// else the server is asked, without waiting for it, and its answer counts.
#include <xcb/xcbext.h>

#include <algorithm>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr double kPatience = 0.1;  // seconds from the last request until it counts as refused
constexpr double kForgotten = 1;   // seconds; older requests are assumed lost
constexpr size_t kMostOpen = 64;

// A size that comes from outside decides how much memory is taken: no window need be larger than
// twice the screens, unless the program itself asked for that.
DeviceRect Bounded(const Native& n, const DeviceRect& r) {
  int width = 0, height = 0;
  for (const Screen& s : x.screens) {
    width = std::max(width, s.bounds.right * 2);
    height = std::max(height, s.bounds.bottom * 2);
  }
  const DeviceRect own = DeviceBounds(*n.w);
  width = std::min(r.width(), std::max(width, own.width()));
  height = std::min(r.height(), std::max(height, own.height()));
  return {r.left, r.top, r.left + std::max(width, 1), r.top + std::max(height, 1)};
}

void Report(Native* n, const DeviceRect& r) {
  if (n->bounds_known && n->bounds == r) return;
  n->bounds = r;
  n->bounds_known = true;
  EmitBounds(n, r);
}

// Sequence numbers wrap.
bool Before(unsigned a, unsigned b) {
  return int(a - b) < 0;
}

// What arrived later than the answer to the open question is newer than the answer.
void DropOlderCheck(Native* n, unsigned sequence) {
  if (n->check.place != 0 && !Before(sequence, n->check.place)) ForgetCheck(n);
}

// Null while the reply has not come; `*failed` is set when none will.
template <class T>
T* PollReply(unsigned sequence, bool* failed) {
  void* reply = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (xcb_poll_for_reply(x.c, sequence, &reply, &error) == 0) return nullptr;
  free(error);
  *failed = reply == nullptr;
  return static_cast<T*>(reply);
}

// The size is asked for last, so the answer about the place is there when that about the size is.
void TakeCheck(Native* n) {
  bool failed = false;
  Reply<xcb_get_geometry_reply_t> size(PollReply<xcb_get_geometry_reply_t>(n->check.size, &failed));
  if (!size && !failed) return;
  const unsigned sequence = n->check.place;
  Reply<xcb_translate_coordinates_reply_t> at(
      PollReply<xcb_translate_coordinates_reply_t>(sequence, &failed));
  n->check = {};
  --x.checks;
  if (!size || !at) return;
  TakeBounds(n, {at->dst_x, at->dst_y, at->dst_x + size->width, at->dst_y + size->height},
             sequence);
}

void PatienceIsOver(EventLoopTimerRef, void* native) {
  auto* n = static_cast<Native*>(native);
  const DeviceRect granted = n->asked.held;
  ForgetAsked(n);
  Report(n, granted);
}

}  // namespace

DeviceRect Wanted(const Window& w) {
  return WantedBounds(w, x.screens.data(), int(x.screens.size()));
}

void EmitBounds(Native* n, const DeviceRect& r) {
  RawEvent* out = Emit(RawEvent::kConfigure, n);
  out->root_x = float(r.left);
  out->root_y = float(r.top);
  out->width = r.width();
  out->height = r.height();
}

void MoveResizeNative(const Window* w) {
  Native* n = NativeOf(w);
  if (n == nullptr) return;
  const DeviceRect r = Wanted(*w);
  if (w->parent != nullptr) {
    // The server does what it is told with a pop-up; the program has to be told what that was.
    const bool there = n->bounds == r && r == DeviceBounds(*w);
    n->bounds = r;
    n->bounds_known = true;
    if (there) return;
    ShapePopUp(*n);
    EmitBounds(n, r);
  } else {
    n->bounds_known = false;
    SetSizeHints(*n);
  }
  const uint32_t values[] = {uint32_t(Clamp16(r.left)), uint32_t(Clamp16(r.top)), Side(r.width()),
                             Side(r.height())};
  const unsigned sequence =
      xcb_configure_window(x.c, n->id,
                           XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                               XCB_CONFIG_WINDOW_HEIGHT,
                           values)
          .sequence;
  auto& open = n->asked.open;
  if (!open.empty() && open.back().bounds == r) open.pop_back();
  if (open.size() == kMostOpen) open.erase(open.begin());
  open.push_back({r, sequence});
  n->asked.since = Now();
  SetEventLoopTimerNextFireTime(n->asked.patience, kPatience);
}

// Closes the request that these bounds answer: the oldest that asked for them, since its answer may
// come when later ones are on their way already. Requests before it are closed too. True when no
// request is open then.
bool IsLastAnswer(Native* n, const DeviceRect& bounds, unsigned sequence) {
  auto& open = n->asked.open;
  const auto answered = std::find_if(open.begin(), open.end(), [&](const auto& request) {
    return request.bounds == bounds && !Before(sequence, request.sequence);
  });
  if (answered == open.end()) return false;
  open.erase(open.begin(), answered + 1);
  // The other requests get the whole time again.
  SetEventLoopTimerNextFireTime(n->asked.patience, kPatience);
  return open.empty();
}

void TakeBounds(Native* n, const DeviceRect& told, unsigned sequence) {
  DropOlderCheck(n, sequence);
  const DeviceRect bounds = Bounded(*n, told);
  auto& asked = n->asked;
  if (!asked.open.empty() && Now() - asked.since > kForgotten) ForgetAsked(n);
  if (asked.open.empty() || IsLastAnswer(n, bounds, sequence)) {
    ForgetAsked(n);
    Report(n, bounds);
    return;
  }
  asked.held = bounds;
  if (asked.patience == nullptr)
    asked.patience = InstallEventLoopTimer(kPatience, 0, PatienceIsOver, n);
}

void TakeToldBounds(Native* n, const DeviceRect& told, unsigned sequence) {
  const auto& open = n->asked.open;
  const bool asked_for = std::any_of(open.begin(), open.end(),
                                     [&](const auto& request) { return request.bounds == told; });
  const bool known = n->bounds_known && n->bounds == told;
  if ((asked_for || known) && n->check.place == 0 && !n->check.passed_over) {
    TakeBounds(n, told, sequence);
    return;
  }
  DropOlderCheck(n, sequence);
  if (n->check.place != 0) return;  // its answer will be newer than this event
  n->check.place = xcb_translate_coordinates(x.c, n->id, x.screen->root, 0, 0).sequence;
  n->check.size = xcb_get_geometry(x.c, n->id).sequence;
  n->check.passed_over = false;
  ++x.checks;
}

void TakeChecks() {
  if (x.checks == 0) return;
  for (auto& [id, n] : x.windows) {
    if (n->check.place != 0) TakeCheck(n);
  }
}

void ForgetCheck(Native* n) {
  if (n->check.place == 0) return;
  xcb_discard_reply(x.c, n->check.place);
  xcb_discard_reply(x.c, n->check.size);
  n->check = {};
  --x.checks;
}

void ForgetAsked(Native* n) {
  RemoveEventLoopTimer(n->asked.patience);
  n->asked = {};
}

}  // namespace platform::x11
