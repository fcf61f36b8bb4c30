// A press of the primary button on a control, until it is let go.
#include <utility>

#include "platform/controls/control.h"
#include "platform/events/trackers.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

constexpr uint16_t kPrimary = 1, kSecondary = 2;

struct Held {
  Control* control = nullptr;  // null once it is destroyed: the release is still taken
  Tracker tracker;
  double pressed_at = 0;  // seconds
};
Held held;

Point InContent(const Control* c, Point where) {
  const Rect content = GetWindowBounds(OwnerOf(c).window, kWindowContentRgn);
  return {where.x - content.left, where.y - content.top};
}

bool Inside(const Control* c, Point at) {
  auto* control = const_cast<Control*>(c);
  return c->active && IsControlVisible(control) && PressArea(c).contains(at) &&
         PaneArea(c->pane).contains(at);
}

void EndTracking() {
  StopTracking(&held.tracker);
  held.control = nullptr;
}

void LetGo(Control* c, bool inside) {
  if (c && c->kind->release && c->kind->release(c, inside)) HitControl(c, false);
}

// Ends the press without a hit.
void Lost(Control* c) {
  if (c && c->kind->lost)
    c->kind->lost(c);
  else
    LetGo(c, false);
}

// A release without a window means that another program took the pointer away.
void Release(const Event& e) {
  Control* c = held.control;
  EndTracking();
  if (c && !e.window)
    Lost(c);
  else
    LetGo(c, c && Inside(c, InContent(c, e.mouse.where)));
}

Tracking Ask(void*, Event* event) {
  // Another program has taken the pointer while the button is down.
  if (event->cls == kEventClassSystem && event->kind == kEventSystemPointerLost)
    Lost(std::exchange(held.control, nullptr));
  if (event->cls != kEventClassMouse) return Tracking::kPass;
  switch (event->kind) {
    case kEventMouseUp:
      if (event->mouse.button == kPrimary || !event->window) Release(*event);
      return Tracking::kTake;
    case kEventMouseDown:
      // The release of the press before was lost.
      if (event->mouse.button == kPrimary) {
        Event lost(kEventClassMouse, kEventMouseUp);
        lost.mouse = {};
        Release(lost);
        return Tracking::kPass;
      }
      return Tracking::kTake;
    case kEventMouseMoved:
    case kEventMouseDragged:
      if (Control* c = held.control; c && c->kind->drag)
        c->kind->drag(c, InContent(c, event->mouse.where));
      return Tracking::kTake;
    default:
      return Tracking::kTake;
  }
}

void PressWithOther(Control* c, Point at, int button) {
  const bool taken = button == kSecondary &&
                     SendControlEvent(c, kEventControlContextualMenuClick) != eventNotHandledErr;
  if (!taken && IsValidControl(c) && c->kind->press_other) c->kind->press_other(c, at, button);
}

void Press(Control* c, const Event& e) {
  const Point at = InContent(c, e.mouse.where);
  DispatchScope scope;  // the record stays
  if (e.mouse.button != kPrimary) return PressWithOther(c, at, e.mouse.button);
  held.pressed_at = e.time;
  if (SendControlEvent(c, kEventControlClick) != eventNotHandledErr) return;
  auto usable = [c] { return IsValidControl(c) && c->active; };
  if (usable() && c->kind->focus_by_press) SetKeyboardFocus(OwnerOf(c).window, c, kWholeControl);
  if (usable() && c->kind->open) return c->kind->open(c, false);
  if (!usable() || !c->kind->press) return;
  held.control = c;
  held.tracker = {Ask, nullptr, nullptr, 0};
  StartTracking(&held.tracker);
  // A control that is destroyed in its callback stays tracked until the release.
  if (!c->kind->press(c, at) && held.control == c) EndTracking();
}

}  // namespace

OSStatus SendControlEvent(Control* c, uint32_t kind, int part, bool by_key) {
  Event e(kEventClassControl, kind, OwnerOf(c).window);
  e.control = {c, part, by_key};
  return SendEventToEventTarget(&e, &c->object.target);
}

void HitControl(Control* c, bool by_key, int part) {
  if (c->kind->act) c->kind->act(c);
  SendControlEvent(c, kEventControlHit, part, by_key);
}

bool IsControlHeld(const Control* c) {
  return c && held.control == c;
}

void PressByKey(Control* c) {
  DispatchScope scope;
  if ((c->keys & kKeysClick) &&
      SendControlEvent(c, kEventControlClick, 0, true) != eventNotHandledErr)
    return;
  if (!IsValidControl(c)) return;
  if (c->kind->open)
    c->kind->open(c, true);
  else
    HitControl(c, true);
}

Rect PressArea(const Control* c) {
  return c->kind->whole_area ? ControlArea(c) : GetControlBounds(const_cast<Control*>(c));
}

double PressTime() {
  return held.pressed_at;
}

bool IsControlUnder(const Control* c, Point at) {
  return Inside(c, at);
}

OSStatus HandlePress(HandlerCall*, Event* event, void*) {
  WindowRef w = event->window;
  if (!ControlsOf(w) || FindWindow(event->mouse.where, w) != inContent) return eventNotHandledErr;
  const Rect content = GetWindowBounds(w, kWindowContentRgn);
  Control* c = FindControlUnderMouse(
      {event->mouse.where.x - content.left, event->mouse.where.y - content.top}, w);
  if (!c) return eventNotHandledErr;
  Press(c, *event);
  return noErr;
}

// The one that the wheel turns where nothing under the pointer takes it: null unless it is the only
// one that shows.
static Control* OnlyVerticalBar(const WindowControls& all) {
  Control* only = nullptr;
  for (Control* c = all.first; c; c = c->next) {
    if (c->kind != &kScrollBarKind || c->horizontal || c->whole || !IsControlVisible(c)) continue;
    if (only) return nullptr;
    only = c;
  }
  return only;
}

OSStatus HandleWheel(HandlerCall*, Event* event, void*) {
  WindowControls* all = ControlsOf(event->window);
  if (!all || FindWindow(event->mouse.where, event->window) != inContent) return eventNotHandledErr;
  const Rect content = GetWindowBounds(event->window, kWindowContentRgn);
  Control* c = FindControlUnderMouse(
      {event->mouse.where.x - content.left, event->mouse.where.y - content.top}, event->window);
  if (!ControlTakesWheel(c)) c = OnlyVerticalBar(*all);
  if (!c) return eventNotHandledErr;
  if (c->active) c->kind->wheel(c, event->mouse.dx, event->mouse.dy);
  return noErr;
}

void ForgetTracking(const Control* c) {
  if (!c)
    EndTracking();
  else if (held.control == c)
    held.control = nullptr;
}

}  // namespace platform
