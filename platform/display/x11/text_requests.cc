// The texts that the program asks for.
//
// Each request uses its own window, so an answer that comes too late finds no window. The
// owner is another program and may do anything: nothing here waits for it, the platform ends a
// request that takes too long, and a text that grows beyond the limit is given up.
#include <algorithm>
#include <list>
#include <utility>

#include "platform/display/x11/x.h"
#include "platform/text/utf8.h"

namespace platform::x11 {

namespace {

struct TextRequest {
  int number = 0;
  Selection which{};
  xcb_window_t window = 0, owner = 0;
  size_t target = 0;  // of those below, the one that is asked for
  bool in_pieces = false;
  xcb_atom_t type = XCB_ATOM_NONE;  // of the pieces
  std::string data;
};
std::list<TextRequest> requests;
using At = std::list<TextRequest>::iterator;

// Asked for in this order until the owner has one.
xcb_atom_t TargetAt(size_t i) {
  const xcb_atom_t targets[] = {Atom(kUtf8String), Atom(kTextPlainUtf8), XCB_ATOM_STRING,
                                Atom(kTextPlain)};
  return i < std::size(targets) ? targets[i] : xcb_atom_t{XCB_ATOM_NONE};
}

bool IsText(xcb_atom_t type) {
  for (size_t i = 0; TargetAt(i) != XCB_ATOM_NONE; ++i) {
    if (TargetAt(i) == type) return true;
  }
  return false;
}

At Find(xcb_window_t window) {
  return std::find_if(requests.begin(), requests.end(),
                      [window](const TextRequest& r) { return r.window == window; });
}

void Forget(At r) {
  Unwatch(r->owner, kWatchEnd);
  xcb_destroy_window(x.c, r->window);
  requests.erase(r);
}

void Report(int number, std::string* text) {
  if (text != nullptr) x.arrived[number] = std::move(*text);
  Emit(RawEvent::kTextArrived, nullptr)->request = number;
}

void Refuse(At r) {
  Report(r->number, nullptr);
  Forget(r);
}

std::string FromLatin1(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    char bytes[4];
    out.append(bytes, size_t(PutUtf8(uint8_t(c), bytes)));
  }
  return out;
}

void Finish(At r, xcb_atom_t type) {
  std::string text = std::move(r->data);
  if (type == XCB_ATOM_STRING) text = FromLatin1(text);
  Report(r->number, &text);
  Forget(r);
}

void AskOwner(const TextRequest& r) {
  xcb_convert_selection(x.c, r.window, SelectionAtom(r.which), TargetAt(r.target), Atom(kXwText),
                        XCB_CURRENT_TIME);
}

void AskForNext(At r) {
  ++r->target;
  r->data.clear();
  if (TargetAt(r->target) == XCB_ATOM_NONE) return Refuse(r);
  AskOwner(*r);
}

enum class Taken : uint8_t { kNothing, kText, kPieces, kOther, kTooMuch };

// The announced size of a text in pieces is a lower bound: one over the limit is refused at once.
Taken TakePieces(const xcb_get_property_reply_t& reply) {
  const bool tells = reply.format == 32 && xcb_get_property_value_length(&reply) >= 4;
  const auto* size = static_cast<const uint32_t*>(xcb_get_property_value(&reply));
  return tells && *size > x.most_text ? Taken::kTooMuch : Taken::kPieces;
}

// Reads the property, and deletes it so that the owner writes the next piece. Of a text `*type` is
// its type and `*size` the number of bytes read.
Taken TakeProperty(TextRequest* r, xcb_atom_t* type, size_t* size) {
  constexpr uint32_t kWords = 1 << 20;
  *size = 0;
  for (uint32_t at = 0;; at += kWords) {
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        x.c, xcb_get_property(x.c, 1, r->window, Atom(kXwText), XCB_ATOM_ANY, at, kWords),
        nullptr));
    if (at == 0 && (!reply || reply->type == XCB_ATOM_NONE)) return Taken::kNothing;
    // A property whose type changes while it is read is refused.
    if (!reply || (at != 0 && reply->type != *type)) return Taken::kOther;
    *type = reply->type;
    if (!IsText(*type) || reply->format != 8) {
      // What was read to its end is gone already: this would be the first piece.
      if (reply->bytes_after != 0) xcb_delete_property(x.c, r->window, Atom(kXwText));
      return *type == Atom(kIncr) ? TakePieces(*reply.p) : Taken::kOther;
    }
    const size_t length = size_t(xcb_get_property_value_length(reply.p));
    if (r->data.size() + length > x.most_text) return Taken::kTooMuch;
    r->data.append(static_cast<const char*>(xcb_get_property_value(reply.p)), length);
    *size += length;
    if (reply->bytes_after == 0) return Taken::kText;
  }
}

}  // namespace

void AskText(Selection which, int request, bool wanted) {
  if (!wanted) {
    const auto r =
        std::find_if(requests.begin(), requests.end(),
                     [request](const TextRequest& one) { return one.number == request; });
    if (r != requests.end()) Forget(r);
    x.arrived.erase(request);
    std::erase_if(x.out, [request](const RawEvent& e) {
      return e.type == RawEvent::kTextArrived && e.request == request;
    });
    return;
  }
  if (x.c == nullptr || xcb_connection_has_error(x.c)) return Report(request, nullptr);
  Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
      x.c, xcb_get_selection_owner(x.c, SelectionAtom(which)), nullptr));
  if (!owner || owner->owner == XCB_NONE) return Report(request, nullptr);
  TextRequest& r = requests.emplace_back();
  const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  r.number = request;
  r.which = which;
  r.owner = owner->owner;
  r.window = xcb_generate_id(x.c);
  xcb_create_window(x.c, 0, r.window, x.screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
  Watch(r.owner, kWatchEnd);
  AskOwner(r);
}

bool IsTextRequestWindow(xcb_window_t window) {
  return Find(window) != requests.end();
}

void HandleText(const xcb_selection_notify_event_t* e) {
  const At r = Find(e->requestor);
  if (r == requests.end() || r->in_pieces || e->target != TargetAt(r->target)) return;
  if (e->property != Atom(kXwText)) return AskForNext(r);
  xcb_atom_t type = XCB_ATOM_NONE;
  size_t size = 0;
  switch (TakeProperty(&*r, &type, &size)) {
    case Taken::kText:
      return Finish(r, type);
    case Taken::kPieces:
      r->in_pieces = true;
      return;
    case Taken::kTooMuch:
      return Refuse(r);
    default:
      return AskForNext(r);
  }
}

void HandleTextPiece(xcb_window_t window) {
  const At r = Find(window);
  if (r == requests.end() || !r->in_pieces) return;
  xcb_atom_t type = XCB_ATOM_NONE;
  size_t size = 0;
  const Taken taken = TakeProperty(&*r, &type, &size);
  Emit(RawEvent::kNone, nullptr);
  // This piece was read together with the one before.
  if (taken == Taken::kNothing) return;
  if (r->type == XCB_ATOM_NONE) r->type = type;
  if (taken != Taken::kText || type != r->type) return Refuse(r);
  // The empty piece is the last.
  if (size == 0) Finish(r, type);
}

void HandleOwnerEnd(xcb_window_t window) {
  for (At r = requests.begin(); r != requests.end();) {
    const At next = std::next(r);
    if (r->owner == window) Refuse(r);
    r = next;
  }
}

void CloseTextRequests() {
  while (!requests.empty()) Forget(requests.begin());
}

}  // namespace platform::x11
