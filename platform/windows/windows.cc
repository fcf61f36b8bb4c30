// Making and ending windows, showing them, and what their frames say.
#include "platform/windows/windows.h"

#include <algorithm>

#include "platform/access/access.h"
#include "platform/display/program_icon.h"
#include "platform/display/screens.h"
#include "platform/events/queue.h"
#include "platform/theme/metrics.h"
#include "platform/windows/state.h"

namespace platform {
namespace {

WindowsState* state = nullptr;

void Hints(WindowRef w) {
  CurrentDisplay()->update(w, kUpdateHints);
}

void ReleaseRecord(void* record) {
  delete static_cast<Window*>(record);
}

void Describe(const void* record, Description* out) {
  auto* w = static_cast<const Window*>(record);
  *out = {ObjectRole::kWindow, w->title, "", kIsEnabled, 0, w->content};
  if (w->visible) out->state |= kIsShown;
  if (w->active) out->state |= kIsActive;
}

constexpr EventKind kBoundsReported[] = {{kEventClassWindow, kEventWindowBoundsReported}};
constexpr EventKind kPointerMoved[] = {{kEventClassMouse, kEventMouseMoved}};

constexpr ObjectType kWindowType = {ObjectKind::kWindow, ReleaseRecord, Describe};

}  // namespace

WindowsState& Windows() {
  if (!state) state = new WindowsState;
  return *state;
}

void InitWindows() {
  Windows();
}

void FinishWindows() {
  while (!Windows().list.empty()) DisposeWindow(Windows().list.back());
  FinishProgramIcons();
  for (WindowGroup* g : Windows().groups) delete g;
  delete state;
  state = nullptr;
}

std::vector<WindowRef>& WindowList() {
  return Windows().list;
}
EventTargetRef GetWindowEventTarget(WindowRef w) {
  return IsValidWindow(w) ? &w->object.target : nullptr;
}
WindowRef MenuBarWindow() {
  return Windows().menu_bar;
}

int GetMBarHeight() {
  return kMenuBarHeight;
}

void DrawFrame(WindowRef w) {
  Event e(kEventClassWindow, kEventWindowDrawFrame, w);
  SendEventToEventTarget(&e, &w->object.target);
}

WindowRef EnterWindow(Window* w) {
  WindowsState& all = Windows();
  w->object.type = &kWindowType;
  w->object.record = w;
  w->number = ++all.made;
  EnterObject(&w->object);
  DeviceRect frame;
  w->native = CurrentDisplay()->create_window(w, &frame);
  if (!w->native) {
    EndObject(&w->object);
    return nullptr;
  }
  HandleFrame(w, frame);
  InstallEventHandler(&w->object.target, TakeReportedBounds, kBoundsReported, 1, nullptr);
  InstallEventHandler(&w->object.target, ChooseCursor, kPointerMoved, 1, nullptr);
  all.list.insert(all.list.begin(), w);
  return w;
}

WindowRef CreateNewWindow(int window_class, uint32_t attributes, const Rect& content) {
  if (!CurrentDisplay()) return nullptr;
  WindowsState& all = Windows();
  auto* w = new Window;
  w->window_class = window_class;
  w->attributes = attributes;
  w->content = content;
  w->surface.scale = MainScreen().scale;
  const bool carries_menu_bar = !all.menu_bar_given;
  if (carries_menu_bar) w->menu_bar_height = GetMBarHeight();
  w->transient_for = carries_menu_bar ? nullptr : all.menu_bar;
  if (!EnterWindow(w)) return nullptr;
  if (carries_menu_bar) {
    all.menu_bar = w;
    all.menu_bar_given = true;
  }
  Event created(kEventClassWindow, kEventWindowCreated, w);
  SendEventToEventTarget(&created, GetApplicationEventTarget());
  return w;
}

// Releases of buttons and keys take effect although their window is destroyed.
static bool IsRelease(const Event& e) {
  if (e.cls == kEventClassMouse) return e.kind == kEventMouseUp;
  return e.cls == kEventClassKeyboard &&
         (e.kind == kEventRawKeyUp || e.kind == kEventRawKeyModifiersChanged);
}

// Drops its queued events but releases, which have no window from now on.
static void PurgeWindow(const Window* w) {
  ForEachEvent(GetMainEventQueue(), [w](Event* e) {
    if (e->posted()) return;
    if (e->window == w && IsRelease(*e)) e->window = nullptr;
    if (e->cls == kEventClassMouse && e->mouse.under == w) e->mouse.under = nullptr;
  });
  RemoveEventsFromQueue(GetMainEventQueue(),
                        [w](const Event& e) { return !e.posted() && e.window == w; });
}

void DisposeWindow(WindowRef w) {
  if (!IsValidWindow(w)) return;
  WindowsState& all = Windows();
  Event ending(kEventClassWindow, kEventWindowEnding, w);
  SendEventToEventTarget(&ending, &w->object.target);
  HandleFocus(w, false);
  for (WindowRef p : PopUpsOf(w)) {
    HideWindow(p);
    p->parent = nullptr;
  }
  if (all.menu_bar == w) all.menu_bar = nullptr;
  if (all.activation.asked == w) all.activation.asked = nullptr;
  if (all.dragged_over == w) all.dragged_over = nullptr;
  for (WindowRef other : all.list)
    if (other->transient_for == w) other->transient_for = nullptr;
  std::erase(all.list, w);
  PurgeWindow(w);
  CurrentDisplay()->destroy_window(w);
  w->native = nullptr;
  w->surface.pixels = nullptr;
  *w->surface.generation = 0;
  NoticeChange(w->object.serial, Change::kEnded);
  EndObject(&w->object);
}

namespace {

void Map(WindowRef w) {
  if (!Windows().held) CurrentDisplay()->map_window(w, true);
}

// Windows docked to the one that carries the menu come and go with it.
void MapDocked(bool shown) {
  for (WindowRef w : WindowList()) {
    if (!(w->state & kStateDocked) || !w->visible) continue;
    if (shown)
      Map(w);
    else
      CurrentDisplay()->map_window(w, false);
  }
}

// Whether it waits for the window that it is docked to.
bool WaitsForFirst(const Window& w) {
  const Window* first = MenuBarWindow();
  return (w.state & kStateDocked) && first && !first->visible;
}

}  // namespace

void HoldWindows(bool held) {
  if (Windows().held == held) return;
  Windows().held = held;
  const std::vector<WindowRef> all = WindowList();
  // The front one last, as they would have come.
  for (size_t i = all.size(); i-- > 0;) {
    WindowRef w = all[i];
    if (w->visible && !WaitsForFirst(*w)) CurrentDisplay()->map_window(w, !held);
  }
}

void ShowWindow(WindowRef w) {
  if (!IsValidWindow(w) || w->visible) return;
  if (w->window_class == kPopUpWindowClass && !w->parent) return;
  w->visible = w->placing = true;
  if (w->window_class != kPopUpWindowClass) NoteFocusRequest(w);
  const bool erased = !w->surface.pixels;  // new pixels have the background
  ShowBackdrop(w);
  w->blank = !w->parent;
  InvalidateWindow(w, {0, 0, w->content.width(), w->content.height()}, !erased);
  std::erase(WindowList(), w);
  WindowList().insert(WindowList().begin(), w);
  if (!WaitsForFirst(*w)) Map(w);
  if (w == MenuBarWindow()) MapDocked(true);
  // The display makes its window beside this.
  ResizeSurface(w);
  if (!erased) DrawFrame(w);
  NoticeChange(w->object.serial, Change::kState);
}

void HideWindow(WindowRef w) {
  if (!IsValidWindow(w) || !w->visible) return;
  w->visible = false;
  NoticeChange(w->object.serial, Change::kState);
  w->needs_draw = false;
  w->lost.Clear();
  for (WindowRef p : PopUpsOf(w)) HideWindow(p);
  if (w == MenuBarWindow()) MapDocked(false);
  CurrentDisplay()->map_window(w, false);
}

bool IsWindowVisible(WindowRef w) {
  return IsValidWindow(w) && w->visible;
}

void SetWindowTitle(WindowRef w, const char* utf8) {
  if (!IsValidWindow(w)) return;
  w->title = utf8 ? utf8 : "";
  NoticeChange(w->object.serial, Change::kName);
  CurrentDisplay()->update(w, kUpdateTitle);
}

const char* GetWindowTitle(WindowRef w) {
  return IsValidWindow(w) ? w->title.c_str() : "";
}

uint32_t WindowGeneration(WindowRef w) {
  return IsValidWindow(w) ? *w->surface.generation : 0;
}

bool DescribeWindow(WindowRef w, uint64_t* serial, Description* out) {
  if (!IsValidWindow(w)) return false;
  *serial = w->object.serial;
  Describe(w, out);
  return true;
}

void SetWindowModified(WindowRef w, bool modified) {
  if (!IsValidWindow(w) || w->modified == modified) return;
  w->modified = modified;
  CurrentDisplay()->update(w, kUpdateTitle);
}

void SetProgramIcon(const uint32_t* argb, int size) {
  if (!KeepProgramIcon(argb, size)) return;
  for (WindowRef w : WindowList())
    if (!w->parent) CurrentDisplay()->update(w, kUpdateIcon);
}

void ChangeWindowAttributes(WindowRef w, uint32_t set, uint32_t clear) {
  if (!IsValidWindow(w)) return;
  uint32_t now = (w->attributes | set) & ~clear;
  if (now == w->attributes) return;
  w->attributes = now;
  if (now & kWindowRefusesFilesAttribute) HandleDrag(w, {{}, DragFields::kLeft});
  Hints(w);
}

void SetWindowSizeLimits(WindowRef w, const SizeLimits& limits) {
  if (!IsValidWindow(w)) return;
  w->limits = limits;
  w->widest = w->tallest = 0;
  w->has_limits = true;
  Hints(w);
}

// --- Groups

WindowGroupRef CreateWindowGroup(uint32_t attributes) {
  Windows().groups.push_back(new WindowGroup{attributes, 0, nullptr});
  return Windows().groups.back();
}

WindowGroupRef GetWindowGroupOfClass(int window_class) {
  for (WindowGroup* g : Windows().groups)
    if (g->window_class == window_class) return g;
  Windows().groups.push_back(new WindowGroup{0, window_class, nullptr});
  return Windows().groups.back();
}

void SetWindowGroupParent(WindowGroupRef group, WindowGroupRef parent) {
  if (group) group->parent = parent;
}

void SetWindowGroup(WindowRef w, WindowGroupRef group) {
  if (!IsValidWindow(w) || !group) return;
  w->group = group;
  uint32_t bits = w->state;
  if (w->window_class == kSimpleWindowClass && (group->attributes & kWindowGroupAttrMoveTogether))
    bits |= kStateDocked;
  if (group->window_class == kModalWindowClass) bits |= kStateModal;
  if (bits == w->state) return;
  w->state = bits;
  Hints(w);
}

void SetWindowActivationScope(WindowRef, int) {
  // Every window here takes the focus on its own: the independent scope is the only one.
}

}  // namespace platform
