// The texts that the program offers: owning a selection, answering the programs that ask, and
// leaving the clipboard to a manager at the end.
//
// An asker is another program and may do anything: a long text goes out piece by piece, each when
// the one before has been taken, and an asker that takes none for a while is given up.
#include <poll.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <list>
#include <utility>

#include "platform/display/x11/x.h"
#include "platform/text/utf8.h"

namespace platform::x11 {

namespace {

constexpr double kKeepSeconds = 0.5;
constexpr size_t kMostDeliveries = 16;
constexpr uint32_t kMostPairs = 64;  // of a request for several targets at once

struct Offer {
  SharedText text;         // null: none
  SharedText latin1;       // the same, once it was asked for
  xcb_timestamp_t time{};  // of the ownership
  unsigned sequence = 0;   // of the request that took it
};

// A text on its way in pieces.
struct Delivery {
  xcb_window_t asker = 0;
  xcb_atom_t property = 0, type = 0;
  SharedText text;
  size_t sent = 0;
  EventLoopTimerRef patience = nullptr;
};

struct Owner {
  xcb_window_t window = 0;
  Offer offers[kSelectionCount];
  std::list<Delivery> deliveries;
};
Owner owner;

// What can be asked for, in the order in which it is named.
struct TextTarget {
  AtomIndex target, type;
};
constexpr TextTarget kUtf8Targets[] = {
    {kUtf8String, kUtf8String},
    {kTextPlainUtf8, kTextPlainUtf8},
    {kTextPlain, kTextPlain},
    {kText, kUtf8String},
};

size_t MostBytes() {
  constexpr size_t kPiece = 256 << 10, kHead = 64;
  const size_t request = size_t{xcb_get_setup(x.c)->maximum_request_length} * 4;
  return std::min(kPiece, request - kHead);
}

bool FindSelection(xcb_atom_t atom, Selection* which) {
  for (Selection s : {Selection::kClipboard, Selection::kPrimary}) {
    if (SelectionAtom(s) != atom) continue;
    *which = s;
    return true;
  }
  return false;
}

void MakeWindow() {
  if (owner.window != 0) return;
  const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  owner.window = xcb_generate_id(x.c);
  xcb_create_window(x.c, 0, owner.window, x.screen->root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
}

// The server's time now: a property that grows by nothing brings it along.
xcb_timestamp_t ServerTime() {
  xcb_change_property(x.c, XCB_PROP_MODE_APPEND, owner.window, Atom(kTimestamp), XCB_ATOM_INTEGER,
                      32, 0, nullptr);
  Reply<xcb_get_input_focus_reply_t>(
      xcb_get_input_focus_reply(x.c, xcb_get_input_focus(x.c), nullptr));
  Pump();
  for (auto at = x.pending.rbegin(); at != x.pending.rend(); ++at) {
    const auto* e = reinterpret_cast<const xcb_property_notify_event_t*>(at->get());
    if (e->response_type == XCB_PROPERTY_NOTIFY && e->window == owner.window) return e->time;
  }
  return XCB_CURRENT_TIME;
}

void Put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, uint8_t format,
         const void* data, size_t count) {
  xcb_change_property(x.c, XCB_PROP_MODE_REPLACE, window, property, type, format, uint32_t(count),
                      data);
}

// Every character that the older set of eight bits has; others as a question mark.
SharedText Latin1(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const char32_t c = TakeUtf8(&utf8);
    out.push_back(c < 0x100 ? char(c) : '?');
  }
  return std::make_shared<const std::string>(std::move(out));
}

void End(std::list<Delivery>::iterator d) {
  RemoveEventLoopTimer(d->patience);
  Unwatch(d->asker, kWatchProperties);
  Unwatch(d->asker, kWatchEnd);
  owner.deliveries.erase(d);
}

template <typename F>
void EndThose(F which) {
  for (auto d = owner.deliveries.begin(); d != owner.deliveries.end();) {
    const auto next = std::next(d);
    if (which(*d)) End(d);
    d = next;
  }
}

void PatienceIsOver(EventLoopTimerRef timer, void*) {
  EndThose([timer](const Delivery& d) { return d.patience == timer; });
}

bool Deliver(xcb_window_t asker, xcb_atom_t property, xcb_atom_t type, const SharedText& text) {
  EndThose([&](const Delivery& d) { return d.asker == asker && d.property == property; });
  if (text->size() <= MostBytes()) {
    Put(asker, property, type, 8, text->data(), text->size());
    return true;
  }
  if (owner.deliveries.size() >= kMostDeliveries) return false;
  Watch(asker, kWatchProperties);
  Watch(asker, kWatchEnd);
  const uint32_t size = uint32_t(text->size());
  Put(asker, property, Atom(kIncr), 32, &size, 1);
  auto* timer = InstallEventLoopTimer(x.delivery_patience, 0, PatienceIsOver, nullptr);
  owner.deliveries.push_back({asker, property, type, text, 0, timer});
  return true;
}

void PutTargets(xcb_window_t window, xcb_atom_t property, bool texts_only) {
  std::vector<xcb_atom_t> list;
  if (!texts_only) list = {Atom(kTargets), Atom(kMultiple), Atom(kTimestamp)};
  for (const TextTarget& t : kUtf8Targets) list.push_back(Atom(t.target));
  list.push_back(XCB_ATOM_STRING);
  Put(window, property, XCB_ATOM_ATOM, 32, list.data(), list.size());
}

// Stores the text in the property as `target`. False: it is not offered as that.
bool Convert(Offer& offer, xcb_window_t asker, xcb_atom_t target, xcb_atom_t property) {
  if (target == Atom(kTargets)) {
    PutTargets(asker, property, false);
    return true;
  }
  if (target == Atom(kTimestamp)) {
    Put(asker, property, XCB_ATOM_INTEGER, 32, &offer.time, 1);
    return true;
  }
  if (target == XCB_ATOM_STRING) {
    if (offer.latin1 == nullptr) offer.latin1 = Latin1(*offer.text);
    return Deliver(asker, property, XCB_ATOM_STRING, offer.latin1);
  }
  for (const TextTarget& t : kUtf8Targets) {
    if (Atom(t.target) == target) return Deliver(asker, property, Atom(t.type), offer.text);
  }
  return false;
}

// Several targets, each with its property. Targets that are not offered are set to none.
bool ConvertEach(Offer& offer, xcb_window_t asker, xcb_atom_t property) {
  if (property == XCB_NONE) return false;
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      x.c, xcb_get_property(x.c, 0, asker, property, XCB_ATOM_ANY, 0, 2 * kMostPairs), nullptr));
  if (!reply || reply->format != 32 || reply->bytes_after != 0) return false;
  const auto* words = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.p));
  std::vector<xcb_atom_t> pairs(words, words + xcb_get_property_value_length(reply.p) / 4);
  for (size_t i = 0; i + 1 < pairs.size(); i += 2) {
    const bool names = pairs[i] != XCB_NONE && pairs[i + 1] != XCB_NONE;
    if (!names || !Convert(offer, asker, pairs[i], pairs[i + 1])) pairs[i] = XCB_NONE;
  }
  Put(asker, property, Atom(kAtomPair), 32, pairs.data(), pairs.size());
  return true;
}

// False for the program's own windows, the root, and a time before the text was offered.
bool MayAsk(const xcb_selection_request_event_t& e, const Offer& offer) {
  const xcb_window_t asker = e.requestor;
  const bool own =
      asker == owner.window || FindNative(asker) != nullptr || IsTextRequestWindow(asker);
  if (offer.text == nullptr || asker == XCB_NONE || asker == x.screen->root || own) return false;
  const bool tell = e.time != XCB_CURRENT_TIME && offer.time != XCB_CURRENT_TIME;
  return !tell || int32_t(e.time - offer.time) >= 0;
}

// Answers a request of the clipboard manager. True when the event was one.
bool ServeManager(const xcb_generic_event_t* e) {
  const auto* changed = reinterpret_cast<const xcb_property_notify_event_t*>(e);
  if (e->response_type == XCB_SELECTION_REQUEST) {
    HandleAsker(reinterpret_cast<const xcb_selection_request_event_t*>(e));
    return true;
  }
  return e->response_type == XCB_PROPERTY_NOTIFY && changed->state == XCB_PROPERTY_DELETE &&
         HandlePieceTaken(changed->window, changed->atom);
}

// Whether the event says that the manager has the text, or that it has ended.
bool ManagerIsDone(const xcb_generic_event_t* e, xcb_window_t manager) {
  const auto* said = reinterpret_cast<const xcb_selection_notify_event_t*>(e);
  const auto* ended = reinterpret_cast<const xcb_destroy_notify_event_t*>(e);
  return ((e->response_type & 0x7F) == XCB_SELECTION_NOTIFY &&
          said->selection == Atom(kClipboardManager)) ||
         (e->response_type == XCB_DESTROY_NOTIFY && ended->window == manager);
}

// Handles the manager's events among those that have arrived; the others stay queued.
bool TalkToManager(xcb_window_t manager) {
  constexpr int kEvents = 100;  // between two looks at the time
  Pump(kEvents);
  bool done = false;
  std::erase_if(x.pending, [&](const ServerEvent& e) {
    done = done || ManagerIsDone(e.get(), manager);
    return ServeManager(e.get());
  });
  return done;
}

}  // namespace

xcb_atom_t SelectionAtom(Selection which) {
  return which == Selection::kClipboard ? Atom(kClipboard) : xcb_atom_t{XCB_ATOM_PRIMARY};
}

xcb_window_t SelectionWindow() {
  return owner.window;
}

bool OfferText(Selection which, const SharedText& text) {
  if (x.c == nullptr || xcb_connection_has_error(x.c)) return false;
  Offer& offer = owner.offers[int(which)];
  const xcb_atom_t selection = SelectionAtom(which);
  if (text == nullptr) {
    if (offer.text != nullptr) xcb_set_selection_owner(x.c, XCB_NONE, selection, offer.time);
    offer = Offer{};
    return true;
  }
  MakeWindow();
  const xcb_timestamp_t time = ServerTime();
  const auto set = xcb_set_selection_owner(x.c, owner.window, selection, time);
  Reply<xcb_get_selection_owner_reply_t> now(
      xcb_get_selection_owner_reply(x.c, xcb_get_selection_owner(x.c, selection), nullptr));
  if (!now || now->owner != owner.window) return false;
  offer = {text, nullptr, time, set.sequence};
  // A report of an earlier loss no longer holds.
  std::erase_if(x.out, [which](const RawEvent& e) {
    return e.type == RawEvent::kSelectionLost && e.selection == uint8_t(which);
  });
  return true;
}

void HandleSelectionClear(const xcb_selection_clear_event_t* e, unsigned sequence) {
  Selection which;
  if (e->owner != owner.window || !FindSelection(e->selection, &which)) return;
  Offer& offer = owner.offers[int(which)];
  // A loss from before the text was offered again is out of date.
  if (offer.text == nullptr || int(sequence - offer.sequence) < 0) return;
  offer = Offer{};
  Emit(RawEvent::kSelectionLost, nullptr)->selection = uint8_t(which);
}

// Selections other than the two, such as the program's name, have no text.
void HandleAsker(const xcb_selection_request_event_t* e) {
  Selection which{};
  const bool texts = e->owner == owner.window && FindSelection(e->selection, &which);
  Offer& offer = owner.offers[int(which)];
  const xcb_atom_t property = e->property != XCB_NONE ? e->property : e->target;
  const bool done =
      texts && MayAsk(*e, offer) &&
      (e->target == Atom(kMultiple) ? ConvertEach(offer, e->requestor, e->property)
                                    : Convert(offer, e->requestor, e->target, property));
  xcb_selection_notify_event_t answer{};
  answer.response_type = XCB_SELECTION_NOTIFY;
  answer.time = e->time;
  answer.requestor = e->requestor;
  answer.selection = e->selection;
  answer.target = e->target;
  answer.property = done ? property : xcb_atom_t{XCB_NONE};
  xcb_send_event(x.c, 0, e->requestor, 0, reinterpret_cast<const char*>(&answer));
}

bool HandlePieceTaken(xcb_window_t window, xcb_atom_t property) {
  const auto d = std::find_if(
      owner.deliveries.begin(), owner.deliveries.end(),
      [&](const Delivery& one) { return one.asker == window && one.property == property; });
  if (d == owner.deliveries.end()) return false;
  // The empty piece is the last.
  const size_t size = std::min(MostBytes(), d->text->size() - d->sent);
  Put(window, property, d->type, 8, d->text->data() + d->sent, size);
  d->sent += size;
  Emit(RawEvent::kNone, nullptr);
  if (size == 0) {
    End(d);
  } else {
    SetEventLoopTimerNextFireTime(d->patience, x.delivery_patience);
  }
  return true;
}

void HandleAskerEnd(xcb_window_t window) {
  EndThose([window](const Delivery& d) { return d.asker == window; });
}

void KeepText() {
  const Offer& offer = owner.offers[int(Selection::kClipboard)];
  if (x.c == nullptr || xcb_connection_has_error(x.c) || offer.text == nullptr) return;
  Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      x.c, xcb_get_selection_owner(x.c, Atom(kClipboardManager)), nullptr));
  const xcb_window_t manager = reply ? reply->owner : xcb_window_t{XCB_NONE};
  if (manager == XCB_NONE) return;
  Watch(manager, kWatchEnd);
  PutTargets(owner.window, Atom(kXwText), true);
  xcb_convert_selection(x.c, owner.window, Atom(kClipboardManager), Atom(kSaveTargets),
                        Atom(kXwText), offer.time);
  const double end = Now() + kKeepSeconds;
  while (!TalkToManager(manager) && !xcb_connection_has_error(x.c)) {
    const double left = end - Now();
    if (left <= 0) break;
    xcb_flush(x.c);
    pollfd fd{xcb_get_file_descriptor(x.c), POLLIN, 0};
    poll(&fd, 1, int(std::ceil(left * 1000)));
  }
  Unwatch(manager, kWatchEnd);
}

void CloseSelections() {
  EndThose([](const Delivery&) { return true; });
  owner = Owner{};
}

}  // namespace platform::x11
