// One script, two displays: the same events in the same order, and the same picture.
//
// The program under test runs in a process of its own and writes a line for each event that its
// handlers get. On X a second connection plays the user; headless, the input is injected.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/windows/windows.h"
#include "tests/support/script.h"
#include "tests/support/trace.h"
#include "tests/support/x_player.h"
#include "tests/support/x_server.h"
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

// `confirm_fd`: the end of the program waits for a byte there (X: the picture has been taken).
[[noreturn]] void Program(const char* display, int out_fd, int confirm_fd) {
  support::WriteTraceTo(out_fd);
  setenv("XW_DISPLAY", display, 1);
  bool stepped = !strcmp(display, "headless");
  if (stepped) headless::UseSteppedClock(1000);
  XwSession("script", "Script", 7);
  top = XwCreate(0, 200, 200, kWidth, kHeight, Handle);
  XwSetSizes(top, 100, 100, 0, 0, 0, 0);
  sub = XwCreate(top, 120, 80, 100, 60, Handle);
  support::HookTrace(top, "top");
  support::HookTrace(sub, "sub");
  XwShow(sub, 1);
  XwShow(top, 1);
  XwSetFocus(top);
  if (stepped) support::StartPlaying(support::MakeScript(kScript), top, {});
  while (XwWaitEvent(nullptr) != XWE_TIMER) {
  }
  if (stepped) {
    headless::Picture p = headless::TakePicture(static_cast<platform::WindowRef>(top->platform));
    int header[2] = {p.width, p.height};
    bool written = write(out_fd, "picture\n", 8) == 8 && write(out_fd, header, 8) == 8;
    size_t bytes = p.pixels.size() * 4, done = 0;
    while (written && done < bytes) {
      ssize_t n = write(out_fd, reinterpret_cast<char*>(p.pixels.data()) + done, bytes - done);
      if (n <= 0) break;
      done += size_t(n);
    }
  } else {
    char byte;
    [[maybe_unused]] ssize_t n = read(confirm_fd, &byte, 1);
  }
  XwDestroy(top);
  XwEndSession();
  platform::FinishPlatform();
  _exit(0);
}

// --- The observer

class Child {
 public:
  explicit Child(const char* display) {
    int out[2], confirm[2];
    if (pipe(out) != 0 || pipe(confirm) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      close(out[0]);
      close(confirm[1]);
      Program(display, out[1], confirm[0]);
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

// What was traced, up to the picture where there is one.
std::string Normalised(const std::string& text) {
  return support::MergeMotions(text.substr(0, text.find("picture\n")));
}

using support::Screenshot;

struct Outcome {
  std::string trace;
  Screenshot picture;  // the content
};

Outcome RunHeadless() {
  Child child("headless");
  while (child.Read(5000)) {
  }
  Outcome o;
  o.trace = Normalised(child.text);
  size_t at = child.text.find("picture\n");
  if (at == std::string::npos) return o;
  const char* bytes = child.text.data() + at + 8;
  int header[2];
  memcpy(header, bytes, sizeof header);
  int strip = platform::GetMBarHeight();
  if (child.text.size() - at - 16 < size_t(header[0]) * size_t(header[1]) * 4) return o;
  o.picture.width = header[0];
  o.picture.height = header[1] - strip;
  o.picture.pixels.resize(size_t(o.picture.width) * size_t(o.picture.height));
  memcpy(o.picture.pixels.data(), bytes + 8 + size_t(strip) * size_t(header[0]) * 4,
         o.picture.pixels.size() * 4);
  return o;
}

Outcome RunX() {
  Outcome o;
  support::XServer server;
  if (!server.running() || !server.StartManager("openbox")) return o;
  support::XUser user;
  Child child("x11");
  xcb_window_t window = user.Find("Script");
  if (!window) return o;
  if (!support::Eventually([&] { return user.Focus() == window; })) return o;
  child.Quiet();
  if (!support::PlayOnX(support::MakeScript(kScript), user, window, platform::GetMBarHeight(),
                        [&] { child.Quiet(); }))
    return o;
  o.trace = Normalised(child.text);
  auto place = user.Where(window);
  Screenshot screen = user.Look();
  int strip = platform::GetMBarHeight();
  o.picture.width = place.width;
  o.picture.height = place.height - strip;
  for (int y = 0; y < o.picture.height; ++y)
    for (int x = 0; x < o.picture.width; ++x)
      o.picture.pixels.push_back(screen.at(place.x + x, place.y + strip + y));
  child.Confirm();
  while (child.Read(5000)) {
  }
  return o;
}

TEST(SameScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  Outcome on_headless = RunHeadless();
  ASSERT_NE(on_headless.trace.find("top 778"), std::string::npos) << on_headless.trace;
  Outcome on_x = RunX();
  EXPECT_EQ(on_headless.trace, on_x.trace);
  ASSERT_EQ(on_headless.picture.width, on_x.picture.width);
  ASSERT_EQ(on_headless.picture.height, on_x.picture.height);
  ASSERT_FALSE(on_x.picture.pixels.empty());
  size_t different = 0;
  for (size_t i = 0; i < on_x.picture.pixels.size(); ++i)
    different += (on_x.picture.pixels[i] & 0xFFFFFF) != (on_headless.picture.pixels[i] & 0xFFFFFF);
  EXPECT_EQ(different, 0u);
}

}  // namespace
