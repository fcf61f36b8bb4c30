// Lines of a recording: what is written is read again; what is no line is refused.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/display/headless/headless.h"
#include "platform/events/timers.h"
#include "platform/input/record.h"
#include "platform/input/record_line.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"
#include "tests/support/seed.h"

namespace platform {
namespace {

TEST(RecordLine, ReadsWhatItWrites) {
  const char* const kLines[] = {
      "0.000000 focus w1",
      "0.350000 press w1 x=20 y=54.5 rx=50 ry=134 button=1 at=0.349",
      "0.350000+ motion w12 x=-3 y=7",
      "0.360000 leave w12 x=-3 y=900 rx=100 ry=1000",
      "1.500000 motion w1 x=1 y=2 tablet=1 tip=1 pressure=65535 tilt-x=-32768 tilt-y=32767",
      "2.000000 key-down w1 modifiers=4096 code=112 key=65293 base=65293 char=13",
      "2.100000 key-down w1 key=99 base=99 char=99 typed=63cc81",
      "2.250000 scroll w1 x=5 y=6 dx=-0.5 dy=40",
      "3.000000 configure w2 rx=40 ry=96 w=860 h=624",
      "4.000000 open /a b/\\\\with\\nline",
      "5.000000+ result server 51f0 quiet 0",
      "5.000000+ result folder",
      "5.500000 result folder 51f0 quiet",
      "6.000000 quit",
      "7.000000 text 1",
      "7.000000 text 12 :",
      "7.000000 text 2147483647 : a\\0b\\\\\\n:",
      "7.000000 text-lost clipboard",
      "7.500000 drag w12 x=40 y=50.5 rx=140 ry=150.5",
      "7.600000 dropped w12",
      "7.700000 drag-left w12",
      "7.000000 text-lost primary",
  };
  for (const char* text : kLines) {
    RecordLine line;
    ASSERT_TRUE(ParseRecordLine(text, &line)) << text;
    EXPECT_EQ(FormatRecordLine(line), text);
  }
  RecordLine line;
  ASSERT_TRUE(ParseRecordLine("4 open /a b/\\\\with\\nline", &line));
  EXPECT_EQ(line.path, "/a b/\\with\nline");
}

TEST(RecordLine, RefusesWhatIsNone) {
  const char* const kFaulty[] = {
      "",
      "1.0",
      "x press w1",
      "-1 press w1",
      "1.0 jump w1",
      "1.0 press",
      "1.0 press w0",
      "1.0 press 1",
      "1.0 press w1 x",
      "1.0 press w1 x=",
      "1.0 open",
      "1.0 result",
      "1+1 result a",
      "1.0 press w1 x=1y",
      "nan press w1",
      "1.0++ press w1",
      "1e99 quit",
      "1.0 press w-1",
      "1.0 press w1 z=1",
      "1.0 press w1 x=inf",
      "1.0 quit now",
      "1 key-down w1 typed=6",
      "1 key-down w1 typed=6g",
      "1 key-down w1 typed=61616161616161616161616161616161",
      "1+1 quit",
      "1+- result a b",
      "1++ result a b",
      "1 take a b",
      "1 text",
      "1 text 0",
      "1 text -1",
      "1 text 2147483648",
      "1 text 1:a",
      "1 text 1 a",
      "1 text-lost",
      "1 text-lost both",
  };
  for (const char* text : kFaulty) {
    RecordLine line;
    EXPECT_FALSE(ParseRecordLine(text, &line)) << text;
  }
}

TEST(RecordLine, TakesAnyBytes) {
  support::Dice dice(support::Seed(5));
  const std::string bits = "0123456789.+-= wxyhr\\nopentakequitpress\x80";
  for (int i = 0; i < 20000; ++i) {
    std::string text = i % 2 ? "1.0 press w1 " : "";
    for (int n = dice.Between(0, 40); n-- > 0;)
      text += bits[size_t(dice.Between(0, int(bits.size()) - 1))];
    RecordLine line, again;
    if (!ParseRecordLine(text, &line)) continue;
    ASSERT_TRUE(ParseRecordLine(FormatRecordLine(line), &again)) << text;
    ASSERT_EQ(FormatRecordLine(line), FormatRecordLine(again)) << text;
  }
}

TEST(Record, AFaultyFileIsToldAndNothingBegins) {
  const struct {
    const char* content;
    const char* told;
  } kRows[] = {{"", "is no recording"},
               {"xw-record 2\n", "is no recording"},
               {"xw-record 1\n0.1 press w1\n0.2 nothing\n", "line 3 is faulty"},
               {"xw-record 1\n0.2 press w1\n\n0.1 press w1\n", "line 4 is faulty"}};
  const std::string file = testing::TempDir() + "record-" + std::to_string(getpid());
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_REPLAY", file.c_str(), 1);
  for (const auto& row : kRows) {
    std::ofstream(file) << row.content;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(InitPlatform("record"));
    EXPECT_NE(testing::internal::GetCapturedStderr().find(row.told), std::string::npos);
  }
  remove(file.c_str());
  testing::internal::CaptureStderr();
  EXPECT_FALSE(InitPlatform("record"));
  EXPECT_NE(testing::internal::GetCapturedStderr().find("No such file"), std::string::npos);
  unsetenv("XW_REPLAY");
}

// On a real clock timers are due all the time; none fires among what was recorded together.
TEST(Record, TimersWaitForWhatIsPlayedTogether) {
  setenv("XW_DISPLAY", "headless", 1);
  ASSERT_TRUE(InitPlatform("record"));
  const std::string file = testing::TempDir() + "record-" + std::to_string(getpid());
  const WindowRef window = CreateNewWindow(kDocumentWindowClass, 0, {100, 100, 300, 300});
  setenv("XW_REPLAY", file.c_str(), 1);
  std::ofstream(file) << "xw-record 1\n0.02 press w1 x=9 y=9 button=1\n"
                         "0.02 release w1 x=9 y=9 button=1\n9 quit\n";
  ASSERT_TRUE(OpenRecord("record"));
  int fired = 0, at_press = -1;
  InstallEventLoopTimer(
      0, 1e-6, [](EventLoopTimerRef, void* count) { ++*static_cast<int*>(count); }, &fired);
  Event event;
  while (event.cls != kEventClassMouse || event.kind != kEventMouseUp) {
    ReceiveNextEvent(0.001, &event);
    if (event.cls == kEventClassMouse && event.kind == kEventMouseDown) at_press = fired;
    usleep(100);
  }
  EXPECT_GT(at_press, 0);
  EXPECT_EQ(fired, at_press);
  ReceiveNextEvent(0.001, &event);
  EXPECT_GT(fired, at_press);
  CloseRecord();
  DisposeWindow(window);
  remove(file.c_str());
}

}  // namespace
}  // namespace platform
