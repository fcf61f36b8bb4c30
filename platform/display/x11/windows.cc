// Windows: made, shown, moved, raised, activated.
#include <xcb/xfixes.h>

#include <algorithm>
#include <utility>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr uint32_t kWindowEvents =
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW |
    XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
    XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_PROPERTY_CHANGE;

// Other programs set no properties of a pop-up.
uint32_t EventsOf(const Window& w) {
  return w.parent != nullptr ? kWindowEvents & ~uint32_t{XCB_EVENT_MASK_PROPERTY_CHANGE}
                             : kWindowEvents;
}

}  // namespace

void SendClientMessage(xcb_window_t to, xcb_window_t about, AtomIndex type, const uint32_t data[5],
                       uint32_t mask) {
  xcb_client_message_event_t m{};
  m.response_type = XCB_CLIENT_MESSAGE;
  m.format = 32;
  m.window = about;
  m.type = Atom(type);
  std::copy(data, data + 5, m.data.data32);
  xcb_send_event(x.c, 0, to, mask, reinterpret_cast<const char*>(&m));
}

// A server that lacks the extension shows square corners.
void ShapePopUp(const Native& n) {
  const std::vector<DeviceRect> rows = PopUpOutline(*n.w, n.bounds.width(), n.bounds.height());
  if (rows.empty()) return;
  const xcb_query_extension_reply_t* ext = xcb_get_extension_data(x.c, &xcb_xfixes_id);
  if (ext == nullptr || !ext->present) return;
  if (!std::exchange(x.shapes, true))
    xcb_discard_reply(x.c, xcb_xfixes_query_version(x.c, 2, 0).sequence);
  std::vector<xcb_rectangle_t> covered;
  for (const DeviceRect& r : rows)
    covered.push_back({int16_t(r.left), int16_t(r.top), uint16_t(r.width()), uint16_t(r.height())});
  const xcb_xfixes_region_t region = xcb_generate_id(x.c);
  xcb_xfixes_create_region(x.c, region, uint32_t(covered.size()), covered.data());
  xcb_xfixes_set_window_shape_region(x.c, n.id, XCB_SHAPE_SK_BOUNDING, 0, 0, region);
  xcb_xfixes_destroy_region(x.c, region);
}

void* CreateNative(const Window* w, DeviceRect* frame) {
  if (xcb_connection_has_error(x.c)) return nullptr;
  auto* n = new Native;
  const DeviceRect r = Wanted(*w);
  n->w = w;
  n->id = xcb_generate_id(x.c);
  n->bounds = r;
  n->bounds_known = true;
  // Pixels that stay where they are, and no background until SetBackdrop: a resize does not flash.
  const uint32_t mask = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                        XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                        (x.colormap != 0 ? XCB_CW_COLORMAP : 0);
  const uint32_t values[] = {XCB_BACK_PIXMAP_NONE,   0,
                             XCB_GRAVITY_NORTH_WEST, w->parent != nullptr,
                             EventsOf(*w),           x.colormap};
  xcb_create_window(x.c, x.depth, n->id, x.screen->root, int16_t(Clamp16(r.left)),
                    int16_t(Clamp16(r.top)), uint16_t(Side(r.width())), uint16_t(Side(r.height())),
                    0, XCB_WINDOW_CLASS_INPUT_OUTPUT, x.visual, mask, values);
  if (x.leader == 0) x.leader = n->id;
  x.windows[n->id] = n;
  SelectPointer(*n);
  ShapePopUp(*n);
  if (w->parent == nullptr) {
    SetIdentity(*n);
    MarkStartup(*n);
    MarkProgram(*n);
    SetTitle(*n);
  }
  SetHints(n);
  SetCursor(n);
  if (w->parent == nullptr) *frame = FrameOf(*n, FrameKind(*w));
  if (r != DeviceBounds(*w)) EmitBounds(n, r);
  return n;
}

void DestroyNative(const Window* w) {
  Native* n = NativeOf(w);
  if (n == nullptr) return;
  ForgetDrop(n);
  ForgetGrab(n);
  ForgetUnder();
  ForgetAsked(n);
  ForgetCheck(n);
  KeepBuffer(n);
  FreeBuffer(n);
  ForgetCounter(n);
  xcb_destroy_window(x.c, n->id);
  x.windows.erase(n->id);
  if (x.leader == n->id) x.leader = XCB_NONE;
  ForgetKeys(w);
  ForgetPress(w);
  for (RawEvent& e : x.out) {
    if (e.under == w) e.under = nullptr;
    if (e.window == w && IsRelease(e.type)) e.window = nullptr;
  }
  std::erase_if(x.out, [w](const RawEvent& e) { return e.window == w; });
  delete n;
  StepDocked();
}

void RaiseNative(const Window* w, uint32_t how, const char* token) {
  if (token != nullptr && *token != 0) UseToken(token);
  Native* n = NativeOf(w);
  if (n == nullptr) return;
  ForgetUnder();
  const uint32_t above = XCB_STACK_MODE_ABOVE;
  if ((how & kRaiseOnly) != 0)
    xcb_configure_window(x.c, n->id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  if ((how & kRaiseFocus) != 0) Activate(n);
}

void Activate(Native* n) {
  if (!n->wanted) return;
  n->activate = !n->mapped();
  if (n->activate) return;
  if (!HasWindowManager()) {
    xcb_set_input_focus(x.c, XCB_INPUT_FOCUS_POINTER_ROOT, n->id, XCB_CURRENT_TIME);
    return;
  }
  xcb_window_t current = XCB_NONE;
  for (auto& [id, other] : x.windows) {
    if (other->w->focused) current = id;
  }
  const uint32_t data[5] = {1, x.user_time, current, 0, 0};
  SendClientMessage(x.screen->root, n->id, kNetActiveWindow, data,
                    XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

}  // namespace platform::x11
