// The page of examples/02-drawing on both displays: the same picture to the pixel.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/display/headless/headless.h"
#include "platform/windows/window.h"
#include "tests/support/picture.h"
#include "tests/support/x_server.h"

extern "C" int ExamplePage(void);  // its main

namespace {

namespace headless = platform::headless;
using testkit::Picture;

std::string picture_path;

// Called when the program has drawn and waits.
bool SaveAndEnd() {
  headless::Picture p = headless::TakePicture(platform::WindowList().front());
  _exit(testkit::SavePng({p.width, p.height, p.pixels}, picture_path) ? 0 : 1);
}

pid_t Start(const char* display) {
  pid_t child = fork();
  if (child) return child;
  setenv("XW_DISPLAY", display, 1);
  if (std::string(display) == "headless") {
    headless::UseSteppedClock(1000);
    headless::SetIdleHandler(SaveAndEnd);
  }
  ExamplePage();
  _exit(1);
}

// Without the strip.
Picture Content(const Picture& p) {
  int strip = platform::GetMBarHeight();
  Picture out{p.width, p.height - strip, {}};
  out.pixels.assign(p.pixels.begin() + ptrdiff_t(strip) * p.width, p.pixels.end());
  return out;
}

Picture OnX() {
  Picture p;
  support::XServer server;
  if (!server.running()) return p;
  support::XUser user;
  pid_t child = Start("x11");
  xcb_window_t window = user.Find("Drawing");
  Picture last;
  // Until it stands still, and has been drawn.
  support::Eventually([&] {
    auto place = user.Where(window);
    support::Screenshot screen = user.Look();
    p = {place.width, place.height, {}};
    for (int y = 0; y < place.height; ++y)
      for (int x = 0; x < place.width; ++x)
        p.pixels.push_back(0xFF000000u | screen.at(place.x + x, place.y + y));
    bool still = p == last;
    last = p;
    usleep(100000);
    return still && p.height > 500 && p.at(p.width - 1, 100) == 0xFF808080u;
  });
  kill(child, SIGTERM);
  waitpid(child, nullptr, 0);
  return Content(p);
}

}  // namespace

TEST(Page, IsTheSameOnX) {
  char folder[] = "/tmp/xw-page-XXXXXX";
  ASSERT_NE(mkdtemp(folder), nullptr);
  picture_path = std::string(folder) + "/page.png";
  int status = 0;
  waitpid(Start("headless"), &status, 0);
  ASSERT_EQ(status, 0);
  Picture page;
  ASSERT_TRUE(testkit::LoadPng(picture_path, &page));
  unlink(picture_path.c_str());
  rmdir(folder);
  page = Content(page);
  EXPECT_EQ(page.width, 520);
  EXPECT_TRUE(testkit::SamePicture(page, OnX()));
}
