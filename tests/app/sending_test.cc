// Rows of the queue while what they stand for is still being sent, or has just arrived.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>

#include "app/format/words.h"
#include "app/server/document.h"
#include "tests/app/console_fixture.h"
#include "tests/app/gate.h"
#include "tests/app/scripted_server.h"

namespace console {
namespace {

class SendingTest : public ConsoleTest {
 protected:
  // Prints a file of that name before the server is there, and selects its row; then one comes.
  void PrintAndSelect(const char* name) {
    home_.File(name, Bytes(5000));
    Open(address_);
    ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway; }));
    Click(FileRow(name));
    c_->choice.copies = 2;
    Click(c_->layout.print);
    ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 1; }));
    EXPECT_EQ(c_->queue.rows.OutgoingAt(0)->copies, 2);
    Click(c_->queue.table.RowArea(0));
    ASSERT_EQ(c_->queue.table.selected(), 0);
    ASSERT_TRUE(c_->queue.rows.IdAt(0).outgoing);
    EXPECT_EQ(c_->queue.rows.OutgoingAt(0)->size, 5000) << "known before it is opened";
    server_.Listen();
    c_->server.Refresh();
  }
  bool QueueIs(size_t transfers, size_t jobs) {
    return Until([&] {
      return c_->state.transfers.size() == transfers && c_->state.jobs->size() == jobs &&
             c_->queue.rows.count() == int(transfers + jobs);
    });
  }

  const std::string address_ =
      "127.62." + std::to_string(getpid() >> 8 & 255) + "." + std::to_string(getpid() & 255);
  scripted::Server server_{address_, false};
};

// The selection goes from the sending to its job, also where the list of jobs comes later, and the
// first click on a button counts.
class SelectionTest : public SendingTest, public testing::WithParamInterface<const char*> {};

TEST_P(SelectionTest, FollowsWhatIsSentToItsJob) {
  PrintAndSelect(GetParam());
  ASSERT_TRUE(QueueIs(0, 1));
  EXPECT_EQ(c_->queue.table.selected(), 0);
  Click(c_->queue.head.hold_area);
  ASSERT_TRUE(Until([&] { return c_->state.jobs->at(0).state == NC_JOB_HELD; }));
  ASSERT_TRUE(Until([&] { return c_->state.pending.empty(); }));
  EXPECT_EQ(c_->queue.table.selected(), 0);
  Click(c_->queue.head.remove_area);
  ASSERT_TRUE(QueueIs(0, 0));
  EXPECT_EQ(c_->queue.table.selected(), -1);
}
INSTANTIATE_TEST_SUITE_P(Sent, SelectionTest,
                         testing::Values("plain.pdf", "alone.pdf", "breaks.pdf"));

// Its sending broke off, and the queue shows that it had arrived: cancelled before anyone has put
// the two together, it is removed there.
TEST_F(SendingTest, WhatArrivedUnnoticedIsRemovedWithItsRow) {
  PrintAndSelect("breaks.pdf");
  ASSERT_TRUE(QueueIs(1, 1));
  ASSERT_EQ(c_->queue.table.selected(), 0);
  Click(c_->queue.head.remove_area);
  EXPECT_TRUE(QueueIs(0, 0));
}

// Another row is selected before the job comes: it stays so.
TEST_F(SendingTest, AnotherSelectionStays) {
  PrintAndSelect("alone.pdf");
  ASSERT_TRUE(QueueIs(0, 0));
  Key(0xFF09);
  Key(0xFF54);
  Click({c_->queue.table.Body().x, c_->queue.table.Body().bottom() - 9, 40, 8});
  ASSERT_TRUE(QueueIs(0, 1));
  EXPECT_EQ(c_->queue.table.selected(), -1);
  c_->server.Cancel(c_->state.arrivals.back().number);  // too late: it is removed
  EXPECT_TRUE(QueueIs(0, 0));
}

// Several documents are printed at once, without the folder that is selected beside them; their
// jobs are held at once. While a row is held nothing moves under the pointer.
TEST_F(SendingTest, SeveralAreOneChoice) {
  server_.Listen();
  for (const char* name : {"1.txt", "2.txt", "3.txt"}) home_.File(name, Bytes(900));
  Open(address_);
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  Click(FileRow("Empty"));
  display::Modifiers(platform::shiftKey);
  Click(FileRow("3.txt"));
  display::Modifiers(platform::controlKey);
  Click(FileRow("2.txt"));
  Key('p', 'p');
  display::Modifiers(0);
  ASSERT_TRUE(QueueIs(0, 2));
  EXPECT_TRUE(
      Until([&] { return c_->status.message().text == "2 documents sent to “Proof printer”"; }));
  Click(c_->queue.table.RowArea(0));
  display::Modifiers(platform::controlKey);
  Key('a', 'a');
  display::Modifiers(0);
  Click(c_->queue.head.hold_area);
  ASSERT_TRUE(Until([&] {
    const auto& jobs = *c_->state.jobs;
    return std::all_of(jobs.begin(), jobs.end(),
                       [](const NC_Job& job) { return job.state == NC_JOB_HELD; });
  }));

  const Area row = FileRow("3.txt");
  display::MovePointer(c_->window->x + row.x + 9, c_->window->y + row.y + 9);
  display::Press(1);
  Turn(2);
  home_.File("0.txt", "x");
  RefreshFolder(c_);
  ASSERT_TRUE(HasRead());
  EXPECT_EQ(FileRow("3.txt").y, row.y);
  display::Release(1);
  Turn(2);
  EXPECT_GT(FileRow("3.txt").y, row.y);
  EXPECT_EQ(Selected(), "3.txt");
}

// The question before closing counts what was printed since the last tick, and ends the drag that
// it covers.
TEST_F(SendingTest, TheQuestionMissesNothingAndLetsNothingGoOn) {
  platform::TreeListener listener{[](void*, uint64_t, platform::Change) {}, nullptr};
  platform::AddTreeListener(&listener);
  Open(address_);
  Click(FileRow("letter.txt"));
  PrintSelected(c_);
  ASSERT_TRUE(c_->state.transfers.empty());
  c_->failed_while_asking = true;  // at another question
  EXPECT_FALSE(AskBeforeQuit(c_));
  EXPECT_FALSE(c_->failed_while_asking);
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 1; }));
  EXPECT_FALSE(Node("1 document has not been sent").what.name.empty());
  platform::RemoveTreeListener(&listener);
  display::OpenFiles({home_.At("letter.txt")}, false);
  const auto told = [this] { return c_->status.message().text; };
  EXPECT_TRUE(Until([&] { return told().find("What was dropped is not printed") == 0; }));
  Key(0xFF1B);
  ASSERT_FALSE(c_->asking);
  Sending& state = c_->state.transfers[0].state;
  state = Sending::kCancelling;
  EXPECT_FALSE(NotAtServer(c_).any()) << "nobody waits for what is cancelled";
  state = Sending::kWaiting;

  const Area name = c_->files.table.ColumnArea(0);
  const int x = c_->window->x + name.right() - 1, y = c_->window->y + name.y + 10;
  display::MovePointer(x, y);
  display::Press(1);
  Turn(2);
  display::Close(static_cast<platform::WindowRef>(c_->window->platform));
  Turn(2);
  ASSERT_TRUE(c_->asking);
  EXPECT_FALSE(c_->hover);
  display::MovePointer(x - 30, y);
  display::Release(1);
  Turn(2);
  EXPECT_EQ(c_->files.table.ColumnArea(0).w, name.w);
}

// A document on a mount that does not answer, when it is opened or while it is read.
Gate* gate;
bool hangs_in_reading;
const auto usual_open = Document::open_file;
const auto usual_read = Document::read_file;

int OpenBehindGate(const char* path) {
  const bool hangs = std::string(path).find("hangs") != std::string::npos;
  if (hangs && !hangs_in_reading) gate->Pass();
  return usual_open(path);
}
ssize_t ReadBehindGate(int fd, void* data, size_t size) {
  struct stat s {};
  const off_t at = lseek(fd, 0, SEEK_CUR);
  if (hangs_in_reading && fstat(fd, &s) == 0 && s.st_size == 600000 && at > 0) gate->Pass();
  return usual_read(fd, data, size);
}

// Files that change or break while they are read: what has come comes out, and then why no more.
TEST(DocumentTest, SaysWhyItCannotBeReadOn) {
  static std::string path;
  static int error;
  Scratch home;
  home.Folder("folder");
  path = home.At("file");
  // The second piece finds the file cut, or an error.
  Document::read_file = [](int fd, void* data, size_t size) -> ssize_t {
    const bool first = lseek(fd, 0, SEEK_CUR) == 0;
    if (!first && error) return errno = error, -1;
    if (!first && truncate(path.c_str(), 10) != 0) return -1;
    return usual_read(fd, data, size);
  };
  const struct {
    const char* name;
    int error;
    size_t size, read;
    std::string trouble;
  } rows[] = {{"missing", 0, 0, 0, TroubleText(ENOENT)},
              {"folder", 0, 0, 0, "not a file"},
              {"file", 0, 0, 0, ""},
              {"file", 0, 9000, 9000, ""},
              {"file", 0, 600000, 256 * 1024, "the file ended early"},
              {"file", EIO, 600000, 256 * 1024, TroubleText(EIO)}};
  for (const auto& row : rows) {
    home.File("file", Bytes(row.size));
    error = row.error;
    const Document document(home.At(row.name));
    ASSERT_TRUE(document.Opened(20000));
    EXPECT_EQ(document.size(), int64_t(row.size));
    size_t all = 0;
    char bytes[4096];
    for (ssize_t n; (n = read(document.descriptor(), bytes, sizeof bytes)) > 0;) all += size_t(n);
    EXPECT_EQ(all, row.read);
    EXPECT_EQ(document.Trouble(), row.trouble);
  }
  EXPECT_EQ(BackgroundTask::WaitForAll(20000), 0);
  Document::read_file = usual_read;
}

class HangingDocument : public SendingTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    SendingTest::SetUp();
    for (const char* name : {"a.pdf", "b.pdf"}) home_.File(name, Bytes(5000));
    for (const char* name : {"hangs 1.pdf", "hangs 2.pdf"}) home_.File(name, Bytes(600000));
    static auto* the_gate = new Gate;
    gate = the_gate;
    gate->Close();
    hangs_in_reading = GetParam();
    Document::open_file = OpenBehindGate;
    Document::read_file = ReadBehindGate;
  }
  // The console is closed while one still hangs.
  void TearDown() override {
    SendingTest::TearDown();
    EXPECT_GT(gate->Waiting(), 0);
    gate->Open();
    EXPECT_EQ(BackgroundTask::WaitForAll(20000), 0);
    Document::open_file = usual_open;
    Document::read_file = usual_read;
  }
  void Print(const char* name) {
    Click(FileRow(name));
    Click(c_->layout.print);
  }
};

TEST_P(HangingDocument, HoldsUpNothing) {
  server_.Listen();
  Open(address_);
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  const auto order = [this](const char* name) {
    PrintOrder o;
    o.path = home_.At(name);
    o.document = name;
    if (*name == 'b') o.printer = "Office";
    return o;
  };
  const auto tells = [this](const char* text) {
    return Until([&] { return c_->state.notices.back().message.text == text; });
  };
  c_->server.Send({order("a.pdf")});
  c_->server.Send({order("hangs 1.pdf"), order("b.pdf")});
  ASSERT_TRUE(QueueIs(2, 1));
  ASSERT_TRUE(Until([&] { return c_->state.transfers[0].silent_s >= 1; }));
  EXPECT_EQ(c_->state.transfers[0].sent > 0, hangs_in_reading);
  Click(c_->queue.table.RowArea(2));
  // It is not dragged in front of those that are still to be sent.
  const Area job = c_->queue.table.RowArea(2);
  c_->queue.table.Press({kQueue, Table::kRow, 2}, job.x + 50);
  c_->queue.table.Drag(job.x + 50, c_->queue.table.RowArea(0).y + 2);
  EXPECT_EQ(c_->queue.table.gap(), 2);
  EXPECT_TRUE(c_->queue.table.Cancel());
  Click(c_->queue.head.hold_area);
  ASSERT_TRUE(Until([&] { return c_->state.jobs->at(0).state == NC_JOB_HELD; }));
  Click(c_->queue.table.RowArea(0));
  Click(c_->queue.head.remove_area);
  ASSERT_TRUE(QueueIs(0, 2));
  // What arrived of each order is told, and nothing else.
  EXPECT_TRUE(tells("“b.pdf” sent to “Office”"));
  c_->server.Send({order("gone.pdf"), order("a.pdf")});
  EXPECT_TRUE(tells("“a.pdf” sent"));
  c_->server.Send({order("a.pdf")});
  EXPECT_TRUE(tells("“a.pdf” sent (2 times)"));
  for (const Notice& notice : c_->state.notices) EXPECT_NE(notice.message.text, "");
  Print("hangs 2.pdf");
  ASSERT_TRUE(Until([&] { return gate->Waiting() == 2; }));
}
INSTANTIATE_TEST_SUITE_P(OpenedOrRead, HangingDocument, testing::Bool());

}  // namespace
}  // namespace console
