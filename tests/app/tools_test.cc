// The tool bar, the menus and the keys of commands, on the headless display.
#include <gtest/gtest.h>

#include "app/window/commands.h"
#include "app/window/print_options.h"
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

  Click(FileRow("letter.txt"));
  EXPECT_FALSE(CanRun(c_, kUndoCommand));
  ChooseNextPriority(c_, 4);
  RunCommand(c_, kHoldNextCommand);
  c_->tools.ChangeCopies(2);
  for (const uint32_t key : {kDown, kDown, kReturnKey}) {
    display::KeyDown(key);
    display::KeyUp(key);
  }
  RunCommand(c_, kColourCommand);  // "No Colour" is the first
  Click(c_->layout.print);
  ASSERT_TRUE(Until([&] { return c_->state.transfers.size() == 1; }));
  const PrintOrder& order = c_->state.transfers[0].order;
  EXPECT_EQ(order.priority, 100);
  EXPECT_EQ(order.copies, 3);
  EXPECT_TRUE(order.hold);
  EXPECT_EQ(order.colour, 0xC0392B);
  EXPECT_EQ(XwGetValue(c_->tools.copies), 1);
  EXPECT_EQ(c_->choice.priority, 50);
  EXPECT_FALSE(HoldsNext(c_));
}

}  // namespace
}  // namespace console
