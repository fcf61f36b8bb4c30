// Connecting, disconnecting, and the table.
#include "platform/display/x11/x.h"

#include <sys/socket.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <cstdlib>
#include <cstring>

namespace platform::x11 {

State x;

namespace {

constexpr const char* kAtomNames[] = {
#define XW_ATOM_NAME(constant, name) name,
    XW_ATOMS(XW_ATOM_NAME)
#undef XW_ATOM_NAME
};

// The pixels are 0xFFRRGGBB words, so a true-colour visual of that order is what is needed.
bool ChooseVisual() {
  bool words = false;
  const xcb_setup_t* setup = xcb_get_setup(x.c);
  for (auto f = xcb_setup_pixmap_formats_iterator(setup); f.rem != 0; xcb_format_next(&f)) {
    if (f.data->depth == 24 && f.data->bits_per_pixel == 32) words = true;
  }
  const uint16_t probe = 1;
  const bool little = *reinterpret_cast<const uint8_t*>(&probe) == 1;
  if (!words || little != (setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST)) return false;
  xcb_visualid_t found = 0;
  for (auto d = xcb_screen_allowed_depths_iterator(x.screen); d.rem != 0; xcb_depth_next(&d)) {
    if (d.data->depth != 24) continue;
    for (auto v = xcb_depth_visuals_iterator(d.data); v.rem != 0; xcb_visualtype_next(&v)) {
      bool fits = v.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR && v.data->red_mask == 0xFF0000 &&
                  v.data->green_mask == 0xFF00 && v.data->blue_mask == 0xFF;
      if (fits && (found == 0 || v.data->visual_id == x.screen->root_visual)) {
        found = v.data->visual_id;
      }
    }
  }
  x.visual = found;
  return found != 0;
}

void InternAtoms() {
  xcb_intern_atom_cookie_t cookies[kAtomCount];
  for (int i = 0; i < kAtomCount; ++i) {
    cookies[i] = xcb_intern_atom(x.c, 0, uint16_t(strlen(kAtomNames[i])), kAtomNames[i]);
  }
  for (int i = 0; i < kAtomCount; ++i) {
    Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x.c, cookies[i], nullptr));
    x.atoms[i] = reply ? reply->atom : 0;
  }
}

// Shared memory is handed over as a descriptor, which the extension knows since its version 1.2 and
// which only a local connection can carry.
bool SharedMemoryUsable(bool present, xcb_shm_query_version_cookie_t cookie) {
  if (!present) return false;
  Reply<xcb_shm_query_version_reply_t> v(xcb_shm_query_version_reply(x.c, cookie, nullptr));
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  const int fd = xcb_get_file_descriptor(x.c);
  if (getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) return false;
  if (address.ss_family != AF_UNIX) return false;
  const char* setting = getenv("XW_SHM");
  if (setting != nullptr && strcmp(setting, "0") == 0) return false;
  return v && (v->major_version > 1 || (v->major_version == 1 && v->minor_version >= 2));
}

void MakeContext() {
  xcb_window_t on = x.screen->root;
  xcb_pixmap_t model = 0;
  if (x.visual != x.screen->root_visual) {
    x.colormap = xcb_generate_id(x.c);
    xcb_create_colormap(x.c, XCB_COLORMAP_ALLOC_NONE, x.colormap, x.screen->root, x.visual);
    if (x.screen->root_depth != x.depth) {
      on = model = xcb_generate_id(x.c);
      xcb_create_pixmap(x.c, x.depth, model, x.screen->root, 1, 1);
    }
  }
  x.gc = xcb_generate_id(x.c);
  const uint32_t no_exposures = 0;
  xcb_create_gc(x.c, x.gc, on, XCB_GC_GRAPHICS_EXPOSURES, &no_exposures);
  if (model != 0) xcb_free_pixmap(x.c, model);
}

void WatchRoot() {
  const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x.c, x.screen->root, XCB_CW_EVENT_MASK, &mask);
  const xcb_query_extension_reply_t* randr = xcb_get_extension_data(x.c, &xcb_randr_id);
  if (randr == nullptr || !randr->present) return;
  x.randr_event = randr->first_event;
  xcb_discard_reply(x.c, xcb_randr_query_version(x.c, 1, 5).sequence);
  xcb_randr_select_input(x.c, x.screen->root, XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE);
}

void Disconnect() {
  if (x.c != nullptr) xcb_disconnect(x.c);
  x = State{};
}

// Three batches in all: the connection's own, names and extensions, then what needed those.
OpenResult Open(const char* session_name) {
  const char* display = getenv("DISPLAY");
  if (display == nullptr || *display == 0) return OpenResult::kNotHere;
  int number = 0;
  x.c = xcb_connect(nullptr, &number);
  if (xcb_connection_has_error(x.c)) {
    Disconnect();
    return OpenResult::kNotHere;
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(x.c));
  while (number-- > 0 && screens.rem > 1) xcb_screen_next(&screens);
  x.screen = screens.data;
  if (!ChooseVisual()) {
    Disconnect();
    return OpenResult::kNotHere;
  }
  x.session_name = session_name != nullptr ? session_name : "";
  xcb_prefetch_extension_data(x.c, &xcb_shm_id);
  xcb_prefetch_extension_data(x.c, &xcb_randr_id);
  xcb_prefetch_extension_data(x.c, &xcb_xfixes_id);
  AskProgramName();
  InternAtoms();
  const xcb_query_extension_reply_t* shm = xcb_get_extension_data(x.c, &xcb_shm_id);
  const bool has_shm = shm != nullptr && shm->present;
  xcb_shm_query_version_cookie_t version{};
  if (has_shm) version = xcb_shm_query_version(x.c);
  WatchRoot();
  BeginStartup();
  AskOthers();
  MakeContext();
  const xcb_get_property_cookie_t manager = AskManager();
  ReadScreens();
  TakeManager(manager);
  TakeOthers();
  x.shm = SharedMemoryUsable(has_shm, version);
  return OthersRun() ? OpenResult::kShared : OpenResult::kOpened;
}

void Close() {
  if (x.c == nullptr) return;
  while (!x.windows.empty()) DestroyNative(x.windows.begin()->second->w);
  DropSpareBuffers();
  DropAhead();
  CloseCursors();
  CloseKeyboard();
  ClosePointer();
  CloseSelections();
  CloseTextRequests();
  CloseWatches();
  Disconnect();
}

void Beep() {
  xcb_bell(x.c, 0);
}

void Descriptors(PollList* list) {
  if (x.c != nullptr) list->push_back({xcb_get_file_descriptor(x.c), POLLIN, 0});
}

}  // namespace

Native* FindNative(xcb_window_t id) {
  auto it = x.windows.find(id);
  return it != x.windows.end() ? it->second : nullptr;
}

}  // namespace platform::x11

namespace platform {

const Display kX11Display = {
    .name = "x11",
    .open = x11::Open,
    .close = x11::Close,
    .screens = x11::Screens,
    .create_window = x11::CreateNative,
    .destroy_window = x11::DestroyNative,
    .map_window = x11::MapNative,
    .move_resize = x11::MoveResizeNative,
    .update = x11::UpdateNative,
    .raise = x11::RaiseNative,
    .resize_buffer = x11::ResizeBuffer,
    .present = x11::Present,
    .flush = x11::Flush,
    .destroy_cursor = x11::DestroyCursor,
    .grab = x11::Grab,
    .offer_text = x11::OfferText,
    .ask_text = x11::AskText,
    .keep_text = x11::KeepText,
    .beep = x11::Beep,
    .next_event = x11::NextEvent,
    .descriptors = x11::Descriptors,
    .wait = nullptr,
    .now = nullptr,
};

}  // namespace platform
