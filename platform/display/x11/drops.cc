// Files dropped on a window: the receiving side of XDND, for lists of addresses only.
#include <algorithm>

#include "platform/desktop/uris.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr uint32_t kMaxWords = 1 << 18;  // a megabyte; the first file is what counts

struct Drop {
  xcb_window_t source = 0;
  Native* target = nullptr;
  uint32_t version = 0;
  bool acceptable = false;  // it offers addresses
  bool dropped = false;     // data was asked for
  std::string path;         // handed out with the report
};
Drop drop;

bool TypesOfProperty(xcb_window_t source) {
  auto cookie = xcb_get_property(x.c, 0, source, Atom(kXdndTypeList), XCB_ATOM_ATOM, 0, 1024);
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  if (!reply || reply->format != 32) return false;
  const auto* types = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.p));
  const xcb_atom_t* end = types + xcb_get_property_value_length(reply.p) / 4;
  return std::find(types, end, Atom(kTextUriList)) != end;
}

void OnEnter(Native* n, const uint32_t* d) {
  drop.source = d[0];
  drop.target = n;
  drop.version = d[1] >> 24;
  drop.dropped = false;
  const bool in_property = (d[1] & 1) != 0;
  drop.acceptable =
      drop.version >= 3 &&
      (in_property ? TypesOfProperty(d[0]) : std::find(d + 2, d + 5, Atom(kTextUriList)) != d + 5);
}

void OnPosition(Native* n, const uint32_t* d) {
  const bool accept = drop.source == d[0] && drop.target == n && drop.acceptable;
  const uint32_t answer[5] = {n->id, accept ? 1u : 0u, 0, 0, accept ? Atom(kXdndActionCopy) : 0};
  SendClientMessage(d[0], d[0], kXdndStatus, answer, 0);
}

void Finish(bool done) {
  if (drop.source != 0 && drop.target != nullptr) {
    const uint32_t answer[5] = {drop.target->id, done ? 1u : 0u, done ? Atom(kXdndActionCopy) : 0,
                                0, 0};
    SendClientMessage(drop.source, drop.source, kXdndFinished, answer, 0);
  }
  drop.source = 0;
  drop.target = nullptr;
  drop.dropped = false;
}

void OnDrop(Native* n, const uint32_t* d) {
  if (drop.source != d[0] || drop.target != n) return;
  if (!drop.acceptable) return Finish(false);
  drop.dropped = true;
  xcb_convert_selection(x.c, n->id, Atom(kXdndSelection), Atom(kTextUriList), Atom(kXwDrop), d[2]);
}

}  // namespace

bool HandleDropMessage(Native* n, const xcb_client_message_event_t* e) {
  const uint32_t* d = e->data.data32;
  if (e->type == Atom(kXdndEnter)) {
    OnEnter(n, d);
  } else if (e->type == Atom(kXdndPosition)) {
    OnPosition(n, d);
  } else if (e->type == Atom(kXdndDrop)) {
    OnDrop(n, d);
  } else if (e->type == Atom(kXdndLeave)) {
    if (drop.source == d[0]) drop = Drop{};
  } else {
    return false;
  }
  return true;
}

void HandleDropData(const xcb_selection_notify_event_t* e) {
  if (e->selection != Atom(kXdndSelection) || !drop.dropped || drop.target == nullptr ||
      e->requestor != drop.target->id) {
    return;
  }
  bool done = false;
  if (e->property == Atom(kXwDrop)) {
    auto cookie =
        xcb_get_property(x.c, 1, e->requestor, Atom(kXwDrop), Atom(kTextUriList), 0, kMaxWords);
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
    if (reply && reply->format == 8) {
      drop.path = FirstLocalPath({static_cast<const char*>(xcb_get_property_value(reply.p)),
                                  size_t(xcb_get_property_value_length(reply.p))});
      done = !drop.path.empty();
    }
  }
  if (done) {
    RawEvent* out = Emit(RawEvent::kOpenFile, drop.target, e->time);
    out->path = drop.path.c_str();
  }
  Finish(done);
}

void ForgetDrop(const Native* n) {
  if (drop.target == n) drop = Drop{};
}

}  // namespace platform::x11
