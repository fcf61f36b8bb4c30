// Folders on the console's window: slow ones, ones that hang, ones that vanish.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "app/window/commands.h"
#include "app/work/dropped_paths.h"
#include "tests/app/console_fixture.h"
#include "tests/app/gate.h"

namespace console {
namespace {

FolderReader::Read usual_read;
Gate* gate;

void ReadBehindGate(FolderReading* r) {
  if (r->request.path.find("hangs") != std::string::npos) gate->Pass();
  usual_read(r);
}

TEST(DroppedPaths, TellTheFirstThatIsNeitherPrintedNorOpened) {
  const DroppedPaths d =
      LookAtDropped({"/etc/passwd", "http://host/a.pdf", "/dev/null", "/", "/x"});
  EXPECT_EQ(d.files.size() + d.folders.size(), 2u);
  EXPECT_EQ(d.others, 3);
  EXPECT_EQ(d.other + ": " + d.trouble, "http://host/a.pdf: it is not on this computer");
}

class FolderTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    home_.Folder("hangs");
    home_.File("hangs/inside.txt", "x");
    static auto* the_gate = new Gate;  // may be waited at beyond the end
    gate = the_gate;
    gate->Close();
    usual_read = usual_read_;
  }
  void TearDown() override {
    gate->Open();
    ConsoleTest::TearDown();
    EXPECT_EQ(BackgroundTask::WaitForAll(20000), 0);
    FolderReader::read = usual_read_;
  }
  // From now on what hangs is behind the gate.
  void CloseGate() { FolderReader::read = ReadBehindGate; }
  bool HeadSays(const std::string& words) {
    return Until([&] { return c_->files.reading_text.find(words) == 0; });
  }
  bool HangsIn(const std::string& path) {
    const FolderRequest* w = c_->reader.request();
    return w && w->path == path && gate->Waiting() > 0;
  }
};

constexpr uint32_t kReturnKey = 0xFF0D, kDownKey = 0xFF54, kEscapeKey = 0xFF1B, kF5Key = 0xFFC2;
constexpr uint32_t kBackspaceKey = 0xFF08;

TEST_F(FolderTest, OneThatHangsHoldsUpNothing) {
  Open("127.0.0.0");
  CloseGate();
  Click(FileRow("hangs"));
  Key(kReturnKey);
  ASSERT_TRUE(HeadSays("Reading hangs"));
  ASSERT_TRUE(HeadSays("No answer for 3 s: hangs"));
  EXPECT_TRUE(HangsIn(home_.At("hangs")));
  // The folder shown stays, and can be used.
  EXPECT_EQ(c_->files.folder.path(), home_.path());
  Key(0xFF50);
  Key(kDownKey);
  EXPECT_EQ(Selected(), "Empty");
  // Asking again does not start another, nor does a look for changes.
  Click(FileRow("hangs"));
  for (int i = 0; i < 5; ++i) Key(kReturnKey);
  Key(kF5Key);
  Turn(150);
  EXPECT_EQ(gate->Waiting(), 1);
  // Another folder is entered before that one has come. What comes late is not shown.
  Click(FileRow("Empty"));
  Key(kReturnKey);
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), home_.At("Empty"));
  Turn(20);
  EXPECT_EQ(c_->files.reading_text, "");
  gate->Open();
  ASSERT_TRUE(Until([&] { return BackgroundTask::WaitForAll(0) == 0; }));
  Turn(50);
  EXPECT_EQ(c_->files.folder.path(), home_.At("Empty"));
}

TEST_F(FolderTest, EscapeGivesUpAndWhatComesIsShown) {
  Open("127.0.0.0");
  CloseGate();
  EnterFolder(c_, home_.At("hangs"), "inside.txt");
  Key(kEscapeKey);
  EXPECT_EQ(c_->reader.request(), nullptr);
  Turn(20);
  EXPECT_EQ(c_->files.reading_text, "");
  EnterFolder(c_, home_.At("hangs"), "inside.txt");
  Turn(20);
  EXPECT_EQ(c_->files.folder.path(), home_.path());
  gate->Open();
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), home_.At("hangs"));
  EXPECT_EQ(Selected(), "inside.txt");
}

TEST_F(FolderTest, AStartInOneThatHangsLeadsElsewhere) {
  CloseGate();
  home_.Folder("hangs/deep");
  const std::string start = home_.At("hangs/deep");
  setenv("HOME", start.c_str(), 1);
  display::UseSteppedClock(1000);
  XwSession("Quorvik", "Quorvik", 7);
  c_ = OpenConsole("127.0.0.0", start);
  ASSERT_NE(c_, nullptr);
  pump_ = XwCreate(0, 0, 0, 50, 50, Pump);
  XwTimer(pump_, 1, 20);
  ASSERT_TRUE(HeadSays("No answer for 3 s: deep"));
  EXPECT_EQ(c_->files.folder.path(), start);
  EXPECT_EQ(WhyNotPrintSelected(c_), "No file is selected");
  Key(kEscapeKey);
  EXPECT_NE(c_->reader.request(), nullptr);
  PressCrumb(c_, 0);
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), "/");
  EXPECT_GT(c_->files.folder.count(), 0);
}

TEST_F(FolderTest, OneThatStopsAnsweringWhileItIsShownSaysSo) {
  Open("127.0.0.0");
  Enter(home_.At("hangs"), "inside.txt");
  CloseGate();
  home_.File("hangs/more.txt", "x");
  ASSERT_TRUE(HeadSays("No answer for 3 s: hangs"));
  EXPECT_EQ(Selected(), "inside.txt");
  SortBy(c_, 0);
  EXPECT_TRUE(c_->files.folder.descending());
  gate->Open();
  ASSERT_TRUE(Until([&] { return c_->files.folder.count() == 2; }));
  EXPECT_EQ(Selected(), "inside.txt");
  ASSERT_TRUE(Until([&] { return c_->files.reading_text.empty(); }));
}

TEST_F(FolderTest, TooManyThatHangAreRefused) {
  Open("127.0.0.0");
  CloseGate();
  for (int i = 0; i < 100 && c_->status.message().tone != Tone::kBad; ++i) {
    EnterFolder(c_, home_.At("hangs/" + std::to_string(i)), "");
    Turn();
  }
  EXPECT_EQ(c_->status.message().tone, Tone::kBad);
  EXPECT_LE(gate->Waiting(), 40);
  EXPECT_EQ(c_->files.folder.path(), home_.path());
  gate->Open();
  ASSERT_TRUE(Until([&] { return BackgroundTask::WaitForAll(0) == 0; }));
  Enter(home_.At("hangs"));
  EXPECT_EQ(c_->files.folder.path(), home_.At("hangs"));
}

TEST_F(FolderTest, TheFilterShowsWhatMatchesUntilEscape) {
  for (const char* name : {"Ärger.pdf", "b.tif", "notes.txt", "z-arg.pdf"})
    home_.File(std::string("Empty/") + name, "x");
  Open("127.0.0.0");
  Enter(home_.At("Empty"), "b.tif");
  const auto type = [this](const char* text) {
    Click(c_->layout.filter);
    display::Modifiers(platform::controlKey);
    Key('a', 'a');
    display::Modifiers(0);
    for (; *text; ++text) Key(uint8_t(*text), uint8_t(*text));
    return c_->files.folder.count();
  };
  EXPECT_EQ(type("arg"), 2);
  EXPECT_EQ(Selected(), "");
  EXPECT_EQ(type("*.PDF,*.tif"), 3);
  EXPECT_EQ(c_->files.folder.rows().CountText().find("3 of 4"), 0u);
  EXPECT_EQ(Selected(), "b.tif") << "it was hidden, and stayed selected";
  EXPECT_EQ(type("*.pdf"), 2);
  EXPECT_EQ(c_->stop, FocusStop::kFilter);
  // Return goes to the files, Escape shows all again and keeps the selection; from elsewhere it is
  // the way back and no more.
  Key(kReturnKey);
  EXPECT_EQ(c_->stop, FocusStop::kFiles);
  SetFocusStop(c_, FocusStop::kPlaces);
  Key(kEscapeKey);
  EXPECT_EQ(c_->stop, FocusStop::kFiles);
  EXPECT_EQ(c_->files.folder.count(), 2);
  EXPECT_EQ(Selected(), "Ärger.pdf");
  Key(kEscapeKey);
  EXPECT_EQ(c_->files.folder.count(), 4);
  EXPECT_EQ(Node("Filter").what.value, "");
  EXPECT_EQ(Selected(), "Ärger.pdf");
  EXPECT_EQ(type("tif"), 1);
  Key(kEscapeKey);
  EXPECT_EQ(c_->files.folder.count(), 4) << "from the box itself";
  EXPECT_EQ(c_->stop, FocusStop::kFiles);
  EXPECT_EQ(type("tif"), 1);
  Enter(home_.At(kFolder));
  EXPECT_EQ(c_->files.folder.count(), 2) << "another folder is shown whole";
}

// The program's own end while threads hang, under a leak check.
void QuitWhileReading(const std::string& home) {
  setenv("HOME", home.c_str(), 1);
  display::UseSteppedClock(1000);
  XwSession("Quorvik", "Quorvik", 7);
  Console* c = OpenConsole("127.0.0.0", home);
  EnterFolder(c, home + "/hangs", "");
  EnterFolder(c, home + "/hangs/more", "");
  display::Quit();
  for (;;) XwWaitEvent(nullptr);
}

TEST_F(FolderTest, QuittingWaitsForNoneThatHangs) {
  CloseGate();
  EXPECT_EXIT(QuitWhileReading(home_.path()), testing::ExitedWithCode(0), "");
}

TEST_F(FolderTest, UpLeadsToTheNearestThatIsThere) {
  home_.Folder("a/b/c/d");
  Open("127.0.0.0");
  Enter(home_.At("a/b/c/d"));
  std::filesystem::remove_all(home_.At("a/b"));
  RunCommand(c_, kUpCommand);  // before its loss is heard of
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), home_.At("a"));
  Key(kBackspaceKey);
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), home_.path());
  EXPECT_EQ(Selected(), "a");
  Enter(home_.At("a/b"));
  EXPECT_EQ(c_->files.folder.path(), home_.path());
  EXPECT_EQ(c_->status.message().tone, Tone::kBad);
}

// What cannot be read is shown empty, and may come back; what is gone gives way to what is above
// it.
TEST_F(FolderTest, AFolderThatIsLostIsShownEmptyOrLeft) {
  home_.Folder("Empty/a/b");
  home_.File("Empty/a/b/c.txt", "x");
  Open("127.0.0.0");
  Enter(home_.At("Empty/a/b"), "c.txt");
  FolderReader::read = [](FolderReading* reading) { reading->error = EIO; };
  RefreshFolder(c_);
  ASSERT_TRUE(Until([&] { return !c_->files.folder.trouble().empty(); }));
  EXPECT_EQ(c_->files.folder.count(), 0);
  EXPECT_EQ(WhyNotPrintSelected(c_), "No file is selected");
  Click(c_->layout.print);
  EXPECT_TRUE(c_->state.transfers.empty());
  FolderReader::read = usual_read_;
  RefreshFolder(c_);
  ASSERT_TRUE(Until([&] { return c_->files.folder.count() == 1; }));
  EXPECT_TRUE(c_->files.folder.trouble().empty());

  std::filesystem::remove_all(home_.At("Empty/a"));
  ASSERT_TRUE(Until([&] { return c_->files.folder.path() == home_.At("Empty"); }));
  EXPECT_EQ(c_->status.message().text,
            "“b” is not there any more: the nearest folder above it is shown");
}

}  // namespace
}  // namespace console
