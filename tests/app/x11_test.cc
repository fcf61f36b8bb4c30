// The program itself on an X server with a window manager: a user with a pointer and a keyboard, a
// print server that dies and comes back. Only the screen and the server are looked at.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>

#include "app/panes/layout.h"
#include "tests/os/scratch.h"
#include "tests/printserverd/daemon.h"
#include "tests/support/x_server.h"

namespace console {
namespace {

using support::Eventually;
using testing_daemon::Daemon;

constexpr const char* kFolder = "Aufträge für Größe B";
constexpr const char* kLongName =
    "a – ein sehr langer Dateiname mit Umlauten äöü, Akzenten éèê und 日本語 darin, damit jede "
    "Spalte ihn kürzen muss, und noch etwas mehr, weil Namen so sind (Kopie 2).pdf";
constexpr uint32_t kGood = 0x2E8B57, kBad = 0xC0392B, kAccent = 0x3875D7;
constexpr uint32_t kReturnKey = 0xFF0D, kDownKey = 0xFF54, kControlKey = 0xFFE3;
constexpr int kBar = 24, kRow = 22;

class Walk : public testing::Test {
 protected:
  void SetUp() override {
    home_.Folder(kFolder);
    home_.File(std::string(kFolder) + "/" + kLongName, std::string(250000, 'x'));
    home_.File(std::string(kFolder) + "/b.txt", "a few words\n");
    server_.emplace(std::vector<std::string>{"-screen", "0", "1280x1024x24"});
    ASSERT_TRUE(server_->running());
    ASSERT_TRUE(server_->StartManager("openbox"));
    user_.emplace();
  }
  void TearDown() override {
    if (pid_ > 0) kill(pid_, SIGKILL), waitpid(pid_, nullptr, 0);
    user_.reset();
    server_.reset();
  }
  void StartProgram(const Daemon& daemon) {
    pid_ = fork();
    if (pid_ == 0) {
      setenv("HOME", home_.path().c_str(), 1);
      setenv("XDG_CACHE_HOME", home_.At(".cache").c_str(), 1);
      setenv("XDG_CONFIG_HOME", home_.At(".config").c_str(), 1);
      setenv("QUORVIK_SERVER", daemon.host(), 1);
      execl(QUORVIK, QUORVIK, nullptr);
      _exit(127);
    }
    window_ = user_->Find("Quorvik");
    ASSERT_NE(window_, 0u);
    ASSERT_TRUE(Eventually([&] { return user_->Viewable(window_); }));
    Place();
  }
  // Where the window is now, and what is where in it.
  void Place() {
    at_ = user_->Where(window_);
    layout_ = LayOut(at_.width, at_.height - kBar);
  }
  uint32_t Pixel(const support::Screenshot& s, int x, int y) {
    return s.at(at_.x + x, at_.y + kBar + y);
  }
  // Of the server's dot.
  uint32_t Dot(const support::Screenshot& s) {
    return Pixel(s, layout_.status.x + 16, layout_.status.y + layout_.status.h / 2);
  }
  bool DotBecomes(uint32_t colour) {
    return Eventually([&] { return Dot(user_->Look()) == colour; });
  }
  void ClickAt(int x, int y) {
    user_->Move(at_.x + x, at_.y + kBar + y);
    user_->Click(1);
  }
  void Click(const Area& a) { ClickAt(a.x + a.w / 2, a.y + a.h / 2); }
  int FileRowY(int row) { return layout_.folder.y + kRow + row * kRow; }
  void ClickFile(int row) { ClickAt(layout_.folder.x + 150, FileRowY(row) + 11); }
  bool IsSelected(const support::Screenshot& s, int row) {
    return Pixel(s, layout_.folder.x + 3, FileRowY(row) + 2) == kAccent;
  }
  bool Selects(int row) {
    return Eventually([&] { return IsSelected(user_->Look(), row); });
  }
  // How much is written in the first row of the queue.
  int QueueInk() {
    const support::Screenshot s = user_->Look();
    int ink = 0;
    for (int y = layout_.queue.y + kRow; y < layout_.queue.y + 2 * kRow; ++y)
      for (int x = 34; x < 180; ++x) ink += (Pixel(s, x, y) & 0xFF) < 0x80;
    return ink;
  }

  Scratch home_;
  std::optional<support::XServer> server_;
  std::optional<support::XUser> user_;
  pid_t pid_ = 0;
  xcb_window_t window_ = 0;
  support::XUser::Geometry at_{};
  Layout layout_;
};

TEST_F(Walk, AFileIsPrintedOnTheScreen) {
  Daemon daemon;
  daemon.Start({"--rate", "1K"});
  StartProgram(daemon);
  ASSERT_TRUE(DotBecomes(kGood));
  EXPECT_LT(QueueInk(), 10);

  // The keyboard is the window's before the pointer has moved: the folder is entered by it.
  ASSERT_TRUE(Eventually([&] { return user_->Focus() == window_; }));
  user_->Type(kDownKey);
  ASSERT_TRUE(Selects(0));
  user_->Type(kReturnKey);
  ASSERT_TRUE(Eventually([&] { return !IsSelected(user_->Look(), 0); }));

  // Dead: a new size is laid out all the same. Back: the file arrives, and the queue shows it.
  ClickFile(0);
  ASSERT_TRUE(Selects(0));
  daemon.Stop(SIGKILL);
  ASSERT_TRUE(DotBecomes(kBad));
  Click(layout_.print);
  const uint32_t size[] = {800, 560};
  xcb_configure_window(user_->connection(), window_,
                       XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
  ASSERT_TRUE(Eventually([&] {
    Place();
    return at_.width == 800 && at_.height == 560 && Dot(user_->Look()) == kBad;
  }));
  daemon.Start({"--rate", "1K"});
  const int fd = daemon.Connect();
  ASSERT_TRUE(Eventually([&] { return !testing_daemon::Jobs(fd).empty(); }));
  EXPECT_STREQ(testing_daemon::Jobs(fd)[0].document, kLongName);
  ASSERT_TRUE(DotBecomes(kGood));

  // Chosen by the pointer, removed and left by the keyboard.
  // Seen to be selected first: two clicks within a few milliseconds are more than the server passes
  // on while a window manager looks at each.
  const int row_y = layout_.queue.y + kRow;
  ClickAt(200, row_y + 11);
  ASSERT_TRUE(Eventually([&] { return Pixel(user_->Look(), 3, row_y + 2) == kAccent; }));
  user_->Type(0xFFFF);  // Delete: it is at the printer, and a question comes
  ASSERT_TRUE(Eventually([&] { return Pixel(user_->Look(), 3, row_y + 2) != kAccent; }));
  user_->Type(0xFF09);  // Tab, from Keep to Remove
  user_->Type(0xFF0D);
  EXPECT_TRUE(Eventually([&] { return testing_daemon::Jobs(fd).empty(); }));
  NC_Disconnect(fd);
  // The manager gives the keyboard back from the question after a while: selected again, it is
  // there.
  ClickFile(0);
  ASSERT_TRUE(Selects(0));
  user_->Key(kControlKey, true);
  user_->Type('q');
  user_->Key(kControlKey, false);
  int status = -1;
  ASSERT_TRUE(Eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }));
  pid_ = 0;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
}  // namespace console
