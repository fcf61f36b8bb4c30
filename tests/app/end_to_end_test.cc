// A day at the print console: the program itself under a window manager, a print server, the
// command line beside it. After what is done window, queue and spool tell the same.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <optional>

#include "tests/app/documents.h"
#include "tests/app/operator.h"
#include "tests/x11/drop_source.h"

namespace console {
namespace {

using testing_daemon::Daemon;
using testing_daemon::RunProgram;

constexpr const char* kPrinters =
    "[printer]\nname=Slow\nrate=1K\nmedia=A4,A3\n"
    "[printer]\nname=Fast\nrate=0\n"
    "[printer]\nname=Tray\nrate=0\npaper=2\nsheet-bytes=1K\n"
    "[profile]\nname=Fine\n";

class EndToEnd : public testing::Test {
 protected:
  void SetUp() override {
    server_.emplace(std::vector<std::string>{"-screen", "0", "1400x900x24"});
    ASSERT_TRUE(server_->running());
    ASSERT_TRUE(server_->StartManager("openbox"));
    user_.emplace();
    home_.Folder(".config/quorvik");
    home_.File(".config/quorvik/console.conf", "refresh-seconds=1\n");
  }
  void TearDown() override {
    user_.reset();
    server_.reset();
  }
  void StartServer(const std::string& configuration = kPrinters) {
    daemon_.Start({"--config", daemon_.WriteFile("printers", configuration)});
  }
  // Sends a document from somewhere else; more words are options.
  void PrintElsewhere(const std::string& name, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {QUORVIK_PRINT, "--server", daemon_.host(), "print"});
    options.push_back(home_.At(name));
    const testing_daemon::Outcome outcome = RunProgram(options, {"USER=ann"});
    ASSERT_EQ(outcome.code, 0) << outcome.error;
  }
  std::string Order() {
    const int fd = daemon_.Connect();
    const std::string order = testing_daemon::Order(fd);
    NC_Disconnect(fd);
    return order;
  }
  // The outputs of a printer, each the same as the document of that name in the home folder.
  size_t GoodOutputs(const std::string& printer) {
    size_t good = 0;
    for (const std::string& file : testing_daemon::FilesIn(daemon_.Path("printed/" + printer))) {
      // Number, time and id come before the name.
      std::string name = file;
      for (int i = 0; i < 3; ++i) name.erase(0, name.find('-') + 1);
      const int same = RunProgram({"/usr/bin/cmp", "-s", home_.At("Jobs/" + name),
                                   daemon_.Path("printed/" + printer + "/" + file)})
                           .code;
      EXPECT_EQ(same, 0) << file;
      good += same == 0;
    }
    return good;
  }

  const Scratch home_;
  Daemon daemon_;
  std::optional<support::XServer> server_;
  std::optional<support::XUser> user_;
};

TEST_F(EndToEnd, RealFilesAreFoundLookedAtAndPrinted) {
  home_.Folder("Jobs/Archive");
  const auto at = [&](const char* name) { return home_.At(std::string("Jobs/") + name); };
  home_.File("Jobs/page 2.pdf", PdfOf(2, 0));
  home_.File("Jobs/page 10.pdf", PdfOf(1, 90));
  WritePng(at("photo.png"), {.opacity = true});
  WriteJpeg(at("photo.jpg"), {.width = 600, .height = 400, .progressive = true});
  WriteJpeg(at("inks.jpg"), {.inks = true, .orientation = 6});
  WriteTiff(at("scan.tif"), {.pages = 3});
  WriteTiff(at("fax.tif"), {.bits = 1});
  home_.File("Jobs/notes.txt", "line one\nline two\n");
  home_.File("Jobs/Größe.txt", "äöü\n");
  home_.File("Jobs/.hidden.txt", "x");
  home_.File("Jobs/huge.bin", "begin");
  ASSERT_EQ(truncate(at("huge.bin").c_str(), 200 << 20), 0);
  StartServer();
  Operator mia(&*user_, home_, daemon_);
  ASSERT_TRUE(mia.Do(R"(
    click file Jobs
    keys Return
    see table Files = 11
    keys Control+Shift+h
    see file .hidden.txt
    keys Control+Shift+h Control+f
    type *.pdf,*.tif
    files Archive, fax.tif, page 2.pdf, page 10.pdf, scan.tif
    keys Control+a
    type GROSSE
    files Größe.txt
    keys Control+a Delete Return
    click column-header Size
    click column-header Size
    see file huge.bin #1
    keys Control+1
    click file page 2.pdf
    see label Kind = PDF document, 2 pages
    see label Format = 210 × 297 mm
    keys Down Down
    see label Kind = JPEG picture
    see label Format = 102 × 67.7 mm
    click file scan.tif
    see label Kind = TIFF picture, 3 pages
    click file inks.jpg
    see label Colours = CMYK
    click pop-up-button Printer
    click menu-item Fast
    click file fax.tif
    click button Print
    see job fax.tif = printed
    click file Größe.txt
    shift-click file scan.tif
    see status Message has 9 files selected
    keys Control+p
    see job scan.tif = printed
    agree)"));
  EXPECT_EQ(GoodOutputs("fast"), 10u);
}

TEST_F(EndToEnd, JobsAreHeldMovedAndRemoved) {
  for (const char* name : {"a", "b", "c", "d", "e"}) home_.File(name, std::string(200000, 'x'));
  StartServer();
  for (const char* name : {"a", "b", "c", "d", "e"}) PrintElsewhere(name);
  Operator mia(&*user_, home_, daemon_);
  ASSERT_TRUE(mia.Do(R"(
    click job b
    control-click job c
    click button Hold Job
    see job b = held
    see job c = held
    see label Selected = 2 jobs
    agree
    click job c
    keys r
    see job c = waiting
    click job e
    drag job e onto job c
    see status Message = Moved in the queue: “e”
    agree)"));
  EXPECT_EQ(Order(), "a b e c d ");
  ASSERT_TRUE(mia.Do(R"(
    click job c
    keys d
    see status Message = Moved in the queue: “c”
    agree)"));
  EXPECT_EQ(Order(), "a b e d c ");
  ASSERT_TRUE(mia.Do(R"(
    click job c
    keys p Home Return
    see label Priority = 100
    agree
    keys m f Return
    see job c = printed
    see label Printer = Fast
    keys a
    see status Message has Will be printed again
    see job c = printed
    agree)"));
  EXPECT_EQ(testing_daemon::FilesIn(daemon_.Path("printed/fast")).size(), 2u);
  // Somebody else's, and two of them: the first answer keeps them, by key and by pointer.
  ASSERT_TRUE(mia.Do(R"(
    click job a
    shift-click job e
    keys Delete
    see button Keep
    keys Escape
    gone button Keep
    click button Remove
    click button Keep
    gone button Keep
    agree)"));
  EXPECT_EQ(Order(), "a b e d c ");
  ASSERT_TRUE(mia.Do(R"(
    keys Delete
    see button Keep
    keys Tab Return
    gone job a
    gone job b
    gone job e
    agree)"));
  EXPECT_EQ(Order(), "d c ");
}

// The list of docs/morning.md.
TEST_F(EndToEnd, AMorningIsWorkedByKeysAlone) {
  home_.Folder("Jobs");
  home_.File("Jobs/a.pdf", PdfOf(2, 0));
  home_.File("Jobs/b.pdf", PdfOf(1, 0));
  home_.File("Jobs/c.txt", std::string(200000, 'x'));
  home_.File("theirs.txt", std::string(200000, 'x'));
  SetTime(home_.At("Jobs/a.pdf"), 1000000000);
  StartServer();
  Operator mia(&*user_, home_, daemon_);
  ASSERT_TRUE(mia.Do(R"(
    see row Jobs #2
    keys Shift+Tab Shift+Tab Down Return
    see button Jobs
    keys Escape Control+f
    type *.pdf
    keys Return Control+3
    files b.pdf, a.pdf
    keys Home Down
    see label Kind = PDF document, 2 pages
    keys F6 Page_Down
    see label Page = 2 of 2
    keys Escape Tab Tab Tab Tab Tab Tab
    see pop-up-button Printer is focused
    keys Down f Return Tab Down
    see menu-item Fine
    keys f Return Tab
    see pop-up-button Profile = Fine
    keys Control+p
    see job a.pdf = printed
    keys Escape Home Shift+Down Tab Tab Tab Tab Tab Tab Tab
    see text-field Copies is focused
    type 2
    keys Control+p
    see job b.pdf = printed
    agree
    keys Escape Tab Tab Tab Tab Tab Down s Return Escape Escape
    type c.t
    see file c.txt is selected
    keys Control+j Control+p
    see job c.txt = held
    agree)"));
  PrintElsewhere("theirs.txt");
  PrintElsewhere("Jobs/c.txt");
  ASSERT_TRUE(mia.Do(R"(
    see job c.txt #2 = waiting
    keys Tab Home Down Down h
    see job c.txt #2 = held
    keys Shift+Up r
    see job c.txt #1 = waiting
    see job c.txt #2 = waiting
    keys End Home Down Down u
    see status Message = Moved in the queue: “c.txt”
    keys p Home Return
    see label Priority = 100
    keys m f Return
    see job c.txt #2 = printed
    keys a
    see status Message has Will be printed again
    see job c.txt #2 = printed
    agree
    keys Home Delete
    see button Keep
    keys Tab Return
    gone job theirs.txt
    agree
    keys Shift+Tab Shift+Tab Menu
    see menu-item Pause
    keys p Return
    see row Slow has paused
    keys Menu
    see menu-item Resume
    keys r Return
    see row Slow has printing, 1 job
    keys Home Down Down Return
    see pop-up-button Printer = Tray
    keys Escape Control+p
    see status Attention = “Tray” is out of paper
    keys Control+l
    see job c.txt #2 has 4 of 196, out of paper
    agree
    keys Control+,
    see text-field Ask every is focused
    keys Control+a
    type 3
    keys Return
    gone window Preferences
    see window Quorvik is active
    keys F1
    see window Keys is active
    keys Escape
    gone window Keys
    see window Quorvik is active
    keys Control+q)"));
  EXPECT_TRUE(mia.HasQuit());
}

TEST_F(EndToEnd, FortyPrintersAreChosenPausedAndFilled) {
  std::string printers = kPrinters;
  for (int i = 4; i <= 40; ++i)
    printers += "[printer]\nname=Desk " + std::to_string(i) + "\nrate=0\n";
  home_.File("five.txt", std::string(5000, 'x'));
  home_.File("long.txt", std::string(200000, 'x'));
  home_.File("one.txt", "x");
  StartServer(printers);
  Operator mia(&*user_, home_, daemon_);
  ASSERT_TRUE(mia.Do(R"(
    click file one.txt
    click pop-up-button Printer
    see menu-item Desk 30
    type Desk 30
    keys Return
    see pop-up-button Printer = Desk 30
    see row Desk 30 is selected
    keys Control+p
    see job one.txt = printed
    click job one.txt
    see label Printer = Desk 30
    agree
    menu row Desk 30
    click menu-item Pause
    see row Desk 30 has paused
    click file long.txt
    keys Control+p
    see job long.txt has waiting: the printer is paused
    agree
    menu row Desk 30
    click menu-item Refuse New Jobs
    see row Desk 30 has no new jobs
    menu row Desk 30
    keys m Right s Return
    click job long.txt
    see label Printer = Slow
    agree
    menu row Desk 30
    click menu-item Resume
    see row Desk 30 has idle
    click pop-up-button Printer
    keys t Return
    see pop-up-button Printer = Tray
    click file five.txt
    click button Print
    see status Attention = “Tray” is out of paper
    see job five.txt has out of paper
    agree
    click button Paper Loaded
    see job five.txt has 4 of 5, out of paper
    see status Attention = “Tray” is out of paper
    agree
    keys Control+l
    see job five.txt = printed
    gone status Attention
    agree)"));
  EXPECT_EQ(testing_daemon::FilesIn(daemon_.Path("printed/tray")).size(), 1u);
}

TEST_F(EndToEnd, AServerThatDiesWhileADocumentIsSentLosesAndDoublesNothing) {
  home_.File("before.txt", std::string(200000, 'x'));
  home_.File("big.bin", std::string(60 << 20, 'y'));
  home_.File("last.txt", std::string(200000, 'z'));
  StartServer();
  PrintElsewhere("before.txt");
  Operator mia(&*user_, home_, daemon_);
  ASSERT_TRUE(mia.Do("see job before.txt\nclick file big.bin"));
  daemon_.Signal(SIGSTOP);
  ASSERT_TRUE(mia.Do(R"(
    click button Print
    see job big.bin has sending
    click file last.txt
    click button Print
    see job last.txt = to be sent)"));
  daemon_.Stop(SIGKILL);
  ASSERT_TRUE(mia.Do(R"(
    see status Server Away
    see job before.txt
    see job big.bin = to be sent
    see job last.txt = to be sent
    click button Retry Now
    see status Server Away)"));
  StartServer();
  ASSERT_TRUE(mia.Do(R"(
    keys F5
    gone status Server Away
    see job big.bin = waiting
    see job last.txt = waiting
    agree)"));
  EXPECT_EQ(Order(), "before.txt big.bin last.txt ");
  const int fd = daemon_.Connect();
  for (const NC_Job& job : testing_daemon::Jobs(fd)) {
    const std::string stored = daemon_.Path("jobs/" + testing_daemon::IdText(job.id) + ".doc");
    EXPECT_EQ(RunProgram({"/usr/bin/cmp", stored, home_.At(job.document)}).code, 0);
  }
  NC_Disconnect(fd);
}

TEST_F(EndToEnd, PreferencesNameAnotherServer) {
  Daemon other(1);
  other.Start();
  StartServer();
  home_.File(".config/quorvik/console.conf", std::string("server=") + daemon_.host() + "\n");
  home_.File("a.txt", "x");
  home_.File("b.txt", std::string(200000, 'x'));
  PrintElsewhere("b.txt");
  Operator mia(&*user_, home_, other, {});
  const std::string host = other.host();
  ASSERT_TRUE(mia.Do("see status " + std::string(daemon_.host()) + R"( = ready
    see job b.txt
    keys Control+,
    see text-field Server is focused
    keys Control+a
    type a b
    see status Server State = A server is HOST or HOST:PORT
    keys Return
    see window Preferences
    keys Escape
    gone window Preferences
    keys Control+,
    see text-field Server = )" +
                     daemon_.host() +
                     R"(
    keys Control+a
    type )" + host + R"(
    see status Server State has changes to it
    click text-field Ask every
    keys Control+a
    type 1
    click check-box Show hidden names
    click check-box Show my jobs only
    click button Save
    gone window Preferences
    see file .config
    gone job b.txt
    see status )" + host +
                     R"( = ready
    see pop-up-button Printer = Proof printer
    click file a.txt
    keys Control+p
    see job a.txt = printed
    agree
    keys Control+q)"));
  EXPECT_TRUE(mia.HasQuit());
  const std::string kept = ReadFile(home_.At(".config/quorvik/console.conf"));
  EXPECT_NE(kept.find("server=" + host), std::string::npos) << kept;
  EXPECT_NE(kept.find("refresh-seconds=1\n"), std::string::npos) << kept;
}

TEST_F(EndToEnd, DocumentsAreOpenedDroppedAndSentBeforeTheEnd) {
  home_.File("a b.txt", "x");
  home_.File("c.txt", "x");
  home_.File("d.txt", "x");
  home_.Folder("Other");
  home_.File("Other/big.bin", std::string(60 << 20, 'y'));
  StartServer("[printer]\nname=Fast\nrate=0\n");
  Operator mia(&*user_, home_, daemon_, {"a b.txt", "gone.txt", "c.txt"});
  ASSERT_TRUE(mia.Do(R"(
    see file a b.txt is selected
    see file c.txt is selected
    see status Message = “gone.txt”: no such file or folder
    click button Dismiss Message
    keys Control+p
    see job a b.txt = printed
    see job c.txt = printed
    agree)"));
  const auto drop = [&](const std::string& list) {
    x11_test::DropSource source(mia.window());
    source.Give(list);
    source.Drop();
    return support::Eventually([&] {
      source.Work();
      return source.heard.size() == 2 && source.heard[1] == "finished 1";
    });
  };
  const std::string home = "file://" + home_.path();
  // The line that counts them goes when they are sent.
  daemon_.Signal(SIGSTOP);
  ASSERT_TRUE(drop(home + "/d.txt\r\n" + home + "/a%20b.txt\r\n"));
  ASSERT_TRUE(mia.Do("see status Message has 2 documents"));
  daemon_.Signal(SIGCONT);
  ASSERT_TRUE(mia.Do(R"(
    see job d.txt = printed
    see job a b.txt #2 = printed
    agree)"));
  ASSERT_TRUE(drop(home + "/Other\r\n"));
  ASSERT_TRUE(mia.Do("files big.bin\nclick file big.bin"));
  daemon_.Signal(SIGSTOP);
  ASSERT_TRUE(mia.Do(R"(
    click button Print
    see job big.bin has sending
    keys Control+q
    see button Keep Open is focused
    keys Escape
    gone button Keep Open
    see job big.bin has sending
    keys Control+q
    see button Close without Sending)"));
  daemon_.Signal(SIGCONT);
  EXPECT_TRUE(mia.HasQuit());
  EXPECT_NE(Order().find("big.bin"), std::string::npos);
}

TEST_F(EndToEnd, WhatOneConsoleDoesTheOtherOneShows) {
  for (const char* name : {"a", "b", "c"}) home_.File(name, std::string(200000, 'x'));
  StartServer();
  for (const char* name : {"a", "b", "c"}) PrintElsewhere(name);
  const Scratch other;
  other.Folder(".config/quorvik");
  // It asks so seldom that it does not hear of what the first one does by itself.
  other.File(".config/quorvik/console.conf", "refresh-seconds=3600\n");
  Operator mia(&*user_, home_, daemon_);
  {
    Operator leo(&*user_, other, daemon_);
    ASSERT_TRUE(leo.Do("click job b\nkeys h\nsee job b = held"));
    ASSERT_TRUE(mia.ComeToFront());
    ASSERT_TRUE(mia.Do(R"(
      see job b = held
      click job b
      keys Delete
      see button Keep
      keys Tab Return
      gone job b
      agree)"));
    // The second one to remove it, or to move it, is told; the queue it sees then is the present
    // one.
    ASSERT_TRUE(leo.ComeToFront());
    ASSERT_TRUE(leo.Do(R"(
      click job b
      keys Delete
      see button Keep
      keys Tab Return
      see status Message = “b” had been removed already, by somebody else
      gone job b
      click button Dismiss Message
      agree)"));
    ASSERT_TRUE(mia.ComeToFront());
    ASSERT_TRUE(mia.Do(R"(
      click job c
      keys m f Return
      see job c = printed
      agree)"));
    ASSERT_TRUE(leo.ComeToFront());
    ASSERT_TRUE(leo.Do(R"(
      click job c
      keys m t Return
      see status Message = “c” was not moved: its state has changed since
      agree)"));
  }
  EXPECT_EQ(Order(), "a c ");
}

}  // namespace
}  // namespace console
