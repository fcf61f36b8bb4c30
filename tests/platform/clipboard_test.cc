// Texts that are offered and asked for, with another program that the headless display plays.
#include "platform/clipboard/clipboard.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/events/targets.h"
#include "platform/events/timers.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"
#include "toolkit/xw.h"

namespace platform {
namespace {

constexpr Selection kBoth[] = {Selection::kClipboard, Selection::kPrimary};

class Clipboard : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("XW_DISPLAY", "headless", 1);
    headless::UseSteppedClock(1000);
    ASSERT_TRUE(InitPlatform("clipboard"));
    Turn();
  }
  void TearDown() override { FinishPlatform(); }
  // All that waits, dispatched; `seconds` pass before.
  void Turn(double seconds = 0) {
    headless::Step(seconds);
    Event e;
    while (ReceiveNextEvent(kEventDurationNoWait, &e))
      SendEventToEventTarget(&e, GetEventDispatcherTarget());
  }
  // The answers, in their order: a text, or "(none)".
  int Ask(Selection which, int ms = 100) {
    return AskText(
        which, ms,
        [](void* data, const std::string* text) {
          static_cast<Clipboard*>(data)->answers.push_back(text ? *text : "(none)");
        },
        this);
  }
  std::string Answers() {
    std::string all;
    for (const std::string& a : std::exchange(answers, {})) all += "[" + a + "]";
    return all;
  }
  std::vector<std::string> answers;
};

TEST_F(Clipboard, WhatIsOfferedIsThereUntilAnotherProgramOffers) {
  for (Selection which : kBoth) {
    const Selection other = kBoth[which == Selection::kClipboard];
    Ask(which);
    Turn();
    ASSERT_TRUE(OfferText(which, "gr\xC3\xBC\xC3\x9F"));
    EXPECT_EQ(*headless::AskForText(which), "gr\xC3\xBC\xC3\x9F");
    EXPECT_FALSE(OfferedText(other));
    Ask(which);
    EXPECT_EQ(Answers(), "[(none)]");  // the other one not before the dispatch
    Turn();
    EXPECT_EQ(Answers(), "[gr\xC3\xBC\xC3\x9F]");
    headless::OfferText(which, "theirs");
    Turn();
    EXPECT_FALSE(OfferedText(which));
    GiveUp(which);  // takes nothing from the other program
    Ask(which);
    Turn();
    EXPECT_EQ(Answers(), "[theirs]");
    // Lost and offered again before the loss was heard of.
    ASSERT_TRUE(OfferText(which, "one"));
    headless::OfferText(which, "theirs");
    ASSERT_TRUE(OfferText(which, "two"));
    Turn();
    Ask(which);
    Turn();
    GiveUp(which);
    EXPECT_FALSE(headless::AskForText(which));
    EXPECT_EQ(Answers(), "[two]");
  }
}

TEST_F(Clipboard, ARefusedOfferChangesNothing) {
  ASSERT_TRUE(OfferText(Selection::kClipboard, "kept"));
  headless::KeepSelections(true);
  EXPECT_FALSE(OfferText(Selection::kClipboard, "refused"));
  headless::KeepSelections(false);
  EXPECT_FALSE(OfferText(Selection::kClipboard, std::string(kMostText + 1, 'x')));
  EXPECT_EQ(*OfferedText(Selection::kClipboard), "kept");
  EXPECT_EQ(*headless::AskForText(Selection::kClipboard), "kept");
}

TEST_F(Clipboard, TextsAreMadeValid) {
  const struct {
    std::string bytes, text;
  } rows[] = {
      {"", ""},
      {"a\r\nb\tc", "a\r\nb\tc"},
      {std::string("end\0\0", 5), "end"},
      {std::string("a\0b\xC3\xA4", 5), "a\uFFFDb\u00E4"},
      {"\xFF\xC3\xA4\xC3", "\uFFFD\u00E4\uFFFD"},
      {"\xEF\xBF\xBD \xF0\x9F\x98\x80", "\uFFFD \U0001F600"},
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
  };
  for (const auto& row : rows) {
    headless::OfferText(Selection::kClipboard, row.bytes);
    Ask(Selection::kClipboard);
    Turn();
    EXPECT_EQ(Answers(), "[" + row.text + "]");
    ASSERT_TRUE(OfferText(Selection::kPrimary, row.bytes));
    EXPECT_EQ(*headless::AskForText(Selection::kPrimary), row.text);
  }
  // It is too long only once it is valid.
  headless::OfferText(Selection::kClipboard, std::string(kMostText - 1, 'a') + '\xFF');
  Ask(Selection::kClipboard);
  Turn();
  EXPECT_EQ(Answers(), "[(none)]");
}

TEST_F(Clipboard, AnAnswerComesOnceAndInTime) {
  const std::string text = "late";
  headless::OfferTextLater(Selection::kClipboard);
  Ask(Selection::kClipboard, 0);
  Turn();
  EXPECT_EQ(Answers(), "[(none)]");
  EXPECT_EQ(headless::WaitingTextRequests(), 0);
  const int forgotten = Ask(Selection::kClipboard, 100), third = Ask(Selection::kClipboard, 300);
  Ask(Selection::kClipboard, 200);
  EXPECT_EQ(headless::WaitingTextRequests(), 3);
  EXPECT_NE(forgotten, third);
  ForgetAsk(forgotten);
  ForgetAsk(forgotten);
  ForgetAsk(0);
  Turn(0.15);
  EXPECT_EQ(Answers(), "");
  Turn(0.1);
  EXPECT_EQ(Answers(), "[(none)]");
  EXPECT_EQ(headless::WaitingTextRequests(), 1);
  headless::AnswerTextRequests(&text);
  Turn(1);
  EXPECT_EQ(Answers(), "[late]");
  // Answered, and forgotten before it is dispatched.
  const int own = Ask(Selection::kClipboard);
  headless::AnswerTextRequests(&text);
  ForgetAsk(own);
  ASSERT_TRUE(OfferText(Selection::kPrimary, "mine"));
  ForgetAsk(Ask(Selection::kPrimary));
  Turn(1);
  EXPECT_EQ(Answers(), "");
  // A callback may ask again.
  static int left;
  left = 3;
  struct Again {
    static void Run(void*, const std::string*) {
      if (--left > 0) AskText(Selection::kPrimary, 10, Run, nullptr);
    }
  };
  AskText(Selection::kPrimary, 10, Again::Run, nullptr);
  Turn();
  EXPECT_EQ(left, 0);
}

TEST_F(Clipboard, TheTextOutlivesTheProgram) {
  headless::OfferText(Selection::kPrimary, "theirs");
  ASSERT_TRUE(OfferText(Selection::kClipboard, "mine"));
  Ask(Selection::kClipboard);
  headless::OfferTextLater(Selection::kPrimary);
  Ask(Selection::kPrimary);
  FinishPlatform();
  EXPECT_EQ(*headless::KeptText(), "mine");
  EXPECT_FALSE(OfferText(Selection::kClipboard, "nowhere"));
  ASSERT_TRUE(InitPlatform("clipboard"));
  EXPECT_FALSE(OfferedText(Selection::kClipboard));
  Turn(1);
  EXPECT_EQ(Answers(), "");
}

// What came from another program comes again in a replay, where nobody has it.
TEST_F(Clipboard, AReplayPastesWhatWasPasted) {
  FinishPlatform();
  const std::string file = testing::TempDir() + "clipboard-" + std::to_string(getpid());
  for (const char* variable : {"XW_RECORD", "XW_REPLAY"}) {
    SCOPED_TRACE(variable);
    const bool recording = !strcmp(variable, "XW_RECORD");
    setenv(variable, file.c_str(), 1);
    ASSERT_TRUE(InitPlatform("clipboard"));
    ASSERT_TRUE(OfferText(Selection::kPrimary, "mine"));
    Turn(0.1);
    if (recording) headless::OfferText(Selection::kPrimary, std::string("th\0eirs\n\\", 9));
    Turn();
    Ask(Selection::kPrimary);
    Ask(Selection::kClipboard);
    Turn();
    EXPECT_EQ(Answers(), "[th\uFFFDeirs\n\\][(none)]");
    FinishPlatform();
    unsetenv(variable);
    // At its end a replay would end the program.
    std::ofstream(file, std::ios::app) << "9 preferences\n";
  }
  remove(file.c_str());
  ASSERT_TRUE(InitPlatform("clipboard"));
}

// --- What programs call.

struct Block {
  explicit Block(int ms) : text(XwGetClipboard(ms)) {}
  ~Block() { free(text); }
  std::string str() const { return text ? text : "(none)"; }
  char* text;
};

// What comes of the queue, by type.
std::string Types() {
  std::string all;
  for (int i = 0; i < 30; ++i) {
    headless::Step(0.03);
    const int type = XwGetEvent(nullptr, 1);
    if (type > XWE_EXPOSE && type != XWE_MOTION) all += " " + std::to_string(type);
  }
  return all;
}

void AnswerAfter(double seconds) {
  auto answer = [](EventLoopTimerRef, void*) {
    const std::string text = "at last";
    headless::AnswerTextRequests(&text);
  };
  InstallEventLoopTimer(seconds, 0, answer, nullptr);
}

TEST(ProgramsClipboard, AWaitLosesNothing) {
  setenv("XW_DISPLAY", "headless", 1);
  headless::UseSteppedClock(1000);
  XwSession("clipboard", "Clipboard", 0);
  XwWindow* w = XwCreate(0, 100, 100, 200, 100, nullptr);
  XwShow(w, 1);
  Types();
  EXPECT_EQ(Block(50).str(), "(none)");
  EXPECT_EQ(XwSetClipboard("mine"), 1);
  EXPECT_EQ(Block(0).str(), "mine");
  EXPECT_EQ(Block(-5).str(), "mine");
  EXPECT_EQ(XwSetClipboard(nullptr), 1);
  EXPECT_EQ(Block(10).str(), "(none)");
  headless::OfferText(Selection::kClipboard, "theirs");
  Types();
  EXPECT_EQ(Block(0).str(), "(none)");
  EXPECT_EQ(Block(10).str(), "theirs");

  // What lies by comes afterwards, in order; timers run all the time.
  headless::OfferTextLater(Selection::kClipboard);
  XwSendEvent(w, 1000, 0, 0, 0);
  headless::Click(150, 150);
  AnswerAfter(0.2);
  EXPECT_EQ(Block(150).str(), "(none)");
  AnswerAfter(0.05);
  XwSendEvent(w, 1001, 0, 0, 0);
  EXPECT_EQ(Block(150).str(), "at last");
  EXPECT_EQ(Types(), " 1000 771 776 1001");
}

}  // namespace
}  // namespace platform
