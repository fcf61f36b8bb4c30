#include "platform/display/headless/headless.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "platform/display/cursor.h"
#include "platform/display/headless/state.h"
#include "platform/display/screens.h"
#include "platform/events/queue.h"

namespace platform::headless {

State& Headless() {
  static State* state = new State;
  return *state;
}

// Where the middle of the window would be at scale 1, from the corner where it is: the scale that
// follows does not change it.
double ScaleAt(const Window& w, Point corner, int width, int height) {
  const std::vector<Screen>& screens = Headless().screens;
  if (w.parent) return w.parent->surface.scale;
  return ScreenAt(screens.data(), int(screens.size()),
                  {corner.x + width / 2, corner.y + height / 2})
      .scale;
}

namespace {

constexpr int kMostSide = 16384;
constexpr size_t kMostScreens = 16;

double SystemSeconds() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

double ScaleIn(const char* text, double otherwise) {
  const double scale = ScaleInText(text);
  return scale != 0 ? scale : otherwise;
}

// WIDTHxHEIGHT[@SCALE], any number of them with commas between: from left to right, the first is
// the main one. Anything else ends the list.
std::vector<Screen> ReadScreens(const char* text, double scale) {
  std::vector<Screen> screens;
  int left = 0;
  while (text) {
    int width = 0, height = 0, length = 0;
    if (sscanf(text, "%dx%d%n", &width, &height, &length) != 2) break;
    if (width <= 0 || height <= 0 || width > kMostSide || height > kMostSide) break;
    text += length;
    const size_t rest = strcspn(text, ",");
    const double own =
        *text == '@' ? ScaleIn(std::string(text + 1, rest - 1).c_str(), scale) : scale;
    screens.push_back({{left, 0, left + width, height}, own});
    left += width;
    text = screens.size() < kMostScreens ? strchr(text, ',') : nullptr;
    if (text) ++text;
  }
  if (screens.empty()) screens.push_back({{0, 0, 1280, 1024}, scale});
  return screens;
}

OpenResult Open(const char*) {
  State& s = Headless();
  s.open = true;
  s.kept = nullptr;
  // A replay takes its times from the recording.
  if (const char* replay = getenv("XW_REPLAY"); replay && *replay && !s.stepped) UseSteppedClock(0);
  s.screens = ReadScreens(getenv("XW_SCREEN"), ScaleIn(getenv("XW_SCALE"), 1));
  s.scale = s.screens[0].scale;
  return OpenResult::kOpened;
}

// Reports the new scale to a window that lies on a screen of another scale.
void FollowScreen(const Window* w) {
  State& s = Headless();
  const DeviceRect at = DeviceBounds(*w);
  const double scale =
      ScaleAt(*w, {at.left, at.top}, w->content.width(), w->content.height() + w->menu_bar_height);
  if (scale == Native(w)->scale) return;
  Native(w)->scale = scale;
  RawEvent raw;
  raw.type = RawEvent::kScale;
  raw.window = w;
  raw.time = kHeadlessDisplay.now();
  raw.scale = scale;
  s.raw.push_back(raw);
  intake_hints.ReportWaits();
}

DeviceRect Wanted(const Window& w) {
  const std::vector<Screen>& screens = Headless().screens;
  return WantedBounds(w, screens.data(), int(screens.size()));
}

void ReportBounds(const Window* w, const DeviceRect& bounds) {
  State& s = Headless();
  RawEvent raw;
  raw.type = RawEvent::kConfigure;
  raw.window = w;
  raw.time = kHeadlessDisplay.now();
  raw.root_x = float(bounds.left);
  raw.root_y = float(bounds.top);
  raw.width = bounds.width();
  raw.height = bounds.height();
  s.raw.push_back(raw);
  intake_hints.ReportWaits();
}

void CloseDisplay() {
  State& s = Headless();
  bool stepped = s.stepped;
  double now = s.now;
  SharedText kept = std::move(s.kept);
  s = State();
  s.kept = std::move(kept);
  s.stepped = stepped;
  s.now = now;
}

int Screens(Screen* out, int max) {
  const std::vector<Screen>& screens = Headless().screens;
  const int count = int(screens.size());
  std::copy_n(screens.begin(), std::min(count, max), out);
  return count;
}

void* CreateNative(const Window* w, DeviceRect* frame) {
  auto* n = new NativeWindow;
  n->cursor = w->cursor;
  n->scale = w->surface.scale;
  n->unseen = true;
  State& s = Headless();
  s.unseen = true;
  s.windows.push_back(w);
  if (w->parent == nullptr) *frame = s.frames;
  ++s.counts.windows;
  return n;
}

// Drops the reports of a destroyed window; releases stay, without the window.
void ForgetReports(const Window* w) {
  State& s = Headless();
  s.raw.erase(s.raw.begin(), s.raw.begin() + long(s.next));
  s.next = 0;
  for (RawEvent& e : s.raw) {
    if (e.under == w) e.under = nullptr;
    if (e.window == w && IsRelease(e.type)) e.window = nullptr;
  }
  std::erase_if(s.raw, [w](const RawEvent& e) { return e.window == w; });
}

void DestroyNative(const Window* w) {
  State& s = Headless();
  std::erase(s.stack, w);
  std::erase(s.windows, w);
  ForgetReports(w);
  if (s.pressed_in == w) {
    s.pressed_in = nullptr;
    s.orphans = s.reported;
  }
  if (s.entered == w) s.entered = nullptr;
  if (s.grab.window == w) s.grab = {};
  for (auto& [keysym, key] : s.held) key.orphan = key.orphan || key.window == w;
  if (s.focus == w) {
    s.focus = nullptr;
    s.focus_ended = true;
    GiveFocus(s.stack.empty() ? nullptr : s.stack.front());
  }
  delete Native(w);
  --s.counts.windows;
}

// A window that is shown gets the focus, as from most window managers.
void Map(const Window* w, bool shown) {
  State& s = Headless();
  Native(w)->mapped = shown;
  std::erase(s.stack, w);
  if (!shown) LosePointer(w);
  if (shown) {
    s.stack.insert(s.stack.begin(), w);
    if (!(w->state & kStateDocked) && !w->parent) GiveFocus(w);
    TryGrab();
  } else if (s.focus == w) {
    GiveFocus(s.stack.empty() ? nullptr : s.stack.front());
  }
}

void MoveResize(const Window* w) {
  if (w->parent && Wanted(*w) != DeviceBounds(*w)) ReportBounds(w, Wanted(*w));
  FollowScreen(w);
}

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
  std::vector<uint32_t> pixels(size_t(width) * size_t(height),
                               w->backdrop != kNoColor ? 0xFF000000u | w->backdrop : 0xFFFFFFFFu);
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

// Reports the bounds of new windows. While they are made, no window names them yet.
void LookAtNewWindows() {
  State& s = Headless();
  for (size_t i = 0; s.unseen && i < s.windows.size(); ++i) {
    NativeWindow* n = Native(s.windows[i]);
    if (n->unseen) MoveResize(s.windows[i]);
    n->unseen = false;
  }
  s.unseen = false;
}

bool NextEvent(RawEvent* out) {
  State& s = Headless();
  LookAtNewWindows();
  if (s.raw.empty()) return false;
  *out = s.raw[s.next++];
  if (s.next == s.raw.size()) {
    s.raw.clear();
    s.next = 0;
  }
  // All windows take the scale of their screen, also those made since the report was queued.
  if (out->type == RawEvent::kScreens) {
    for (const Window* w : s.windows) FollowScreen(w);
  }
  if (out->type == RawEvent::kOpenFile && !s.paths.empty()) {
    s.path = s.paths.front();
    s.paths.pop_front();
    out->text = s.path.c_str();
  }
  if (out->type == RawEvent::kTextArrived) out->arrived = TakeArrived(out->request);
  return true;
}

// XW_SNAPSHOT=FILE: whenever the program comes to rest and has shown something new, the file gets
// the picture of its first window. Written beside it first, so that readers never see half of one.
// Where time is stepped nobody looks between two steps, and writing would take longer than all
// else: the picture is kept, and written when the program waits for somebody, or at its end.
struct Snapshot {
  const char* path = getenv("XW_SNAPSHOT");
  int taken = 0;  // presents
  Picture picture;

  void Take() {
    State& s = Headless();
    if (!path || s.counts.presents == taken || s.stack.empty()) return;
    taken = s.counts.presents;
    picture = TakePicture(s.stack.back());
  }
  void Write() {
    if (picture.pixels.empty()) return;
    const std::string beside = std::string(path) + ".part";
    if (WritePng(picture, beside)) rename(beside.c_str(), path);
    picture = {};
  }
};
Snapshot& TheSnapshot() {
  static Snapshot snapshot;
  static const int at_exit = atexit([] { snapshot.Write(); });
  (void)at_exit;
  return snapshot;
}

// Where time is stepped by hand nothing but a source can come by itself: those are looked at first,
// and waited for when no timer is left.
void Wait(double seconds) {
  constexpr double kPatience = 5;
  State& s = Headless();
  if (!s.raw.empty()) return;  // a callback has injected input since the last look
  TheSnapshot().Take();
  if (!s.stepped) {
    TheSnapshot().Write();
    WaitForSources(seconds);
    return;
  }
  if (WaitForSources(0)) return;
  if (seconds >= 0) {
    s.now += seconds;
    return;
  }
  TheSnapshot().Write();
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
Picture ShownCursorPicture(const Window* w) {
  const Cursor* shown = ShownCursor(w);
  if (!shown) return {};
  CursorPicture p = PictureOf(*shown, w->surface.scale);
  return {p.width, p.height, std::move(p.pixels)};
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
    .offer_text = OfferOwnText,
    .ask_text = AskOtherForText,
    .keep_text = KeepOwnText,
    .beep = Beep,
    .next_event = NextEvent,
    .descriptors = nullptr,
    .wait = headless::Wait,
    .now = Now,
};

}  // namespace platform
