#include "toolkit/events/desktop.h"

#include <cstring>
#include <utility>

#include "platform/controls/controls.h"
#include "platform/desktop/documents.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/state.h"
#include "toolkit/events/cursors.h"
#include "toolkit/events/documents.h"
#include "toolkit/events/keyboard.h"
#include "toolkit/events/loop.h"
#include "toolkit/events/mouse.h"
#include "toolkit/events/session.h"
#include "toolkit/target/clip.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/boxes.h"
#include "toolkit/windows/tips.h"

using namespace platform;
using toolkit::state;

namespace {

// The size next to `current` that differs from `original` by whole steps.
int Snap(int original, int current, int step) {
  if (step == 0) return current;
  int remainder = (original + 1) % step;
  int n = int(float(current + 1 - remainder) / float(step) + 0.5f);
  return remainder + step * n - 1;
}

void SnapBounds(XwWindow* w, BoundsFields& b) {
  b.current.right = b.current.left + Snap(b.original.width(), b.current.width(), w->step_x);
  b.current.bottom = b.current.top + Snap(b.original.height(), b.current.height(), w->step_y);
}

// Docked windows have moved with the first window; their records follow.
void ReadDockedPlaces() {
  for (XwWindow* d = W_Start; d; d = d->next) {
    if (!(d->flags2 & XW_DOCKED)) continue;
    Rect c = GetWindowBounds(NativeWindow(d), kWindowContentRgn);
    d->x = Sat16(c.left);
    d->y = Sat16(c.top);
  }
}

void CopyBounds(XwWindow* w, const Rect& now) {
  ResetClipsFrom(w);
  if (w == W_Start) ReadDockedPlaces();
  w->x = Sat16(now.left);
  w->y = Sat16(now.top);
  w->width = Sat16(now.width());
  w->height = Sat16(now.height());
}

void BoundsChanged(XwWindow* w, const BoundsFields& b) {
  const Rect& now = b.current;
  int old_width = w->width, old_height = w->height;
  if (b.programmatic) {
    CopyBounds(w, now);
    return;
  }
  Inp.x = now.left;
  Inp.y = now.top;
  Inp.width = now.width();
  Inp.height = now.height();
  Inp.window = w;
  bool resized = now.width() != old_width || now.height() != old_height;
  if (resized) {
    XwSendEvent(w, XWE_CONFIGURE, 0, 0, 0);
  } else {
    Inp.type = XWE_CONFIGURE;
    Inp.item = 0;
    Inp.value = 0;
  }
  CopyBounds(w, now);
  // What grew is drawn on the platform's own request.
  if (resized && now.width() <= old_width && now.height() <= old_height) PostExpose(w);
}

// The desktop has moved the focus to another top-level window.
void TakeFocus(XwWindow* w) {
  if (TopLevel(Inp.focus) == w) return;
  Inp.focus = w;
  MoveWaitingFocus(w);
}

void DrawContent(XwWindow* w, const Rect& lost) {
  TargetScope scope;
  DrawControls(NativeWindow(w), lost);
  PostExpose(w);
  for (int i = 0; i < w->child_count; ++i) {
    XwWindow* c = w->children[i];
    if (c && IsSub(c) && (c->flags & XW_SHOWN)) PostExpose(c);
  }
}

// The platform reports it at once, while it reads input; the program gets it in the order of the
// events.
void PostActivity(XwWindow* w) {
  if (!w->activation_handler) return;
  Event e(kEventClassWindow, kEventWindowActivity, NativeWindow(w));
  e.time = GetCurrentEventTime();
  PostEventToQueue(GetMainEventQueue(), e);
}

void TellActivity(XwWindow* w) {
  if (!w->activation_handler) return;
  TargetScope scope;
  w->activation_handler(IsWindowActive(NativeWindow(w)));
}

static_assert(XW_DRAG_LEFT == int(DragFields::kLeft) && XW_DRAG_OVER == int(DragFields::kOver) &&
              XW_DRAG_DROPPED == int(DragFields::kDropped) &&
              XW_DRAG_FAILED == int(DragFields::kFailed));

void CallDragHandler(XwWindow* w, int step) {
  if (!w->drag_handler) return;
  TargetScope scope;
  EndTip();
  Inp.window = w;
  Inp.item = 0;
  if (step == XW_DRAG_OVER || step == XW_DRAG_DROPPED) {
    Inp.root_x = state.last_drag.x;
    Inp.root_y = state.last_drag.y;
    SetTargetCoordinates(w);
    Inp.item = XCheckbl(w->boxes);
  }
  w->drag_handler(step);
}

// The documents of the last drop do not come.
void TellDropFailed() {
  XwWindow* w = std::exchange(state.dropped_on, nullptr);
  if (IsLive(w)) CallDragHandler(w, XW_DRAG_FAILED);
}

// A wait that keeps the window out hides the drag from it, but not its end. Files are dropped where
// they were last.
void TellDrag(XwWindow* w, const DragFields& drag) {
  if (drag.step == DragFields::kFailed) return TellDropFailed();
  if (drag.step == DragFields::kOver) state.last_drag = drag.where;
  if (drag.step == DragFields::kOver && WaitKeepsOut(w)) return;
  if (drag.step == DragFields::kDropped) {
    ++state.last_drop;
    state.dropped_on = w;
  }
  state.dragged_over = drag.step == DragFields::kOver ? w : nullptr;
  CallDragHandler(w, drag.step);
}

// Toolbars get the new width of the screen.
void FitToolbars() {
  for (XwWindow* w = W_Start; w; w = w->next) {
    XwWindow* bar = w->toolbar;
    if (bar && bar->width != Sat16(XW_SCREENX))
      XwMove(bar, bar->x, bar->y, XW_SCREENX, bar->height);
  }
}

// True when the first window is there to take it.
bool AskFirstWindow(int type, int param = 0) {
  if (!IsLive(W_Start)) return false;
  XwSendEvent(W_Start, type, 0, 0, param);
  return true;
}

}  // namespace

OSStatus EVwindow_func(HandlerCall*, Event* event, void* window) {
  auto* w = static_cast<XwWindow*>(window);
  switch (event->kind) {
    case kEventWindowBoundsChanging:
      SnapBounds(w, event->bounds);
      break;
    case kEventWindowBoundsChanged:
      BoundsChanged(w, event->bounds);
      break;
    case kEventWindowCursorChange:
      ChooseCursor(w, event->mouse.where);
      break;
    case kEventWindowClose:
      XwSendEvent(w, XWE_CLOSE, 0, 0, 0);
      break;
    case kEventWindowZoom:
      return eventNotHandledErr;
    case kEventWindowDrawContent:
      DrawContent(w, event->bounds.current);
      break;
    case kEventWindowFocusAcquired:
      TakeFocus(w);
      if (ModalKeepsOut(w)) SelectModal();
      break;
    case kEventWindowActivated:
      if (ModalKeepsOut(w)) SelectModal();
      [[fallthrough]];
    case kEventWindowDeactivated:
      PostActivity(w);
      return eventNotHandledErr;
    case kEventWindowActivity:
      TellActivity(w);
      break;
    case kEventWindowDrag:
      TellDrag(w, event->drag);
      break;
    default:
      break;
  }
  return noErr;
}

OSStatus EVapp_func(HandlerCall*, Event* event, void*) {
  switch (event->cls) {
    case kEventClassApplication:
      AppActive = event->kind == kEventAppActivated;
      return eventNotHandledErr;
    case kEventClassAppleEvent:
      if (event->request.id == kAEQuitApplication)
        return AskFirstWindow(XWE_QUIT) ? noErr : eventNotHandledErr;
      if (event->request.id == kAEOpenDocuments || event->request.id == kOpenAsked)
        EVapple_func(event);
      return eventNotHandledErr;
    case kEventClassCommand:
      if (event->request.id == kHICommandQuit) {
        AskFirstWindow(XWE_QUIT, 1);
        return noErr;
      }
      if (event->request.id == kHICommandPreferences) {
        AskFirstWindow(XWE_PREFERENCES);
        return noErr;
      }
      return eventNotHandledErr;
    case kEventClassSystem:
      TakeScreenSize();
      FitToolbars();
      return eventNotHandledErr;
    case kEventClassKeyboard:
      ReleaseKey(*event);
      return noErr;
    default:
      return eventNotHandledErr;
  }
}

OSStatus EVapple_func(const Event* event) {
  // One event with the first document that fits, however many there are: XwDroppedFiles has all.
  const RequestFields& asked = event->request;
  const bool dropped = asked.id != kOpenAsked && state.dropped_on;
  int first = 0;
  while (first < asked.file_count && strlen(asked.files[first]) >= kPathSize) ++first;
  if (first == asked.file_count) {
    if (first > 0) Refuse(Refusal::kPathTooLong);
    if (dropped) TellDropFailed();
    return noErr;
  }
  if (dropped) state.dropped_on = nullptr;
  char* file = KeepDocuments(asked.files[first], asked.files, asked.file_count,
                             dropped ? state.last_drop : 0);
  if (IsLive(W_Start)) XwSendEvent(W_Start, XWE_OPEN, 0, file, asked.id == kOpenAsked);
  return noErr;
}
