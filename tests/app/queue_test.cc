// The queue in the window, against a real server and a scripted one: what is asked for is done,
// once, to all that are selected, and what another console did first is told.
#include <gtest/gtest.h>

#include "app/look/controls.h"
#include "app/panes/queue_cells.h"
#include "app/window/commands.h"
#include "app/window/queue_commands.h"
#include "printserver/changes.h"
#include "tests/app/console_fixture.h"
#include "tests/app/scripted_server.h"
#include "tests/printserverd/daemon.h"

namespace console {
namespace {

using testing_daemon::Daemon;

constexpr uint32_t kEscapeKey = 0xFF1B, kReturnKey = 0xFF0D;

class QueueTest : public ConsoleTest {
 protected:
  // Slow printers; the first document is at the first one, the others wait. "m" asks for media.
  void OpenWith(const std::vector<std::string>& documents, const std::string& owner = "mia") {
    const char* kPrinters =
        "[printer]\nname=Proof\nmedia=A1\nrate=1K\n[printer]\nname=Office\nmedia=A4\nrate=1K\n"
        "[printer]\nname=Wide\nrate=1K\n";
    daemon_.Start({"--config", daemon_.WriteFile("printers", kPrinters)});
    fd_ = daemon_.Connect();
    for (const std::string& name : documents) {
      const std::string ticket = "document=" + name + "\nowner=" + owner + "\nprinter=Proof\n" +
                                 (name == "m" ? "media=A1\n\n" : "\n");
      ASSERT_EQ(testing_daemon::Send(fd_, ticket, Bytes(200000), ids_[name].data()), 1);
    }
    Open(daemon_.host());
    ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == int(documents.size()); }));
    ASSERT_TRUE(Until([&] { return State(documents[0]) == NC_JOB_PRINTING; }));
    SetFocusStop(c_, FocusStop::kQueue);
  }
  void TearDown() override {
    ConsoleTest::TearDown();
    if (fd_ >= 0) NC_Disconnect(fd_);
  }
  QueueId Id(const std::string& name) {
    QueueId id;
    std::copy_n(ids_[name].begin(), id.job.size(), id.job.begin());
    return id;
  }
  void Select(const std::vector<std::string>& names) {
    std::vector<QueueId> ids;
    for (const std::string& name : names) ids.push_back(Id(name));
    c_->queue.selection.Set(ids);
    Turn();
  }
  // As the server has it; -1: it has none such.
  int State(const std::string& name) { return testing_daemon::JobOf(fd_, ids_[name].data()).state; }
  std::string Rows() {
    std::string names;
    for (int row = 0; row < c_->queue.rows.count(); ++row)
      names += std::string(c_->queue.rows.JobAt(row)->document) + " ";
    return names;
  }
  bool Settled() {
    return Until([&] { return c_->state.pending.empty(); });
  }
  bool Tells(const std::string& text) {
    return Until([&] { return c_->status.message().text.find(text) != std::string::npos; });
  }

  // To a place near the upper left corner.
  void MoveTo(const Area& to) {
    display::MovePointer(c_->window->x + to.x + 40, c_->window->y + to.y + 10);
    Turn(2);
  }
  void DragTo(const Area& from, const Area& to) {
    MoveTo(from);
    display::Press(1);
    MoveTo(to);
  }
  void LetGo() {
    display::Release(1);
    Turn(2);
  }
  Area Row(int row) { return c_->queue.table.RowArea(row); }

  Daemon daemon_;
  int fd_ = -1;
  std::map<std::string, std::array<uint8_t, NC_ID_SIZE>> ids_;
};

// Any number, for the jobs that were selected when the window was opened.
TEST_F(QueueTest, ANumberThatNoMenuHasIsAsked) {
  OpenWith({"a", "b", "c"});
  const auto job = [this](const char* name) {
    return testing_daemon::JobOf(fd_, ids_[name].data());
  };
  Select({"b", "c"});
  AskNumber(c_, Verb::kCopies);
  Select({"a"});
  Turn(4);
  for (const char* refused : {"0", "1000", "x"}) {
    for (const char* digit = refused; *digit; ++digit) Key(uint32_t(*digit), uint32_t(*digit));
    Key(kReturnKey);
    ASSERT_FALSE(Node("Set").what.name.empty()) << refused;
  }
  for (const uint32_t digit : {'7', '3'}) Key(digit, digit);
  Key(kReturnKey);
  ASSERT_TRUE(Until([&] { return job("b").copies == 73 && job("c").copies == 73; }));
  EXPECT_EQ(job("a").copies, 1);
  ASSERT_TRUE(Settled());
  Select({"a"});
  AskNumber(c_, Verb::kPriority);
  Turn(4);
  for (const uint32_t key : {0x31u, 0x30u, 0x31u, kReturnKey, 0xFF09u}) Key(key, key & 0x3F);
  EXPECT_FALSE(Node("Set").what.name.empty()) << "Tab leaves the box and no more";
  Key(kEscapeKey);
  EXPECT_TRUE(Node("Set").what.name.empty());
  // It begins with what the job has.
  AskNumber(c_, Verb::kPriority);
  Turn(4);
  Key(kReturnKey);
  ASSERT_TRUE(Settled());
  EXPECT_EQ(job("a").priority, 50);
  Select({"b"});
  for (const NC_JobState state : {NC_JOB_HELD, NC_JOB_WAITING}) {
    Key(' ', ' ');
    EXPECT_TRUE(Until([&] { return State("b") == state; }) && Settled());
  }
}

TEST_F(QueueTest, JobsOfAPrinterChangePlacesByKeysAndByDragging) {
  OpenWith({"a", "b", "c", "d"});
  Select({"c"});
  Key('d', 'd');
  ASSERT_TRUE(Until([&] { return Rows() == "a b d c "; }));
  ASSERT_TRUE(Settled());
  EXPECT_EQ(c_->queue.Selected(), std::vector<QueueId>{Id("c")});

  // Two rows to the gap below the first.
  Select({"c", "d"});
  const auto drag = [this](int from, int to_y) {
    DragTo(Row(from), {Row(from).x, to_y - 10});
    LetGo();
  };
  drag(2, Row(1).y + 2);
  ASSERT_TRUE(Until([&] { return Rows() == "a d c b "; }));
  EXPECT_EQ(c_->queue.Selected().size(), 2u) << "a drag selects nothing else";
  ASSERT_TRUE(Settled());

  // Escape stops a drag.
  DragTo(Row(2), {0, Row(0).y - 8});
  EXPECT_EQ(c_->queue.table.gap(), 1) << "what prints stays in front";
  Key(kEscapeKey);
  LetGo();
  EXPECT_TRUE(c_->state.pending.empty());

  // On a printer's row it goes to that printer; elsewhere nothing comes of it.
  Select({"b"});
  const auto carry = [this](const Area& to) {
    DragTo(Row(c_->queue.rows.RowOf(Id("b"))), to);
    EXPECT_LT(c_->queue.table.gap(), 0);
    LetGo();
  };
  carry(c_->layout.folder);
  const Area last_printer = c_->printer_list.list.RowArea(2);
  carry({last_printer.x, last_printer.bottom(), last_printer.w, 20});
  EXPECT_TRUE(c_->state.pending.empty());
  carry(c_->printer_list.list.RowArea(0));  // Office
  const auto printer = [this] {
    return std::string(testing_daemon::JobOf(fd_, ids_["b"].data()).printer);
  };
  ASSERT_TRUE(Until([&] { return printer() == "Office"; }) && Settled());
  Select({"c"});
  Key('d', 'd');
  EXPECT_TRUE(Tells("The job is the last one")) << "another printer's is not passed";
  // By the menu of printers, which its key opens.
  const auto choose = [](char first) {
    for (const uint32_t key : {uint32_t('m'), uint32_t(first), kReturnKey, kEscapeKey}) {
      display::KeyDown(key, key < 128 ? key : 0);
      display::KeyUp(key, key < 128 ? key : 0);
    }
  };
  Select({"b"});
  choose('p');
  ASSERT_TRUE(Until([&] { return printer() == "Proof"; }) && Settled());
  SetFocusStop(c_, FocusStop::kQueue);

  MoveJobsTo(c_, "Proof");
  EXPECT_TRUE(Tells("The job is for “Proof” already"));
  c_->server.ChangePrinter("Wide", PrinterSetting::kRefuseJobs);
  ASSERT_TRUE(Until([&] { return !c_->printers.Find("Wide")->printer->accepting; }));
  MoveJobsTo(c_, "Wide");
  EXPECT_EQ(c_->status.message().text, "“Wide” takes no new jobs");
  EXPECT_FALSE(PrinterChoices(c_)[2].enabled);
  choose('w');
  Turn(6);
  EXPECT_TRUE(c_->state.pending.empty());
  SetFocusStop(c_, FocusStop::kQueue);

  // A place beside a job of another priority brings that one along, and it is told.
  Select({"d"});
  ChangeJobs(c_, {Verb::kPriority, 75});
  ASSERT_TRUE(Tells("Priority changed: “d”") && Settled());
  Select({"c"});
  MoveJobs(c_, -1);
  EXPECT_TRUE(Tells("Moved in the queue: “c”, with priority 75 now") && Settled());
  MoveJobs(c_, 1);
  EXPECT_TRUE(Tells("Moved in the queue: “c”, with priority 50 now") && Settled());

  // In another order it is not done, and a line says why.
  Select({"c", "d"});
  c_->queue.Sort(QueueOrder::kName, true);
  drag(0, Row(3).bottom());
  EXPECT_TRUE(Tells("Jobs are moved in Print Order only"));
  ChooseSort(c_, 0);
  DrawConsole(c_);
  EXPECT_FALSE(c_->status.HasError()) << c_->status.message().text;
  EXPECT_EQ(testing_daemon::Order(fd_), "a d c b ");
}

TEST_F(QueueTest, AJobThatIsPutElsewhereStaysInSight) {
  std::vector<std::string> names;
  for (char name = 'a'; name <= 'z'; ++name) names.emplace_back(1, name);
  OpenWith(names);
  Table& table = c_->queue.table;
  const auto shows = [&table](int row) {
    return table.RowArea(row).y >= table.Body().y &&
           table.RowArea(row).bottom() <= table.Body().bottom();
  };
  table.Select(25);
  ASSERT_FALSE(shows(1));
  ChangeJobs(c_, {Verb::kPriority, 100});
  ASSERT_TRUE(Until([&] { return c_->queue.rows.RowOf(Id("z")) == 1; }));
  ASSERT_TRUE(Settled());
  EXPECT_TRUE(shows(1));

  // What is printed is followed to its job, but not while somebody works in the queue, or has
  // something selected there.
  const auto shows_new = [&](FocusStop before, FocusStop after) {
    table.ScrollTo(0);
    SetFocusStop(c_, before);
    PrintOrder order;
    order.path = home_.At("letter.txt");
    order.document = "new";
    order.printer = "Proof";
    const int n = c_->queue.rows.count();
    SendOrders(c_, {order}, 0);
    SetFocusStop(c_, after);
    EXPECT_TRUE(
        Until([&] { return c_->state.transfers.empty() && c_->queue.rows.count() == n + 1; }));
    return shows(n);
  };
  EXPECT_FALSE(shows_new(FocusStop::kQueue, FocusStop::kQueue));
  EXPECT_FALSE(shows_new(FocusStop::kFiles, FocusStop::kQueue));
  EXPECT_FALSE(shows_new(FocusStop::kFiles, FocusStop::kFiles));
  c_->queue.selection.Clear();
  EXPECT_TRUE(shows_new(FocusStop::kFiles, FocusStop::kFiles));
  table.Select(1);

  // A list that comes by itself scrolls nothing, and a key shows what it acts on.
  table.ScrollTo(12 * Table::kRowHeight);
  testing_daemon::Ask(fd_, 6, ids_["b"].data(), "");
  EXPECT_EQ(testing_daemon::AnswerOf(fd_), NC_STATUS_DONE);
  c_->server.Refresh();
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 29; }));
  EXPECT_EQ(table.top(), 12 * Table::kRowHeight);
  EXPECT_FALSE(shows(1) || shows(28));
  SetFocusStop(c_, FocusStop::kQueue);
  Key('h', 'h');
  EXPECT_TRUE(shows(1));
}

// Another console removed the job before which one was to stand.
TEST_F(QueueTest, TheSecondOfTwoConsolesIsTold) {
  OpenWith({"a", "b", "d"});
  daemon_.Signal(SIGSTOP);
  testing_daemon::Ask(fd_, 6, ids_["b"].data(), "");
  Select({"d"});
  MoveJobs(c_, -1);
  c_->server.Change({{Id("a").job, "a", ""}}, {Verb::kPriority, 60});
  // What was to be closed stays open for that.
  static bool stays = true;
  std::atexit([] {
    if (stays) _exit(1);
  });
  EXPECT_FALSE(AskBeforeQuit(c_));
  EXPECT_FALSE(Node("Close Now").what.name.empty());
  daemon_.Signal(SIGCONT);
  EXPECT_EQ(testing_daemon::AnswerOf(fd_), NC_STATUS_DONE);
  EXPECT_TRUE(Tells("one of the two jobs has been removed by somebody else"));
  EXPECT_TRUE(Until([&] { return !c_->asking; }));
  EXPECT_EQ(c_->state.notices.back().message.text, "Priority changed: “a”") << "by itself";
  stays = false;
  EXPECT_EQ(c_->queue.Selected(), std::vector<QueueId>{Id("d")});
}

TEST_F(QueueTest, RowsAreCarriedToWhatTakesThem) {
  OpenWith({"a", "b", "c", "d"});
  const auto printer_of = [this](const std::string& job) {
    return std::string(testing_daemon::JobOf(fd_, ids_[job].data()).printer);
  };
  DragTo(Row(2), Row(1));
  EXPECT_EQ(c_->queue.Selected().size(), 2u);
  MoveTo(c_->printer_list.list.RowArea(0));
  EXPECT_TRUE(Tells("Drop to move “c” to “Office”") && c_->printer_list.takes_drop == "Office");
  ASSERT_EQ(NC_RemovePrintRequest(fd_, ids_["b"].data()), 1);
  c_->server.Refresh();
  ASSERT_TRUE(Until([&] { return c_->state.jobs->size() == 3; }));
  LetGo();
  ASSERT_TRUE(Until([&] { return printer_of("c") == "Office"; }) && Settled());
  EXPECT_EQ(printer_of("d"), "Proof");
  // Files are printed, folders are not; Escape leaves no trace.
  DragTo(FileRow("Empty"), Row(0));
  EXPECT_TRUE(Tells("A folder is not printed") && !c_->queue.takes_drop);
  Key(kEscapeKey);
  EXPECT_FALSE(c_->files.selection.Any());
  LetGo();
  c_->choice.copies = 3;
  DragTo(FileRow("letter.txt"), Row(0));
  EXPECT_TRUE(Tells("Drop to print on “Proof”") && c_->queue.takes_drop);
  LetGo();
  ASSERT_TRUE(Until([&] { return c_->queue.rows.CountOf("letter.txt") == 1; }));
  EXPECT_EQ(c_->choice.copies, 1) << "used up";
  // What releases the table ends it, too: the selected job stays where it is.
  Select({"d"});
  DragTo(FileRow("letter.txt"), c_->printer_list.list.RowArea(0));
  c_->files.table.Release();
  LetGo();
  EXPECT_TRUE(c_->state.pending.empty());
  // Another folder, or a question, ends it.
  DragTo(FileRow("letter.txt"), Row(0));
  Enter(home_.At("Empty"));
  EXPECT_FALSE(c_->queue.takes_drop);
  LetGo();
  EXPECT_FALSE(c_->status.HasError()) << c_->status.message().text;
}

// A drag of documents lights up what takes them, and a drop on a printer's row prints there.
TEST_F(QueueTest, ADropGoesWhereTheDragHasShown) {
  OpenWith({"a"});
  home_.File("dropped.txt", "x");
  const Area row = c_->printer_list.list.RowArea(0);
  const std::string name = c_->printer_list.NameAt(0);
  ASSERT_NE(name, c_->printers.chosen());
  c_->choice.media = "A1";
  const auto window = static_cast<platform::WindowRef>(c_->window->platform);
  c_->status.Tell(Tone::kGood, "an older message");
  c_->hover = {kFiles, Table::kRow, 0};
  display::DragFiles(window, 300, 200);
  Turn();
  EXPECT_TRUE(c_->queue.takes_drop && !c_->hover);
  display::DragFiles(window, row.x + 60, row.y + 10);
  Turn();
  EXPECT_FALSE(c_->queue.takes_drop);
  EXPECT_EQ(c_->printer_list.takes_drop, name);
  EXPECT_TRUE(Tells("Drop to print on"));
  display::EndDragOfFiles(window, true);
  display::DragFiles(window, 300, 200);  // another one, before the documents have come
  display::OpenFiles({home_.At("dropped.txt")}, false);
  Turn();
  EXPECT_EQ(c_->printer_list.takes_drop, "");
  ASSERT_TRUE(Until([&] { return c_->queue.rows.CountOf("dropped.txt") == 1; }));
  EXPECT_EQ(c_->choice.copies, 1) << "used up";
  for (const NC_Job& job : *c_->state.jobs)
    EXPECT_TRUE((job.printer == name && !*job.media) || std::string(job.document) == "a");
  // The second drop comes before the documents of the first: each prints where it was dropped.
  while (c_->status.HasError()) c_->status.ReadMessage();
  display::DragFiles(window, row.x + 60, row.y + 10);
  display::EndDragOfFiles(window, true);
  display::OpenFiles({home_.At("dropped.txt")}, false);
  display::DragFiles(window, 300, 200);
  display::EndDragOfFiles(window, true);
  display::FailDrop(window);
  EXPECT_TRUE(Tells("What was dropped could not be taken")) << c_->status.message().text;
  ASSERT_TRUE(Until([&] { return c_->queue.rows.CountOf("dropped.txt") == 2; }));
  EXPECT_FALSE(c_->queue.takes_drop);
  EXPECT_TRUE(c_->awaited_drops.empty());
  for (const NC_Job& job : *c_->state.jobs)
    EXPECT_TRUE(job.printer == name || std::string(job.document) == "a");
}

TEST_F(QueueTest, AMoveSaysWhatCameOfIt) {
  OpenWith({"a", "b", "m"});
  Select({"a", "b"});
  ChangeJobs(c_, {Verb::kCopies, 2});
  EXPECT_TRUE(Tells("1 of 2 jobs was left out. The job is at the printer") && Settled());
  c_->status.ReadMessage();
  // The media of the next job are kept where the printer has them, and given up aloud elsewhere.
  c_->choice.media = "A1";
  ChoosePrinter(c_, "Proof");
  EXPECT_EQ(c_->choice.media, "A1");
  ChoosePrinter(c_, "Office");
  EXPECT_EQ(c_->choice.media, "");
  EXPECT_TRUE(Tells("“Office” has no A1: its usual media are used"));
  Select({"m"});
  ChangeJobs(c_, {Verb::kMove, 0, "Office"});
  EXPECT_TRUE(Tells("Moved to “Office”: “m”. “Office” has no A1: its usual media are used"));
  c_->status.ReadMessage();
  ASSERT_TRUE(Settled());
  // Its menu offers what that printer has, while it is not at it.
  ChangeJobs(c_, {Verb::kHold});
  ASSERT_TRUE(Tells("Held: “m”") && Settled());
  const std::vector<CommandChoice> media = MediaChoices(c_);
  ASSERT_EQ(media.size(), 2u);
  EXPECT_TRUE(media[1].text == "A4" && !media[0].checked && !media[1].checked);
  ChangeJobs(c_, {Verb::kMedia, 0, media[1].name});
  EXPECT_TRUE(Tells("Media changed: “m”") && Settled() && MediaChoices(c_)[1].checked);
  ASSERT_EQ(ProfileChoices(c_)[2].text, "Standard");
  ChangeJobs(c_, {Verb::kProfile, 0, ProfileChoices(c_)[2].name});
  EXPECT_TRUE(Tells("Profile changed: “m”") && Settled() && ProfileChoices(c_)[2].checked);
  const NC_Job m = testing_daemon::JobOf(fd_, ids_["m"].data());
  EXPECT_EQ(std::string(m.media) + " " + m.profile, "A4 Standard");
  c_->server.MoveJobs("Office", "Wide");
  EXPECT_TRUE(Tells("Moved to “Wide”: “m”") && Settled());
  // A printer that does not say what it has leaves the choice to the other one.
  c_->queue.Sort(QueueOrder::kName, true);
  Select({"m", "b"});
  ASSERT_EQ(MediaChoices(c_).size(), 2u);
  EXPECT_EQ(MediaChoices(c_)[1].text, "A1");
  c_->queue.Sort(QueueOrder::kPrint, false);
  // Somebody else moves a job inside one period: the server's list is asked for before the move.
  Select({"b"});
  ASSERT_EQ(testing_daemon::Change(fd_, ids_["b"].data(), "printer=Office\n\n"), 1);
  MoveJobsTo(c_, "Wide");
  EXPECT_TRUE(Tells("Moved to “Wide”, though somebody else had moved it to “Office”: “b”") &&
              Settled());
  // Where it is already it has crossed nobody.
  c_->status.ReadMessage();
  c_->server.Change({{Id("b").job, "b", "Proof"}}, {Verb::kMove, 0, "Wide"});
  EXPECT_TRUE(Tells("Moved to “Wide”: “b”"));
  c_->server.ChangePrinter("gone", PrinterSetting::kPause);
  EXPECT_TRUE(Tells("“gone” was not paused"));
}

TEST_F(QueueTest, ShowsWhatIsAskedFor) {
  OpenWith({"a", "b", "c"}, "ada");
  Select({"b"});
  ToggleMine(c_);
  Turn(2);
  EXPECT_EQ(c_->queue.rows.count(), 0);
  EXPECT_FALSE(CanRun(c_, kHoldCommand)) << "verbs act on what is shown";
  ToggleMine(c_);
  EXPECT_EQ(c_->queue.Selected(), std::vector<QueueId>{Id("b")});
  GoToQueueFilter(c_);
  DrawConsole(c_);
  Turn(2);
  Key('c', 'c');
  EXPECT_EQ(Rows(), "c ");
  Key(kReturnKey);
  EXPECT_EQ(c_->queue.Selected(), std::vector<QueueId>{Id("c")});
  Click(c_->queue.head.text_area);
  Key(kEscapeKey);
  EXPECT_EQ(Rows(), "a b c ");
  EXPECT_EQ(c_->stop, FocusStop::kQueue);
  const Area head = c_->queue.table.ColumnArea(int(QueueColumn::kDocument));
  for (const char* order : {"a b c ", "c b a ", "a b c "}) {
    Click({head.x, head.y, head.w, Table::kHeaderHeight});
    EXPECT_EQ(Rows(), order);
  }
  EXPECT_TRUE(c_->queue.rows.InPrintOrder()) << "the third press";
  for (int i = 0; i < 2; ++i) ChooseSort(c_, 2);
  EXPECT_EQ(Rows(), "c b a ");
  ChooseSort(c_, 0);
  // The menu of one that is selected is for all of them.
  Select({"b", "c"});
  const Area row = c_->queue.table.RowArea(2);
  display::Click(c_->window->x + row.x + 100, c_->window->y + row.y + 9, 2);
  display::KeyDown(kEscapeKey);
  display::KeyUp(kEscapeKey);
  Turn(4);
  EXPECT_EQ(c_->queue.Selected().size(), 2u);
  ChoosePart(c_, QueueFilter::kEnded);
  EXPECT_EQ(c_->queue.rows.count(), 0);
  EXPECT_EQ(XwGetValue(c_->queue.head.part), int(QueueFilter::kEnded));
  SetFocusStop(c_, FocusStop::kShowAllJobs);
  DrawConsole(c_);
  Turn(2);
  Key(' ', ' ');
  EXPECT_EQ(Rows(), "a b c ");
  EXPECT_EQ(c_->stop, FocusStop::kQueue);
  EXPECT_FALSE(CanFocus(c_->queue.show_all));
}

class LosingTest : public ConsoleTest, public testing::WithParamInterface<Verb> {
 protected:
  // Changes two jobs, in their order.
  void ChangeBoth(const char* first, const char* second, const JobChange& change) {
    server_.Listen();
    Open(address_);
    ASSERT_TRUE(Until([&] { return IsReady(); }));
    for (const char* name : {first, second}) {
      PrintOrder order;
      order.path = home_.At("letter.txt");
      order.document = name;
      c_->server.Send({order});
    }
    ASSERT_TRUE(Until([&] { return c_->state.jobs->size() == 2; }));
    SetFocusStop(c_, FocusStop::kQueue);
    c_->queue.selection.All();
    ChangeJobs(c_, change);
  }

  const std::string address_ =
      "127.63." + std::to_string(getpid() >> 8 & 255) + "." + std::to_string(getpid() & 255);
  scripted::Server server_{address_, false};
};

// The connection ends with the answer to a change, and those behind it have not been sent: none is
// sent again by itself.
TEST_P(LosingTest, AChangeIsSentOnce) {
  ChangeBoth("loses.pdf", "plain.pdf", {GetParam(), 0, "Office"});
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway; }));
  EXPECT_TRUE(c_->state.pending.empty());
  EXPECT_NE(c_->status.message().text.find("1 change was not made"), std::string::npos);
  const int away = c_->state.away_times;
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kReady; }));
  c_->server.Refresh();
  Turn(20);
  ASSERT_TRUE(Until([&] { return c_->state.jobs->at(0).state == NC_JOB_HELD; }));
  EXPECT_EQ(c_->state.jobs->at(0).copies, 2) << "one change";
  EXPECT_EQ(c_->state.jobs->at(1).copies, 1) << "none";
  EXPECT_EQ(c_->state.away_times, away);
}
INSTANTIATE_TEST_SUITE_P(Verbs, LosingTest, testing::Values(Verb::kHold, Verb::kMove));

TEST_F(LosingTest, ProgressIsToldFromChangeToChange) {
  ChangeBoth("waits 1", "waits 2", {Verb::kHold});
  // The server's side tells what has come of a change that took long before it makes the next one.
  ASSERT_TRUE(Until([&] { return c_->state.quiet_s >= 1; }));
  server_.GoOn();
  ASSERT_TRUE(Until([&] { return c_->state.changing.total > 0; }));
  EXPECT_EQ(c_->state.changing.done, 1);
  EXPECT_EQ(c_->state.changing.total, 2);
  server_.GoOn();
  EXPECT_TRUE(Until([&] { return c_->state.pending.empty(); }));
  EXPECT_EQ(c_->state.changing.total, 0) << "nothing is under way any more";
}

}  // namespace
}  // namespace console
