// What a console leaves to the next one, and the server that it starts.
#include <gtest/gtest.h>

#include <cstring>

#include "app/window/queue_commands.h"
#include "app/work/preferences_file.h"
#include "os/system_paths.h"
#include "tests/app/console_fixture.h"
#include "toolkit/events/session.h"

namespace console {
namespace {

class RememberingTest : public ConsoleTest {
 protected:
  void CloseAndOpen() {
    CloseConsole(c_);
    c_ = nullptr;
    DropSession();
    Open("127.0.0.9:1", Recall(path_));
  }
  // In the middle of what has that name in the window.
  void ClickNode(const std::string& name) {
    const platform::Rect r = Node(name).what.bounds;
    display::Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    Turn(2);
  }

  const std::string path_ = home_.At("config/quorvik/console.conf");
};

TEST_F(RememberingTest, TheNextConsoleBeginsAsTheLastOneEnded) {
  const std::string leaf = std::string(kFolder) + "/leaf";
  home_.Folder(leaf + "/inner");
  Open("127.0.0.9:1", Recall(path_));
  Enter(home_.At(leaf));
  // It is stored while the console runs: a crash loses a second.
  EXPECT_TRUE(Until([&] { return LoadPreferences(path_).folder == home_.At(leaf); }));
  ClickNode("Size");
  SetFocusStop(c_, FocusStop::kFilter);
  DrawConsole(c_);
  Key('n', 'n');
  Key('o', 'o');
  XwMove(c_->window, 70, 90, 1000, 600);
  Turn(2);
  const Area name = c_->files.table.ColumnArea(0);
  display::MovePointer(c_->window->x + name.right(), c_->window->y + name.y + 8);
  display::Press(1);
  Turn(2);
  display::MovePointer(c_->window->x + name.right() - 30, c_->window->y + name.y + 8);
  Turn(2);
  display::Release(1);
  Turn(2);
  const Area narrower = c_->files.table.ColumnArea(0);
  ASSERT_EQ(narrower.w, name.w - 30);

  CloseAndOpen();
  EXPECT_EQ(c_->window->x, 70);
  EXPECT_EQ(c_->window->y, 90);
  EXPECT_EQ(c_->window->width, 1000);
  EXPECT_EQ(c_->window->height, 600);
  EXPECT_EQ(c_->files.folder.path(), home_.At(leaf));
  EXPECT_EQ(Node("Filter").what.value, "no");
  EXPECT_EQ(c_->files.folder.count(), 0);
  EXPECT_EQ(c_->files.folder.order(), FileOrder::kSize);
  EXPECT_TRUE(c_->files.folder.descending());
  EXPECT_EQ(c_->files.table.ColumnArea(0).w, narrower.w);

  // The folder has gone with the one above it, while a filter of the one that is left would hide
  // it.
  std::filesystem::remove_all(home_.At(kFolder));
  CloseAndOpen();
  EXPECT_EQ(c_->files.folder.path(), home_.path());
  EXPECT_GE(c_->files.folder.Find("letter.txt"), 0);
  EXPECT_NE(c_->status.message().text.find("leaf"), std::string::npos);
  // The user's own default comes before what was chosen last.
  c_->remembered.preferences.default_printer = "Mine";
  ChoosePrinter(c_, "Last");
  CloseAndOpen();
  EXPECT_EQ(c_->choice.printer, "Mine");
  for (const auto part : {QueueFilter::kEnded, QueueFilter::kActive}) {
    FilterQueue(c_, {true, part, "x"});
    CloseAndOpen();
    EXPECT_EQ(c_->queue.rows.filter(), (QueueFilter{true, part, "x"}));
  }
}

TEST_F(RememberingTest, FilesOfTheStartAreSelectedAndMissingOnesTold) {
  Open("127.0.0.9:1");
  OpenFiles(c_, {{}, {home_.At("Empty/gone.pdf")}});
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), home_.At("Empty"));
  EXPECT_EQ(c_->status.message().text, "“gone.pdf”: no such file or folder");
  c_->status.ReadMessage();
  SetFocusStop(c_, FocusStop::kQueue);
  OpenFiles(c_, {{home_.At(std::string(kFolder) + "/second.txt")}, {home_.At("gone.pdf")}});
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(Selected(), "second.txt");
  EXPECT_EQ(c_->stop, FocusStop::kFiles);
  EXPECT_EQ(c_->status.message().text, "“gone.pdf”: no such file or folder");
  c_->status.ReadMessage();
  display::OpenFiles({home_.At("Empty"), home_.At("gone.pdf"), home_.At("g 2.pdf")}, true);
  ASSERT_TRUE(Until([&] { return c_->status.HasError(); }));
  EXPECT_EQ(c_->status.message().text, "2 files are missing: “gone.pdf”, “g 2.pdf”");
  c_->status.ReadMessage();
  display::OpenFiles({"http://host/a.pdf"}, true);
  ASSERT_TRUE(Until([&] { return c_->status.HasError(); }));
  EXPECT_EQ(c_->status.message().text, "Only files on this computer can be opened");
  c_->status.ReadMessage();
  display::OpenFiles({home_.At("letter.txt"), home_.At("Empty")}, true);
  EXPECT_TRUE(Until([&] { return c_->status.message().text == "1 other folder is not shown"; }));
  display::OpenFiles({"/dev/null", home_.At("gone.pdf")}, true);
  EXPECT_TRUE(Until([&] { return c_->files.folder.path() == "/dev"; })) << "one of them is there";
}

// What another program asks to open is selected, also what is hidden; what is dropped is queued,
// and what still waits can be cancelled; a folder that is dropped is entered.
TEST_F(RememberingTest, DocumentsFromElsewhereAreSelectedOrQueued) {
  home_.Folder("Other");
  for (const char* name : {"a.pdf", "b.pdf", ".c.pdf", "Other/d.pdf"}) home_.File(name, "x");
  Open("127.0.0.9:1");
  SetFilter(c_, "letter");
  display::OpenFiles({home_.At("a.pdf"), home_.At(".c.pdf"), home_.At("Other/d.pdf")}, true);
  ASSERT_TRUE(Until([&] { return c_->files.Chosen().files == 2; }));
  EXPECT_EQ(c_->files.selection.Ids(), (std::vector<std::string>{".c.pdf", "a.pdf"}));
  EXPECT_EQ(c_->status.message().text.rfind("2 of 3 documents", 0), 0u);
  EXPECT_EQ(WhyNotOpen(c_), "More than one row is selected");

  display::OpenFiles({home_.At("b.pdf"), home_.At("Empty"), home_.At("gone"), home_.At(".c.pdf")},
                     false);
  ASSERT_TRUE(Until([&] { return c_->state.transfers.size() == 2; }));
  EXPECT_EQ(c_->state.transfers[0].order.path, home_.At("b.pdf"));
  EXPECT_EQ(c_->state.transfers[0].size, 1);
  display::OpenFiles({home_.At("a.pdf")}, false);
  ASSERT_TRUE(Until([&] { return c_->state.transfers.size() == 3; }));
  // What is left out stays to be read.
  EXPECT_EQ(c_->status.message().text.rfind("“gone” cannot be printed", 0), 0u);
  while (c_->status.HasError()) c_->status.ReadMessage();
  EXPECT_EQ(c_->status.message().text,
            "“a.pdf” queued; 3 wait to be sent when 127.0.0.9:1 is back");
  Turn(2);
  XwWindow* cancel = c_->status.cancel_queued;
  char text[40];
  XwGetTextUtf8(cancel, text, sizeof text);
  EXPECT_STREQ(text, "Cancel 3 Queued");
  Click({cancel->x, cancel->y, cancel->width, cancel->height});
  ASSERT_TRUE(Until([&] { return c_->state.transfers.empty(); }));
  EXPECT_EQ(StillQueued(c_), 0);
  EXPECT_EQ(c_->status.message().text, "3 documents were taken back") << "of both drops";

  // Two at once: neither takes the place of the other.
  display::OpenFiles({"/dev/null"}, false);
  display::OpenFiles({home_.At("Empty")}, false);
  EXPECT_TRUE(
      Until([&] { return c_->files.folder.path() == home_.At("Empty") && c_->status.HasError(); }));
  EXPECT_FALSE(c_->files.folder.rows().shows_hidden()) << "they showed for that one alone";
}

TEST_F(RememberingTest, AServerThatDoesNotStartIsToldAndOfferedAgain) {
  const std::string program = home_.File("printserverd", "#!/bin/sh\nsleep 0.5\nexit 1\n");
  ASSERT_EQ(chmod(program.c_str(), 0700), 0);
  os::SetExecutablePath(home_.At("quorvik").c_str());
  setenv("XDG_STATE_HOME", home_.At("state").c_str(), 1);
  Open("localhost:1");
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway; }));
  Turn(2);
  const XwWindow* button = c_->banner.start_server;  // a menu's item has the same name
  Click({button->x, button->y, button->width, button->height});
  EXPECT_FALSE(CanStartServer(c_));
  ASSERT_TRUE(Until([&] { return CanStartServer(c_); }));
  EXPECT_NE(c_->status.message().text.find("did not start"), std::string::npos);
  c_->status.ReadMessage();
  EXPECT_EQ(c_->status.message().text, "") << "none is being started";
  // Closed while one starts.
  display::Modifiers(platform::controlKey);
  Key('s', 's');
  display::Modifiers(0);
  EXPECT_TRUE(c_->server_start);
  CloseConsole(c_);
  c_ = nullptr;
  EXPECT_EQ(BackgroundTask::WaitForAll(20000), 0);
  os::SetExecutablePath(nullptr);
}

// Without a question, and once while the server stays away.
TEST_F(RememberingTest, AServerIsStartedByItselfWherePreferencesSaySo) {
  const std::string starts = home_.At("starts");
  const std::string program =
      home_.File("printserverd", "#!/bin/sh\necho start >> '" + starts + "'\nexit 1\n");
  ASSERT_EQ(chmod(program.c_str(), 0700), 0);
  os::SetExecutablePath(home_.At("quorvik").c_str());
  setenv("XDG_STATE_HOME", home_.At("state").c_str(), 1);
  Remembered remembered;
  remembered.preferences.start_local_server = true;
  remembered.preferences.window_left = 30000, remembered.preferences.window_top = 70;
  Open("localhost:1", std::move(remembered));
  EXPECT_LE(c_->window->x + c_->window->width, XW_SCREENX) << "it was on another screen";
  ASSERT_TRUE(Until([&] { return c_->status.HasError(); }));
  EXPECT_NE(c_->status.message().text.find("did not start"), std::string::npos);
  RetryServer(c_);
  const int tries = c_->state.away_times;
  Until([&] { return c_->state.link == Link::kConnecting || c_->state.away_times > tries; });
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway && CanStartServer(c_); }));
  EXPECT_EQ(std::filesystem::file_size(starts), strlen("start\n"));
  os::SetExecutablePath(nullptr);
}

}  // namespace
}  // namespace console
