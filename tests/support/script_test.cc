// Scripts and traces: what is written comes, in its order and at its time, and reads the same.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/display/headless/headless.h"
#include "tests/support/script.h"
#include "tests/support/trace.h"

namespace support {
namespace {

XwWindow* Open(XwHandler handler = nullptr) {
  setenv("XW_DISPLAY", "headless", 1);
  setenv("HOME", "/", 1);
  platform::headless::UseSteppedClock(1000);
  XwSession("kit", "Kit", 7);
  XwWindow* w = XwCreate(0, 100, 100, 300, 200, handler);
  XwSetSizes(w, 50, 50, 0, 0, 0, 0);
  HookTrace(w, "main");
  XwShow(w, 1);
  XwSetFocus(w);
  Play({}, w);
  ClearTrace();
  return w;
}

TEST(Script, FaultsAreToldWithTheirLine) {
  const struct {
    const char *text, *error;
  } kCases[] = {
      {"jump 1 2", "line 1: not a step: \"jump 1 2\""},
      {"# first\nmove 1", "line 2: not a step: \"move 1\""},
      {"move 1 2 3", "line 1: not a step: \"move 1 2 3\""},
      {"move 1 2; down 1x", "line 1: not a step: \"down 1x\""},
      {"key Retrun", "line 1: not a step: \"key Retrun\""},
      {"key F14", "line 1: not a step: \"key F14\""},
      {"key", "line 1: not a step: \"key\""},
      {"modifiers hyper", "line 1: not a step: \"modifiers hyper\""},
  };
  for (const auto& c : kCases) {
    Script script;
    std::string error;
    EXPECT_FALSE(ParseScript(c.text, &script, &error)) << c.text;
    EXPECT_EQ(error, c.error);
  }
  EXPECT_EXIT(MakeScript("jump"), testing::ExitedWithCode(2), "script: line 1");
}

TEST(Script, CommentsAndBlanksCountForNothing) {
  const Script script = MakeScript("\n# all\nmove -5 6   # there\n\nclick 1 2; key #; key ;\n");
  ASSERT_EQ(script.size(), 4u);
  EXPECT_EQ(script[0].line, 3);
  EXPECT_EQ(script[0].a, -5);
  EXPECT_EQ(script[1].c, 1);
  EXPECT_EQ(script[2].bits, uint32_t('#'));
  EXPECT_EQ(script[3].bits, uint32_t(';'));
  EXPECT_EQ(script[3].line, 5);
}

TEST(Script, ComesToTheWindowInItsOrder) {
  XwWindow* w = Open();
  XwWindow* sub = XwCreate(w, 100, 50, 80, 60, nullptr);
  HookTrace(sub, "sub");
  XwShow(sub, 1);
  ASSERT_EQ(Play(MakeScript("move 20 30\n"
                            "move 21 30\n"
                            "down; up\n"
                            "click 110 70; move 110 71\n"
                            "key a\n"
                            "hold F4; release F4\n"
                            "modifiers shift control\n"
                            "modifiers\n"
                            "resize 320 240\n"
                            "close"),
                 w),
            0);
  EXPECT_EQ(Trace(),
            "sub 769 80x60\n"
            "main 770 item 0 at 21 30 state 0\n"
            "main 771 item 0 at 21 30 state 1\n"
            "main 776 item 0 at 21 30 state 0\n"
            "sub 770 item 0 at 10 20 state 0\n"
            "sub 771 item 0 at 10 20 state 1\n"
            "sub 776 item 0 at 10 20 state 0\n"
            "sub 770 item 0 at 10 21 state 0\n"
            "sub 97 item 0 state 0\n"
            "sub 800 value 97\n"
            "sub 259 item 0 state 0\n"
            "sub 800 value 259\n"
            "sub 777 state 60\n"
            "sub 777 state 0\n"
            "main 768 320x240\n"
            "main 769 320x240\n"
            "sub 769 80x60\n"
            "main 778 item 0\n");
}

TEST(Script, WaitsAreKeptOnTheSteppedClock) {
  XwWindow* w = Open();
  XwTimer(w, 5, 100);
  EXPECT_EQ(Play(MakeScript("wait 350\nkey a\nwait 100\nquit"), w), 0);
  XwTimer(w, 0, 0);
  EXPECT_EQ(Trace(),
            "main 779 value 5\nmain 779 value 5\nmain 779 value 5\n"
            "main 97 item 0 state 0\nmain 800 value 97\n"
            "main 779 value 5\nmain 796 item 0\n");
}

TEST(Script, EndsEarlyWithItsWindow) {
  Open();
  static XwWindow* second;
  second = XwCreate(0, 500, 100, 100, 100, [](int type) {
    if (type == XWE_PRESS) XwDestroy(second);
    return 0;
  });
  HookTrace(second, "second");
  XwShow(second, 1);
  EXPECT_EQ(Play(MakeScript("click 10 10\nkey a\nresize 50 50"), second), 0);
  EXPECT_EQ(Trace().find("second 97"), std::string::npos);
  EXPECT_NE(Trace().find("second 771"), std::string::npos);
}

TEST(Script, AWaitThatReturnsEndsThePlay) {
  XwWindow* w = Open([](int type) { return type == XWE_PRESS ? 5000 : 0; });
  EXPECT_EQ(Play(MakeScript("click 10 10"), w), 5000);
}

TEST(Trace, MotionsOfOneWindowMerge) {
  EXPECT_EQ(MergeMotions("a 770 item 1\na 770 item 2\nb 770 item 3\na 770 item 4\n"),
            "a 770 item 2\nb 770 item 3\na 770 item 4\n");
  EXPECT_EQ(MergeMotions("a 770 item 1\na 771 item 1\na 770 item 2\n"),
            "a 770 item 1\na 771 item 1\na 770 item 2\n");
  EXPECT_EQ(MergeMotions(""), "");
}

}  // namespace
}  // namespace support
