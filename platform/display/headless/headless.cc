#include "platform/display/headless/headless.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "platform/display/headless/state.h"
#include "platform/events/queue.h"

namespace platform::headless {

State& Headless() {
  static State* state = new State;
  return *state;
}

namespace {

double SystemSeconds() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

OpenResult Open(const char*) {
  State& s = Headless();
  s.open = true;
  s.screen = {{0, 0, 1280, 1024}, 1.0};
  // A replay needs no time of its own.
  if (const char* replay = getenv("XW_REPLAY"); replay && *replay && !s.stepped) UseSteppedClock(0);
  if (const char* scale = getenv("XW_SCALE")) {
    double v = atof(scale);
    if (v >= 0.5 && v <= 8) s.screen.scale = v;
  }
  if (const char* size = getenv("XW_SCREEN")) {
    int w = 0, h = 0;
    if (sscanf(size, "%dx%d", &w, &h) == 2 && w > 0 && h > 0 && w <= 16384 && h <= 16384)
      s.screen.bounds = {0, 0, w, h};
  }
  return OpenResult::kOpened;
}

// A window whose scale is not that of its screen hears of it.
void ReportScales() {
  State& s = Headless();
  for (const Window* w : s.windows) {
    if (w->surface.scale == s.screen.scale) continue;
    RawEvent& raw = s.raw.emplace_back();
    raw.type = RawEvent::kScale;
    raw.window = w;
    raw.time = s.raw.front().time;
    raw.scale = s.screen.scale;
  }
}

void CloseDisplay() {
  State& s = Headless();
  bool stepped = s.stepped;
  double now = s.now;
  s = State();
  s.stepped = stepped;
  s.now = now;
}

int Screens(Screen* out, int max) {
  if (max > 0) out[0] = Headless().screen;
  return 1;
}

void* CreateNative(const Window* w) {
  auto* n = new NativeWindow;
  n->cursor = w->cursor;
  State& s = Headless();
  s.windows.push_back(w);
  ++s.counts.windows;
  return n;
}

// Reports of a window that ends go; what they let go of is reported without one.
void ForgetReports(const Window* w) {
  for (RawEvent& e : Headless().raw) {
    if (e.under == w) e.under = nullptr;
    if (e.window == w && IsRelease(e.type)) e.window = nullptr;
  }
  std::erase_if(Headless().raw, [w](const RawEvent& e) { return e.window == w; });
}

void DestroyNative(const Window* w) {
  State& s = Headless();
  std::erase(s.stack, w);
  std::erase(s.windows, w);
  if (s.focus == w) GiveFocus(s.stack.empty() ? nullptr : s.stack.front());
  ForgetReports(w);
  if (s.pressed_in == w) s.pressed_in = nullptr;
  if (s.entered == w) s.entered = nullptr;
  if (s.grab.window == w) s.grab = {};
  delete Native(w);
  --s.counts.windows;
}

// A window that is shown gets the focus, as from most window managers.
void Map(const Window* w, bool shown) {
  State& s = Headless();
  Native(w)->mapped = shown;
  std::erase(s.stack, w);
  if (!shown && s.pressed_in == w) s.pressed_in = nullptr;
  if (!shown && s.grab.window == w) LoseGrab();
  if (shown) {
    s.stack.insert(s.stack.begin(), w);
    if (!(w->state & kStateDocked)) GiveFocus(w);
    TryGrab();
  } else if (s.focus == w) {
    GiveFocus(s.stack.empty() ? nullptr : s.stack.front());
  }
}

void MoveResize(const Window*) {}

void Update(const Window* w, uint32_t what) {
  if (what & kUpdateCursor) Native(w)->cursor = w->cursor;
}

void RaiseNative(const Window* w, uint32_t how, const char*) {
  if (how & kRaiseOnly) Raise(w);
  if (how & kRaiseFocus && Native(w)->mapped) GiveFocus(w);
}

uint32_t* ResizeBuffer(const Window* w, int width, int height, int* stride) {
  if (width <= 0 || height <= 0 || int64_t(width) * height > (int64_t{1} << 28)) return nullptr;
  NativeWindow* n = Native(w);
  std::vector<uint32_t> pixels(size_t(width) * size_t(height), 0xFF000000u);
  for (int y = 0; y < std::min(height, n->height); ++y)
    std::copy_n(n->buffer.begin() + int64_t(y) * n->width, std::min(width, n->width),
                pixels.begin() + int64_t(y) * width);
  n->buffer.swap(pixels);
  n->width = *stride = width;
  n->height = height;
  return n->buffer.data();
}

void Present(const Window* w, const DeviceRect* rects, int count) {
  NativeWindow* n = Native(w);
  if (n->shown_width != n->width || n->shown_height != n->height) {
    n->shown.assign(n->buffer.size(), 0xFF000000u);
    n->shown_width = n->width;
    n->shown_height = n->height;
  }
  State& s = Headless();
  ++s.counts.presents;
  for (int i = 0; i < count; ++i) {
    const DeviceRect& r = rects[i];
    s.counts.presented_pixels += int64_t(r.width()) * r.height();
    for (int y = r.top; y < r.bottom; ++y)
      memcpy(&n->shown[size_t(y) * size_t(n->width) + size_t(r.left)],
             &n->buffer[size_t(y) * size_t(n->width) + size_t(r.left)],
             size_t(r.width()) * sizeof(uint32_t));
  }
}

void Flush(bool) {}

void DestroyCursor(const Cursor* cursor) {
  State& s = Headless();
  if (s.grab.cursor == cursor) s.grab.cursor = nullptr;
}

void Grab(const Window* w, GrabMode mode, const Cursor* cursor) {
  State& s = Headless();
  s.grab = {};
  if (!w || mode == GrabMode::kNone) return;
  s.grab = {w, mode, cursor, false};
  TryGrab();
}

void Beep() {
  ++Headless().counts.beeps;
}

bool NextEvent(RawEvent* out) {
  State& s = Headless();
  if (s.raw.empty()) return false;
  *out = s.raw.front();
  s.raw.pop_front();
  // The scales of the windows follow the screens, those of windows made meanwhile too.
  if (out->type == RawEvent::kScreens) ReportScales();
  if (out->type == RawEvent::kOpenFile && !s.paths.empty()) {
    s.path = s.paths.front();
    s.paths.pop_front();
    out->text = s.path.c_str();
  }
  return true;
}

// XW_SNAPSHOT=FILE: whenever the program comes to rest and has shown something new, the file gets
// the picture of its first window. Written beside it first, so that readers never see half of one.
void WriteSnapshot() {
  static const char* path = getenv("XW_SNAPSHOT");
  static int written = 0;
  State& s = Headless();
  if (!path || s.counts.presents == written || s.stack.empty()) return;
  written = s.counts.presents;
  std::string beside = std::string(path) + ".part";
  if (WritePng(TakePicture(s.stack.back()), beside)) rename(beside.c_str(), path);
}

// Where time is stepped by hand nothing but a source can come by itself: those are looked at first,
// and waited for when no timer is left.
void Wait(double seconds) {
  constexpr double kPatience = 5;
  State& s = Headless();
  if (!s.raw.empty()) return;  // injected by what ran since reports were taken
  WriteSnapshot();
  if (!s.stepped) {
    WaitForSources(seconds);
    return;
  }
  if (WaitForSources(0)) return;
  if (seconds >= 0) {
    s.now += seconds;
    return;
  }
  if (s.idle && s.idle()) return;
  if (WaitForSources(kPatience)) return;
  fprintf(stderr, "headless display: nothing left to wait for\n");
  exit(3);
}

double Now() {
  return Headless().stepped ? Headless().now : SystemSeconds();
}

}  // namespace

void UseSteppedClock(double start_seconds) {
  Headless().stepped = true;
  intake_hints.ClockIsStepped();
  Headless().now = start_seconds;
}
void Step(double seconds) {
  Headless().now += seconds;
}
void SetIdleHandler(bool (*handler)()) {
  Headless().idle = handler;
}
Counters Counts() {
  return Headless().counts;
}
CursorRef ShownCursor(const Window* w) {
  const State& s = Headless();
  const bool everywhere = s.grab.held && s.grab.cursor;
  const Cursor* shown = everywhere ? s.grab.cursor : IsValidWindow(w) ? Native(w)->cursor : nullptr;
  return const_cast<CursorRef>(shown);
}
const Window* PointerGrab() {
  return Headless().grab.held ? Headless().grab.window : nullptr;
}
std::string ShownTitle(const Window* w) {
  if (!IsValidWindow(w)) return {};
  return w->modified ? "\u2022 " + w->title : w->title;
}

}  // namespace platform::headless

namespace platform {

using namespace headless;

const Display kHeadlessDisplay = {
    .name = "headless",
    .open = Open,
    .close = CloseDisplay,
    .screens = Screens,
    .create_window = CreateNative,
    .destroy_window = DestroyNative,
    .map_window = Map,
    .move_resize = MoveResize,
    .update = Update,
    .raise = RaiseNative,
    .resize_buffer = ResizeBuffer,
    .present = headless::Present,
    .flush = Flush,
    .destroy_cursor = DestroyCursor,
    .grab = Grab,
    .beep = Beep,
    .next_event = NextEvent,
    .descriptors = nullptr,
    .wait = headless::Wait,
    .now = Now,
};

}  // namespace platform
