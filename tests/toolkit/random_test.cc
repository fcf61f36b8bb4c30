// Random input and random calls, inside handlers and outside, with the whole state checked on the
// way. QUORVIK_SEED chooses the seed, QUORVIK_EVENTS the number of steps (a soak takes 10,000,000).
#include <gtest/gtest.h>
#include <cstdlib>
#include <set>

#include "platform/controls/controls.h"
#include "platform/display/window.h"
#include "platform/events/queue.h"
#include "platform/windows/internal.h"
#include "tests/support/random_input.h"
#include "tests/support/seed.h"
#include "tests/support/time_limit.h"
#include "tests/toolkit/stage.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/state.h"

namespace {

using namespace stage;

// The pointer goes beyond the screen's borders too.
support::RandomInput* user;
uint32_t Random(uint32_t below) {
  return user->Number(below);
}
int Between(int low, int high) {
  return user->Between(low, high);
}

constexpr int kMostWindows = 60;
std::vector<XwWindow*> windows;  // the model: all that live
int depth = 0;
bool quiet = false;  // handlers do nothing but look
// Serial numbers of what was shown and has not been drawn since.
std::set<uint64_t> undrawn;

XwWindow* Any() {
  return windows.empty() ? nullptr : windows[Random(uint32_t(windows.size()))];
}
platform::WindowRef AnyNative() {
  XwWindow* w = Any();
  return w ? NativeWindow(w) : nullptr;
}

void Act();

// The pointer's place in the window that hears of it is its place on the screen.
void CheckEvent(int type) {
  XwWindow* w = Inp.window;
  if (type == XWE_EXPOSE) undrawn.erase(w->serial);
  if (type < XWE_MOTION || type >= XWE_RELEASE) return;
  const XwWindow* top = TopLevel(w);
  EXPECT_EQ(Inp.px, Inp.root_x - top->x - (w == top ? 0 : w->origin_x)) << type;
  EXPECT_EQ(Inp.py, Inp.root_y - top->y - (w == top ? 0 : w->origin_y)) << type;
}

int Handler(int type) {
  CheckEvent(type);
  if (type == XWE_EXPOSE) {
    XwSet(Inp.window);
    XwBoxList(3, 0, 0, 0, 0);
    for (int i = Between(0, 12); i > 0; --i)
      XwBoxList(Between(0, 9), Between(-5, 100), Between(-5, 100), Between(0, 60), Between(0, 60));
    XwFillRect(0, 0, 20, 20);
    XwSet(nullptr);
  }
  if (quiet) return 0;
  ++depth;
  if (depth < 4 && Random(12) == 0) Act();
  --depth;
  return Random(200) == 0 ? Between(-3, 900) : 0;
}

void Scroll(float, float) {
  if (depth < 4 && Random(8) == 0) Act();
}

void Forget(XwWindow* w) {
  std::erase_if(windows, [w](XwWindow* other) { return other == w || IsSubWindow(w, other); });
}

// A top-level window that comes onto the screen is drawn before the program rests.
void Show(XwWindow* w, int show) {
  const bool top = w && IsTopLevel(w) && w->handler == Handler;
  if (top && show && !platform::IsWindowVisible(NativeWindow(w))) undrawn.insert(w->serial);
  if (top && !show) undrawn.erase(w->serial);
  XwShow(w, show);
}

// Of any kind; null where there can be none.
XwWindow* CreateControl(XwWindow* parent, int x, int y, int width, int height) {
  const uint32_t on = Random(8) ? XWC_ENABLED | XWC_VISIBLE : 0, style = on | Random(2) << 20;
  const int id = Between(0, 9), low = Between(-9, 9), high = Between(-9, 99);
  static const char* const texts[] = {"One", "", "Three", "Two", nullptr};
  switch (Random(9)) {
    case 6:
      return XwEditBox(parent, "text", id, x, y, width, height, style | Random(2) << 22);
    case 7:
      return XwListBox(parent, texts, id, x, y, width, height, style);
    case 8:
      return XwComboBox(parent, texts + Random(5), id, x, y, width, height, style, Between(-1, 3));
    case 0:
      return XwButton(parent, "Button", id, x, y, width, height, style | Random(2) << 23, 0);
    case 1:
      return XwCheckBox(parent, "Check", id, x, y, style, Between(0, 2));
    case 2:
      return XwColor(parent, "Hue", id, x, y, width, height, style, Between(0, 0xFFFFFF));
    case 3:
      return XwLabel(parent, "Label", id, x, y, width, height, style);
    case 4:
      return XwSlider(parent, id, x, y, width, height, style, low, high, Between(-9, 99));
    default:
      return XwScrollBar(parent, id, x, y, width, height, style, low, high, Between(0, 9),
                         Between(-1, 60), Between(-9, 99));
  }
}

void Create() {
  if (int(windows.size()) >= kMostWindows) return;
  XwHandler handler = Random(8) ? Handler : nullptr;
  int x = Between(-20, 900), y = Between(-20, 700), width = Between(0, 300),
      height = Between(0, 200);
  XwWindow* parent = Any();
  XwWindow* w;
  switch (Random(9)) {
    case 0:
      w = XwCreate(Between(-260, 0), x, y, width, height, handler);
      break;
    case 1:
      w = XwCreateDocked(parent, x, y, width, height, handler);
      break;
    case 2:
    case 3:
    case 4:
      w = CreateControl(parent, x / 4, y / 4, width / 2, height / 2);
      break;
    default:
      w = parent ? XwCreate(parent, x / 8, y / 8, width, height, handler) : nullptr;
  }
  if (w) windows.push_back(w);
  if (w && Random(8)) Show(w, 1);
}

void Destroy() {
  XwWindow* w = Any();
  // The main window lives long, large families longer than small ones.
  if (w == W_Start && Random(2000)) return;
  if (w && w->child_count > 2 && Random(8)) return;
  Forget(w);
  XwDestroy(w);
}

// One call of the program.
void Act() {
  XwWindow* w = Any();
  switch (Random(24)) {
    case 0:
    case 1:
    case 2:
      if (windows.size() < kMostWindows / 2) Create();
      return Create();
    case 3:
      return Create();
    case 4:
      return Destroy();
    case 5:
      return XwMove(w, Between(-50, 900), Between(-50, 700), Between(-5, 400), Between(-5, 300));
    case 6:
      return Show(w, int(Random(3)));
    case 7:
      return XwGrabPointer(w, Between(-1, 23));
    case 8:
    case 9:
      return XwUngrabPointer();
    case 10:
      return XwTimer(w, Between(-1, 8), Between(0, 60));
    case 11: {
      // Redraws and the pointer's events are those of the display: they are held against the model.
      const int type = Between(1, 900);
      return XwSendEvent(w, type >= XWE_EXPOSE && type <= XWE_RELEASE ? type + 200 : type,
                         Between(0, 5), int(Random(9)), 0);
    }
    case 12:
      DirectSendEvent(w, Between(1000, 1100), 0, 0);
      return;
    case 13:
      return XwSetFocus(w);
    case 14:
      return XwSetCursor(w, Between(-1, 22));
    case 15:
      XwPush(w);
      if (depth < 4 && Random(2)) {
        ++depth;
        Act();
        --depth;
      }
      return XwPop();
    case 16:
      return XwSetSizes(w, Between(0, 100), Between(0, 100), Between(0, 500), Between(0, 500),
                        Between(0, 20), Between(0, 20));
    case 17:
      return XwEnable(w, int(Random(2)));
    case 18:
      // Those two take an array.
      if (w && (w->kind == XWK_COMBO || w->kind == XWK_LIST)) return;
      return XwSetText(w, Random(2) ? "title" : "another \xA5 title");
    case 19:
      return XwSetScrollHandler(w, Random(2) ? Scroll : nullptr);
    case 20:
      XwGetEvent(Random(3) ? nullptr : w, int(Random(2)));
      return;
    case 21:
      Random(2) ? XwFocusControl(w) : XwSetValue(w, Between(-9, 99));
      return;
    case 22:
      return XwSetScrollRange(w, Between(-9, 9), Between(-9, 99), 3, Between(0, 50), Between(0, 9));
    default:
      if (Random(10) == 0) XwSetFullScreen();
      return XwCenter(w, Any());
  }
}

void CheckRecord(XwWindow* w, std::set<XwWindow*>* found) {
  ASSERT_TRUE(found->insert(w).second) << "in the tree twice";
  ASSERT_TRUE(IsLive(w));
  int subs = 0;
  for (int i = 0; i < w->child_count; ++i) {
    XwWindow* c = w->children[i];
    if (!c) {
      EXPECT_LE(w->free_slot, i) << "a free slot that would not be found";
      continue;
    }
    ASSERT_EQ(c->parent, w);
    EXPECT_EQ(c->slot, i);
    subs += IsSub(c);
    CheckRecord(c, found);
  }
  EXPECT_EQ(w->subwindows, subs);
  if (IsControl(w)) {
    const auto control = static_cast<platform::ControlRef>(w->platform);
    const bool takes = platform::IsControlActive(control) && platform::IsControlVisible(control);
    EXPECT_TRUE(XwGetFocus(w) != w || takes) << "keys for nobody: kind " << int(w->kind);
  }
  EXPECT_EQ((w->flags & XW_HAS_SUBWINDOWS) != 0, subs > 0);
  EXPECT_TRUE(platform::IsValidWindow(NativeWindow(w)));
  if (!IsTopLevel(w)) return;
  const Rect native = platform::GetWindowBounds(NativeWindow(w), platform::kWindowContentRgn);
  EXPECT_EQ((Rect{w->x, w->y, w->x + w->width, w->y + w->height}), native);
}

// All is let go and nothing is left to come: no key or button is down, no input waits, and what was
// shown has been drawn.
void Rest() {
  quiet = true;
  RunFor(0.1);
  support::RandomInput::LetGo();
  RunFor(0.1);
  platform::ForEachEvent(platform::GetMainEventQueue(), [](platform::Event* e) {
    EXPECT_TRUE(e->cls != platform::kEventClassMouse && e->cls != platform::kEventClassKeyboard);
  });
  for (int type = 1; type < 768; ++type) EXPECT_EQ(XwGetKeyState(type), 0) << type;
  for (XwWindow* w : windows)
    EXPECT_FALSE(undrawn.count(w->serial)) << "shown and not drawn: " << w->serial;
  quiet = false;
}

bool LiveOrNull(XwWindow* w) {
  return !w || IsLive(w);
}

void Check() {
  std::set<XwWindow*> tree;
  for (int i = 0; i < W_Root->child_count; ++i)
    if (W_Root->children[i]) CheckRecord(W_Root->children[i], &tree);
  EXPECT_EQ(tree, std::set<XwWindow*>(windows.begin(), windows.end()));
  size_t listed = 0;
  uint64_t serial = 0;
  for (XwWindow* w = W_Start; w; w = w->next) {
    if (w == W_Start && !IsLive(w)) continue;
    ++listed;
    ASSERT_TRUE(tree.count(w));
    EXPECT_GT(w->serial, serial) << "in the order of creation";
    serial = w->serial;
    EXPECT_EQ(w->next ? w->next->previous : W_End, w);
  }
  EXPECT_EQ(listed, tree.size());
  for (XwWindow* w : {Inp.window, Inp.focus, GrabWindow, XW, W_MenuBar}) EXPECT_TRUE(LiveOrNull(w));
  EXPECT_EQ(XStackCount, 0);
  EXPECT_EQ(XW, nullptr);
  EXPECT_TRUE(ActiveGrab || !GrabCursor);
  for (const XwTimerSlot& slot : Timers) {
    EXPECT_TRUE(LiveOrNull(slot.window));
    EXPECT_EQ(slot.value != 0, slot.timer != nullptr);
  }
  platform::ForEachUserEvent(platform::GetMainEventQueue(), kToolkitEventClass, [](void* p) {
    auto* e = static_cast<XwEvent*>(p);
    EXPECT_TRUE(LiveOrNull(e->window));
    EXPECT_TRUE(LiveOrNull(e->focus));
  });
  int focused = 0;
  for (platform::WindowRef w : platform::WindowList()) focused += w->focused;
  EXPECT_LE(focused, 1);
  EXPECT_EQ(input::Counts().windows, int(platform::WindowList().size()));
}

void Play(uint64_t seed, int64_t steps) {
  support::RandomInput numbers(seed, {-10, -10, 1000, 800}, 1);
  user = &numbers;
  Open();
  Create();
  static XwMenuItem menu[] = {
      {"Item", 0, 5, nullptr}, {"", 0, 0, nullptr}, {nullptr, 0, 0, nullptr}};
  static XwMenuItem bar[] = {{"Menu", 0, XwValue(menu), nullptr}, {nullptr, 0, 0, nullptr}};
  XwSetMenu(W_Start, bar);
  for (int64_t i = 0; i < steps; ++i) {
    Random(8) ? user->Act(AnyNative) : Act();
    if (Random(6) == 0) RunFor(Random(30) / 1000.0);
    for (XwWindow* w : {Inp.window, Inp.focus, GrabWindow})
      if (!LiveOrNull(w)) ADD_FAILURE() << "a window that has ended";
    if (i % 256 == 0) Rest();
    if (i % 256 == 0 || testing::Test::HasFailure()) {
      Check();
      if (testing::Test::HasFailure()) {
        ADD_FAILURE() << "at step " << i << " of seed " << seed;
        return;
      }
    }
  }
  // All buttons up, no grab: nothing holds the pointer any more.
  XwUngrabPointer();
  if (windows.empty()) Create();
  input::Focus(nullptr);
  for (int b = 1; b <= 5; ++b) input::Release(b);
  RunFor(0.01);
  while (!windows.empty()) {
    XwWindow* w = windows.back();
    Forget(w);
    XwDestroy(w);
  }
  Check();
  EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  EXPECT_EQ(input::Counts().windows, 0);
}

int64_t FromEnvironment(const char* name, int64_t otherwise) {
  const char* value = getenv(name);
  return value ? atoll(value) : otherwise;
}

TEST(Random, NoPointerDanglesAndEverythingBalances) {
  constexpr int64_t kQuick = 100000;
  const int64_t steps = FromEnvironment("QUORVIK_EVENTS", kQuick);
  // A soak takes its time.
  support::TimeLimit limit(steps > kQuick ? 0 : 60, "random events");
  Play(support::Seed(20260), steps);
}

}  // namespace
