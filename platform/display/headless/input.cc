// Injected input: what a pointer, a keyboard and a desktop would report.
#include <algorithm>

#include "platform/desktop/documents.h"
#include "platform/display/headless/state.h"
#include "platform/events/queue.h"
#include "platform/text/utf8.h"

namespace platform::headless {
namespace {

void Push(RawEvent raw) {
  if (!Headless().open) return;
  Headless().raw.push_back(raw);
  intake_hints.ReportWaits();
}

RawEvent Report(RawEvent::Type type, const Window* w) {
  RawEvent raw;
  raw.type = type;
  raw.window = w;
  raw.time = kHeadlessDisplay.now();
  raw.modifiers = Headless().modifiers;
  return raw;
}

// The pointer is kept in logical pixels of one scale; windows of that scale need no conversion.
bool HasPointer(const Window& w) {
  const State& s = Headless();
  if (w.surface.scale == s.scale) {
    Rect r = w.content;
    r.top -= w.menu_bar_height;
    return r.contains({s.x, s.y});
  }
  return DeviceBounds(w).contains({DeviceEdge(s.x, s.scale), DeviceEdge(s.y, s.scale)});
}

const Window* UnderPointer() {
  for (const Window* w : Headless().stack)
    if (HasPointer(*w)) return w;
  return nullptr;
}

// Null: no window gets the report.
const Window* PointerTarget() {
  const State& s = Headless();
  if (s.taken) return nullptr;
  if (!s.grab.held) return s.pressed_in ? s.pressed_in : UnderPointer();
  const Window* own = s.grab.mode != GrabMode::kWindow ? UnderPointer() : nullptr;
  return own ? own : s.grab.window;
}

RawEvent PointerReport(RawEvent::Type type, const Window* w = PointerTarget()) {
  State& s = Headless();
  RawEvent raw = Report(type, w);
  if (!w) return raw;
  if (type == RawEvent::kPress || type == RawEvent::kRelease) raw.under = UnderPointer();
  const int root_x = DeviceEdge(s.x, s.scale), root_y = DeviceEdge(s.y, s.scale);
  raw.root_x = float(root_x);
  raw.root_y = float(root_y);
  if (w->surface.scale == s.scale) {
    raw.x = float(DeviceEdge(s.x - w->content.left, s.scale));
    raw.y = float(DeviceEdge(s.y - w->content.top + w->menu_bar_height, s.scale));
  } else {
    const DeviceRect at = DeviceBounds(*w);
    raw.x = float(root_x - at.left);
    raw.y = float(root_y - at.top);
  }
  return raw;
}

// The release of a button whose window was destroyed has no window.
void PushRelease(RawEvent raw) {
  State& s = Headless();
  const uint32_t bit = 1u << raw.button;
  if (s.orphans & bit) raw.window = raw.under = nullptr;
  s.reported &= ~bit;
  s.orphans &= ~bit;
  Push(raw);
}

// A release that was not reported yet goes before the next report.
void PushPointer(const RawEvent& raw) {
  State& s = Headless();
  const bool release = raw.type == RawEvent::kRelease && raw.button >= 1 && raw.button <= 5;
  if (!raw.window && !(release && (s.orphans >> raw.button & 1))) return;
  for (int button = 1; button <= 5; ++button) {
    const bool itself = release && raw.button == button;
    if (!(s.reported >> button & 1) || (s.buttons >> button & 1) || itself) continue;
    RawEvent missed = raw;
    missed.type = RawEvent::kRelease;
    missed.button = uint8_t(button);
    missed.under = UnderPointer();
    PushRelease(missed);
  }
  if (release) return PushRelease(raw);
  if (raw.type == RawEvent::kPress && raw.button >= 1 && raw.button <= 5)
    s.reported |= 1u << raw.button;
  Push(raw);
}

// Reports to the window that the pointer has left it. Returns the window with the pointer.
const Window* LeaveWindow() {
  State& s = Headless();
  const Window* now = PointerTarget();
  if (s.entered && s.entered != now) PushPointer(PointerReport(RawEvent::kLeave, s.entered));
  return s.entered = now;
}

// An open menu gets the keys, else the focused window.
const Window* KeyTarget() {
  const State& s = Headless();
  return s.grab.held && s.grab.mode == GrabMode::kMenu ? s.grab.window : s.focus;
}

RawEvent KeyReport(RawEvent::Type type, uint32_t keysym, uint32_t unicode) {
  RawEvent raw = Report(type, KeyTarget());
  raw.keysym = raw.base_keysym = raw.keycode = keysym;
  raw.unicode = unicode ? unicode : keysym < 0x100 ? keysym : 0;
  return raw;
}

// The release of a key whose window was destroyed has no window.
void PushKeyUp(uint32_t keysym, const State::Key& key) {
  RawEvent raw = KeyReport(RawEvent::kKeyUp, keysym, key.unicode);
  if (key.orphan) raw.window = nullptr;
  Push(raw);
}

}  // namespace

static void MoveTo(int x, int y, double scale) {
  State& s = Headless();
  s.x = x;
  s.y = y;
  s.scale = scale;
  const Window* target = LeaveWindow();
  PushPointer(PointerReport(RawEvent::kMotion, target));
}

void MovePointer(int x, int y) {
  if (Headless().open) MoveTo(x, y, Headless().screens[0].scale);
}

void MovePointerIn(const Window* w, int x, int y) {
  if (IsValidWindow(w)) MoveTo(w->content.left + x, w->content.top + y, w->surface.scale);
}

void Press(int button) {
  State& s = Headless();
  RawEvent raw = PointerReport(RawEvent::kPress);
  raw.button = uint8_t(button);
  if (!s.buttons) s.pressed_in = raw.window;
  if (button >= 1 && button <= 31) s.buttons |= 1u << button;
  PushPointer(raw);
}

void Release(int button) {
  State& s = Headless();
  RawEvent raw = PointerReport(RawEvent::kRelease);
  raw.button = uint8_t(button);
  if (button >= 1 && button <= 31) s.buttons &= ~(1u << button);
  if (!s.buttons) s.pressed_in = nullptr;
  PushPointer(raw);
  LeaveWindow();
}

void Click(int x, int y, int button) {
  MovePointer(x, y);
  Press(button);
  Release(button);
}

void Scroll(float dx, float dy) {
  RawEvent raw = PointerReport(RawEvent::kScroll);
  raw.dx = dx;
  raw.dy = dy;
  PushPointer(raw);
}

void Pen(const TabletPoint& pen, RawEvent::Type type, int button) {
  RawEvent raw = PointerReport(type);
  raw.button = uint8_t(button);
  raw.tablet_type = kEventTabletPoint;
  raw.tablet = pen;
  if (raw.window) Push(raw);
}

void KeyDown(uint32_t keysym, uint32_t unicode, const char* typed) {
  State& s = Headless();
  if (!KeyTarget()) return;
  const bool held = s.held.count(keysym) != 0;
  s.held[keysym] = {.unicode = unicode, .window = KeyTarget()};
  RawEvent raw = KeyReport(held ? RawEvent::kKeyRepeat : RawEvent::kKeyDown, keysym, unicode);
  if (typed) CopyUtf8(typed, raw.typed, sizeof raw.typed);
  Push(raw);
}

void KeyUp(uint32_t keysym, uint32_t unicode) {
  State& s = Headless();
  auto key = s.held.find(keysym);
  if (key == s.held.end()) return;
  const bool orphan = key->second.orphan;
  if (!KeyTarget() && !orphan) {
    key->second.missed = true;
    return;
  }
  const State::Key up{.unicode = unicode, .orphan = orphan};
  s.held.erase(key);
  PushKeyUp(keysym, up);
}

void Modifiers(uint32_t modifiers) {
  State& s = Headless();
  s.modifiers = modifiers;
  if (!KeyTarget() && !s.focus_ended) return;
  s.reported_modifiers = modifiers;
  Push(Report(RawEvent::kModifiers, KeyTarget()));
}

void GiveFocus(const Window* w) {
  State& s = Headless();
  if (s.focus == w) return;
  if (s.focus) {
    for (const auto& [keysym, key] : s.held) PushKeyUp(keysym, key);
    s.held.clear();
    Push(Report(RawEvent::kFocusOut, s.focus));
  }
  s.focus = w;
  if (!w) return;
  s.focus_ended = false;
  Push(Report(RawEvent::kFocusIn, w));
  for (const auto& [keysym, key] : s.held)
    if (key.missed) PushKeyUp(keysym, key);
  std::erase_if(s.held, [](const auto& entry) { return entry.second.missed; });
  if (s.reported_modifiers != s.modifiers) Modifiers(s.modifiers);
}

void Configure(const Window* w, const Rect& content) {
  if (!IsValidWindow(w)) return;
  const double before = w->surface.scale;
  const Point corner{DeviceEdge(content.left, before),
                     DeviceEdge(content.top - w->menu_bar_height, before)};
  const int width = content.width(), height = content.height() + w->menu_bar_height;
  RawEvent raw = Report(RawEvent::kConfigure, w);
  raw.scale = Native(w)->scale = ScaleAt(*w, corner, width, height);
  raw.root_x = float(corner.x);
  raw.root_y = float(corner.y);
  raw.width = DeviceEdge(width, raw.scale);
  raw.height = DeviceEdge(height, raw.scale);
  Push(raw);
}

void Expose(const Window* w, const DeviceRect& pixels) {
  RawEvent raw = Report(RawEvent::kExpose, w);
  raw.x = float(pixels.left);
  raw.y = float(pixels.top);
  raw.width = pixels.width();
  raw.height = pixels.height();
  Push(raw);
}

void Raise(const Window* w) {
  State& s = Headless();
  const auto it = std::find(s.stack.begin(), s.stack.end(), w);
  if (it != s.stack.end()) std::rotate(s.stack.begin(), it, it + 1);
}

static void ReportLoss(const Window* w) {
  State& s = Headless();
  RawEvent raw = Report(RawEvent::kGrabLost, w);
  s.reported &= s.buttons;
  raw.held = s.reported;
  Push(raw);
}

void TryGrab() {
  State& s = Headless();
  if (!s.grab.window || s.grab.held || !Native(s.grab.window)->mapped) return;
  s.grab.held = !s.taken;
  if (s.taken) ReportLoss(s.grab.window);
}

static void LoseGrab() {
  State& s = Headless();
  if (!s.grab.held) return;
  s.grab.held = false;
  ReportLoss(s.grab.window);
}

void LosePointer(const Window* w) {
  State& s = Headless();
  const bool pressed = s.pressed_in == w;
  if (pressed) s.pressed_in = nullptr;
  if (s.grab.held && s.grab.window == w)
    LoseGrab();
  else if (pressed && !s.grab.held)
    ReportLoss(w);
}

void StealPointer(bool stolen) {
  State& s = Headless();
  s.taken = stolen;
  if (!stolen) return;
  if (s.grab.held)
    LoseGrab();
  else if (s.pressed_in)
    ReportLoss(s.pressed_in);
  s.pressed_in = nullptr;
  LeaveWindow();
}

void Frame(const Window* w, const DeviceRect& widths) {
  RawEvent raw = Report(RawEvent::kFrame, w);
  raw.frame = widths;
  Push(raw);
}

void Frames(const DeviceRect& widths) {
  Headless().frames = widths;
}

void SetState(const Window* w, uint32_t state) {
  RawEvent raw = Report(RawEvent::kState, w);
  raw.state = state;
  Push(raw);
}

void ChangeScreen(int width, int height, double scale) {
  ChangeScreens({{{0, 0, width, height}, scale}});
}

void ChangeScreens(const std::vector<Screen>& screens) {
  if (screens.empty()) return;
  Headless().screens = screens;
  Headless().scale = screens[0].scale;
  Push(Report(RawEvent::kScreens, nullptr));
}

void Close(const Window* w) {
  Push(Report(RawEvent::kClose, w));
}
void Focus(const Window* w) {
  GiveFocus(w);
}
void Lose(const Window* w) {
  Push(Report(RawEvent::kLost, w));
}

void DragFiles(const Window* w, int x, int y) {
  if (!IsValidWindow(w) || w->attributes & kWindowRefusesFilesAttribute) return;
  const double scale = w->surface.scale;
  RawEvent raw = Report(RawEvent::kDragOver, w);
  raw.x = float(DeviceEdge(x, scale));
  raw.y = float(DeviceEdge(y + w->menu_bar_height, scale));
  raw.root_x = raw.x + float(DeviceBounds(*w).left);
  raw.root_y = raw.y + float(DeviceBounds(*w).top);
  Push(raw);
}
void EndDragOfFiles(const Window* w, bool dropped) {
  if (!IsValidWindow(w)) return;
  Push(Report(dropped ? RawEvent::kDragDropped : RawEvent::kDragLeft, w));
}
void FailDrop(const Window* w) {
  Push(Report(RawEvent::kDropFailed, w));
}

void OpenFile(const char* path) {
  if (path) OpenFiles({path}, false);
}
void OpenFiles(const std::vector<std::string>& paths, bool asked) {
  if (paths.empty() || !Headless().open) return;
  Headless().paths.push_back(JoinPaths(paths));
  RawEvent raw = Report(RawEvent::kOpenFile, nullptr);
  raw.request = asked;
  Push(raw);
}

void Preferences() {
  Push(Report(RawEvent::kPreferences, nullptr));
}
void Quit() {
  Push(Report(RawEvent::kQuit, nullptr));
}
void Inject(const RawEvent& raw) {
  Push(raw);
}

}  // namespace platform::headless
