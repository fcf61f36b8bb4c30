// Cursors: the desktop theme's, and those that the program draws.
#include <xcb/render.h>

#include "platform/display/x11/x.h"

namespace platform::x11 {

void SetCursor(WindowRef w, CursorRef cursor) {
  (void)w;
  (void)cursor;
}
void DestroyCursor(CursorRef cursor) {
  (void)cursor;
}
bool GrabPointer(WindowRef w, CursorRef cursor) {
  (void)cursor;
  Native* n = NativeOf(w);
  if (n == nullptr) {
    xcb_ungrab_pointer(x.c, XCB_CURRENT_TIME);
    return true;
  }
  constexpr uint16_t kMask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                             XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                             XCB_EVENT_MASK_LEAVE_WINDOW;
  auto cookie = xcb_grab_pointer(x.c, 0, n->id, kMask, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                 XCB_NONE, n->cursor, XCB_CURRENT_TIME);
  Reply<xcb_grab_pointer_reply_t> r(xcb_grab_pointer_reply(x.c, cookie, nullptr));
  return r && r->status == XCB_GRAB_STATUS_SUCCESS;
}
void CloseCursors() {}

}  // namespace platform::x11
