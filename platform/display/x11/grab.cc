// The program's grab of the pointer, and of the keyboard while a menu is open.
//
// The server refuses a grab for a window that is not on the screen (yet) and ends it when the
// window leaves the screen; it is asked for again when the window comes up. It also refuses while
// another program has the pointer. Nobody waits for its answers: they are taken when they have
// come, or when an event cannot be understood without them.
#include <xcb/xcbext.h>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

struct GrabRequest {
  Native* window = nullptr;
  GrabMode mode = GrabMode::kNone;
  const Cursor* cursor = nullptr;
  bool held = false, keys = false;  // what the server has granted
  // Requests of the pointer and of the keyboard that it has not answered; 0: none.
  unsigned pointer_asked = 0, keys_asked = 0;
};
GrabRequest grab;

void ReportLoss(Native* n) {
  Reply<xcb_query_pointer_reply_t> now(
      xcb_query_pointer_reply(x.c, xcb_query_pointer(x.c, x.screen->root), nullptr));
  if (!now) return;
  Emit(RawEvent::kGrabLost, n)->held = DropReleased(now->mask);
}

void AskForKeyboard() {
  grab.keys_asked = xcb_grab_keyboard(x.c, 0, grab.window->id, XCB_CURRENT_TIME,
                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)
                        .sequence;
}

void Ask() {
  constexpr uint16_t kMask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                             XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                             XCB_EVENT_MASK_LEAVE_WINDOW;
  const uint8_t others_too = grab.mode != GrabMode::kWindow;
  const Cursor* cursor = grab.cursor != nullptr ? grab.cursor : grab.window->w->cursor;
  DropPressGrab();
  grab.pointer_asked =
      xcb_grab_pointer(x.c, others_too, grab.window->id, kMask, XCB_GRAB_MODE_ASYNC,
                       XCB_GRAB_MODE_ASYNC, XCB_NONE, NativeCursor(cursor), XCB_CURRENT_TIME)
          .sequence;
}

// The answer to a request, waited for or only if it has come; `asked` becomes 0 when there is one.
template <class R>
R* Answer(unsigned* asked, bool wait, R* (*reply)(xcb_connection_t*, unsigned)) {
  void* answer = nullptr;
  xcb_generic_error_t* error = nullptr;
  if (wait) {
    answer = reply(x.c, *asked);
  } else if (xcb_poll_for_reply(x.c, *asked, &answer, &error) == 0) {
    return nullptr;
  }
  free(error);
  *asked = 0;
  return static_cast<R*>(answer);
}

xcb_grab_pointer_reply_t* PointerReply(xcb_connection_t* c, unsigned sequence) {
  return xcb_grab_pointer_reply(c, {sequence}, nullptr);
}
xcb_grab_keyboard_reply_t* KeyboardReply(xcb_connection_t* c, unsigned sequence) {
  return xcb_grab_keyboard_reply(c, {sequence}, nullptr);
}

void TakePointerAnswer(bool wait) {
  if (grab.pointer_asked == 0) return;
  const Reply<xcb_grab_pointer_reply_t> r(Answer(&grab.pointer_asked, wait, PointerReply));
  if (grab.pointer_asked != 0) return;
  grab.held = r && r->status == XCB_GRAB_STATUS_SUCCESS;
  // The keyboard is grabbed only when the pointer was granted.
  if (grab.held && grab.mode == GrabMode::kMenu) AskForKeyboard();
  // A grab that waits for its window to be shown is not reported as lost.
  if (r && !grab.held && r->status != XCB_GRAB_STATUS_NOT_VIEWABLE) ReportLoss(grab.window);
}

void TakeKeyboardAnswer(bool wait) {
  if (grab.keys_asked == 0) return;
  const Reply<xcb_grab_keyboard_reply_t> r(Answer(&grab.keys_asked, wait, KeyboardReply));
  if (grab.keys_asked == 0) grab.keys = r && r->status == XCB_GRAB_STATUS_SUCCESS;
}

// Discards the answers to open requests.
void ForgetAnswers() {
  for (unsigned* asked : {&grab.pointer_asked, &grab.keys_asked}) {
    if (*asked != 0) xcb_discard_reply(x.c, *asked);
    *asked = 0;
  }
}

void DropKeyboard() {
  if (grab.keys || grab.keys_asked != 0) xcb_ungrab_keyboard(x.c, XCB_CURRENT_TIME);
  grab.keys = false;
}

}  // namespace

void Grab(const Window* w, GrabMode mode, const Cursor* cursor) {
  DropKeyboard();
  ForgetAnswers();
  Native* n = NativeOf(w);
  grab = GrabRequest{mode == GrabMode::kNone ? nullptr : n, mode, cursor};
  if (grab.window != nullptr) {
    Ask();
    if (mode != GrabMode::kMenu) TakePointerAnswer(true);
    return;
  }
  xcb_ungrab_pointer(x.c, XCB_CURRENT_TIME);
  xcb_flush(x.c);  // others wait for the pointer
}

void TakeGrabAnswers(bool wait) {
  TakePointerAnswer(wait);
  TakeKeyboardAnswer(wait);
}

bool GrabsForProgram() {
  TakePointerAnswer(true);
  return grab.held && grab.mode != GrabMode::kWindow;
}

bool GrabsKeyboard() {
  TakeGrabAnswers(true);
  return grab.keys;
}

bool HoldsGrab(const Native* n) {
  TakePointerAnswer(true);
  return grab.held && n == grab.window;
}

void GrabWhenShown(const Native* n) {
  if (n != grab.window) return;
  TakePointerAnswer(true);
  if (!grab.held) Ask();
}

void LoseGrab(Native* n) {
  TakeGrabAnswers(true);
  if (grab.held ? n != grab.window : !IsPressedIn(n->w)) return;
  grab.held = grab.keys = false;
  ReportLoss(n);
}

void ForgetGrab(const Native* n) {
  if (n != grab.window) return;
  ForgetAnswers();
  grab = GrabRequest{};
}

void DropGrabCursor(const Cursor* cursor) {
  if (grab.cursor == cursor) grab.cursor = nullptr;
}

}  // namespace platform::x11
