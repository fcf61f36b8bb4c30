// The program's grab of the pointer, and of the keyboard while a menu is open.
//
// The server refuses a grab for a window that is not on the screen (yet) and ends it when the
// window leaves the screen; it is asked for again when the window comes up. It also refuses while
// another program has the pointer.
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

struct GrabRequest {
  Native* window = nullptr;
  GrabMode mode = GrabMode::kNone;
  const Cursor* cursor = nullptr;
  bool held = false, keys = false;  // what the server has granted
};
GrabRequest grab;

void ReportLoss(Native* n) {
  Reply<xcb_query_pointer_reply_t> now(
      xcb_query_pointer_reply(x.c, xcb_query_pointer(x.c, x.screen->root), nullptr));
  if (!now) return;
  Emit(RawEvent::kGrabLost, n)->held = DropReleased(now->mask);
}

void TryKeyboard() {
  auto cookie = xcb_grab_keyboard(x.c, 0, grab.window->id, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                  XCB_GRAB_MODE_ASYNC);
  Reply<xcb_grab_keyboard_reply_t> r(xcb_grab_keyboard_reply(x.c, cookie, nullptr));
  grab.keys = r && r->status == XCB_GRAB_STATUS_SUCCESS;
}

void Try() {
  constexpr uint16_t kMask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                             XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                             XCB_EVENT_MASK_LEAVE_WINDOW;
  const uint8_t others_too = grab.mode != GrabMode::kWindow;
  const Cursor* cursor = grab.cursor != nullptr ? grab.cursor : grab.window->w->cursor;
  DropPressGrab();
  auto cookie =
      xcb_grab_pointer(x.c, others_too, grab.window->id, kMask, XCB_GRAB_MODE_ASYNC,
                       XCB_GRAB_MODE_ASYNC, XCB_NONE, NativeCursor(cursor), XCB_CURRENT_TIME);
  Reply<xcb_grab_pointer_reply_t> r(xcb_grab_pointer_reply(x.c, cookie, nullptr));
  grab.held = r && r->status == XCB_GRAB_STATUS_SUCCESS;
  if (grab.held && grab.mode == GrabMode::kMenu) TryKeyboard();
  // One that only waits for its window is no loss.
  if (r && !grab.held && r->status != XCB_GRAB_STATUS_NOT_VIEWABLE) ReportLoss(grab.window);
}

void DropKeyboard() {
  if (grab.keys) xcb_ungrab_keyboard(x.c, XCB_CURRENT_TIME);
  grab.keys = false;
}

}  // namespace

void Grab(const Window* w, GrabMode mode, const Cursor* cursor) {
  DropKeyboard();
  Native* n = NativeOf(w);
  grab = GrabRequest{mode == GrabMode::kNone ? nullptr : n, mode, cursor, false, false};
  if (grab.window != nullptr) {
    Try();
    return;
  }
  xcb_ungrab_pointer(x.c, XCB_CURRENT_TIME);
  xcb_flush(x.c);  // others wait for the pointer
}

bool GrabsForProgram() {
  return grab.held && grab.mode != GrabMode::kWindow;
}

bool GrabsKeyboard() {
  return grab.keys;
}

bool HoldsGrab(const Native* n) {
  return grab.held && n == grab.window;
}

void GrabWhenShown(const Native* n) {
  if (n == grab.window && !grab.held) Try();
}

void LoseGrab(Native* n) {
  if (grab.held ? n != grab.window : !IsPressedIn(n->w)) return;
  grab.held = grab.keys = false;
  ReportLoss(n);
}

void ForgetGrab(const Native* n) {
  if (n == grab.window) grab = GrabRequest{};
}

void DropGrabCursor(const Cursor* cursor) {
  if (grab.cursor == cursor) grab.cursor = nullptr;
}

}  // namespace platform::x11
