#include "toolkit/events/loop.h"

#include <cstdlib>

#include "platform/controls/edit_text.h"
#include "platform/events/clock.h"
#include "platform/events/event.h"
#include "platform/events/targets.h"
#include "platform/input/results.h"
#include "platform/loop/receive.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/grab.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/timers.h"
#include "toolkit/core/trace.h"
#include "toolkit/events/menu_bar.h"

using namespace platform;
using toolkit::Modal, toolkit::state;

static XwWindow* RawMode() {
  return reinterpret_cast<XwWindow*>(intptr_t{-1});
}

// The window that a wait is about. One that has ended no longer keeps anything out, even
// when another has taken its place in memory.
class toolkit::Modal {
 public:
  explicit Modal(XwWindow* w) : window_(w), outer_(state.innermost_wait) {
    if (!raw() && IsLive(w)) serial_ = w->serial;
    state.innermost_wait = this;
  }
  ~Modal() { state.innermost_wait = outer_; }
  Modal(const Modal&) = delete;
  Modal& operator=(const Modal&) = delete;
  bool raw() const { return window_ == RawMode(); }
  // It and the waits around it are for all windows.
  bool open_to_all() const { return !window_ && (!outer_ || outer_->open_to_all()); }
  bool KeepsOut(XwWindow* w) const { return lives() && w != window_ && !IsSubWindow(window_, w); }
  void Select() const {
    if (lives()) SelectWindow(NativeWindow(TopLevel(window_)));
  }
  bool lives() const { return IsLive(window_) && window_->serial == serial_; }

 private:
  XwWindow* window_;
  uint64_t serial_ = 0;
  const Modal* outer_;
};

namespace {

constexpr int64_t kPollPeriod = 25000;  // microseconds between two events of XwGetEvent

inline void TakeRecord(const Event& e) {
  auto* record = static_cast<XwEvent*>(e.payload);
  Inp = *record;
  free(record);
  if (Inp.type == XWE_TIMER) [[unlikely]]
    TimerTaken(Inp.window, Inp.value);
}

// A release outside the window that holds the pointer is translated here, since no handler of that
// window would see it. False when the platform must not see it either.
bool ReleaseOutsideGrab(const Event& e) {
  // A release that no window gets only clears the button.
  if (!GrabWindow || !e.window) return true;
  const int part = FindWindow(e.mouse.where, e.mouse.under);
  if (part == inContent && e.mouse.under == NativeWindow(GrabWindow)) return true;
  Inp.window = GrabWindow;
  Inp.type = XWE_RELEASE;
  PassiveGrab = false;
  if (e.mouse.button >= 1) Inp.state &= ~(1u << (e.mouse.button - 1));
  if (Inp.state & XWS_BUTTONS) return true;
  if (!ActiveGrab) GrabWindow = nullptr;
  return false;
}

// Lets the handlers translate the event into Inp.
void Translate(Event* e) {
  const bool release = e->cls == kEventClassMouse && e->kind == kEventMouseUp;
  const int button = release ? e->mouse.button : 0;
  SendEventToEventTarget(e, static_cast<EventTargetRef>(MainTarget));
  // A release that no window takes ends the button all the same.
  if (button >= 1 && button <= kLastButton) DropButtons(1u << (button - 1));
}

// Translates a platform event into Inp. A non-zero result ends the wait with it.
int TakePlatformEvent(Event* e) {
  if (e->cls == kEventClassMouse && e->kind == kEventMouseUp) {
    if (e->mouse.button > kLastButton) return eventNotHandledErr;
    if (!ReleaseOutsideGrab(*e)) return 0;
  }
  if (e->cls == kEventClassMouse && e->kind == kEventMouseDown &&
      FindWindow(e->mouse.where, e->mouse.under) == inMenuBar) {
    PressMenuBar(*e);
    Inp.type = 0;
    return 0;
  }
  Translate(e);
  OpenRequestedMenu();
  return 0;
}

void ClearAndCall(XwWindow* w, int type) {
  XwPush(w);
  XwClear(0, 0, 0, 0);
  XwPop();
  Trace(Subject::kEvents, "%d", type);
  Inp.type = w->handler(type);
}

}  // namespace

bool WaitKeepsOut(XwWindow* w) {
  const Modal* m = state.innermost_wait;
  return m && (m->raw() || m->KeepsOut(w));
}

bool ModalKeepsOut(XwWindow* w) {
  const Modal* m = state.innermost_wait;
  return m && m->KeepsOut(w);
}

bool ModalKeepsOutNative(const Window* native) {
  if (!state.innermost_wait) return false;
  for (XwWindow* w = W_Start; w; w = w->next)
    if (w->platform == native) return ModalKeepsOut(w);
  return false;
}

void SelectModal() {
  if (const Modal* m = state.innermost_wait) m->Select();
}

void RefusePress() {
  XwBeep();
  SelectModal();
}

void XwRunEventLoop() {
  for (;;) XwWaitEvent(nullptr);
}

// A box that has got the keyboard shows its text selected.
static void SelectBoxText() {
  constexpr int kSelected = 100;
  XwWindow* box = XwFind(Inp.window, Inp.item);
  if (box && box->kind == XWK_COMBO) box = XwFind(Inp.window, -Inp.item);
  if (box && IsControl(box)) SelectEditText(static_cast<ControlRef>(box->platform), 0, kSelected);
}

// Takes the results of background tasks that have arrived. Results that arrive during these calls
// wait until the loop has looked at the events.
static void TakeResults() {
  constexpr int kMost = 64;
  for (int i = 0; i < kMost && ResultsWait(); ++i)
    if (!TakeNextResult()) break;
  Inp.type = 0;
}

// `while_open`: until the window ends.
static int Wait(const Modal& only, bool while_open) {
  Event e;
  for (;;) {
    Inp.type = 0;
    if (while_open && !only.lives()) return 0;
    if (ResultsWait() && only.open_to_all()) [[unlikely]]
      TakeResults();
    if (!ReceiveNextEvent(kEventDurationForever, &e)) continue;
    if (e.cls == kToolkitEventClass) {
      TakeRecord(e);
      if (Inp.type == XWE_EDIT_SELECT && Inp.value == 1) [[unlikely]]
        SelectBoxText();
    } else if (int status = TakePlatformEvent(&e)) {
      return status;
    }
    if (Inp.type == 0) continue;
    XwWindow* w = Inp.window;
    if (only.KeepsOut(w)) {
      if (Inp.type != XWE_CLOSE && Inp.type != XWE_PRESS) return Inp.type;
      Inp.type == XWE_PRESS ? RefusePress() : XwBeep();
      continue;
    }
    if (only.raw() || !w || !w->handler) return Inp.type;
    if (Inp.type == XWE_EXPOSE) {
      ClearAndCall(w, XWE_EXPOSE);
      continue;
    }
    if (Traced(Subject::kEvents)) Trace(Subject::kEvents, "%d", Inp.type);
    int result = w->handler(Inp.type);
    Inp.type = result;
    if (result != 0 && result != XWE_CONFIGURE && result != XWE_EXPOSE) return result;
  }
}

int XwWaitEvent(XwWindow* modal) {
  return Wait(Modal(modal), false);
}

int WaitWhileOpen(XwWindow* modal) {
  return Wait(Modal(modal), true);
}

int XwGetEvent(XwWindow* modal, int dispatch) {
  Inp.type = 0;
  // Microseconds in 32 bits: the count wraps, and polling pauses until it has caught up.
  int64_t now = int32_t(uint32_t(uint64_t(GetTimeOfDayMicroseconds())));
  if (!state.polled) state.last_poll = now;
  state.polled = true;
  if (now - state.last_poll < kPollPeriod) return 0;
  state.last_poll = now;
  const Modal only(modal);
  Event e;
  if (!ReceiveNextEvent(kEventDurationNoWait, &e)) return 0;
  if (e.cls != kToolkitEventClass) {
    Translate(&e);
    DropRequestedContext();
    return Inp.type;
  }
  TakeRecord(e);
  XwWindow* w = Inp.window;
  int type = Inp.type;
  bool redraw = type == XWE_CONFIGURE || type == XWE_EXPOSE;
  if (redraw && w && w->handler) {
    ClearAndCall(w, type);
    return type;
  }
  if (only.KeepsOut(w)) {
    if (type == XWE_PRESS) RefusePress();
    return type;
  }
  if (dispatch && !only.raw() && w && w->handler) Inp.type = w->handler(type);
  return Inp.type;
}

int XwPeekEvents(XwWindow* modal, int dispatch) {
  while (XwGetEvent(modal, dispatch)) {
  }
  return 0;
}

int XwGrabEvent() {
  for (;;) {
    int type = XwWaitEvent(RawMode());
    if (type != XWE_TIMER || !Inp.window || !Inp.window->handler) return type;
  }
}
