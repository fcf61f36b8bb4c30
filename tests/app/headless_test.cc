// The console from end to end, on the headless display with stepped time and a real print server.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>

#include "app/format/texts.h"
#include "app/panes/queue_cells.h"
#include "platform/windows/internal.h"
#include "tests/app/console_fixture.h"
#include "tests/printserverd/daemon.h"

namespace console {
namespace {

using testing_daemon::Daemon;

constexpr uint32_t kReturnKey = 0xFF0D, kBackspaceKey = 0xFF08, kTabKey = 0xFF09;

TEST_F(ConsoleTest, AnInactiveWindowShowsThatKeysGoElsewhere) {
  Open("127.0.0.9:1");
  Click(FileRow("letter.txt"));
  const Area row = FileRow("letter.txt");
  const uint32_t active = At(row.x + 2, row.y + 2);
  display::Focus(static_cast<platform::WindowRef>(pump_->platform));
  Turn(2);
  EXPECT_NE(At(row.x + 2, row.y + 2), active);
  EXPECT_FALSE(HasKeyboard(c_, FocusStop::kFiles));
  display::Focus(static_cast<platform::WindowRef>(c_->window->platform));
  Turn(2);
  EXPECT_EQ(At(row.x + 2, row.y + 2), active);
}

TEST_F(ConsoleTest, AJobsNameIsDrawnAsAnywhereElse) {
  Daemon daemon;
  daemon.Start({"--rate", "1K"});
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  ShowDocuments(c_, {home_.At(std::string(kFolder) + "/" + kLongName)});
  ASSERT_TRUE(HasRead());
  ASSERT_EQ(Selected(), kLongName);
  display::Modifiers(platform::controlKey);
  Key('p', 'p');
  display::Modifiers(0);
  ASSERT_TRUE(
      Until([&] { return c_->queue.rows.count() == 1 && !c_->queue.rows.IdAt(0).outgoing; }));
  Turn(8);

  // The name as it is drawn in the row is the name as it is drawn anywhere else.
  const Area row = c_->queue.table.RowArea(0);
  const Area column = c_->queue.table.ColumnArea(int(QueueColumn::kDocument));
  const Area cell{column.x + 9, row.y, column.w - 18, row.h};
  XwMove(pump_, 0, 0, 600, 60);
  XwShow(pump_, 1);
  Turn(4);
  XwSet(pump_);
  Fill({0, 0, 600, 60}, TheStyle().document);
  XwFont* font = TheStyle().view;
  DrawLabel(font, Align::kLeft, {5, 5, cell.w, cell.h}, CutToWidth(font, Shown(kLongName), cell.w),
            TheStyle().ink);
  XwSync();
  const auto drawn = display::TakePicture(static_cast<platform::WindowRef>(pump_->platform));
  const auto shown = display::TakePicture(static_cast<platform::WindowRef>(c_->window->platform));
  const int bar = shown.height - c_->window->height;
  int inked = 0;
  for (int y = 0; y < cell.h; ++y) {
    for (int x = 0; x < cell.w; ++x) {
      const uint32_t a = drawn.pixels[size_t((y + 5) * drawn.width + x + 5)];
      const uint32_t b = shown.pixels[size_t((y + cell.y + bar) * shown.width + x + cell.x)];
      ASSERT_EQ(a, b) << x << " " << y;
      inked += (a & 0xFFFFFF) != 0xFFFFFF;
    }
  }
  EXPECT_GT(inked, 200);

  // What is cut has a tip with all of it.
  const auto has_tip = [&](QueueColumn of) {
    const Area a = c_->queue.table.ColumnArea(int(of));
    display::MovePointer(c_->window->x + a.x + 20, c_->window->y + row.y + 10);
    Turn(100);
    const auto& windows = platform::WindowList();
    return std::any_of(windows.begin(), windows.end(),
                       [](const auto* w) { return w->parent && w->visible; });
  };
  EXPECT_FALSE(has_tip(QueueColumn::kOwner));
  EXPECT_TRUE(has_tip(QueueColumn::kDocument));
}

TEST_F(ConsoleTest, TabGoesRoundAndEachStopTakesItsKeys) {
  Daemon daemon;
  daemon.Start({"--rate", "1K"});
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  // In an empty folder keys that move find nothing.
  Key('e', 'e');
  Key(kReturnKey);
  EXPECT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.count(), 0);
  for (uint32_t key : {0xFF54u, 0xFF52u, 0xFF55u, 0xFF56u, 0xFF57u, kReturnKey}) Key(key);
  Key(kBackspaceKey);
  EXPECT_TRUE(HasRead());
  Key(0xFF57);
  EXPECT_EQ(Selected(), "letter.txt");
  for (int i = 0; i < 9 && c_->stop != FocusStop::kCopies; ++i) Key(kTabKey);
  for (char typed : {'1', '2', 'x'}) Key(uint8_t(typed), uint8_t(typed));
  EXPECT_EQ(c_->choice.copies, 12);
  Key(kTabKey);
  Key(0xFF57);
  EXPECT_EQ(c_->choice.priority, 100);
  Key(kTabKey);
  Key(' ', ' ');
  EXPECT_TRUE(c_->choice.hold);
  for (const FocusStop stop :
       {FocusStop::kColour, FocusStop::kOptions, FocusStop::kFilter, FocusStop::kQueueFilter,
        FocusStop::kQueueOwner, FocusStop::kQueuePart, FocusStop::kPlaces, FocusStop::kPrinters,
        FocusStop::kFiles}) {
    Key(kTabKey);
    EXPECT_EQ(c_->stop, stop);
  }
}

// The beginning of a name, typed within a second, and one letter again and again. Tab passes over
// what is disabled.
TEST_F(ConsoleTest, TypingFindsNamesAndTabFindsWhatCanBeUsed) {
  for (const char* name : {"big.bin", "bravo.txt", "brochure.pdf", "with\nline.txt"})
    home_.File(name, "x");
  Open("localhost:1");
  const auto typed = [this](const char* letters) {
    for (; *letters; ++letters) Key(uint8_t(*letters), uint8_t(*letters));
    return Selected();
  };
  EXPECT_EQ(typed("b"), "big.bin");
  EXPECT_EQ(typed("r"), "bravo.txt");
  EXPECT_EQ(typed("O"), "brochure.pdf");
  Turn(70);
  EXPECT_EQ(typed("b"), "big.bin");
  EXPECT_EQ(typed("b"), "bravo.txt");
  Turn(70);
  EXPECT_EQ(typed("bq"), "brochure.pdf") << "what is not there selects nothing else";
  Turn(70);
  c_->files.table.Select(-1);
  ASSERT_TRUE(Until([&] { return c_->banner.shown; }));
  for (const FocusStop stop : {FocusStop::kQueue, FocusStop::kStartServer, FocusStop::kRetry,
                               FocusStop::kRefresh, FocusStop::kCopies}) {
    Key(0xFF09);
    EXPECT_EQ(c_->stop, stop);
  }
}

// Where one came from is selected in the folder above.
TEST_F(ConsoleTest, CrumbsLeadToTheFoldersAbove) {
  home_.Folder("user/in");
  Open("127.0.0.0");
  Enter(home_.At("user/in"));
  PressCrumb(c_, 1000);
  EXPECT_EQ(c_->files.folder.path(), home_.At("user/in"));
  const std::string path = c_->files.folder.path();
  PressCrumb(c_, int(std::count(path.begin(), path.end(), '/')) - 1);
  EXPECT_TRUE(HasRead());
  EXPECT_EQ(c_->files.folder.path(), home_.At("user"));
  EXPECT_EQ(Selected(), "in");
}

TEST(ChosenPrinter, IsTheServersDefaultUntilOneIsChosen) {
  std::vector<NC_Printer> list(3, NC_Printer{});
  for (size_t i = 0; i < list.size(); ++i) list[i].name[0] = char('a' + i);
  list[1].is_default = 1;
  ServerState state;
  state.printers = std::make_shared<std::vector<NC_Printer>>(list);
  for (const auto& [chosen, is] : {std::pair("", 1), {"c", 2}, {"gone", -1}}) {
    PrintChoice choice;
    choice.printer = chosen;
    EXPECT_EQ(ChosenPrinter(choice, state), is < 0 ? nullptr : &(*state.printers)[size_t(is)]);
  }
}

TEST_F(ConsoleTest, AShortcutCountsWhateverTimerComesBetween) {
  Open("127.0.0.0");
  Click(FileRow("letter.txt"));
  for (int i = 1; i <= 5; ++i) {
    display::Modifiers(platform::controlKey);
    display::Step(0.1);
    Turn();
    Key('p', 'p');
    display::Modifiers(0);
    Turn();
    ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == i; }));
  }
}

TEST_F(ConsoleTest, NothingStaysLitWhenThePointerHasLeft) {
  Open("127.0.0.0");
  const Area row = FileRow("letter.txt"), server = c_->layout.status;
  for (const Area& a : {row, server.Inset(6, 3)}) {
    for (const auto& [dx, dy] : {std::pair(-3000, 0), {0, 1500}, {5000, 3}}) {
      const int x = c_->window->x + a.x + 5, y = c_->window->y + a.y + 5;
      display::MovePointer(x, y);
      Turn(2);
      EXPECT_TRUE(c_->hover);
      display::MovePointer(x + dx, y + dy);
      Turn(2);
      EXPECT_FALSE(c_->hover);
    }
  }
  EXPECT_EQ(At(row.x + 3, row.y + 2), At(row.x + 3, row.y + 2 + 2 * Table::kRowHeight));
}

TEST_F(ConsoleTest, ABorderOfColumnsIsDragged) {
  Open("127.0.0.0");
  const auto native = static_cast<platform::WindowRef>(c_->window->platform);
  const std::string before = c_->files.folder.At(0).name;
  for (Table* table : {&c_->files.table, &c_->queue.table}) {
    const int column = table == &c_->queue.table ? int(QueueColumn::kDocument) : 0;
    const Area name = table->ColumnArea(column);
    // Before the line of the one, behind that of the other.
    const int beside = table == &c_->queue.table ? 4 : -4;
    const int x = c_->window->x + name.right() - 1 + beside, y = c_->window->y + name.y + 10;
    display::MovePointer(x, y - 300);
    Turn(2);
    const platform::CursorRef other = display::ShownCursor(native);
    display::MovePointer(x, y);
    Turn(2);
    const platform::CursorRef sizing = display::ShownCursor(native);
    EXPECT_NE(sizing, other);
    display::Press(1);
    display::MovePointer(x - 30, y + 40);
    Turn(2);
    EXPECT_EQ(table->ColumnArea(column).w, name.w - 30);
    EXPECT_EQ(display::ShownCursor(native), sizing);
    display::Release(1);
    Turn(2);
    EXPECT_NE(display::ShownCursor(native), sizing);
    EXPECT_EQ(c_->files.folder.At(0).name, before) << "dragged";
    display::MovePointer(x - 90, y);
    Turn(2);
    EXPECT_EQ(table->ColumnArea(column).w, name.w - 30);
    // A double click gives it back.
    for (int i = 0; i < 2; ++i) Click({name.right() - 31, name.y + 9, 2, 2});
    EXPECT_EQ(table->ColumnArea(column).w, name.w);
    EXPECT_EQ(c_->files.folder.At(0).name, before) << "reset";
  }
  EXPECT_EQ(c_->files.folder.At(0).name, before);
}

TEST_F(ConsoleTest, EverySizeIsLaidOutAnewAndHeadersSort) {
  Open("127.0.0.0");  // no host: nothing answers there
  const platform::WindowRef native = static_cast<platform::WindowRef>(c_->window->platform);
  for (const auto& [w, h] :
       {std::pair(760, 480), {899, 600}, {1079, 500}, {1200, 940}, {777, 900}}) {
    display::Configure(native, {0, 30, w, 30 + h});
    Turn(3);
    ASSERT_EQ(c_->window->width, w);
    ASSERT_EQ(c_->window->height, h);
    const Layout& l = c_->layout;
    EXPECT_EQ(l.status.bottom(), h);
    EXPECT_EQ(l.places.w + l.folder.w + l.details.w, w);
    int right = 0;
    for (const Area* tool : {&l.print, &l.refresh, &l.printer, &l.profile, &l.media, &l.copies,
                             &l.slider, &l.hold, &l.colour, &l.options}) {
      if (tool->Empty()) continue;
      EXPECT_GE(tool->x, right);
      right = tool->right();
    }
    EXPECT_EQ(right, l.options.right());
    EXPECT_LE(right, w);
    EXPECT_GE(c_->files.table.Body().h, 8 * Table::kRowHeight);
    EXPECT_EQ(c_->files.table.area(), l.folder);
    EXPECT_EQ(At(w - 1, h - 1), 0xF0EDE9u);
  }
  Enter(home_.At(kFolder));
  auto first = [&] { return std::string(c_->files.folder.At(0).name); };
  auto header = [&](int column) {
    const Area a = c_->files.table.ColumnArea(column);
    Click({a.x, a.y, a.w, Table::kHeaderHeight});
  };
  EXPECT_EQ(first(), "second.txt");
  Click(FileRow("second.txt"));
  header(0);
  EXPECT_EQ(first(), kLongName);
  EXPECT_EQ(Selected(), "second.txt");
  header(1);
  EXPECT_EQ(first(), kLongName);
  header(1);
  EXPECT_EQ(first(), "second.txt");
  // A file that comes while the folder is shown appears by itself.
  home_.File(std::string(kFolder) + "/third.txt", "x");
  ASSERT_TRUE(Until([&] { return c_->files.folder.count() == 3; }));
  EXPECT_EQ(Selected(), "second.txt");
}

TEST_F(ConsoleTest, BarsAndTheSliderFollowThePointerUntilAQuestionCoversThem) {
  for (int i = 0; i < 60; ++i) home_.File("Empty/" + std::to_string(i), "x");
  Open("127.0.0.2");
  Enter(home_.At("Empty"));
  const Area body = c_->files.table.Body();
  ClickAt(body.right() + 7, body.bottom() - 5);
  Turn(2);
  EXPECT_EQ(c_->files.table.top(), body.h) << "a page";
  display::MovePointer(c_->window->x + body.right() + 7, c_->window->y + body.y + body.h / 2);
  display::Press(1);
  display::MovePointer(c_->window->x + body.right() + 7, c_->window->y + 2000);
  display::Release(1);
  Turn(4);
  EXPECT_EQ(c_->files.table.top(), 60 * Table::kRowHeight - body.h);
  Enter(home_.At(kFolder));
  EXPECT_EQ(c_->files.table.Body().right(), c_->layout.folder.right()) << "without a bar";

  const Area slider = c_->layout.slider;
  ClickAt(slider.right() - 1, slider.y + slider.h / 2);
  EXPECT_EQ(c_->choice.priority, 100);
  EXPECT_EQ(c_->stop, FocusStop::kPriority);
  Key(0xFF51);
  Key('-', '-');
  Key(0xFF51);
  EXPECT_EQ(c_->choice.priority, 97) << "its own keys, and the console's";
  EXPECT_EQ(XwGetValue(c_->tools.priority), 97);

  Click(FileRow("second.txt"));
  PrintSelected(c_);
  EXPECT_FALSE(AskBeforeQuit(c_));
  const std::string first = c_->files.folder.At(0).name;
  Turn(2);
  ClickAt(slider.x + 1, slider.y + slider.h / 2);
  const Area head = c_->files.table.ColumnArea(0);
  Click({head.x, head.y, head.w, Table::kHeaderHeight});
  EXPECT_EQ(c_->choice.priority, 50);
  EXPECT_EQ(c_->files.folder.At(0).name, first);
  Key(0xFF1B);
  ASSERT_FALSE(c_->asking);
  Click({head.x, head.y, head.w, Table::kHeaderHeight});
  EXPECT_NE(c_->files.folder.At(0).name, first) << "there again";
}

// Names that read alike without their codes, and names in other scripts.
TEST_F(ConsoleTest, NamesAreShownApartAndFoundByTheirBytes) {
  const std::string names[] = {"a\xff.txt", "a\\xFF.txt", "a\u200b.txt", "a.txt", "印刷.txt"};
  for (const std::string& name : names) home_.File("Empty/" + name, name);
  Open("127.0.0.2");
  std::set<std::vector<uint32_t>> looks;
  for (const std::string& name : names) {
    Enter(home_.At("Empty"), name);
    ASSERT_EQ(Selected(), name);
    EXPECT_EQ(ReadFile(c_->files.folder.PathOf(c_->files.table.selected())), name);
    const Area row = FileRow(name.c_str());
    Turn(4);
    At(0, 0);
    const auto native = static_cast<platform::WindowRef>(c_->window->platform);
    const display::Picture p = display::TakePicture(native);
    const int bar = p.height - c_->window->height;
    std::vector<uint32_t> look;
    for (int y = row.y; y < row.bottom(); ++y)
      for (int x = row.x + 34; x < row.x + 134; ++x)
        look.push_back(p.pixels[size_t(y + bar) * size_t(p.width) + size_t(x)]);
    EXPECT_TRUE(looks.insert(look).second) << name;
  }
}

TEST_F(ConsoleTest, ASendingIsCancelledOrFailsWithAReason) {
  Daemon daemon;
  daemon.Start({"--simulate", "stall=24"});  // every reply stops: nothing is ever accepted
  home_.File("big.bin", Bytes(8000000));
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return c_->state.quiet_s >= 1 || c_->state.link == Link::kAway; }));
  PrintOrder order;
  order.path = home_.At("gone.pdf");
  order.document = "gone.pdf";
  const int gone = c_->server.Send({order});
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 1; }));
  c_->server.Cancel(gone);
  ASSERT_TRUE(Until([&] { return c_->queue.rows.count() == 0; }));
  daemon.Stop(SIGKILL);
  daemon.Start();
  c_->server.Refresh();
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  const int missing = c_->server.Send({order});
  ASSERT_TRUE(Until([&] {
    return c_->state.transfers.size() == 1 && c_->state.transfers[0].state == Sending::kFailed;
  }));
  EXPECT_FALSE(c_->state.transfers[0].text.empty());
  home_.File("gone.pdf", "here it is");
  c_->server.Retry(missing);
  ASSERT_TRUE(Until([&] { return c_->state.transfers.empty() && c_->queue.rows.count() == 1; }));
  order.printer = "No such printer";
  c_->server.Send({order});
  ASSERT_TRUE(Until([&] {
    return c_->state.transfers.size() == 1 && c_->state.transfers[0].state == Sending::kFailed;
  }));
  EXPECT_EQ(c_->state.transfers[0].text, NC_StatusText(NC_STATUS_UNKNOWN_NAME));
}

TEST_F(ConsoleTest, PrinterAndProfileAreChosenFromLists) {
  Daemon daemon;
  const char* kPrinters = "[printer]\nname=First\n[printer]\nname=Zweiter Drücker\nrate=1K\n";
  daemon.Start({"--config", daemon.WriteFile("printers", kPrinters)});
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady() && !c_->state.profiles->empty(); }));
  const auto value = [](const char* name) { return Node(name).what.value; };
  const auto choose = [this](const Area& field, int row) {
    const int x = c_->window->x + field.x + 40, y = c_->window->y + field.y;
    display::Click(x, y + 10);
    display::Click(x, y + field.h + 6 + row * 22 + 11);
    Turn(4);
  };
  Click(FileRow("letter.txt"));
  EXPECT_EQ(value("Printer"), "First");
  choose(c_->layout.printer, 1);
  EXPECT_EQ(value("Printer"), "Zweiter Drücker");
  EXPECT_EQ(Selected(), "letter.txt") << "what lies under the list is not pressed";
  choose(c_->layout.profile, 2);
  EXPECT_EQ(c_->choice.profile, "Standard");
  Click(c_->layout.print);
  ASSERT_TRUE(
      Until([&] { return c_->queue.rows.count() == 1 && !c_->queue.rows.IdAt(0).outgoing; }));
  EXPECT_STREQ(c_->state.jobs->at(0).printer, "Zweiter Drücker");
  EXPECT_STREQ(c_->state.jobs->at(0).profile, "Standard");

  // The list does not change while it has the keyboard.
  SetFocusStop(c_, FocusStop::kPrinter);
  ASSERT_TRUE(Until([&] { return XwGetFocus(c_->window) == c_->tools.printer(); }));
  auto others = std::make_shared<std::vector<NC_Printer>>(*c_->state.printers);
  others->erase(others->begin() + 1);
  c_->state.printers = others;
  const auto choose_by_key = [this](uint32_t last) {
    for (uint32_t key : {uint32_t{' '}, 0xFF52u, last}) {
      display::KeyDown(key, key < 0x80 ? key : 0);
      display::KeyUp(key, key < 0x80 ? key : 0);
    }
    Turn(6);
  };
  choose_by_key(0xFF1B);
  EXPECT_EQ(value("Printer"), "Zweiter Drücker");
  EXPECT_FALSE(ChosenPrinter(c_->choice, c_->state));
  choose_by_key(kReturnKey);
  EXPECT_EQ(value("Printer"), "First");
  EXPECT_STREQ(ChosenPrinter(c_->choice, c_->state)->name, "First");
}

}  // namespace
}  // namespace console
