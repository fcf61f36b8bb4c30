#include "tests/displays/two_displays.h"

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

namespace displays {
namespace {

namespace headless = platform::headless;
using testkit::Picture;

// --- The program under test

// The window, and over it the menu that is open.
Picture HeadlessPicture(const XwWindow* top) {
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
        if (left + x < p.width && first + y < p.height && over.pixels[size_t(y * over.width + x)])
          p.pixels[size_t((first + y) * p.width + left + x)] =
              over.pixels[size_t(y * over.width + x)];
  }
  return p;
}

std::string PictureFile(const std::string& folder, size_t act) {
  return folder + "/" + std::to_string(act) + ".png";
}

void PlayHeadless(const Play& play, size_t act, XwWindow* top, const std::string& folder) {
  if (act == play.acts.size()) return;
  support::StartPlaying(support::MakeScript(play.acts[act].script), top, [&play, act, top, folder] {
    const Act::After after = play.acts[act].after;
    if (after == Act::kPicture) testkit::SavePng(HeadlessPicture(top), PictureFile(folder, act));
    if (after == Act::kSteal || after == Act::kGiveBack)
      headless::StealPointer(after == Act::kSteal);
    PlayHeadless(play, act + 1, top, folder);
  });
}

// Headless the pictures go to `folder`; "": on X.
[[noreturn]] void Program(const Play& play, const std::string& folder, int out_fd) {
  support::WriteTraceTo(out_fd);
  setenv("XW_DISPLAY", folder.empty() ? "x11" : "headless", 1);
  if (!folder.empty()) headless::UseSteppedClock(1000);
  XwSession("script", "Script", 7);
  XwWindow* top = play.make();
  if (!folder.empty()) PlayHeadless(play, 0, top, folder);
  while (XwWaitEvent(nullptr) != XWE_CLOSE) {
  }
  XwDestroy(top);
  XwEndSession();
  platform::FinishPlatform();
  _exit(0);
}

// --- The observer

class Child {
 public:
  Child(const Play& play, const std::string& folder) {
    int out[2];
    if (pipe(out) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      close(out[0]);
      Program(play, folder, out[1]);
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
  // Waits until nothing has come for a while.
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

struct Outcome {
  std::string trace;
  std::vector<Picture> pictures;  // one an act; empty where none is taken
};

std::string TraceOf(const Play& play, const std::string& text) {
  if (play.with_motions) return support::MergeMotions(text);
  std::istringstream lines(text);
  std::string out, line;
  while (std::getline(lines, line))
    if (line.find(" 770 ") == std::string::npos) out += line + '\n';
  return out;
}

Outcome OnHeadless(const Play& play) {
  const Scratch scratch;
  const std::string folder = scratch.At("");
  Child child(play, folder);
  while (child.Read(5000)) {
  }
  Outcome o{TraceOf(play, child.text), std::vector<Picture>(play.acts.size())};
  for (size_t i = 0; i < play.acts.size(); ++i) {
    const bool wanted = play.acts[i].after == Act::kPicture;
    EXPECT_EQ(testkit::LoadPng(PictureFile(folder, i), &o.pictures[i]), wanted);
  }
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

Outcome OnX(const Play& play, const std::vector<Picture>& wanted) {
  support::XServer server;
  if (!server.running() || !server.StartManager("openbox")) return {};
  support::XUser user;
  // A busy machine lets keys be held for long.
  const uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
  xcb_change_keyboard_control(user.connection(), XCB_KB_AUTO_REPEAT_MODE, &off);
  user.Sync();
  Child child(play, "");
  const xcb_window_t window = user.Find("Script");
  if (!window || !support::Eventually([&] { return user.Focus() == window; })) return {};
  child.Quiet();
  Outcome o{"", std::vector<Picture>(play.acts.size())};
  for (size_t i = 0; i < play.acts.size(); ++i) {
    EXPECT_TRUE(support::PlayOnX(support::MakeScript(play.acts[i].script), user, window,
                                 platform::GetMBarHeight(), [&] { child.Quiet(); }));
    switch (play.acts[i].after) {
      case Act::kNothing:
        break;
      case Act::kPicture:
        support::Eventually(
            [&] { return (o.pictures[i] = WindowPicture(user, window)) == wanted[i]; });
        break;
      case Act::kSteal:
        EXPECT_TRUE(support::Eventually([&] { return Steal(user); })) << "it is still grabbed";
        break;
      case Act::kGiveBack:
        xcb_ungrab_pointer(user.connection(), XCB_CURRENT_TIME);
        user.Sync();
        break;
    }
  }
  while (child.Read(5000)) {
  }
  o.trace = TraceOf(play, child.text);
  return o;
}

}  // namespace

void ExpectTheSame(const Play& play) {
  const Outcome on_headless = OnHeadless(play);
  for (const char* line : play.lines)
    EXPECT_NE(on_headless.trace.find(line), std::string::npos) << line << '\n' << on_headless.trace;
  const Outcome on_x = OnX(play, on_headless.pictures);
  EXPECT_EQ(on_headless.trace, on_x.trace);
  ASSERT_EQ(on_headless.pictures.size(), on_x.pictures.size()) << "it does not start";
  for (size_t i = 0; i < play.acts.size(); ++i)
    EXPECT_TRUE(testkit::SamePicture(on_headless.pictures[i], on_x.pictures[i])) << "act " << i;
}

}  // namespace displays
