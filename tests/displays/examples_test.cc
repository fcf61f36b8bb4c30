// The examples as a user starts them: their picture on the headless display is the reference, and
// the real window on X, under a window manager, shows the same.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tests/displays/window_picture.h"
#include "tests/os/scratch.h"

namespace {

using testkit::Picture;

struct Example {
  const char* name;
  const char* title;
};
constexpr Example kExamples[] = {{"01-hello", "Hello"}, {"02-drawing", "Drawing"}};

// A running example, ended as a session ends it.
class Program {
 public:
  explicit Program(const std::string& name) {
    pid_ = fork();
    if (pid_ != 0) return;
    std::string path = std::string(EXAMPLES) + "/" + name;
    execl(path.c_str(), name.c_str(), nullptr);
    _exit(127);
  }
  ~Program() {
    if (pid_ > 0) End();
  }
  // The exit status; -1 when it did not exit by itself.
  int End() {
    int status = 0;
    kill(pid_, SIGTERM);
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_;
};

Picture OnHeadless(const Example& example, const std::string& folder, const char* scale) {
  std::string file = folder + "/" + example.name + ".png";
  unlink(file.c_str());
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_SNAPSHOT", file.c_str(), 1);
  setenv("XW_SCALE", scale, 1);
  Program program(example.name);
  Picture picture;
  support::Eventually([&] { return testkit::LoadPng(file, &picture); });
  EXPECT_EQ(program.End(), 0) << example.name;
  unsetenv("XW_SNAPSHOT");
  return picture;
}

// The window's picture once it equals `wanted`, or what it showed last.
Picture OnX(const Example& example, const Picture& wanted) {
  setenv("XW_DISPLAY", "x11", 1);
  setenv("XW_SCALE", "1", 1);
  support::XServer server({"-screen", "0", "1280x1024x24"});
  EXPECT_TRUE(server.running() && server.StartManager("openbox"));
  support::XUser user;
  Program program(example.name);
  xcb_window_t window = user.Find(example.title);
  Picture seen;
  if (!window) return seen;
  support::Eventually([&] {
    if (!user.Viewable(window)) return false;
    seen = WindowPicture(user, window);
    return seen == wanted;
  });
  EXPECT_EQ(program.End(), 0) << example.name;
  return seen;
}

class Examples : public testing::TestWithParam<Example> {
 protected:
  void SetUp() override { setenv("XW_FONTS", FONTS, 1); }
  const Scratch scratch_;
};

TEST_P(Examples, ShowTheSameOnBothDisplays) {
  Picture headless = OnHeadless(GetParam(), scratch_.path(), "1");
  EXPECT_TRUE(testkit::MatchesReference(headless, PICTURES, GetParam().name));
  EXPECT_TRUE(testkit::SamePicture(headless, OnX(GetParam(), headless)));
  std::string doubled = std::string(GetParam().name) + "-2x";
  EXPECT_TRUE(
      testkit::MatchesReference(OnHeadless(GetParam(), scratch_.path(), "2"), PICTURES, doubled));
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(kExamples),
                         [](const auto& i) { return "Example" + std::string(i.param.name, 2); });

}  // namespace
