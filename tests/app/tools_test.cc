// The tool bar, the menus and the keys of commands, on the headless display.
#include <gtest/gtest.h>

#include "app/format/cut.h"
#include "app/look/style.h"
#include "app/window/commands.h"
#include "app/window/print_options.h"
#include "app/window/side_commands.h"
#include "tests/app/console_fixture.h"

namespace console {
namespace {

constexpr uint32_t kReturnKey = 0xFF0D;

TEST_F(ConsoleTest, AKeyThatComesBeforeTheMenusRunsTheirCommand) {
  setenv("HOME", home_.path().c_str(), 1);
  display::UseSteppedClock(1000);
  XwSession("Quorvik", "Quorvik", 7);
  c_ = OpenConsole("127.0.0.9:1", home_.path());
  pump_ = XwCreate(0, 0, 0, 50, 50, Pump);
  XwTimer(pump_, 1, 20);
  display::Modifiers(platform::controlKey);
  Key('2', '2');
  ASSERT_TRUE(Until([&] { return c_->has_begun; }));
  EXPECT_EQ(c_->files.folder.order(), FileOrder::kSize);
  EXPECT_TRUE(c_->files.folder.descending());
  for (const Command& command : Commands()) {
    if (command.id < kSortByNameCommand || command.id > kSortByDateCommand) continue;
    EXPECT_EQ(command.more.checked(c_), command.id == kSortBySizeCommand) << command.name;
  }
  // Once; from now on by the menus.
  Key('2', '2');
  EXPECT_FALSE(c_->files.folder.descending());
}

TEST_F(ConsoleTest, OptionsCountForOnePrintAndTheEditMenuEdits) {
  constexpr uint32_t kDown = 0xFF54;
  Open("127.0.0.0");
  Click(c_->layout.filter);
  Key('x', 'x');
  ASSERT_EQ(c_->files.FilterText(), "x");
  EXPECT_FALSE(CanRun(c_, kCutCommand));
  RunCommand(c_, kUndoCommand);
  Turn(2);
  EXPECT_EQ(c_->files.FilterText(), "");
  Key('q', 'q');
  EXPECT_EQ(c_->files.folder.count(), 0);
  // From box to box each has the keyboard at once.
  const QueueHead& head = c_->queue.head;
  const std::pair<const Area*, XwWindow*> boxes[] = {
      {&c_->layout.copies, c_->tools.copies}, {&head.text_area, head.text},
      {&c_->layout.copies, c_->tools.copies}, {&c_->layout.filter, c_->files.filter},
      {&head.text_area, head.text},           {&c_->layout.filter, c_->files.filter},
  };
  for (const auto& [area, box] : boxes) {
    Click(*area);
    EXPECT_EQ(XwGetFocus(c_->window), box);
  }
  // Return keeps the keyboard at what is no number of copies; Escape takes back what was typed.
  Click(c_->layout.copies);
  for (const char digit : {'9', '9', '9', '9'}) Key(uint32_t(digit), digit);
  EXPECT_EQ(c_->status.message().text, "Copies is a number from 1 to 999") << "at once";
  Key(kReturnKey);
  EXPECT_EQ(XwGetFocus(c_->window), c_->tools.copies);
  EXPECT_EQ(c_->status.message().text, "Copies is a number from 1 to 999");
  Key('9', '9');
  EXPECT_EQ(c_->choice.copies, 9);
  Key(0xFF1B);
  EXPECT_EQ(c_->choice.copies, 1);
  Click(c_->layout.copies);
  Key('0', '0');
  EXPECT_FALSE(WhyNotPrint(c_).empty());
  Key(0xFF1B);
  EXPECT_EQ(WhyNotPrint(c_), "");
  EXPECT_EQ(XwGetFocus(c_->window), nullptr);
  Click(c_->files.table.NoteButton());
  EXPECT_EQ(c_->files.FilterText(), "");

  Click(FileRow("letter.txt"));
  EXPECT_FALSE(CanRun(c_, kUndoCommand));
  ChooseNextPriority(c_, 4);
  RunCommand(c_, kHoldNextCommand);
  // A number that is too large prints nothing, and is not cut to a smaller one.
  for (const char* digits : {"99", "99 ", "1000", "2x", "0"}) {
    XwSetTextUtf8(c_->tools.copies, digits);
    c_->tools.Edited(XWE_EDIT_CHANGED);
    EXPECT_EQ(CanRun(c_, kPrintCommand), digits[0] == '9') << digits;
  }
  // It stays to be seen when the box is left, and is no other number.
  c_->tools.Edited(XWE_EDIT_DONE);
  ChooseNextProfile(c_, "");
  char box[8];
  XwGetTextUtf8(c_->tools.copies, box, sizeof box);
  EXPECT_STREQ(box, "0");
  EXPECT_FALSE(CanRun(c_, kPrintCommand));
  c_->tools.ChangeCopies(1);
  EXPECT_TRUE(CanRun(c_, kPrintCommand));
  c_->choice.no_copies = true;
  ChooseNextCopies(c_, 2);
  EXPECT_TRUE(CanRun(c_, kPrintCommand));
  c_->choice.profile = "Fine";
  c_->tools.ChangeCopies(2);
  for (const uint32_t key : {kDown, kDown, kReturnKey}) {
    display::KeyDown(key);
    display::KeyUp(key);
  }
  RunCommand(c_, kColourCommand);  // "No Mark" is the first
  // A double click is one order.
  const Area print = c_->layout.print;
  display::MovePointer(c_->window->x + print.x + 9, c_->window->y + print.y + 9);
  for (int press = 0; press < 2; ++press) {
    display::Press(1);
    display::Release(1);
  }
  Turn(4);
  ASSERT_TRUE(Until([&] { return c_->state.transfers.size() == 1; }));
  const PrintOrder& order = c_->state.transfers[0].order;
  EXPECT_EQ(order.profile, "Fine");
  EXPECT_EQ(order.priority, 100);
  EXPECT_EQ(order.copies, 5);
  EXPECT_TRUE(order.hold);
  EXPECT_EQ(order.colour, 0xC0392B);
  EXPECT_EQ(XwGetValue(c_->tools.copies), 1);
  EXPECT_EQ(c_->choice.priority, 50);
  EXPECT_FALSE(HoldsNext(c_));
  ChooseNextCopies(c_, 14);  // "Other…"
  Turn(4);
  Key('7', '7');
  Key(kReturnKey);
  EXPECT_EQ(c_->choice.copies, 7);
}

// File, Close Window is for the window that has the keyboard, and Help opens from an edit box, too.
TEST_F(ConsoleTest, KeysOfTheMenusAreForTheWindowWithTheKeyboard) {
  constexpr uint32_t kF1Key = 0xFFBE, kEscapeKey = 0xFF1B;
  Open("127.0.0.0");
  // A menu's item may have the same name.
  const auto shows = [](const std::string& window) {
    for (const platform::DescribedNode& n : platform::DescribeTree())
      if (n.what.name == window) return true;
    return false;
  };
  const auto close = [this] {
    display::Modifiers(platform::controlKey);
    Key('w', 'w');
    display::Modifiers(0);
    Turn(2);
  };
  Click(c_->layout.filter);
  Key('x', 'x');
  Key(kF1Key);
  ASSERT_TRUE(shows("Keys"));
  close();
  EXPECT_FALSE(shows("Keys"));
  // F6 leaves a box for the next pane.
  constexpr uint32_t kF6Key = 0xFFC3;
  for (const Area* box : {&c_->layout.filter, &c_->layout.copies}) {
    Click(*box);
    Key(kF6Key);
    Turn(2);
    EXPECT_EQ(c_->stop, FocusStop::kQueue);
  }
  display::Modifiers(platform::shiftKey);
  Key(kF6Key);
  display::Modifiers(0);
  EXPECT_EQ(c_->stop, FocusStop::kFiles) << "back";
  // The keyboard goes back to where it was.
  Key(kF1Key);
  const XwWindow* keys = c_->front;
  ShowPreferences(c_);
  Turn(2);
  Key(kEscapeKey);
  EXPECT_TRUE(keys && c_->front == keys);
  close();
  EXPECT_EQ(c_->front, nullptr);
  ShowPreferences(c_);
  Turn(2);
  close();
  EXPECT_FALSE(shows("Preferences"));
  ShowLists(c_);
  Turn(2);
  close();
  EXPECT_FALSE(shows("Scanners and Profiles"));
  EXPECT_EQ(TheConsole(), c_);

  // A drag's Escape leaves the box alone; the next one is the box's.
  Click(c_->layout.filter);
  const Area before = c_->layout.places;
  display::MovePointer(c_->window->x + before.right(), c_->window->y + before.y + 20);
  display::Press(1);
  display::MovePointer(c_->window->x + before.right() + 30, c_->window->y + before.y + 20);
  Turn(2);
  EXPECT_EQ(c_->layout.places.w, before.w + 30);
  Key(kEscapeKey);
  EXPECT_EQ(c_->layout.places.w, before.w);
  EXPECT_EQ(c_->files.FilterText(), "x");
  display::Release(1);
  Turn(2);
  Key(kEscapeKey);
  EXPECT_EQ(c_->files.FilterText(), "");
}

TEST_F(ConsoleTest, WhatPrintersNeedAndAChosenOneThatIsGoneStandSideBySide) {
  Open("127.0.0.9:1");
  ASSERT_TRUE(Until([&] { return c_->state.link == Link::kAway; }));
  std::vector<NC_Printer> all(2, NC_Printer{});
  for (size_t i = 0; i < all.size(); ++i) {
    all[i].name[0] = char('A' + i);
    all[i].state = NC_PRINTER_PAPER_OUT;
  }
  c_->state.printers = std::make_shared<std::vector<NC_Printer>>(all);
  c_->state.link = Link::kReady;
  c_->banner.shown = false;
  c_->printers.Choose("Gone");
  PrintersCame(c_);
  EXPECT_EQ(
      c_->needs.Text(),
      "The printer “Gone” is gone: choose another one. “A” is out of paper, and so is 1 other "
      "printer");
  char text[100];
  XwGetTextUtf8(c_->needs.load, text, sizeof text);
  EXPECT_STREQ(text, "Paper Loaded in “A”");
  EXPECT_TRUE(c_->needs.choose->flags & XW_SHOWN);
  // While none wants paper it can be loaded in the chosen one, if that counts it.
  for (NC_Printer& printer : all) printer.state = NC_PRINTER_PRINTING, printer.has_id = 1;
  all[0].paper = -1;
  c_->state.printers = std::make_shared<std::vector<NC_Printer>>(all);
  for (const char* name : {"A", "B"}) {
    c_->printers.Choose(name);
    PrintersCame(c_);
    EXPECT_EQ(WhyNotLoadPaper(c_).empty(), *name == 'B');
  }
  EXPECT_EQ(LoadPaperText(c_), "Paper Loaded in “B”");
  // A message that passes is drawn away.
  c_->status.Tell(Tone::kGood, "done");
  int changes = 0;
  for (int s = 0; s < 9; ++s) changes += c_->status.Tick();
  EXPECT_EQ(changes, 1);
}

TEST_F(ConsoleTest, ALongNameIsCutOnceForTheWidthOfItsBox) {
  Open("127.0.0.9:1");
  NC_Printer printer{};
  strcpy(printer.name, "Großformat-Plotter im Keller, links");
  int characters = 0;
  for (const int width : {760, 1300, 2440}) {
    XwMove(c_->window, c_->window->x, c_->window->y, width, 800);
    Turn(3);
    // The console may have taken an empty list since: no server answers.
    c_->state.printers = std::make_shared<std::vector<NC_Printer>>(1, printer);
    PrintersCame(c_);
    UpdateControls(c_);
    char text[100];
    XwGetTextUtf8(c_->tools.printer(), text, sizeof text);
    const char* dots = strstr(text, "…");
    ASSERT_NE(dots, nullptr) << text;
    EXPECT_TRUE(std::string(printer.name).ends_with(dots + strlen("…"))) << text;
    EXPECT_LT(XwTextWidthUtf8(TheStyle().normal, text), c_->layout.printer.w - 32) << text;
    EXPECT_GE(CharacterCount(text), characters);
    characters = CharacterCount(text);
  }
  EXPECT_EQ(characters, 22);
  EXPECT_EQ(Node("Printer").help, printer.name);
}

}  // namespace
}  // namespace console
