#include "toolkit/events/mouse.h"

#include "platform/controls/controls.h"
#include "platform/loop/dispatch.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/grab.h"
#include "toolkit/core/modifiers.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/events/cursors.h"
#include "toolkit/events/loop.h"
#include "toolkit/windows/boxes.h"
#include "toolkit/windows/tips.h"

using namespace platform;
using toolkit::state;

namespace {

constexpr uint32_t kDoubleClickMs = 219;

struct Pressed {
  int button;
  uint32_t mask;
};

void ReadPen(const TabletPoint& pen) {
  Inp.pressure = pen.pressure / 257;
  Inp.tilt_x = pen.tilt_x;
  Inp.tilt_y = pen.tilt_y;
}

// The pen's tip and side buttons stand for buttons; none of them down stands for all of them.
Pressed PenButton(const TabletPoint& pen) {
  if (pen.buttons & 1) return {1, 1};
  if (pen.buttons & 2) return {3, 4};
  if (pen.buttons & 4) return {2, 2};
  return {0, 31};
}

void TakePointer(XwWindow* w, const Event& e) {
  Inp.focus = Inp.window = w;
  Inp.root_x = e.mouse.where.x;
  Inp.root_y = e.mouse.where.y;
  SetTargetCoordinates(w);
}

XwWindow* Release(XwWindow* w, uint32_t mask) {
  XwWindow* target = GrabWindow ? GrabWindow : w;
  Inp.type = XWE_RELEASE;
  DropButtons(mask);
  return target;
}

// Null: the press only activated the application.
XwWindow* Press(XwWindow* w, Pressed pressed) {
  Inp.type = XWE_MOTION + pressed.button;
  Inp.state = (Inp.state & ~uint32_t{XWS_BUTTONS}) | pressed.mask;
  if (!AppActive) {
    SetFrontProcess();
    SelectWindow(NativeWindow(w));
    Inp.type = 0;
    return nullptr;
  }
  XwWindow* target = w;
  if (GrabWindow) {
    target = GrabWindow;
  } else {
    PassiveGrab = true;
    GrabWindow = w;
    if (XwWindow* sub = FindVirtualWindow(w, Inp.px, Inp.py)) GrabWindow = Inp.focus = target = sub;
  }
  if (Inp.type != XWE_PRESS) {
    // Only the primary button keeps a grab. An active one leaves its cursor.
    if (ActiveGrab && GrabWindow)
      CapturePointer(NativeWindow(GrabWindow), reinterpret_cast<CursorRef>(GrabCursor),
                     Capture::kProgram);
    GrabWindow = nullptr;
    PassiveGrab = false;
  }
  return target;
}

OSStatus Button(XwWindow* w, const Event& e) {
  if (FindWindow(e.mouse.where, e.mouse.under) != inContent) return eventNotHandledErr;
  Pressed pressed{};
  if (e.mouse.tablet_type == kEventTabletPoint) {
    ReadPen(e.mouse.tablet);
    pressed = PenButton(e.mouse.tablet);
  } else {
    if (e.mouse.button < 1 || e.mouse.button > kLastButton) return eventNotHandledErr;
    pressed = {e.mouse.button, 1u << (e.mouse.button - 1)};
  }
  Inp.time = EventMilliseconds(e.time);
  if (!GrabWindow &&
      FindControlUnderMouse({e.mouse.where.x - w->x, e.mouse.where.y - w->y}, NativeWindow(w))) {
    if (e.kind == kEventMouseDown && ModalKeepsOut(w)) {
      RefusePress();
      return noErr;
    }
    return eventNotHandledErr;
  }
  TakePointer(w, e);
  XwWindow* target = e.kind == kEventMouseUp ? Release(w, pressed.mask) : Press(w, pressed);
  if (!target) return noErr;
  Inp.window = target;
  SetTargetCoordinates(target);
  Inp.item = XCheckbl(target->boxes);
  return noErr;
}

OSStatus Motion(XwWindow* w, const Event& e) {
  Point& lastpos = state.last_pen;
  if (e.mouse.tablet_type == kEventTabletPoint) {
    if (e.mouse.where == lastpos) {
      Inp.type = 0;
      return eventNotHandledErr;
    }
    ReadPen(e.mouse.tablet);
    lastpos = e.mouse.where;
  }
  Inp.type = XWE_MOTION;
  XwWindow* const focus = Inp.focus;
  TakePointer(w, e);
  XwWindow* target = GrabWindow ? GrabWindow : FindVirtualWindow(w, Inp.px, Inp.py);
  if (target) Inp.focus = Inp.window = target;
  // A window that opens under the pointer makes it leave the one below; the focus stays there.
  if (!e.mouse.under && focus) Inp.focus = focus;
  SetTargetCoordinates(Inp.window);
  Inp.item = XCheckbl(Inp.window->boxes);
  return eventNotHandledErr;
}

// Chooses the tip of what the pointer rests on, in windows that get pointer events.
void ChooseTip(XwWindow* w, const Event& e) {
  const int x = e.mouse.where.x - w->x, y = e.mouse.where.y - w->y;
  const bool inside = x >= 0 && y >= 0 && x < w->width && y < w->height;
  if (Inp.type != XWE_MOTION) return;
  if (!inside || GrabWindow || Inp.state & XWS_BUTTONS || WaitKeepsOut(Inp.window)) {
    EndTip();
    PointAtTip(nullptr, nullptr, 0, e.mouse.where);
    return;
  }
  const ControlRef control = FindControlUnderMouse({x, y}, NativeWindow(w));
  auto* record = static_cast<XwWindow*>(control ? GetControlReference(control) : nullptr);
  PointAtTip(Inp.window, IsLive(record) ? record : nullptr, Inp.item, e.mouse.where);
}

}  // namespace

void SetTargetCoordinates(XwWindow* target) {
  Inp.px = Inp.root_x - target->x;
  Inp.py = Inp.root_y - target->y;
  if (!IsSub(target)) return;
  const XwWindow* top = TopLevel(target);
  Inp.px = Inp.root_x - top->x - target->origin_x;
  Inp.py = Inp.root_y - top->y - target->origin_y;
}

XwWindow* FindVirtualWindow(XwWindow* w, int x, int y) {
  if (!IsLive(w) || !(w->flags & XW_HAS_SUBWINDOWS)) return nullptr;
  for (int i = w->child_count; i-- > 0;) {
    XwWindow* c = w->children[i];
    if (!c || !IsSub(c) || !(c->flags & XW_SHOWN)) continue;
    if (c->origin_x < x && x < c->origin_x + c->width && c->origin_y < y &&
        y < c->origin_y + c->height)
      return c;
  }
  return nullptr;
}

OSStatus EVmouse_func(HandlerCall*, Event* event, void* window) {
  auto* w = static_cast<XwWindow*>(window);
  Inp.pressure = 0;
  SetModifiers(HeldModifiers());  // a copied record may have brought older ones
  if (event->kind == kEventMouseDown || event->kind == kEventMouseUp) {
    EndTip();
    return Button(w, *event);
  }
  const OSStatus status = Motion(w, *event);
  ChooseTip(w, *event);
  return status;
}

OSStatus EVwheel_func(HandlerCall*, Event* event, void* window) {
  auto* w = static_cast<XwWindow*>(window);
  EndTip();
  int px = event->mouse.where.x - w->x, py = event->mouse.where.y - w->y;
  const OSStatus controls = ModalKeepsOut(w) ? noErr : eventNotHandledErr;
  if (ControlTakesWheel(FindControlUnderMouse({px, py}, NativeWindow(w)))) return controls;
  XwWindow* target = FindVirtualWindow(w, px, py);
  if (!target || !target->scroll_handler) target = w;
  if (!target->scroll_handler) return controls;
  if (WaitKeepsOut(target)) return noErr;
  Inp.window = target;
  Inp.root_x = event->mouse.where.x;
  Inp.root_y = event->mouse.where.y;
  SetTargetCoordinates(target);
  Inp.item = XCheckbl(target->boxes);
  target->scroll_handler(event->mouse.dx, event->mouse.dy);
  return noErr;
}

void XwGrabPointer(XwWindow* w, int32_t cursor) {
  if (!CheckWindow(w)) return;
  GrabWindow = w;
  ActiveGrab = true;
  GrabCursor = cursor >= 0 && cursor < XW_CURSORS ? XWcursors[cursor] : nullptr;
  CapturePointer(NativeWindow(w), reinterpret_cast<CursorRef>(GrabCursor));
}

void XwUngrabPointer() {
  if (ActiveGrab) CapturePointer(nullptr, nullptr);
  GrabWindow = nullptr;
  ActiveGrab = false;
  if (!GrabCursor) return;
  GrabCursor = nullptr;
  RestoreCursors();
}

int XwDoubleClick(uint32_t* last_time) {
  if (!last_time) return 0;
  bool twice = Inp.time - *last_time <= kDoubleClickMs && Inp.item == state.last_click_item;
  state.last_click_item = Inp.item;
  *last_time = Inp.time;
  return twice;
}

int XwCheckPointer(int x, int y, int w, int h) {
  int64_t px = Inp.px, py = Inp.py;
  return x < px && px < int64_t{x} + w && y < py && py < int64_t{y} + h;
}
