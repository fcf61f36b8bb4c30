// The clipboard between this program and a real one, and what becomes of it at the end.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include "platform/events/targets.h"
#include "tests/x11/selections.h"

namespace x11_test {
namespace {

// --- A real program.

class RealProgram : public Selections {
 protected:
  void SetUp() override {
    if (system("command -v xclip >/dev/null 2>&1") != 0) GTEST_SKIP() << "xclip is not here";
    Selections::SetUp();
    char name[] = "/tmp/xw-selection-XXXXXX";
    const int fd = mkstemp(name);
    ASSERT_GE(fd, 0);
    close(fd);
    file = name;
  }
  void TearDown() override {
    if (child > 0) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
    unlink(file.c_str());
    Selections::TearDown();
  }
  // With its input or its output in the file.
  void StartXclip(std::vector<const char*> arguments, bool reads) {
    child = fork();
    if (child != 0) return;
    const int fd = open(file.c_str(), reads ? O_RDONLY : O_WRONLY | O_TRUNC);
    dup2(fd, reads ? 0 : 1);
    arguments.insert(arguments.begin(), "xclip");
    arguments.push_back(nullptr);
    execvp("xclip", const_cast<char* const*>(arguments.data()));
    _exit(127);
  }
  bool Ended() {
    return child > 0 && waitpid(child, nullptr, WNOHANG) == child ? child = 0, true : false;
  }
  std::string Content() {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
  }
  std::string file;
  pid_t child = 0;
};

TEST_F(RealProgram, TakesTheTextAndGivesOne) {
  const struct {
    Selection which;
    const char* name;
    std::string text;
  } rows[] = {
      {kClip, "clipboard", "short \u00E4\u4E2D\U0001F600\nand a second line"},
      {Selection::kPrimary, "primary", "primary"},
      {kClip, "clipboard", LongText(50'000'000)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text.size());
    ASSERT_TRUE(OfferText(row.which, row.text));
    StartXclip({"-o", "-selection", row.name, "-t", "UTF8_STRING"}, false);
    ASSERT_TRUE(Run([&] { return Ended(); }));
    EXPECT_TRUE(Content() == row.text);
    // And back: what is in the file now.
    GiveUp(row.which);
    StartXclip({"-quiet", "-i", "-selection", row.name}, true);
    Peer looker;
    ASSERT_TRUE(Run([&] {
      const xcb_window_t owner = looker.OwnerOf(row.which == kClip ? "CLIPBOARD" : "PRIMARY");
      return owner != 0 && owner != x11::SelectionWindow();
    }));
    EXPECT_TRUE(Paste(row.which, 20000) == row.text) << answers.back().size();
    // It ends when the selection is taken from it.
    ASSERT_TRUE(OfferText(row.which, "mine"));
    ASSERT_TRUE(Run([&] { return Ended(); }));
  }
}

// --- The end of the program.

enum class End { kExit, kFinish, kSignal };

class Manager : public Selections {
 protected:
  void SetUp() override { StartServer("", {}); }
  // A program that offers the text, and ends. The manager works on.
  int RunProgram(End how, const std::string& text, Peer* manager) {
    const pid_t pid = fork();
    if (pid == 0) {
      if (!InitPlatform("program") || !OfferText(kClip, text)) _exit(2);
      // A child of it that ends leaves nothing to anybody, and the connection alone.
      if (fork() == 0) exit(0);
      wait(nullptr);
      if (!OfferText(kClip, text)) _exit(2);
      if (how == End::kExit) exit(0);
      if (how == End::kFinish) FinishPlatform();
      if (how == End::kFinish) _exit(0);
      raise(SIGTERM);
      Event e;
      while (true)
        if (ReceiveNextEvent(1, &e)) SendEventToEventTarget(&e, GetEventDispatcherTarget());
    }
    int status = -1;
    const bool ended = support::Eventually([&] {
      manager->Work();
      if (asked.requestor != 0 && question->done) {
        manager->Say(asked, asked.property);
        asked = {};
      }
      return waitpid(pid, &status, WNOHANG) == pid;
    });
    if (!ended) {
      kill(pid, SIGKILL);
      waitpid(pid, nullptr, 0);
    }
    return ended ? status : -1;
  }
  // What a manager does when a program asks it to save.
  void Serve(Peer* manager) {
    manager->Own("CLIPBOARD_MANAGER");
    manager->on_request = [this, manager](const xcb_selection_request_event_t& r) {
      if (r.target != manager->Atom("SAVE_TARGETS")) return manager->Say(r, XCB_NONE);
      ++saves;
      asked = r;
      question = manager->Ask("CLIPBOARD", "UTF8_STRING");
    };
  }
  xcb_selection_request_event_t asked{};
  Peer::Question* question = nullptr;
  int saves = 0;
};

TEST_F(Manager, KeepsTheTextHoweverTheProgramEnds) {
  for (End how : {End::kExit, End::kFinish, End::kSignal}) {
    for (const std::string& text : {std::string("short"), LongText(1 << 20)}) {
      SCOPED_TRACE(std::to_string(int(how)) + " " + std::to_string(text.size()));
      Peer manager;
      Serve(&manager);
      question = nullptr;
      saves = 0;
      const int status = RunProgram(how, text, &manager);
      ASSERT_NE(question, nullptr);
      EXPECT_TRUE(question->bytes == text);
      EXPECT_EQ(saves, 1);
      if (how == End::kSignal)
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
      else
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
  }
}

TEST_F(Manager, ThatIsSilentOrGoesHoldsNothingUp) {
  for (const char* what : {"none", "silent", "refuses", "dies", "stalls"}) {
    SCOPED_TRACE(what);
    const std::string does = what;
    Peer manager;
    Serve(&manager);
    if (does == "none")
      xcb_set_selection_owner(manager.connection(), 0, manager.Atom("CLIPBOARD_MANAGER"), 0);
    if (does == "silent") manager.on_request = [](const xcb_selection_request_event_t&) {};
    if (does == "refuses") manager.on_request = nullptr;
    if (does == "dies")
      manager.on_request = [&](const xcb_selection_request_event_t&) { manager.Die(); };
    if (does == "stalls") {
      manager.on_request = [&](const xcb_selection_request_event_t&) {
        manager.Ask("CLIPBOARD", "UTF8_STRING")->stalls = true;
      };
    }
    manager.Sync();
    const int status = RunProgram(End::kExit, LongText(1 << 20), &manager);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
}

}  // namespace
}  // namespace x11_test
