// Files dropped on a window: the receiving side of XDND, for lists of addresses only.
//
// The source is another program and may do anything: what it sends is capped, and a transfer that
// stops or drags on is given up. Nothing here waits for it.
#include <algorithm>

#include "platform/desktop/documents.h"
#include "platform/desktop/uris.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr size_t kMaxBytes = kMostAddresses;
constexpr double kMaxSeconds = 30;  // from the drop to the last piece that is looked at

// What is being dragged over us.
struct Hover {
  xcb_window_t source = 0;
  Native* target = nullptr;
  bool acceptable = false;  // it offers addresses
  bool told = false;        // the program has been told of it
};
Hover hover;

// What was dropped and has not arrived whole.
struct Transfer {
  xcb_window_t source = 0;
  Native* target = nullptr;  // null: none is under way
  xcb_atom_t property = 0;   // in which the list comes: another one than the transfer before had,
                             // whose source may still go on
  xcb_timestamp_t time = 0;  // of the request for it
  bool in_pieces = false;
  std::string data;
  double started = 0, progress = 0;
  EventLoopTimerRef deadline = nullptr;
};
Transfer transfer;
double drained_until = 0;  // until then, pieces of a finished transfer are dropped

// The drag has left the window, or was let go there.
void EndHover(RawEvent::Type how = RawEvent::kDragLeft) {
  if (hover.told) Emit(how, hover.target);
  Unwatch(hover.source, kWatchEnd);
  hover = Hover{};
}

bool TypesOfProperty(xcb_window_t source) {
  auto cookie = xcb_get_property(x.c, 0, source, Atom(kXdndTypeList), XCB_ATOM_ATOM, 0, 1024);
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  if (!reply || reply->format != 32) return false;
  const auto* types = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.p));
  const xcb_atom_t* end = types + xcb_get_property_value_length(reply.p) / 4;
  return std::find(types, end, Atom(kTextUriList)) != end;
}

// The files of a list; of one that was cut the last address may be a part of one.
std::vector<std::string> DroppedPaths() {
  if (transfer.data.size() < kMaxBytes) return PathsAndAddresses(transfer.data);
  const size_t end = transfer.data.find_last_of("\r\n");
  return PathsAndAddresses(
      std::string_view(transfer.data).substr(0, end == std::string::npos ? 0 : end));
}

void TellSource(xcb_window_t source, const Native* target, bool done) {
  const uint32_t answer[5] = {target->id, done ? 1u : 0u, done ? Atom(kXdndActionCopy) : 0, 0, 0};
  SendClientMessage(source, source, kXdndFinished, answer, 0);
}

// Tells the source whether there are files; the program gets what lies elsewhere too, to say so.
void EndTransfer(bool arrived) {
  if (transfer.target == nullptr) return;
  Native* target = transfer.target;
  const std::vector<std::string> paths = arrived ? DroppedPaths() : std::vector<std::string>();
  const bool done =
      std::any_of(paths.begin(), paths.end(), [](const std::string& p) { return p[0] == '/'; });
  TellSource(transfer.source, target, done);
  xcb_delete_property(x.c, target->id, transfer.property);
  RemoveEventLoopTimer(transfer.deadline);
  Unwatch(transfer.source, kWatchEnd);
  drained_until = transfer.started + kMaxSeconds;
  transfer = Transfer{};
  if (paths.empty()) return void(Emit(RawEvent::kDropFailed, target));
  x.paths.push_back(JoinPaths(paths));
  Emit(RawEvent::kOpenFile, nullptr);
}

// Seconds that are left for the next piece.
double TimeLeft() {
  return std::min(transfer.progress + x.drop_patience, transfer.started + kMaxSeconds) - Now();
}

bool Overdue() {
  return TimeLeft() < 0;
}

// A silent source sends no event that could end its transfer, so a timer wakes the loop.
void DeadlineHasCome(EventLoopTimerRef timer, void*) {
  if (TimeLeft() <= 0)
    EndTransfer(false);
  else
    SetEventLoopTimerNextFireTime(timer, TimeLeft());
}

void OnEnter(Native* n, const uint32_t* d) {
  const uint32_t version = d[1] >> 24;
  const bool in_property = (d[1] & 1) != 0;
  EndHover();
  Watch(d[0], kWatchEnd);
  hover.source = d[0];
  hover.target = n;
  hover.acceptable =
      version >= 3 &&
      (in_property ? TypesOfProperty(d[0]) : std::find(d + 2, d + 5, Atom(kTextUriList)) != d + 5);
}

// The window may begin or cease to refuse files while they are dragged over it.
bool Accepts(const Native* n) {
  return hover.acceptable && (n->w->attributes & kWindowRefusesFilesAttribute) == 0;
}

void TellPosition(Native* n, uint32_t place) {
  const DeviceRect at = n->bounds_known ? n->bounds : DeviceBounds(*n->w);
  RawEvent* out = Emit(RawEvent::kDragOver, n);
  out->root_x = float(int16_t(place >> 16));
  out->root_y = float(int16_t(place & 0xFFFF));
  out->x = out->root_x - float(at.left);
  out->y = out->root_y - float(at.top);
}

void OnPosition(Native* n, const uint32_t* d) {
  const bool here = hover.source == d[0] && hover.target == n;
  const bool accept = here && Accepts(n);
  if (accept) TellPosition(n, d[2]);
  if (here) hover.told = accept;
  const uint32_t answer[5] = {n->id, accept ? 1u : 0u, 0, 0, accept ? Atom(kXdndActionCopy) : 0};
  SendClientMessage(d[0], d[0], kXdndStatus, answer, 0);
}

xcb_atom_t NextProperty() {
  static bool second = false;
  second = !second;
  return Atom(second ? kXwDrop2 : kXwDrop);
}

// A drop without a place, or where the source knows that it is refused, brings nothing. A new drop
// ends one that is still being transferred.
void OnDrop(Native* n, const uint32_t* d) {
  if (hover.source != d[0] || hover.target != n) return;
  if (!hover.told || !Accepts(n)) {
    EndHover();
    return TellSource(d[0], n, false);
  }
  EndTransfer(false);
  transfer.source = d[0];
  Watch(transfer.source, kWatchEnd);
  transfer.target = n;
  transfer.property = NextProperty();
  transfer.time = d[2];
  transfer.started = transfer.progress = Now();
  EndHover(RawEvent::kDragDropped);
  transfer.deadline = InstallEventLoopTimer(TimeLeft(), 0, DeadlineHasCome, nullptr);
  xcb_delete_property(x.c, n->id, transfer.property);
  xcb_convert_selection(x.c, n->id, Atom(kXdndSelection), Atom(kTextUriList), transfer.property,
                        transfer.time);
}

// Takes what the source has put into the property. `*type` is what it says to be.
bool TakeProperty(xcb_atom_t* type) {
  auto cookie = xcb_get_property(x.c, 0, transfer.target->id, transfer.property, XCB_ATOM_ANY, 0,
                                 uint32_t(kMaxBytes / 4));
  // Deleting the property asks for the next piece.
  xcb_delete_property(x.c, transfer.target->id, transfer.property);
  Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.c, cookie, nullptr));
  *type = reply ? reply->type : xcb_atom_t{XCB_ATOM_NONE};
  if (!reply || reply->type != Atom(kTextUriList) || reply->format != 8) return false;
  const size_t size = std::min(size_t(xcb_get_property_value_length(reply.p)),
                               kMaxBytes - std::min(transfer.data.size(), kMaxBytes));
  transfer.data.append(static_cast<const char*>(xcb_get_property_value(reply.p)), size);
  transfer.progress = Now();
  return true;
}

// Removes pieces that arrive after the transfer is over, for a limited time: a list may be endless.
void PassOver(const Native& n, xcb_atom_t property) {
  if (Now() < drained_until && IsDropProperty(property)) xcb_delete_property(x.c, n.id, property);
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
    if (hover.source == d[0]) EndHover();
  } else {
    return false;
  }
  return true;
}

bool IsDropProperty(xcb_atom_t property) {
  return property == Atom(kXwDrop) || property == Atom(kXwDrop2);
}

void HandleDropData(const xcb_selection_notify_event_t* e) {
  const Native* n = FindNative(e->requestor);
  if (e->selection != Atom(kXdndSelection) || n == nullptr) return;
  const bool refused = e->property == XCB_NONE && e->time == transfer.time;
  if (transfer.target != n || (e->property != transfer.property && !refused))
    return PassOver(*n, e->property);
  if (transfer.in_pieces) return;
  if (refused || Overdue()) return EndTransfer(false);
  xcb_atom_t type = XCB_ATOM_NONE;
  const bool whole = TakeProperty(&type);
  transfer.in_pieces = type == Atom(kIncr);
  if (!transfer.in_pieces) EndTransfer(whole);
}

// A piece, when the list comes in several; the empty one is the last.
void HandleDropPiece(const Native* n, xcb_atom_t property) {
  if (transfer.target != n || transfer.property != property) return PassOver(*n, property);
  if (!transfer.in_pieces) return;
  if (Overdue()) return EndTransfer(false);
  xcb_atom_t type = XCB_ATOM_NONE;
  const size_t before = transfer.data.size();
  if (!TakeProperty(&type)) return EndTransfer(false);
  if (transfer.data.size() == before || transfer.data.size() == kMaxBytes) EndTransfer(true);
}

void HandleSourceEnd(xcb_window_t source) {
  if (hover.source == source) EndHover();
  if (transfer.target != nullptr && transfer.source == source) EndTransfer(false);
}

void ForgetDragPlace(const Native* n) {
  if (hover.target == n) hover.told = false;
}

void ForgetDrop(const Native* n) {
  ForgetDragPlace(n);  // nobody is left to hear of it
  if (hover.target == n) EndHover();
  if (transfer.target == n) EndTransfer(false);
}

}  // namespace platform::x11
