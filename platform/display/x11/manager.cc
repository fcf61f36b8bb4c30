// The window manager: whether there is one, what it supports, and the widths of its frames.
//
// A window is placed by its content, so one that is made in a corner would have its title bar off
// the screen. Only the manager knows how wide its frames are. It is asked for a new window that
// lies near the border of the screen, at most once for each kind of frame.
#include <poll.h>

#include <algorithm>
#include <cmath>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr int kTallestTitle = 48, kWidestSide = 16;  // that are expected, logical pixels
constexpr uint32_t kMostAtoms = 4096;

xcb_window_t ReadWindow(xcb_get_property_cookie_t cookie) {
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.p) < 4) return XCB_NONE;
  return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.p));
}

xcb_get_property_cookie_t AskCheck(xcb_window_t window) {
  return xcb_get_property(x.c, 0, window, Atom(kNetSupportingWmCheck), XCB_ATOM_WINDOW, 0, 1);
}

void ReadSupported() {
  auto& m = x.manager;
  m.known = true;
  auto cookie =
      xcb_get_property(x.c, 0, x.screen->root, Atom(kNetSupported), XCB_ATOM_ATOM, 0, kMostAtoms);
  // The property of a manager that has ended may still be there.
  if (!HasWindowManager()) {
    xcb_discard_reply(x.c, cookie.sequence);
    return;
  }
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  if (!reply || reply->format != 32) return;
  const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.p));
  const xcb_atom_t* end = atoms + xcb_get_property_value_length(reply.p) / 4;
  auto has = [&](AtomIndex atom) { return std::find(atoms, end, Atom(atom)) != end; };
  m.tells_frames = has(kNetRequestFrameExtents) && has(kNetFrameExtents);
  m.syncs = has(kNetWmSyncRequest);
}

// Its frame could lie off the screen, and moving the window could bring it back.
bool LiesNearBorder(const DeviceRect& r) {
  if (x.screens.empty()) return false;
  const DeviceRect& s = x.screens.front().bounds;
  const bool covers =
      r.left <= s.left && r.top <= s.top && r.right >= s.right && r.bottom >= s.bottom;
  const int title = int(std::ceil(kTallestTitle * x.scale));
  const int side = int(std::ceil(kWidestSide * x.scale));
  return !covers && (r.left < s.left + side || r.top < s.top + title || r.right > s.right - side ||
                     r.bottom > s.bottom - side);
}

// Reads events until the property of this window has changed.
bool WaitForExtents(const Native& n) {
  const double end = Now() + x.frame_patience;
  size_t seen = 0;
  for (;;) {
    Pump();
    for (; seen < x.pending.size(); ++seen) {
      const auto* e = reinterpret_cast<const xcb_property_notify_event_t*>(x.pending[seen].get());
      if ((e->response_type & 0x7F) == XCB_PROPERTY_NOTIFY && e->window == n.id &&
          e->atom == Atom(kNetFrameExtents)) {
        return true;
      }
    }
    const int left = int(std::ceil((end - Now()) * 1000));
    pollfd p{xcb_get_file_descriptor(x.c), POLLIN, 0};
    if (left <= 0 || xcb_connection_has_error(x.c) || poll(&p, 1, left) == 0) return false;
  }
}

DeviceRect ReadExtents(const Native& n) {
  auto cookie = xcb_get_property(x.c, 0, n.id, Atom(kNetFrameExtents), XCB_ATOM_CARDINAL, 0, 4);
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.p) < 16) return {};
  const auto* v = static_cast<const uint32_t*>(xcb_get_property_value(reply.p));
  auto width = [v](int i) { return int(std::min<uint32_t>(v[i], 4096)); };
  return {width(0), width(2), width(1), width(3)};
}

}  // namespace

xcb_get_property_cookie_t AskManager() {
  return AskCheck(x.screen->root);
}

void TakeManager(xcb_get_property_cookie_t cookie) {
  x.manager.check = ReadWindow(cookie);
  x.manager.checked = true;
}

// A window manager runs when its check window names itself.
bool HasWindowManager() {
  if (!x.manager.checked) TakeManager(AskManager());
  x.manager.checked = false;
  const xcb_window_t check = x.manager.check;
  return check != XCB_NONE && ReadWindow(AskCheck(check)) == check;
}

bool ManagerSyncs() {
  if (!x.manager.known) ReadSupported();
  return x.manager.syncs;
}

void ForgetManager() {
  x.manager = {};
}

DeviceRect FrameOf(const Native& n, uint64_t kind) {
  if (kind == 0) return {};
  auto& known = x.manager.frames;
  const auto same = std::find_if(known.begin(), known.end(),
                                 [kind](const auto& frame) { return frame.kind == kind; });
  if (same != known.end()) return same->widths;
  if (!LiesNearBorder(n.bounds)) return {};
  if (!x.manager.known) ReadSupported();
  DeviceRect widths;
  if (x.manager.tells_frames) {
    const uint32_t data[5] = {};
    SendClientMessage(x.screen->root, n.id, kNetRequestFrameExtents, data,
                      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    xcb_flush(x.c);
    if (WaitForExtents(n)) widths = ReadExtents(n);
  }
  known.push_back({kind, widths});
  return widths;
}

void ReadFrameExtents(Native* n) {
  const DeviceRect widths = ReadExtents(*n);
  Emit(RawEvent::kFrame, n)->frame = widths;
}

}  // namespace platform::x11
