// What windows get once the first picture is out: the program's icon, and the counter by which a
// window manager waits for a window that grows.
//
// Such a manager sends a value before it gives the window another size, and gives it no further
// size until the counter has that value. So the counter follows when the picture of the new size is
// on the screen, or after a while when none is drawn.
#include <xcb/sync.h>

#include "platform/display/program_icon.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

bool OpenSync() {
  if (x.sync == State::kSyncUnknown) {
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(x.c, &xcb_sync_id);
    x.sync = data != nullptr && data->present ? State::kSyncHere : State::kSyncMissing;
    if (x.sync == State::kSyncHere) xcb_discard_reply(x.c, xcb_sync_initialize(x.c, 3, 1).sequence);
  }
  return x.sync == State::kSyncHere;
}

void MakeCounter(Native* n) {
  if (n->sync.counter != 0 || !ManagerSyncs() || !OpenSync()) return;
  n->sync.counter = xcb_generate_id(x.c);
  xcb_sync_create_counter(x.c, n->sync.counter, {0, 0});
  xcb_change_property(x.c, XCB_PROP_MODE_REPLACE, n->id, Atom(kNetWmSyncRequestCounter),
                      XCB_ATOM_CARDINAL, 32, 1, &n->sync.counter);
  SetProtocols(*n);
}

void TellManager(Native* n) {
  RemoveEventLoopTimer(n->sync.patience);
  n->sync.patience = nullptr;
  n->sync.waits = n->sync.sized = false;
  xcb_sync_set_counter(x.c, n->sync.counter, {n->sync.high, n->sync.low});
}

void NoPictureCame(EventLoopTimerRef, void* native) {
  TellManager(static_cast<Native*>(native));
}

}  // namespace

// In pieces that any server takes in one request.
void SetIcon(const Native& n) {
  xcb_delete_property(x.c, n.id, Atom(kNetWmIcon));
  std::vector<uint32_t> words;
  for (const ProgramIcon& icon : ProgramIcons()) {
    words.assign({uint32_t(icon.size), uint32_t(icon.size)});
    words.insert(words.end(), icon.argb.begin(), icon.argb.end());
    constexpr size_t kMostWords = 32 * 1024;
    for (size_t at = 0; at < words.size(); at += kMostWords) {
      xcb_change_property(x.c, XCB_PROP_MODE_APPEND, n.id, Atom(kNetWmIcon), XCB_ATOM_CARDINAL, 32,
                          uint32_t(std::min(kMostWords, words.size() - at)), words.data() + at);
    }
  }
}

void FinishWindow(Native* n) {
  if (n->w->parent != nullptr) return;
  if (!n->finished && !ProgramIcons().empty()) SetIcon(*n);
  n->finished = true;
  MakeCounter(n);
}

void HandleSyncRequest(Native* n, const xcb_client_message_event_t* e) {
  auto& s = n->sync;
  if (s.counter == 0) return;
  s.low = e->data.data32[2];
  s.high = int32_t(e->data.data32[3]);
  s.waits = true;
  s.sized = false;
  if (s.patience == nullptr)
    s.patience = InstallEventLoopTimer(x.picture_patience, 0, NoPictureCame, n);
  else
    SetEventLoopTimerNextFireTime(s.patience, x.picture_patience);
}

void NoteSize(Native* n) {
  n->sync.sized = n->sync.waits;
}

void NotePresented(Native* n) {
  const DeviceRect& b = n->bounds;
  if (n->sync.waits && n->sync.sized && !n->w->needs_draw && n->width == b.width() &&
      n->height == b.height()) {
    TellManager(n);
  }
}

void ForgetCounter(Native* n) {
  RemoveEventLoopTimer(n->sync.patience);
  if (n->sync.counter != 0) xcb_sync_destroy_counter(x.c, n->sync.counter);
  n->sync = {};
}

}  // namespace platform::x11
