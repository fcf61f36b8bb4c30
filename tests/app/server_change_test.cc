// Another server, and one that is away: the window of preferences, the strip with its buttons.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "app/window/queue_commands.h"
#include "platform/events/timers.h"
#include "tests/app/console_fixture.h"
#include "tests/printserverd/daemon.h"

namespace console {
namespace {

using testing_daemon::Daemon;

constexpr uint32_t kReturnKey = 0xFF0D, kTabKey = 0xFF09, kEscapeKey = 0xFF1B;

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

TEST_F(ServerChangeTest, PreferencesAreChangedByKeysAndKept) {
  Daemon first, second(1);
  first.Start({"--rate", "1K"});
  second.Start({"--config", second.WriteFile("printers", "[printer]\nname=Other\n")});
  Open(first.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  ShowDocuments(c_, {home_.At("letter.txt")});
  ASSERT_TRUE(HasRead());
  PrintSelected(c_);
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 1 && c_->queue.rows.JobAt(0); }));
  FilterQueue(c_, {false, QueueFilter::kActive, ""});
  Remember(c_);
  const Preferences before = c_->remembered.preferences;

  display::Preferences();
  ASSERT_TRUE(Until([&] { return PreferencesShow(); }));
  EXPECT_NE(Node("Server State").what.value.find("ready, "), std::string::npos);
  // What is no server, and no number, cannot be saved.
  Type("a b");
  EXPECT_EQ(Node("Server State").what.value, "A server is HOST or HOST:PORT");
  Key(kReturnKey);
  ASSERT_TRUE(PreferencesShow());
  Key(kEscapeKey);
  EXPECT_FALSE(PreferencesShow());
  EXPECT_EQ(c_->remembered.preferences, before);

  ShowPreferences(c_);
  Turn(4);
  Type(second.host());
  Key(kTabKey);
  Key(kTabKey);
  Type("30");
  for (const char* box : {"Show hidden names", "Show jobs that have ended", "Show my jobs only"}) {
    const platform::Rect r = Node(box).what.bounds;
    display::Click(r.left + 8, (r.top + r.bottom) / 2);
    Turn(2);
  }
  EXPECT_FALSE(c_->files.folder.rows().shows_hidden()) << "not before it is saved";
  ShowPreferences(c_);  // the keyboard is in a box again
  Turn(4);
  Key(kReturnKey);
  EXPECT_TRUE(c_->files.folder.rows().shows_hidden());
  EXPECT_EQ(c_->queue.rows.filter(), (QueueFilter{true, QueueFilter::kAll, ""}));
  EXPECT_FALSE(PreferencesShow());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  EXPECT_STREQ(c_->state.printers->at(0).name, "Other");
  EXPECT_TRUE(c_->queue.rows.count() == 0) << "the other server's jobs";
  ASSERT_TRUE(Until([&] { return LoadPreferences(path_).recent_servers.size() == 2; }));
  const Preferences kept = LoadPreferences(path_);
  EXPECT_EQ(kept.server, second.host());
  EXPECT_EQ(kept.refresh_seconds, 30);
  const int fd = first.Connect();
  EXPECT_EQ(testing_daemon::Jobs(fd).size(), 1u) << "it stays where it was";
  NC_Disconnect(fd);
}

TEST_F(ServerChangeTest, WhatIsNotSentIsGivenUpOnlyWhenSomebodySaysSo) {
  Daemon first, second(1);
  first.Start();
  second.Start();
  home_.File("big.bin", Bytes(20000000));
  Open(first.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  ShowDocuments(c_, {home_.At("big.bin")});
  ASSERT_TRUE(HasRead());
  first.Signal(SIGSTOP);
  PrintSelected(c_);
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 1; }));
  const auto timer = platform::InstallEventLoopTimer(0.02, 0.02, AnswerQuestion, nullptr);
  for (const bool leave : {false, true}) {
    ShowPreferences(c_);
    Turn(4);
    Type(second.host());
    answer = leave ? 2 : 1;
    Key(kReturnKey);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(c_->server.host(), leave ? second.host() : first.host());
    EXPECT_EQ(PreferencesShow(), !leave);
    if (!leave) Key(kEscapeKey);
  }
  platform::RemoveEventLoopTimer(timer);
  ASSERT_TRUE(Until([&] { return IsReady() && c_->queue.rows.count() == 0; }));
  first.Signal(SIGCONT);
  for (Daemon* daemon : {&first, &second}) {
    const int fd = daemon->Connect();
    EXPECT_TRUE(testing_daemon::Jobs(fd).empty());
    NC_Disconnect(fd);
  }
}

TEST_F(ServerChangeTest, ScannersAreStartedAndGamutFilesSavedBesideWhatIsThere) {
  Daemon daemon;
  const std::string asked = home_.At("asked");
  const std::string config =
      "[server]\nscan-command=/bin/sh " + home_.File("scan", "echo \"$1 $2\" > " + asked) +
      " %1 %2\n[printer]\nname=Proof\n[printer]\nname=Wide\n"
      "[profile]\nname=Coated\nprinter=Wide\ndpi=600x300\n[profile]\nname=Bare\n"
      "[scanner]\nname=Flatbed\n[scanner]\nname=Drum\n";
  daemon.Start({"--config", daemon.WriteFile("lists", config)});
  mkdir(daemon.Path("gamut/Wide").c_str(), 0700);
  std::ofstream(daemon.Path("gamut/Wide/Coated")) << "of the wide one";
  std::ofstream(daemon.Path("gamut/Coated")) << "of all";
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  ShowLists(c_);
  ASSERT_TRUE(Until([&] { return Node("Flatbed").what.value == "scanner"; }));

  // Twice: the first one stays as it is. The profile without a file says so.
  const auto told = [this](const std::string& text) {
    return Until([&] { return c_->status.message().text.find(text) != std::string::npos; });
  };
  ClickNode("Coated");
  ClickNode("Save Gamut File");
  EXPECT_TRUE(told("Saved"));
  home_.File("Coated", "mine now");
  ClickNode("Save Gamut File");
  EXPECT_TRUE(told("Coated 2"));
  EXPECT_EQ(ReadFile(home_.At("Coated")), "mine now");
  EXPECT_EQ(ReadFile(home_.At("Coated 2")), "of the wide one");
  ClickNode("Bare");
  ClickNode("Save Gamut File");
  EXPECT_TRUE(told("no gamut file"));
  EXPECT_FALSE(c_->status.HasError());

  ClickNode("Flatbed");
  Key(kReturnKey);
  EXPECT_TRUE(Until([&] { return ReadFile(asked) == "Flatbed mia\n"; }));
  Key(kEscapeKey);
  EXPECT_TRUE(Node("Flatbed").what.name.empty());
}

// A peer that answers every greeting with a refusal.
TEST_F(ServerChangeTest, AServerThatRefusesIsToldAndTriedAgainByTheButton) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* any = reinterpret_cast<sockaddr*>(&address);
  ASSERT_TRUE(bind(listener, any, size) == 0 && listen(listener, 16) == 0);
  ASSERT_EQ(getsockname(listener, any, &size), 0);
  std::atomic<int> asked = 0;
  std::thread peer([&] {
    for (int fd; (fd = accept(listener, nullptr, nullptr)) >= 0; close(fd)) {
      char greeting[4];
      ++asked;
      if (recv(fd, greeting, sizeof greeting, MSG_WAITALL) == 4) send(fd, "", 1, MSG_NOSIGNAL);
    }
  });
  Open("127.0.0.1:" + std::to_string(ntohs(address.sin_port)));
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kRefused; }));
  Turn(4);
  EXPECT_NE(Node("Server Away").what.value.find(" refuses this console. Next try in "),
            std::string::npos);
  EXPECT_EQ(Node(c_->server.host()).what.value, "refused");
  EXPECT_FALSE(CanStartServer(c_)) << "one runs there";
  EXPECT_EQ(Node("Hold Job").help, "No job is selected");
  const int before = asked;
  const XwWindow* retry = c_->banner.retry;
  Click({retry->x, retry->y, retry->width, retry->height});
  EXPECT_TRUE(Until([&] { return asked > before; }));
  shutdown(listener, SHUT_RDWR);
  peer.join();
  close(listener);
}

// A peer that takes connections and never says a word.
TEST_F(ServerChangeTest, AServerThatNeverAnswersIsAwayAndTriedAgainByTheButton) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* any = reinterpret_cast<sockaddr*>(&address);
  ASSERT_TRUE(bind(listener, any, size) == 0 && listen(listener, 16) == 0);
  ASSERT_EQ(getsockname(listener, any, &size), 0);
  Open("127.0.0.1:" + std::to_string(ntohs(address.sin_port)));
  const Area queue = c_->queue.table.area();
  for (int i = 1; i <= 2; ++i) {
    ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway && c_->state.away_times == i; }));
    Turn(4);
    EXPECT_NE(Node("Server Away").what.value.find("does not answer. Next try in "),
              std::string::npos);
    EXPECT_EQ(c_->queue.table.area().y, queue.y) << "no row has moved";
    const XwWindow* b = c_->banner.retry;
    Click({b->x, b->y, b->width, b->height});
    ASSERT_TRUE(Until([&] { return c_->state.link == Link::kConnecting; }));
    EXPECT_TRUE(c_->banner.shown);
  }
  close(listener);
}

}  // namespace
}  // namespace console
