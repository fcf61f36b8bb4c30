// Showing and hiding, one step at a time.
//
// A window manager takes its time: it puts a window that asks to be mapped into a frame, and takes
// a hidden one out again. A request that overtakes it gets lost with the frame. So the next step is
// taken only when the server has reported the last one; what the program wants until then is
// remembered.
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

// A docked window is mapped only after the window that it is docked to.
bool BehindAnother(const Native& n) {
  if ((n.w->state & kStateDocked) == 0) return false;
  const Native* first = NativeOf(n.w->transient_for);
  return first != nullptr && first->wanted && first->phase == Native::kWithdrawing;
}

void Map(Native* n) {
  const bool managed = n->w->parent == nullptr;
  // Set before the map request: until then the window manager keeps no state of the window.
  if (managed) {
    SetHints(n);
    WriteStates(n);
  }
  if (managed && x.user_time != 0) {
    xcb_change_property(x.c, XCB_PROP_MODE_REPLACE, n->id, Atom(kNetWmUserTime), XCB_ATOM_CARDINAL,
                        32, 1, &x.user_time);
  }
  n->phase = Native::kMapping;
  // No window manager raises a pop-up.
  if (!managed) RaiseNative(n->w, kRaiseOnly, nullptr);
  xcb_map_window(x.c, n->id);
  if (n->activate) Activate(n);
  // Sent at once, so that the server maps the window while the program draws it.
  xcb_flush(x.c);
}

void Withdraw(Native* n) {
  n->phase = n->reparented ? Native::kWithdrawing : Native::kUnmapped;
  xcb_unmap_window(x.c, n->id);
  if (n->w->parent != nullptr) return;
  // Tells the window manager that this is a withdrawal even when it was iconified.
  xcb_unmap_notify_event_t e{};
  e.response_type = XCB_UNMAP_NOTIFY;
  e.event = x.screen->root;
  e.window = n->id;
  xcb_send_event(x.c, 0, x.screen->root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&e));
}

void Step(Native* n) {
  if (n->wanted && n->phase == Native::kUnmapped && !BehindAnother(*n)) Map(n);
  if (!n->wanted && n->phase == Native::kMapped) Withdraw(n);
}

}  // namespace

void MapNative(const Window* w, bool shown) {
  Native* n = NativeOf(w);
  if (n == nullptr || n->wanted == shown) return;
  ForgetUnder();
  n->wanted = shown;
  n->activate = false;
  Step(n);
}

void TakeMapped(Native* n) {
  if (n->phase != Native::kMapping) return;
  n->phase = Native::kMapped;
  Step(n);
}

void TakeWithdrawn(Native* n) {
  if (n->phase != Native::kWithdrawing) return;
  n->phase = Native::kUnmapped;
  Step(n);
  StepDocked();
}

void StepDocked() {
  for (auto& [id, n] : x.windows) {
    if ((n->w->state & kStateDocked) != 0) Step(n);
  }
}

}  // namespace platform::x11
