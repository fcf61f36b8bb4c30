// One script, two displays: the same events in the same order, and the same picture.
//
// The program under test runs in a process of its own and writes a line for each event that its
// handlers get. On X a second connection plays the user; headless, the input is injected.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"
#include "tests/displays/window_picture.h"
#include "tests/os/scratch.h"
#include "tests/support/script.h"
#include "tests/support/trace.h"
#include "tests/support/x_player.h"
#include "toolkit/xw.h"

namespace {

namespace headless = platform::headless;

constexpr int kWidth = 300, kHeight = 200;

constexpr char kScript[] = R"(
move 20 20
down
move 90 60
up
move 150 100       # into the sub-window
down
move 20 150        # out of it with the button down
up
move 10 150
down 2
up 2
key a
key Return
hold F4
release F4
hold q             # let go of when the focus goes, and not once more when the key comes up
unfocus
release q
focus
key q
move 20 172        # the slider: by its knob, beside it, with keys and the wheel
down
move 50 190
move 40 172
up
click 90 172 1
key Tab
key Right
key Page_Up
key End
scroll 0 48
move 280 20        # the bar: by its thumb, beside it, with the wheel
down
move 282 40
up
click 280 150 1
scroll 0 -48
move 60 120        # the only bar that stands
scroll 0 48
resize 360 240
move 200 220
resize 280 180
move 30 30
click 40 50
close
)";

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

// Headless the picture goes to `png`; on X, where there is none, the end of the program waits for a
// byte from `confirm_fd`: the picture has been taken.
[[noreturn]] void Program(const std::string& png, int out_fd, int confirm_fd) {
  support::WriteTraceTo(out_fd);
  setenv("XW_DISPLAY", png.empty() ? "x11" : "headless", 1);
  if (!png.empty()) headless::UseSteppedClock(1000);
  XwSession("script", "Script", 7);
  top = XwCreate(0, 200, 200, kWidth, kHeight, Handle);
  XwSetSizes(top, 100, 100, 0, 0, 0, 0);
  sub = XwCreate(top, 120, 80, 100, 60, Handle);
  XwSlider(top, 5, 10, 160, 118, 20, XWC_ENABLED | XWC_VISIBLE, 0, 100, 0);
  XwScrollBar(top, 6, 270, 10, 15, 180, XWC_ENABLED | XWC_VISIBLE, 0, 999, 7, 100, 0);
  support::HookTrace(top, "top");
  support::HookTrace(sub, "sub");
  XwShow(sub, 1);
  XwShow(top, 1);
  XwSetFocus(top);
  if (!png.empty()) support::StartPlaying(support::MakeScript(kScript), top, {});
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

Outcome RunHeadless() {
  const Scratch scratch;
  const std::string png = scratch.At("picture.png");
  Child child(png);
  while (child.Read(5000)) {
  }
  Outcome o{support::MergeMotions(child.text), {}};
  EXPECT_TRUE(testkit::LoadPng(png, &o.picture));
  return o;
}

Outcome RunX() {
  support::XServer server;
  if (!server.running() || !server.StartManager("openbox")) return {};
  support::XUser user;
  Child child("");
  xcb_window_t window = user.Find("Script");
  if (!window || !support::Eventually([&] { return user.Focus() == window; })) return {};
  child.Quiet();
  if (!support::PlayOnX(support::MakeScript(kScript), user, window, platform::GetMBarHeight(),
                        [&] { child.Quiet(); }))
    return {};
  Outcome o{support::MergeMotions(child.text), WindowPicture(user, window)};
  child.Confirm();
  while (child.Read(5000)) {
  }
  return o;
}

TEST(SameScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  Outcome on_headless = RunHeadless();
  for (const char* event : {"top 778", "top 791", "top 792"})
    ASSERT_NE(on_headless.trace.find(event), std::string::npos) << on_headless.trace;
  Outcome on_x = RunX();
  EXPECT_EQ(on_headless.trace, on_x.trace);
  EXPECT_TRUE(testkit::SamePicture(on_headless.picture, on_x.picture));
}

}  // namespace
