// Another server, and one that is away; the lists that a server has.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>

#include "app/window/queue_commands.h"
#include "platform/events/timers.h"
#include "tests/app/console_fixture.h"
#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

namespace console {
namespace {

using testing_daemon::Daemon;

constexpr uint32_t kReturnKey = 0xFF0D, kEscapeKey = 0xFF1B;

// The label of a question's button that is to be pressed, by its number; 0: none.
int answer;

void AnswerQuestion(platform::EventLoopTimerRef, void*) {
  for (XwWindow* w = W_End; answer && w; w = w->previous) {
    const XwWindow* b = XwFind(w, 10000 + answer);
    if (!b) continue;
    answer = 0;
    display::Click(w->x + b->x + 20, w->y + b->y + 12);
    return;
  }
}

class ServerChangeTest : public ConsoleTest {
 protected:
  void Type(const std::string& text) {
    for (const char letter : text) Key(uint8_t(letter), uint8_t(letter));
  }
  void Open(const std::string& host) {
    Remembered remembered = Recall(path_);
    remembered.preferences.server = host;
    ConsoleTest::Open(host, std::move(remembered));
    platform::AddTreeListener(&listener_);
    Turn(2);
  }
  void TearDown() override {
    platform::RemoveTreeListener(&listener_);
    ConsoleTest::TearDown();
  }
  bool PreferencesShow() { return !Node("Server State").what.name.empty(); }
  void ClickNode(const std::string& name) {
    const platform::Rect r = Node(name).what.bounds;
    display::Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    Turn(4);
  }

  // What is drawn is described.
  platform::TreeListener listener_{[](void*, uint64_t, platform::Change) {}};
  const std::string path_ = home_.At("config/quorvik/console.conf");
};

TEST_F(ServerChangeTest, WhatIsNotSentIsGivenUpOnlyWhenSomebodySaysSo) {
  Daemon first, second(1);
  first.Start({"--config", first.WriteFile("printers", "[printer]\nname=Other\n")});
  second.Start();
  home_.File("big.bin", Bytes(20000000));
  Open(first.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  ShowDocuments(c_, {home_.At("big.bin")});
  ASSERT_TRUE(HasRead());
  c_->server.ChangePrinter("gone", PrinterSetting::kPause);
  ASSERT_TRUE(Until([&] { return c_->status.HasError(); }));
  c_->status.ReadMessage();
  first.Signal(SIGSTOP);
  PrintSelected(c_);
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 1; }));
  const auto timer = platform::InstallEventLoopTimer(0.02, 0.02, AnswerQuestion, nullptr);
  for (const bool leave : {false, true}) {
    ShowPreferences(c_);
    Turn(4);
    Type(second.host());
    for (const char* box : {"Show hidden names", "Show my jobs only"}) ClickNode(box);
    answer = leave ? 2 : 1;
    Key(kReturnKey);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(c_->server.host(), leave ? second.host() : first.host());
    EXPECT_EQ(PreferencesShow(), !leave);
    if (!leave) Key(kEscapeKey);
  }
  platform::RemoveEventLoopTimer(timer);
  ASSERT_TRUE(Until([&] { return IsReady() && c_->queue.rows.count() == 0; }));
  EXPECT_EQ(c_->printers.WhyNotPrint(), "") << "the printer was the other server's default";
  EXPECT_TRUE(c_->files.folder.rows().shows_hidden() && c_->queue.rows.filter().mine);
  first.Signal(SIGCONT);
  for (Daemon* daemon : {&first, &second}) {
    const int fd = daemon->Connect();
    EXPECT_TRUE(testing_daemon::Jobs(fd).empty());
    NC_Disconnect(fd);
  }
  PrintSelected(c_);
  EXPECT_TRUE(
      Until([&] { return c_->status.message().text.find(" sent to ") != std::string::npos; }));
}

TEST_F(ServerChangeTest, ScannersAreStartedAndGamutFilesSavedBesideWhatIsThere) {
  Daemon daemon;
  const std::string asked = home_.At("asked");
  const std::string config =
      "[server]\nscan-command=/bin/sh " + home_.File("scan", "echo \"$1 $2\" > " + asked) +
      " %1 %2\n[printer]\nname=Proof\n[printer]\nname=Wide\n"
      "[profile]\nname=Coated v2.1\nprinter=Wide\ndpi=600x300\n[profile]\nname=Bare\n"
      "[scanner]\nname=Flatbed\n[scanner]\nname=Drum\n";
  daemon.Start({"--config", daemon.WriteFile("lists", config)});
  mkdir(daemon.Path("gamut/Wide").c_str(), 0700);
  std::ofstream(daemon.Path("gamut/Wide/Coated v2.1")) << "of the wide one";
  std::ofstream(daemon.Path("gamut/Coated v2.1")) << "of all";
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  ShowLists(c_);
  ASSERT_TRUE(Until([&] { return Node("Flatbed").what.value == "scanner"; }));

  // Twice: the first one stays as it is. The profile without a file says so.
  // Both windows tell it.
  const auto told = [this](const std::string& text) {
    return Until([&] {
      const std::string shown = c_->status.message().text;
      return shown.find(text) != std::string::npos && Node("Answer").what.value == shown;
    });
  };
  const std::string save = "Save Gamut File in “" + LastName(home_.path()) + "”";
  ClickNode("Coated v2.1");
  ClickNode(save);
  EXPECT_TRUE(told("Saved"));
  home_.File("Coated v2.1", "mine now");
  ClickNode(save);
  EXPECT_TRUE(told("Coated v2.1 2"));
  EXPECT_EQ(ReadFile(home_.At("Coated v2.1")), "mine now");
  EXPECT_EQ(ReadFile(home_.At("Coated v2.1 2")), "of the wide one");
  ClickNode("Bare");
  ClickNode(save);
  EXPECT_TRUE(told("no gamut file"));
  EXPECT_FALSE(c_->status.HasError());

  EXPECT_EQ(c_->state.lists->printers, (std::vector<std::string>{"Wide", ""}));
  ClickNode("Flatbed");
  Key(kReturnKey);
  EXPECT_TRUE(Until([&] { return ReadFile(asked) == "Flatbed mia\n"; }));
  EXPECT_TRUE(told("asked to scan"));
  daemon.Stop(SIGTERM);
  EXPECT_TRUE(Until([&] { return Node("Answer").what.value == "The server is away"; }));
  Key(kEscapeKey);
  EXPECT_TRUE(Node("Flatbed").what.name.empty());
}

TEST_F(ServerChangeTest, AServerThatRefusesIsToldAndTriedAgainByTheButton) {
  std::atomic<int> asked = 0;
  Listener peer("127.0.0.1", 0);
  peer.Serve(1000, [&](int end) {
    ++asked;
    if (ReceiveText(end, 4).size() == 4) SendText(end, std::string(1, 0));
  });
  Open("127.0.0.1:" + std::to_string(peer.port));
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kRefused; }));
  Turn(4);
  EXPECT_NE(Node("Server Away").what.value.find(" refuses this console. Next try in "),
            std::string::npos);
  EXPECT_EQ(Node(c_->server.host()).what.value, "refused");
  EXPECT_FALSE(CanStartServer(c_)) << "one runs there";
  EXPECT_EQ(Node("Hold Job").help, "No job is selected");
  EXPECT_GT(c_->state.retry_ms, 1000) << "it will refuse for a while";
  const int before = asked;
  const XwWindow* retry = c_->banner.retry;
  Click({retry->x, retry->y, retry->width, retry->height});
  EXPECT_TRUE(Until([&] { return asked > before; }));
}

// What listens there and is no print server.
TEST_F(ServerChangeTest, SomethingElseThatAnswersIsToldAndNoServerStartedBesideIt) {
  std::atomic<bool> greets = false;
  Listener peer("127.0.0.1", 0);
  peer.Serve(1000, [&](int end) {
    if (ReceiveText(end, 4).size() != 4 || !greets) return;
    SendText(end, std::string(1, 1));
    ReceiveText(end, 4);
    SendText(end, "more than any list");
  });
  Open("127.0.0.1:" + std::to_string(peer.port));
  const auto says = [](const std::string& what) {
    return Node("Server Away").what.value.find(what) != std::string::npos;
  };
  EXPECT_TRUE(Until([&] { return says(" closed the connection. "); }));
  EXPECT_FALSE(CanStartServer(c_));
  greets = true;
  RetryServer(c_);
  EXPECT_TRUE(Until([&] { return says(" does not understand. "); }));
  EXPECT_FALSE(CanStartServer(c_));
}

TEST_F(ServerChangeTest, AServerThatStopsAnsweringIsAwayAndTriedAgainByTheButton) {
  Daemon daemon;
  daemon.Start();
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  const uint32_t ready = LinkColor();
  const Area queue = c_->queue.table.area();
  daemon.Signal(SIGSTOP);
  ASSERT_TRUE(Until([&] { return c_->state.quiet_s >= 1; }));
  Turn(8);
  const uint32_t quiet = LinkColor();
  EXPECT_NE(quiet, ready);
  Click(FileRow("letter.txt"));
  EXPECT_EQ(Selected(), "letter.txt") << "what needs no server is answered";
  for (int i = 1; i <= 2; ++i) {
    ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway && c_->state.away_times == i; }));
    Turn(4);
    EXPECT_TRUE(LinkColor() != quiet && LinkColor() != ready);
    // Or "Trying again…", where its second has passed by now.
    const std::string says = Node("Server Away").what.value;
    EXPECT_NE(says.find("does not answer. "), std::string::npos) << says;
    EXPECT_EQ(says.find("in 0 s"), std::string::npos) << says;
    EXPECT_EQ(c_->queue.table.area().y, queue.y) << "no row has moved";
    const XwWindow* b = c_->banner.retry;
    Click({b->x, b->y, b->width, b->height});
    ASSERT_TRUE(Until([&] { return c_->state.link == Link::kConnecting; }));
    EXPECT_TRUE(c_->banner.shown);
  }
  daemon.Stop(SIGKILL);
}

}  // namespace
}  // namespace console
