#include "tests/toolkit/stage.h"
#include "platform/menus/menu.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace stage {

std::vector<Seen> seen;
int result = 0;
void (*on_event)(int type) = nullptr;

namespace {

constexpr int kEnough = 9999;  // a type that no handler sees: it ends a run
XwEvent before_end;
std::map<XwWindow*, std::string> names;

void PostEnd() {
  before_end = Inp;
  XwEvent end = Inp;
  end.window = nullptr;
  end.type = kEnough;
  PostEvent(end);
}

// Windows may have ended after the copy was made.
void TakeBack() {
  Inp = before_end;
  if (!IsLive(Inp.window)) Inp.window = nullptr;
  if (!IsLive(Inp.focus)) Inp.focus = nullptr;
}

// True when one is open: it closes in the next turn.
bool CloseMenu() {
  if (!platform::MenusAreOpen()) return false;
  platform::RawEvent lost;
  lost.type = platform::RawEvent::kGrabLost;
  input::Inject(lost);
  return true;
}

bool Idle() {
  // Nobody is left who would close a menu.
  if (CloseMenu()) return true;
  PostEnd();
  return true;
}

int Wait(XwWindow* modal) {
  int type = XwWaitEvent(modal);
  if (type != kEnough) return type;
  TakeBack();
  return 0;
}

int Note(int type, int answer) {
  seen.push_back({Inp.window, type, Inp});
  if (on_event) on_event(type);
  return answer;
}

}  // namespace

void Open(uint8_t flags) {
  seen.clear();
  names.clear();
  result = 0;
  on_event = nullptr;
  setenv("XW_DISPLAY", "headless", 1);
  setenv("HOME", "/", 1);
  input::UseSteppedClock(1000);
  input::SetIdleHandler(Idle);
  XwSession("stage", "Stage", flags);
}

int Record(int type) {
  return Note(type, 0);
}

int Answer(int type) {
  return Note(type, result);
}

int RunLoop(XwWindow* modal) {
  return Wait(modal);
}

void RunFor(double seconds, XwWindow* modal) {
  static bool over;
  over = false;
  // Posted again and again, since a handler may poll and take the end away.
  platform::EventLoopTimerRef timer = platform::InstallEventLoopTimer(
      seconds, 0.001,
      [](platform::EventLoopTimerRef, void*) {
        over = true;
        CloseMenu();
        PostEnd();
      },
      nullptr);
  // Waits that return early are taken up again until the end has been received.
  bool ended = false;
  while (!ended) ended = XwWaitEvent(modal) == kEnough && over;
  TakeBack();
  platform::RemoveEventLoopTimer(timer);
}

void RunSteps(double period, std::vector<std::function<void()>> all) {
  static std::vector<std::function<void()>> steps;
  static size_t next;
  steps = std::move(all);
  next = 0;
  const auto timer = platform::InstallEventLoopTimer(
      period, period,
      [](platform::EventLoopTimerRef, void*) {
        if (next < steps.size()) steps[next++]();
      },
      nullptr);
  RunFor(double(steps.size() + 2) * period);
  platform::RemoveEventLoopTimer(timer);
  EXPECT_EQ(next, steps.size()) << "something hangs";
}

void Quiet() {
  input::SetIdleHandler(Idle);
}

void Settle() {
  RunLoop();
  seen.clear();
}

std::string Trace() {
  std::string out;
  for (const Seen& s : seen) {
    if (!out.empty()) out += ' ';
    auto it = names.find(s.window);
    out += (it == names.end() ? "?" : it->second) + " " + std::to_string(s.type);
  }
  return out;
}

std::string RunTrace() {
  RunLoop();
  return Trace();
}

void Name(XwWindow* w, const char* name) {
  names[w] = name;
}

XwWindow* Main(XwHandler handler) {
  XwWindow* w = XwCreate(0, 100, 100, 300, 200, handler);
  Name(w, "main");
  // A background that looks the same in an inactive window: no redraws when the focus moves.
  XwSetGround(w, nullptr, 0);
  XwShow(w, 1);
  Settle();
  return w;
}

XwWindow* OpenMain(XwHandler handler) {
  Open();
  return Main(handler);
}

XwWindow* Top(const char* name, int x, int y, int width, int height) {
  return Sub(nullptr, name, x, y, width, height);
}

XwWindow* Sub(XwWindow* parent, const char* name, int x, int y, int width, int height,
              XwHandler handler) {
  XwWindow* w = XwCreate(parent, x, y, width, height, handler);
  Name(w, name);
  XwShow(w, 1);
  return w;
}

platform::WindowRef Native(XwWindow* w) {
  return NativeWindow(w);
}

void MoveTo(int x, int y) {
  input::MovePointer(x, y);
  RunLoop();
}

void PressAt(int x, int y) {
  input::MovePointer(x, y);
  input::Press(1);
  RunLoop();
}

void LetGo() {
  input::Release(1);
  RunLoop();
}

}  // namespace stage
