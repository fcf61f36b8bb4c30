// One script, two displays: the same events in the same order, and the same picture.
//
// The program under test runs in a process of its own and writes a line for each event that its
// handlers get. On X a second connection plays the user; headless, a timer injects the input.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/windows/windows.h"
#include "tests/displays/window_picture.h"
#include "tests/support/trace.h"
#include "tests/support/x_server.h"
#include "toolkit/xw.h"

namespace {

namespace headless = platform::headless;

constexpr int kWidth = 300, kHeight = 200;

enum Verb { kMove, kDown, kUp, kKeyDown, kKeyUp, kResize, kClose };
// Positions are those of the window's content. The next step comes when the program has come to
// rest after the last one.
struct Step {
  Verb verb;
  int a, b;
};
constexpr int kReturn = 0xFF0D, kF4 = 0xFFC1;
constexpr Step kScript[] = {
    {kMove, 20, 20},   {kDown, 1, 0},          {kMove, 90, 60},      {kUp, 1, 0},
    {kMove, 150, 100},                                       // into the sub-window
    {kDown, 1, 0},     {kMove, 20, 150},       {kUp, 1, 0},  // out of it with the button down
    {kMove, 10, 150},  {kDown, 2, 0},          {kUp, 2, 0},          {kKeyDown, 'a', 0},
    {kKeyUp, 'a', 0},  {kKeyDown, kReturn, 0}, {kKeyUp, kReturn, 0}, {kKeyDown, kF4, 0},
    {kKeyUp, kF4, 0},  {kResize, 360, 240},    {kMove, 200, 220},    {kResize, 280, 180},
    {kMove, 30, 30},   {kDown, 1, 0},          {kUp, 1, 0},          {kClose, 0, 0},
};

// --- The program under test

XwWindow *top, *sub;

void Draw(XwWindow* w) {
  XwSet(w);
  if (w == sub) {
    XwBox(0, 0, w->width, w->height, 0xDDEEFF);
    XwSetColor(0x203040);
    XwDrawRect(0, 0, w->width, w->height);
    return;
  }
  XwDrawText(XWF_BOLD, 0x400, 0, 4, w->width, 20, "The same everywhere", 0x1D2022, -1);
  XwSetColor(0x3050C0);
  XwDrawLine(0, w->height - 1, w->width - 1, 0);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(10, 5, 5, 40, 40);
  XwBoxList(11, 30, 30, 80, 60);
  XwBoxList(4, 0, 0, 0, 0);
}

int Handle(int type) {
  if (type == XWE_EXPOSE) Draw(Inp.window);
  if (type == XWE_TIMER) return type;
  if (type == XWE_CLOSE) {
    XwSync();
    XwTimer(top, 9, 1);  // the picture is taken before the program goes
  }
  return 0;
}

void Inject(const Step& s) {
  const auto w = static_cast<platform::WindowRef>(top->platform);
  switch (s.verb) {
    case kMove:
      return headless::MovePointer(top->x + s.a, top->y + s.b);
    case kDown:
      return headless::Press(s.a);
    case kUp:
      return headless::Release(s.a);
    case kKeyDown:
      return headless::KeyDown(uint32_t(s.a));
    case kKeyUp:
      return headless::KeyUp(uint32_t(s.a));
    case kResize:
      return headless::Configure(w, {top->x, top->y, top->x + s.a, top->y + s.b});
    case kClose:
      return headless::Close(w);
  }
}

// The stepped clock moves only when the program waits, so a step comes when the last is done with.
void InjectNext(platform::EventLoopTimerRef timer, void*) {
  static const Step* next = kScript;
  Inject(*next++);
  if (next == std::end(kScript)) platform::RemoveEventLoopTimer(timer);
}

// `confirm_fd`: the end of the program waits for a byte there (X: the picture has been taken).
// Headless the picture goes to `png`.
[[noreturn]] void Program(const std::string& png, int out_fd, int confirm_fd) {
  support::WriteTraceTo(out_fd);
  setenv("XW_DISPLAY", png.empty() ? "x11" : "headless", 1);
  if (!png.empty()) headless::UseSteppedClock(1000);
  XwSession("script", "Script", 7);
  top = XwCreate(0, 200, 200, kWidth, kHeight, Handle);
  XwSetSizes(top, 100, 100, 0, 0, 0, 0);
  sub = XwCreate(top, 120, 80, 100, 60, Handle);
  support::HookTrace(top, "top");
  support::HookTrace(sub, "sub");
  XwShow(sub, 1);
  XwShow(top, 1);
  XwSetFocus(top);
  if (!png.empty()) platform::InstallEventLoopTimer(0.001, 0.001, InjectNext, nullptr);
  while (XwWaitEvent(nullptr) != XWE_TIMER) {
  }
  char byte;
  if (png.empty()) {
    [[maybe_unused]] ssize_t n = read(confirm_fd, &byte, 1);
  } else {
    headless::WritePng(headless::TakePicture(static_cast<platform::WindowRef>(top->platform)), png);
  }
  XwDestroy(top);
  XwEndSession();
  platform::FinishPlatform();
  _exit(0);
}

// --- The observer

class Child {
 public:
  explicit Child(const std::string& png) {
    int out[2], confirm[2];
    if (pipe(out) != 0 || pipe(confirm) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      close(out[0]);
      close(confirm[1]);
      Program(png, out[1], confirm[0]);
    }
    close(out[1]);
    close(confirm[0]);
    out_ = out[0];
    confirm_ = confirm[1];
  }
  ~Child() {
    close(out_);
    close(confirm_);
    if (pid_ > 0) waitpid(pid_, nullptr, 0);
  }
  // Reads what has come; false at the end of the output.
  bool Read(int ms) {
    pollfd p{out_, POLLIN, 0};
    if (poll(&p, 1, ms) <= 0) return true;
    char bytes[65536];
    ssize_t n = read(out_, bytes, sizeof bytes);
    if (n <= 0) return false;
    text.append(bytes, size_t(n));
    return true;
  }
  // Waits until nothing has come for a while.
  void Quiet() {
    size_t before;
    do {
      before = text.size();
      for (int i = 0; i < 4 && before == text.size(); ++i) Read(30);
    } while (before != text.size());
  }
  void Confirm() { ASSERT_EQ(write(confirm_, "x", 1), 1); }

  std::string text;

 private:
  pid_t pid_ = -1;
  int out_ = -1, confirm_ = -1;
};

struct Outcome {
  std::string trace;
  testkit::Picture picture;
};

Outcome RunHeadless(const std::string& png) {
  Child child(png);
  while (child.Read(5000)) {
  }
  Outcome o{support::MergeMotions(child.text), {}};
  EXPECT_TRUE(testkit::LoadPng(png, &o.picture));
  return o;
}

void Play(const Step& s, support::XUser& user, xcb_window_t window) {
  const support::XUser::Geometry place = user.Where(window);
  const int strip = platform::GetMBarHeight();
  switch (s.verb) {
    case kMove:
      return user.Move(place.x + s.a, place.y + strip + s.b);
    case kDown:
    case kUp:
      return user.Button(s.a == 2 ? 3 : s.a, s.verb == kDown);
    case kKeyDown:
    case kKeyUp:
      return user.Key(uint32_t(s.a), s.verb == kKeyDown);
    case kResize: {
      const uint32_t size[] = {uint32_t(s.a), uint32_t(s.b + strip)};
      xcb_configure_window(user.connection(), window,
                           XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
      return user.Sync();
    }
    case kClose:
      return user.Ask(window, "_NET_CLOSE_WINDOW", {0, 0, 0, 0, 0});
  }
}

Outcome RunX() {
  support::XServer server;
  if (!server.running() || !server.StartManager("openbox")) return {};
  support::XUser user;
  Child child("");
  xcb_window_t window = user.Find("Script");
  if (!window || !support::Eventually([&] { return user.Focus() == window; })) return {};
  child.Quiet();
  for (const Step& step : kScript) {
    Play(step, user, window);
    child.Quiet();
  }
  Outcome o{support::MergeMotions(child.text), WindowPicture(user, window)};
  child.Confirm();
  while (child.Read(5000)) {
  }
  return o;
}

TEST(SameScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  const std::string png = testing::TempDir() + "script-" + std::to_string(getpid()) + ".png";
  Outcome on_headless = RunHeadless(png);
  remove(png.c_str());
  ASSERT_NE(on_headless.trace.find("top 778"), std::string::npos) << on_headless.trace;
  Outcome on_x = RunX();
  EXPECT_EQ(on_headless.trace, on_x.trace);
  EXPECT_TRUE(testkit::SamePicture(on_headless.picture, on_x.picture));
}

}  // namespace
