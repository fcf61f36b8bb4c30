// Menus on both displays: one script with the bar, a pop-up, a menu key and a pointer that another
// program holds gives the same events and the same picture of the open pop-up.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <string>

#include "platform/display/headless/headless.h"
#include "platform/loop/start.h"
#include "platform/windows/internal.h"
#include "platform/windows/windows.h"
#include "tests/displays/window_picture.h"
#include "tests/os/scratch.h"
#include "tests/support/script.h"
#include "tests/support/trace.h"
#include "tests/support/x_player.h"
#include "toolkit/xw.h"

namespace {

namespace headless = platform::headless;
using testkit::Picture;

constexpr char kBarAndPopUp[] = R"(
move 75 -12
down              # held down from the title to an item
move 80 16
move 80 38
wait 300
up
key F10
key Right
key Down
hold Return
release Return
hold F5           # the key of an item
release F5
move 60 60
click 60 60 2
move 75 100
)";
constexpr char kChoose[] = "click 75 100 1\nmove 20 20\n";
constexpr char kWhileStolen[] = "hold p\nrelease p\n";
constexpr char kEnd[] = "move 30 30\nclose\n";

XwMenuItem deep[] = {{"Inner", 0, 301, nullptr}, {}};
XwMenuItem file[] = {{"Open", XWM_DOTS, 101, nullptr}, {"Print", 0, 102, nullptr}, {}};
XwMenuItem bar[] = {{"File", 0, 0, nullptr}, {}};
XwMenuItem popup[] = {{"Red", XWM_COLOUR, 0x5A35D9, nullptr}, {"", 0, 0, nullptr},
                      {"Marked", XWM_CHECKED, 201, nullptr},  {"More", 0, 0, nullptr},
                      {"Off", XWM_DISABLED, 203, nullptr},    {}};
XwWindow* top;

int Handle(int type) {
  if (type == XWE_PRESS + 1 || type == 'p') {
    if (type == 'p') XwPopupLocation(top, 60, 60);
    XwSendEvent(top, XWE_CONTROL, XwPopupMenu(popup), XwValue{0}, 0);
  }
  if (type == XWE_CLOSE) XwTimer(top, 9, 1);
  return type == XWE_TIMER ? type : 0;
}

// The window, and over it the menu that is open.
Picture HeadlessPicture() {
  auto* w = static_cast<platform::WindowRef>(top->platform);
  const headless::Picture under = headless::TakePicture(w);
  Picture p{under.width, under.height, under.pixels};
  for (platform::WindowRef menu : platform::WindowList()) {
    if (!menu->parent || !menu->visible) continue;
    const headless::Picture over = headless::TakePicture(menu);
    const int left = menu->content.left - w->content.left;
    const int first = menu->content.top - w->content.top + w->menu_bar_height;
    for (int y = 0; y < over.height; ++y)
      for (int x = 0; x < over.width; ++x)
        if (left + x < p.width && first + y < p.height)
          p.pixels[size_t((first + y) * p.width + left + x)] =
              over.pixels[size_t(y * over.width + x)];
  }
  return p;
}

void PlayHeadless(const std::string& png) {
  support::StartPlaying(support::MakeScript(kBarAndPopUp), top, [png] {
    testkit::SavePng(HeadlessPicture(), png);
    support::StartPlaying(support::MakeScript(kChoose), top, [] {
      headless::StealPointer(true);
      support::StartPlaying(support::MakeScript(kWhileStolen), top, [] {
        headless::StealPointer(false);
        support::StartPlaying(support::MakeScript(kEnd), top, {});
      });
    });
  });
}

[[noreturn]] void Program(const std::string& png, int out_fd) {
  support::WriteTraceTo(out_fd);
  setenv("XW_DISPLAY", png.empty() ? "x11" : "headless", 1);
  if (!png.empty()) headless::UseSteppedClock(1000);
  XwSession("script", "Script", 7);
  top = XwCreate(0, 200, 200, 300, 200, Handle);
  XwSetGround(top, nullptr, 1);
  bar[0].id = reinterpret_cast<XwValue>(file);
  popup[3].id = reinterpret_cast<XwValue>(deep);
  XwSetMenuItemKey(file, 102, XWE_F1 + 4, 0);
  XwSetMenu(top, bar);
  support::HookTrace(top, "top");
  XwShow(top, 1);
  XwSetFocus(top);
  if (!png.empty()) PlayHeadless(png);
  while (XwWaitEvent(nullptr) != XWE_TIMER) {
  }
  XwDestroy(top);
  XwEndSession();
  platform::FinishPlatform();
  _exit(0);
}

class Child {
 public:
  explicit Child(const std::string& png) {
    int out[2];
    if (pipe(out) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      close(out[0]);
      Program(png, out[1]);
    }
    close(out[1]);
    out_ = out[0];
  }
  ~Child() {
    close(out_);
    if (pid_ > 0) waitpid(pid_, nullptr, 0);
  }
  // Reads what comes within this time; false at the end of the output.
  bool Read(int ms) {
    pollfd p{out_, POLLIN, 0};
    if (poll(&p, 1, ms) <= 0) return true;
    char bytes[65536];
    const ssize_t n = read(out_, bytes, sizeof bytes);
    if (n <= 0) return false;
    text.append(bytes, size_t(n));
    return true;
  }
  void Quiet() {
    size_t before;
    do {
      before = text.size();
      for (int i = 0; i < 4 && before == text.size(); ++i) Read(30);
    } while (before != text.size());
  }

  std::string text;

 private:
  pid_t pid_ = -1;
  int out_ = -1;
};

// Without motions: on a screen the pointer comes back into the window when a menu over it goes.
std::string WithoutMotions(const std::string& trace) {
  std::istringstream lines(trace);
  std::string out, line;
  while (std::getline(lines, line))
    if (line.find(" 770 ") == std::string::npos) out += line + '\n';
  return out;
}

struct Outcome {
  std::string trace;
  Picture picture;
};

Outcome OnHeadless() {
  const Scratch scratch;
  const std::string png = scratch.At("picture.png");
  Child child(png);
  while (child.Read(5000)) {
  }
  Outcome o{WithoutMotions(child.text), {}};
  EXPECT_TRUE(testkit::LoadPng(png, &o.picture));
  return o;
}

bool Steal(support::XUser& user) {
  xcb_connection_t* c = user.connection();
  xcb_grab_pointer_reply_t* r = xcb_grab_pointer_reply(
      c,
      xcb_grab_pointer(c, 0, user.root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                       XCB_NONE, XCB_CURRENT_TIME),
      nullptr);
  const bool stolen = r && r->status == XCB_GRAB_STATUS_SUCCESS;
  free(r);
  return stolen;
}

Outcome OnX(const Picture& wanted) {
  support::XServer server;
  if (!server.running() || !server.StartManager("openbox")) return {};
  support::XUser user;
  Child child("");
  const xcb_window_t window = user.Find("Script");
  if (!window || !support::Eventually([&] { return user.Focus() == window; })) return {};
  child.Quiet();
  auto play = [&](const char* script) {
    EXPECT_TRUE(support::PlayOnX(support::MakeScript(script), user, window,
                                 platform::GetMBarHeight(), [&] { child.Quiet(); }));
  };
  Outcome o;
  play(kBarAndPopUp);
  support::Eventually([&] { return (o.picture = WindowPicture(user, window)) == wanted; });
  play(kChoose);
  EXPECT_TRUE(support::Eventually([&] { return Steal(user); })) << "the menu still has the pointer";
  play(kWhileStolen);
  xcb_ungrab_pointer(user.connection(), XCB_CURRENT_TIME);
  play(kEnd);
  while (child.Read(5000)) {
  }
  o.trace = WithoutMotions(child.text);
  return o;
}

TEST(MenuScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  const Outcome on_headless = OnHeadless();
  for (const char* line : {"top 793", "top 794 item 102", "top 783 item 201", "top 783 item 0"})
    EXPECT_NE(on_headless.trace.find(line), std::string::npos) << line << '\n' << on_headless.trace;
  const Outcome on_x = OnX(on_headless.picture);
  EXPECT_EQ(on_headless.trace, on_x.trace);
  EXPECT_TRUE(testkit::SamePicture(on_headless.picture, on_x.picture));
}

}  // namespace
