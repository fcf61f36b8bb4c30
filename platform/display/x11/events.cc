// From the server's events to reports: one table from event to handler.
#include <xcb/randr.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "platform/display/x11/x.h"
#include "platform/display/x11/xkb.h"

namespace platform::x11 {

namespace {

template <class T>
const T* As(const xcb_generic_event_t* e) {
  return reinterpret_cast<const T*>(e);
}

// The server counts milliseconds in 32 bits from some moment of its own. The smallest delay seen is
// taken as none.
double LocalTime(xcb_timestamp_t t) {
  auto& k = x.clock;
  const double now = Now();
  if (t == 0) return now;
  if (k.known) k.server += int32_t(t - k.last) / 1000.0;
  k.last = t;
  if (!k.known || now - k.server < k.offset) k.offset = now - k.server;
  k.known = true;
  return k.server + k.offset;
}

bool IsSent(const xcb_generic_event_t* e) {
  return (e->response_type & 0x80) != 0;
}

// A later configure of the same window is waiting, so this one is out of date. The later one may be
// sent by another program: where it replaces one of the server's own, the window is marked.
bool Superseded(Native* n, const xcb_generic_event_t* e) {
  for (const ServerEvent& pending : x.pending) {
    const xcb_generic_event_t* p = pending.get();
    if ((p->response_type & 0x7F) != XCB_CONFIGURE_NOTIFY) continue;
    if (As<xcb_configure_notify_event_t>(p)->window != n->id) continue;
    if (IsSent(p) && !IsSent(e)) n->check.passed_over = true;
    return true;
  }
  return false;
}

// A synthetic event has the position on the screen; a real one that within the frame.
void OnConfigure(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_configure_notify_event_t>(event);
  if (e->window == x.screen->root) return;  // the monitors have an event of their own
  Native* n = FindNative(e->window);
  if (n == nullptr || Superseded(n, event)) return;
  DeviceRect bounds{e->x, e->y, e->x + e->width, e->y + e->height};
  if (IsSent(event)) {
    if (n->check.passed_over) NoteSize(n);
    TakeToldBounds(n, bounds, event->full_sequence);
    return;
  }
  if (n->reparented) {
    Reply<xcb_translate_coordinates_reply_t> at(xcb_translate_coordinates_reply(
        x.c, xcb_translate_coordinates(x.c, n->id, x.screen->root, 0, 0), nullptr));
    if (!at) return;
    bounds = {at->dst_x, at->dst_y, at->dst_x + e->width, at->dst_y + e->height};
  }
  n->check.passed_over = false;
  NoteSize(n);
  TakeBounds(n, bounds, event->full_sequence);
}

void OnReparent(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_reparent_notify_event_t>(event);
  Native* n = FindNative(e->window);
  if (n == nullptr) return;
  n->reparented = e->parent != x.screen->root;
  if (!n->reparented) TakeWithdrawn(n);
}

void OnMap(const xcb_generic_event_t* event) {
  if (Native* n = FindNative(As<xcb_map_notify_event_t>(event)->window)) {
    TakeMapped(n);
  }
}

void OnUnmap(const xcb_generic_event_t* event) {
  if (Native* n = FindNative(As<xcb_unmap_notify_event_t>(event)->window)) {
    if (n->w->focused) ReleaseKeys(n, 0);
    LoseGrab(n);
  }
}

// The buffer still has what the screen lost. Before the first picture there is nothing to show.
void OnExpose(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_expose_event_t>(event);
  Native* n = FindNative(e->window);
  if (n == nullptr) return;
  GrabWhenShown(n);
  if (!n->presented) return;
  const DeviceRect r{e->x, e->y, e->x + e->width, e->y + e->height};
  Present(n->w, &r, 1);
}

// The focus that moves only because a key or the pointer is grabbed counts as unchanged.
void OnFocus(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_focus_in_event_t>(event);
  Native* n = FindNative(e->event);
  const bool in = (event->response_type & 0x7F) == XCB_FOCUS_IN;
  if (n == nullptr) return;
  const bool transient = e->mode == XCB_NOTIFY_MODE_GRAB || e->mode == XCB_NOTIFY_MODE_UNGRAB;
  // While the program itself grabs or ungrabs the keyboard, it still gets the releases.
  const bool own = transient && (GrabsKeyboard() || e->mode == XCB_NOTIFY_MODE_UNGRAB);
  if (!in && !own) ReleaseKeys(n, 0);
  const bool by_pointer =
      e->detail == XCB_NOTIFY_DETAIL_POINTER || e->detail == XCB_NOTIFY_DETAIL_POINTER_ROOT;
  if (transient || by_pointer || e->detail == XCB_NOTIFY_DETAIL_INFERIOR) return;
  Emit(in ? RawEvent::kFocusIn : RawEvent::kFocusOut, n);
  if (in) RefreshKeys(n);
}

void OnProperty(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_property_notify_event_t>(event);
  if (e->state == XCB_PROPERTY_DELETE) HandlePieceTaken(e->window, e->atom);
  if (e->atom == Atom(kXwText)) {
    if (e->state == XCB_PROPERTY_NEW_VALUE) HandleTextPiece(e->window);
  } else if (e->atom == Atom(kNetFrameExtents)) {
    if (Native* n = FindNative(e->window)) ReadFrameExtents(n);
  } else if (e->atom == Atom(kNetWmState)) {
    if (Native* n = FindNative(e->window)) ReadStates(n);
  } else if (e->atom == Atom(kWmState) && e->state == XCB_PROPERTY_NEW_VALUE) {
    // Also when it comes up as an icon.
    if (Native* n = FindNative(e->window)) TakeMapped(n);
  } else if (IsDropProperty(e->atom) && e->state == XCB_PROPERTY_NEW_VALUE) {
    if (Native* n = FindNative(e->window)) HandleDropPiece(n, e->atom);
  } else if (e->window == x.screen->root &&
             (e->atom == Atom(kNetSupported) || e->atom == Atom(kNetSupportingWmCheck))) {
    ForgetManager();
  } else if ((e->window == x.screen->root && e->atom == XCB_ATOM_RESOURCE_MANAGER) ||
             (e->window == x.settings_owner && e->atom == Atom(kXsettingsSettings))) {
    RefreshScreens();
  }
}

void OnProtocol(Native* n, const xcb_client_message_event_t* e) {
  const xcb_atom_t what = e->data.data32[0];
  if (what == Atom(kWmDeleteWindow)) {
    Emit(RawEvent::kClose, n, e->data.data32[1]);
  } else if (what == Atom(kNetWmSyncRequest)) {
    HandleSyncRequest(n, e);
  } else if (what == Atom(kNetWmPing)) {
    SendClientMessage(x.screen->root, x.screen->root, kWmProtocols, e->data.data32,
                      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  }
}

void OnClientMessage(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_client_message_event_t>(event);
  if (e->format != 32) return;
  if (e->type == Atom(kManager) && e->data.data32[1] == Atom(kXsettingsSelection)) {
    RefreshScreens();
    return;
  }
  Native* n = FindNative(e->window);
  if (n == nullptr) return;
  if (e->type == Atom(kWmProtocols)) {
    OnProtocol(n, e);
  } else {
    HandleDropMessage(n, e);
  }
}

void OnSelectionRequest(const xcb_generic_event_t* event) {
  HandleAsker(As<xcb_selection_request_event_t>(event));
}

void OnSelectionClear(const xcb_generic_event_t* event) {
  HandleSelectionClear(As<xcb_selection_clear_event_t>(event), event->full_sequence);
}

void OnSelection(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_selection_notify_event_t>(event);
  HandleDropData(e);
  HandleText(e);
}

void OnDestroy(const xcb_generic_event_t* event) {
  const xcb_window_t window = As<xcb_destroy_notify_event_t>(event)->window;
  ForgetWatch(window);
  if (window == x.settings_owner) x.settings_owner = XCB_NONE;
  HandleSourceEnd(window);
  HandleAskerEnd(window);
  HandleOwnerEnd(window);
}

void OnKeyPress(const xcb_generic_event_t* e) {
  HandleKey(As<xcb_key_press_event_t>(e), true);
}
void OnKeyRelease(const xcb_generic_event_t* e) {
  HandleKey(As<xcb_key_press_event_t>(e), false);
}
void OnButtonPress(const xcb_generic_event_t* e) {
  HandleButton(As<xcb_button_press_event_t>(e), true);
}
void OnButtonRelease(const xcb_generic_event_t* e) {
  HandleButton(As<xcb_button_press_event_t>(e), false);
}
void OnMotion(const xcb_generic_event_t* e) {
  HandleMotion(As<xcb_motion_notify_event_t>(e));
}
void OnEnter(const xcb_generic_event_t* e) {
  HandleCrossing(As<xcb_enter_notify_event_t>(e), true);
}
void OnLeave(const xcb_generic_event_t* e) {
  HandleCrossing(As<xcb_enter_notify_event_t>(e), false);
}

void OnGeneric(const xcb_generic_event_t* event) {
  const auto* e = As<xcb_ge_generic_event_t>(event);
  if (x.xi_opcode != 0 && e->extension == x.xi_opcode) HandleInput2(e);
}

// Other programs can send events as if the server had. That is how some kinds are meant to come,
// and how tools type and click; of the rest only the server's own count.
struct Route {
  uint8_t type;
  bool sent_too;
  void (*handle)(const xcb_generic_event_t* event);
};
constexpr Route kRoutes[] = {
    {XCB_KEY_PRESS, true, OnKeyPress},
    {XCB_KEY_RELEASE, true, OnKeyRelease},
    {XCB_BUTTON_PRESS, true, OnButtonPress},
    {XCB_BUTTON_RELEASE, true, OnButtonRelease},
    {XCB_MOTION_NOTIFY, true, OnMotion},
    {XCB_ENTER_NOTIFY, false, OnEnter},
    {XCB_LEAVE_NOTIFY, false, OnLeave},
    {XCB_FOCUS_IN, false, OnFocus},
    {XCB_FOCUS_OUT, false, OnFocus},
    {XCB_EXPOSE, false, OnExpose},
    {XCB_MAP_NOTIFY, false, OnMap},
    {XCB_UNMAP_NOTIFY, false, OnUnmap},
    {XCB_REPARENT_NOTIFY, false, OnReparent},
    {XCB_DESTROY_NOTIFY, false, OnDestroy},
    {XCB_CONFIGURE_NOTIFY, true, OnConfigure},
    {XCB_PROPERTY_NOTIFY, false, OnProperty},
    {XCB_SELECTION_NOTIFY, true, OnSelection},
    {XCB_SELECTION_REQUEST, false, OnSelectionRequest},
    {XCB_SELECTION_CLEAR, false, OnSelectionClear},
    {XCB_CLIENT_MESSAGE, true, OnClientMessage},
    {XCB_GE_GENERIC, false, OnGeneric},
};

void Dispatch(const xcb_generic_event_t* event) {
  const uint8_t type = event->response_type & 0x7F;
  const bool sent = IsSent(event);
  if (x.randr_event != 0 && type == x.randr_event + XCB_RANDR_SCREEN_CHANGE_NOTIFY) {
    if (!sent) RefreshScreens();
  } else if (x.xkb_event != 0 && type == x.xkb_event) {
    if (!sent) HandleXkb(event);
  } else {
    for (const Route& r : kRoutes) {
      if (r.type == type && (r.sent_too || !sent)) return r.handle(event);
    }
  }
}

}  // namespace

void OpenLate() {
  if (x.late_done) return;
  x.late_done = true;
  OpenPointer();
  OpenKeyboard();
  OpenCursors();
  EndStartup();
  for (auto& [id, n] : x.windows) {
    if (n->presented) FinishWindow(n);
  }
}

double Now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

RawEvent* Emit(RawEvent::Type type, Native* n, xcb_timestamp_t t) {
  RawEvent& e = x.out.emplace_back();
  e.type = type;
  e.window = n != nullptr ? n->w : nullptr;
  e.time = LocalTime(t);
  return &e;
}

static void Keep(xcb_generic_event_t* e) {
  if (e->response_type != 0) {
    x.pending.emplace_back(e);
    return;
  }
  HandleSharedMemoryError(reinterpret_cast<const xcb_generic_error_t*>(e));
  free(e);
}

void Pump(int most) {
  for (; most != 0; --most) {
    xcb_generic_event_t* e = xcb_poll_for_event(x.c);
    if (e == nullptr) return;
    Keep(e);
  }
}

// Looks at what has come until it makes a report.
static void TakePending() {
  if (x.out.empty() && x.pending.empty()) Pump();
  while (x.out.empty() && !x.pending.empty()) {
    const ServerEvent e = std::move(x.pending.front());
    x.pending.pop_front();
    Dispatch(e.get());
    if (x.pending.empty()) Pump();
  }
  TakeGrabAnswers(false);
  if (x.out.empty()) TakeChecks();
}

static void TakeArrivedText(RawEvent* out) {
  const auto text = x.arrived.extract(out->request);
  if (!text) return;
  x.taken_text = std::move(text.mapped());
  out->arrived = &x.taken_text;
}

bool NextEvent(RawEvent* out) {
  if (x.c == nullptr) return false;
  TakePending();
  if (x.out.empty() && x.idle && !x.late_done && !xcb_connection_has_error(x.c)) {
    // Reading its answers may also read events; the descriptor does not show those any more.
    OpenLate();
    TakePending();
  }
  if (x.out.empty() && !x.lost && xcb_connection_has_error(x.c)) {
    x.lost = true;
    Emit(RawEvent::kDisplayLost, nullptr);
  }
  if (x.out.empty()) {
    xcb_flush(x.c);
    // A request that waited for the server may have read events.
    xcb_generic_event_t* e = xcb_poll_for_queued_event(x.c);
    if (e == nullptr) return false;
    Keep(e);
    return NextEvent(out);
  }
  *out = x.out.front();
  x.out.pop_front();
  if (out->type == RawEvent::kOpenFile) {
    x.path = std::move(x.paths.front());
    x.paths.pop_front();
    out->text = x.path.c_str();
  }
  if (out->type == RawEvent::kTextArrived) TakeArrivedText(out);
  return true;
}

}  // namespace platform::x11
