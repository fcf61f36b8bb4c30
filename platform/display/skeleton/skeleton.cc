// The smallest display: windows are memory, nothing is shown anywhere and nobody types. It is the
// model to copy for a new display (docs/new-display.md) and is in no list; a test runs a program on
// it. What a real display adds is said where it belongs.
#include <algorithm>
#include <deque>
#include <vector>

#include "platform/display/display.h"
#include "platform/display/window.h"

namespace platform {

extern const Display kSkeletonDisplay;

namespace {

// One for each window, from create_window to destroy_window.
struct NativeWindow {
  std::vector<uint32_t> buffer;
  int width = 0, height = 0;
};

NativeWindow* Native(const Window* w) {
  return static_cast<NativeWindow*>(w->native);
}

// What has happened and was not asked for yet.
std::deque<RawEvent> reports;

void Report(RawEvent::Type type, const Window* w) {
  RawEvent raw;
  raw.type = type;
  raw.window = w;
  reports.push_back(raw);
}

// Connects, without waiting for more than it must: the first frame waits for this.
OpenResult Open(const char*) {
  return OpenResult::kOpened;
}

void Close() {
  reports.clear();
}

int Screens(Screen* out, int max) {
  if (max > 0) out[0] = {{0, 0, 1024, 768}, 1.0};
  return 1;
}

// Makes the window at DeviceBounds(*w), with all that Update tells. What is returned is in
// `w->native` from now on. There are no frames here.
void* CreateWindow(const Window*, DeviceRect*) {
  return new NativeWindow;
}

void DestroyWindow(const Window* w) {
  std::erase_if(reports, [w](const RawEvent& r) { return r.window == w; });
  delete Native(w);
}

// The focus comes by itself on most desktops; here it comes with the window.
void MapWindow(const Window* w, bool shown) {
  Report(shown ? RawEvent::kFocusIn : RawEvent::kFocusOut, w);
}

// The platform has noted the new place already; a display that grants another one reports it with
// kConfigure.
void MoveResize(const Window*) {}
// Title, hints, cursor, backdrop, icon: those that `what` names.
void Update(const Window*, uint32_t) {}

void Raise(const Window* w, uint32_t how, const char*) {
  if (how & kRaiseFocus) Report(RawEvent::kFocusIn, w);
}

uint32_t* ResizeBuffer(const Window* w, int width, int height, int* stride) {
  constexpr int64_t kMostPixels = int64_t{1} << 28;
  if (width <= 0 || height <= 0 || int64_t{width} * height > kMostPixels) return nullptr;
  NativeWindow* n = Native(w);
  std::vector<uint32_t> pixels(size_t(width) * size_t(height),
                               w->backdrop != kNoColor ? 0xFF000000u | w->backdrop : 0xFFFFFFFFu);
  for (int y = 0; y < std::min(height, n->height); ++y) {
    std::copy_n(n->buffer.begin() + int64_t{y} * n->width, std::min(width, n->width),
                pixels.begin() + int64_t{y} * width);
  }
  n->buffer.swap(pixels);
  n->width = *stride = width;
  n->height = height;
  return n->buffer.data();
}

// Copies the rectangles of the buffer to the screen; Flush sends what is batched.
void Present(const Window*, const DeviceRect*, int) {}
void Flush(bool) {}

bool NextEvent(RawEvent* out) {
  if (reports.empty()) return false;
  *out = reports.front();
  reports.pop_front();
  return true;
}

}  // namespace

// Entries that may be null: no cursors, no grab, no beep, the system's clock. A display with a
// connection names its descriptor, and the platform waits on it.
const Display kSkeletonDisplay = {
    .name = "skeleton",
    .open = Open,
    .close = Close,
    .screens = Screens,
    .create_window = CreateWindow,
    .destroy_window = DestroyWindow,
    .map_window = MapWindow,
    .move_resize = MoveResize,
    .update = Update,
    .raise = Raise,
    .resize_buffer = ResizeBuffer,
    .present = Present,
    .flush = Flush,
    .destroy_cursor = nullptr,
    .grab = nullptr,
    .offer_text = nullptr,
    .ask_text = nullptr,
    .keep_text = nullptr,
    .beep = nullptr,
    .next_event = NextEvent,
    .descriptors = nullptr,
    .wait = nullptr,
    .now = nullptr,
};

}  // namespace platform
