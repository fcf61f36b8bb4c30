// Results of background tasks: when they are taken, and that a replay takes them at the same place.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <thread>

#include "platform/input/record.h"
#include "platform/loop/start.h"
#include "tests/toolkit/stage.h"

namespace {

using namespace stage;

// What became of the results, and what happened beside them.
std::string log;
void Note(const char* name, int taken) {
  log += std::string(log.empty() ? "" : " ") + (taken ? "" : "-") + name;
}
void Take(void* name, int taken) {
  Note(static_cast<const char*>(name), taken);
}
void Post(const char* kind, const char* detail) {
  XwPost(kind, detail, Take, const_cast<char*>(detail));
}
int Log(int type) {
  if (type == XWE_EXPOSE) return 0;
  Note(std::to_string(type).c_str(), 1);
  return type == 1000 || type == XWE_QUIT ? type : 0;
}

TEST(Results, TheNewestOfEachKindIsTakenBehindTheEvents) {
  log.clear();
  Post("early", "before");
  Open();
  XwWindow* w = Main(Log);
  EXPECT_EQ(log, "before");
  log.clear();
  XwPost("none", nullptr, nullptr, nullptr);
  Post("", "kindless");
  Post("a", "a1");
  Post("b", "b1");
  Post("a", "a2");
  XwSendEvent(w, 1001, 0, 0, 0);
  RunLoop();
  EXPECT_EQ(log, "-kindless -a1 1001 b1 a2");
}

XwWindow* window;
void (*wait_for)();
int Waiting(int type) {
  if (type == 1002) {
    platform::InstallEventLoopTimer(
        0.01, 0,
        [](platform::EventLoopTimerRef, void*) {
          Post("a", "a1");
          Post("a", "a2");
        },
        nullptr);
    platform::InstallEventLoopTimer(
        0.02, 0, [](platform::EventLoopTimerRef, void*) { XwSendEvent(window, 1000, 0, 0, 0); },
        nullptr);
    wait_for();
    Note("over", 1);
  }
  if (type == 1003) return XwWaitEvent(nullptr);
  return type == 1000 ? 1000 : 0;
}
const XwMenuItem kItems[] = {{"One", 0, 1, nullptr}, {}};

TEST(Results, NoneIsTakenInAWaitForSomethingElse) {
  const struct {
    const char* name;
    void (*wait)();
  } rows[] = {
      {"modal", [] { XwWaitEvent(window); }},
      {"raw", [] { XwGrabEvent(); }},
      {"all windows, in a modal one",
       [] {
         XwSendEvent(window, 1003, 0, 0, 0);
         XwWaitEvent(window);
       }},
      {"menu", [] { XwPopupMenu(const_cast<XwMenuItem*>(kItems)); }},
      {"polling",
       [] {
         while (XwGetEvent(nullptr, 1) != 1000) input::Step(0.03);
       }},
  };
  Open();
  window = Main(Waiting);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    log.clear();
    wait_for = row.wait;
    XwSendEvent(window, 1002, 0, 0, 0);
    while (RunLoop() == 1000) {
    }
    EXPECT_EQ(log, "-a1 over a2");
  }
}

TEST(Results, AThreadWakesTheLoop) {
  Open();
  window = Main(Log);
  input::SetIdleHandler(nullptr);
  std::thread thread([] {
    usleep(20000);
    XwPost(
        "a", nullptr, [](void*, int taken) { XwSendEvent(window, 1000, taken, 0, 0); }, nullptr);
  });
  EXPECT_EQ(XwWaitEvent(nullptr), 1000);
  EXPECT_EQ(Inp.item, 1);
  thread.join();
}

TEST(Results, ThoseThatNobodyTakesEnd) {
  Open();
  log.clear();
  Post("a", "waits");
  XwEndSession();
  Post("a", "late");
  EXPECT_EQ(log, "-waits -late");
}

// Plays a recording back, while a thread posts; a comma is a pause. A replay ends with 796.
std::string Replay(const std::string& lines, const std::string& posts) {
  const std::string file = testing::TempDir() + "results-" + std::to_string(getpid());
  std::ofstream(file) << "xw-record 1\n" << lines << "9 preferences\n";
  setenv("XW_REPLAY", file.c_str(), 1);
  EXPECT_TRUE(platform::OpenRecord("results"));
  unsetenv("XW_REPLAY");
  log.clear();
  std::thread thread([&posts] {
    static const char* const kDetails[] = {"A", "B", "C", "X"};
    for (const char c : posts) {
      usleep(c == ',' ? 60000 : 0);
      for (const char* detail : kDetails)
        if (*detail == c) Post("s", detail);
    }
  });
  while (XwWaitEvent(nullptr) != XWE_QUIT) {
  }
  thread.join();
  RunFor(0.001);
  platform::CloseRecord();
  remove(file.c_str());
  return log;
}

TEST(Results, AReplayTakesThemWhereTheRecordingDid) {
  Open();
  window = Main(Log);
  const struct {
    std::string lines;
    const char *posts, *outcome;
  } rows[] = {
      // Whatever the time in which they come; what the recording did not take waits for the end.
      {"1 result s A\n2 preferences\n2 result s B\n", "ABX", "A 797 B 797 796 X"},
      {"1 result s A\n2 preferences\n2 result s B\n", ",A,B", "A 797 B 797 796"},
      // One that it replaced is gone, one that it did not replace is still there.
      {"1 result s A\n2 result s C\n", "ABC", "A -B C 797 796"},
      // One that passes by unseen is not waited for, what stands between still happens.
      {"1 result s A\n2 preferences\n3 result s B\n4 preferences\n5 result s C\n", ",A,C",
       "A 797 797 C 797 796"},
      {"1 result s A\n1.1 result s B\n1.2 result s A\n", "A", "A 797 796"},
      // Without a detail any will do.
      {"1 result s\n1 result s\n", ",X,A", "X A 797 796"},
  };
  for (const auto& row : rows) EXPECT_EQ(Replay(row.lines, row.posts), row.outcome) << row.lines;
}

// Time stands still while a stepped replay waits, and timers of the moment keep their place.
TEST(Results, TimersKeepTheirPlaceInAReplay) {
  Open();
  window = Main(Log);
  for (const bool after : {false, true}) {
    XwTimer(window, 7, 1000);
    EXPECT_EQ(
        Replay(std::string("1.000000") + (after ? "+" : "") + " result s A\n1.5 preferences\n",
               ",,A")
            .substr(0, 9),
        after ? "779 A 797" : "A 779 797");
    XwTimer(window, 7, 0);
  }
}

TEST(Results, ARecordingNamesThem) {
  Open();
  window = Main(Log);
  const std::string file = testing::TempDir() + "results-" + std::to_string(getpid());
  setenv("XW_RECORD", file.c_str(), 1);
  ASSERT_TRUE(platform::OpenRecord("results"));
  unsetenv("XW_RECORD");
  Post("two words", " a\nb ");
  XwPost("bare", nullptr, Take, const_cast<char*>("bare"));
  RunLoop();
  platform::CloseRecord();
  std::ifstream in(file);
  std::string line, text;
  while (std::getline(in, line))
    if (line.find("result") != std::string::npos) text += line.substr(line.find("result")) + "|";
  EXPECT_EQ(text, "result two_words a b |result bare|");
  remove(file.c_str());
}

}  // namespace
