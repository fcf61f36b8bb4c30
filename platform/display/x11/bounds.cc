// Where windows are: what the program asks for, and what comes back.
//
// A window manager answers in its own time, and on the way to what was asked it reports other
// bounds: those of requests before, those from before the request, and those that new size hints
// make of the present ones. Taken for the user's doing they would undo what the program has just
// done. So while requests are open only the answer to the last is passed on at once; anything else
// is held until no answer has come for a while: then it is what the window manager grants instead.
#include <algorithm>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr double kPatience = 0.1;  // seconds from the last request to taking no for an answer
constexpr double kForgotten = 1;   // a request that is older gets no answer any more
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
  RawEvent* out = Emit(RawEvent::kConfigure, n);
  out->root_x = float(r.left);
  out->root_y = float(r.top);
  out->width = r.width();
  out->height = r.height();
}

void PatienceIsOver(EventLoopTimerRef, void* native) {
  auto* n = static_cast<Native*>(native);
  const DeviceRect granted = n->asked.held;
  ForgetAsked(n);
  Report(n, granted);
}

}  // namespace

void MoveResizeNative(WindowRef w) {
  Native* n = NativeOf(w);
  if (n == nullptr) return;
  const DeviceRect r = DeviceBounds(*w);
  n->bounds_known = false;
  SetSizeHints(*n);
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
// come when later ones are on their way already. Those before it get no answer any more. True when
// no request is open then.
bool IsLastAnswer(Native* n, const DeviceRect& bounds, uint16_t sequence) {
  auto& open = n->asked.open;
  const auto answered = std::find_if(open.begin(), open.end(), [&](const auto& request) {
    return request.bounds == bounds && int16_t(sequence - uint16_t(request.sequence)) >= 0;
  });
  if (answered == open.end()) return false;
  open.erase(open.begin(), answered + 1);
  // The others are being dealt with.
  SetEventLoopTimerNextFireTime(n->asked.patience, kPatience);
  return open.empty();
}

void TakeBounds(Native* n, const DeviceRect& told, uint16_t sequence) {
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

void ForgetAsked(Native* n) {
  RemoveEventLoopTimer(n->asked.patience);
  n->asked = {};
}

}  // namespace platform::x11
