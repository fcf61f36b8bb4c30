// The side panes: places, printers, and the borders between all of them.
#include <gtest/gtest.h>

#include <atomic>

#include "app/window/commands.h"
#include "app/window/side_commands.h"
#include "app/work/preferences_file.h"
#include "tests/app/console_fixture.h"
#include "tests/printserverd/daemon.h"
#include "toolkit/events/session.h"

namespace console {
namespace {

using testing_daemon::Daemon;

constexpr uint32_t kTabKey = 0xFF09, kReturnKey = 0xFF0D;
constexpr uint32_t kLeftKey = 0xFF51, kUpKey = 0xFF52, kRightKey = 0xFF53, kDownKey = 0xFF54;
constexpr uint32_t kEndKey = 0xFF57;

void Hear(void*, uint64_t, platform::Change) {}

class SideTest : public ConsoleTest {
 protected:
  // What is drawn is described while somebody listens.
  void SetUp() override {
    ConsoleTest::SetUp();
    platform::AddTreeListener(&listener_);
  }
  void TearDown() override {
    platform::RemoveTreeListener(&listener_);
    ConsoleTest::TearDown();
  }
  // All rows of the places, by depth: + open, - closed with folders in it, * the folder shown.
  std::string Places() {
    std::string text;
    for (const PlacesPane::Row& row : c_->places.rows) {
      const platform::DescribedNode node = Node(row.name);
      text += std::string(size_t(row.depth), '/') +
              (row.open    ? "+"
               : row.opens ? "-"
                           : "") +
              row.name + (node.what.state & platform::kIsSelected ? "* " : " ");
    }
    return text;
  }
  bool PlacesAre(const std::string& wanted) {
    const bool same = Until([&] {
      return !c_->places_reader.request() && !c_->reader.request() && Places() == wanted;
    });
    EXPECT_EQ(Places(), wanted);
    return same;
  }
  void ClickNode(const std::string& name) {
    const platform::Rect r = Node(name).what.bounds;
    display::Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    Turn(2);
  }

  platform::TreeListener listener_{Hear, nullptr};
};

TEST_F(SideTest, PlacesAreATreeForKeysAndPointer) {
  std::filesystem::remove_all(home_.At(kFolder));
  home_.Folder("Empty/a/b/c");
  home_.Folder("Zoo");
  Open("127.0.0.9:1");
  ASSERT_TRUE(PlacesAre("-Root +Home* /-Empty /Zoo "));
  display::Modifiers(platform::shiftKey);
  Key(kTabKey);
  Key(kTabKey);
  display::Modifiers(0);
  ASSERT_EQ(c_->stop, FocusStop::kPlaces);
  for (const uint32_t key : {kDownKey, kRightKey}) Key(key);
  ASSERT_TRUE(PlacesAre("-Root +Home* /+Empty //-a /Zoo "));
  for (const uint32_t key : {kRightKey, kRightKey, kRightKey}) Key(key);
  ASSERT_TRUE(PlacesAre("-Root +Home* /+Empty //+a ///-b /Zoo "));
  Key(kReturnKey);
  ASSERT_TRUE(PlacesAre("-Root +Home /+Empty //+a ///-b* /Zoo "));
  EXPECT_EQ(c_->files.folder.path(), home_.At("Empty/a/b"));
  // Out of the folders that it lies in, and the tree marks the nearest one.
  for (const uint32_t key : {kLeftKey, kLeftKey, kLeftKey, kLeftKey}) Key(key);
  ASSERT_TRUE(PlacesAre("-Root +Home /-Empty /Zoo "));
  EXPECT_EQ(c_->places.list.at(), 2);
  // A click enters, a click on the mark opens. What comes to the disk comes to the tree.
  ClickNode("Zoo");
  ASSERT_TRUE(PlacesAre("-Root +Home /-Empty /Zoo* "));
  home_.Folder("Zoo/new");
  ASSERT_TRUE(PlacesAre("-Root +Home /-Empty /-Zoo* "));
  const Area row = c_->places.list.RowArea(3);
  ClickAt(row.x + 6 + 14 + 9, row.y + 10);
  ASSERT_TRUE(PlacesAre("-Root +Home /-Empty /+Zoo* //new "));
  EXPECT_NE(c_->places.free_text.find(" free of "), std::string::npos);
  // The keyboard stays at a volume that it opens, also where the folder lies below that.
  for (const int key : {XWE_HOME, XWE_RIGHT}) PlacesKey(c_, key);
  PlacesKey(c_, XWE_RIGHT);  // before what lies in it has come
  const auto root_is_read = [&] {
    return !c_->places_reader.request() && c_->places.tree.known("/");
  };
  ASSERT_TRUE(Until(root_is_read));
  EXPECT_EQ(c_->places.list.at(), 0);
  // Each volume keeps its tree, and the folder is marked in the volume that was used last.
  PlacesKey(c_, XWE_LEFT);
  ASSERT_TRUE(PlacesAre("-Root +Home /-Empty /+Zoo* //new "));
  Enter("/");
  Until(root_is_read);
  const uint32_t shown = platform::kIsExpanded | platform::kIsSelected;
  EXPECT_EQ(Node("Root").what.state & shown, shown);
  EXPECT_GE(c_->places.Find("/", "/tmp"), 0);
  PlacesKey(c_, XWE_HOME);
  PlacesKey(c_, XWE_LEFT);
  Enter(home_.At("Empty"));
  ASSERT_TRUE(PlacesAre("-Root +Home /-Empty* /+Zoo //new "));
}

// What hangs holds up nothing: the window says so, and closing it gives the tree back.
TEST_F(SideTest, AFolderThatDoesNotAnswerHoldsUpNothing) {
  static std::atomic<bool> hangs;
  static PlacesReader::Read usual;
  hangs = true;
  usual = PlacesReader::read;
  home_.Folder("Empty/a");
  home_.Folder("Zoo/b");
  PlacesReader::read = [](PlacesListing* listing) {
    for (const auto& [volume, open] : listing->request.open)
      while (open.contains(volume + "/Empty") && hangs) usleep(1000);
    usual(listing);
  };
  Open("127.0.0.9:1");
  ASSERT_TRUE(PlacesAre("-Root +Home* /" + std::string(kFolder) + " /-Empty /-Zoo "));
  c_->places.list.GoTo(c_->places.Find(home_.path(), home_.At("Empty")));
  PlacesKey(c_, XWE_RIGHT);
  ASSERT_TRUE(Until([&] { return Node("Room").what.value.starts_with("No answer for 3 s"); }));
  Enter(home_.At("Zoo"));
  c_->places.list.GoTo(c_->places.Find(home_.path(), home_.At("Empty")));
  PlacesKey(c_, XWE_LEFT);
  ASSERT_TRUE(PlacesAre("-Root +Home /" + std::string(kFolder) + " /-Empty /-Zoo* "));
  EXPECT_NE(Node("Room").what.value.find(" free of "), std::string::npos);
  hangs = false;
  PlacesReader::read = usual;
}

// Forty printers, "Label" and those of a studio.
class PrintersTest : public SideTest {
 protected:
  void Start(Daemon* daemon, bool with_label) {
    std::string config;
    if (with_label) config = "[printer]\nname=Label\n";
    for (int i = 1; i < 40; ++i)
      config += "[printer]\nname=Studio " + std::to_string(i) + "\nmedia=A4\nrate=1K\n";
    daemon->Start({"--config", daemon->WriteFile("conf", config)});
  }
  void ClickControl(const XwWindow* w) { Click({w->x, w->y, w->width, w->height}); }
};

TEST_F(PrintersTest, TheChosenOneChangesByAChoiceAlone) {
  Daemon daemon;
  Start(&daemon, true);
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady() && c_->printers.chosen() == "Label"; }));
  // Found by its letters: looked at, and not chosen.
  SetFocusStop(c_, FocusStop::kPrinters);
  for (const char* c = "studio 12"; *c; ++c) Key(uint8_t(*c), uint8_t(*c));
  EXPECT_EQ(c_->printer_list.at, "Studio 12");
  EXPECT_EQ(c_->printers.chosen(), "Label");
  const Area looked_at = c_->printer_list.list.RowArea(c_->printer_list.list.at());
  EXPECT_NE(At(looked_at.x + 20, looked_at.y + 4), 0x3875D7u) << "framed alone";
  RunCommand(c_, kMakeMineCommand);
  EXPECT_EQ(c_->remembered.preferences.default_printer, "Studio 12");
  RunCommand(c_, kPauseChosenCommand);
  ASSERT_TRUE(Until([&] { return c_->printers.Find("Label")->printer->paused; }));
  Click(FileRow("letter.txt"));
  EXPECT_TRUE(CanRun(c_, kPrintCommand));
  daemon.Stop(SIGTERM);
  Start(&daemon, false);
  ASSERT_TRUE(Until([&] { return !c_->printers.Chosen(); }));
  EXPECT_EQ(c_->choice.printer, "Label");
  EXPECT_FALSE(CanRun(c_, kPrintCommand));
  ASSERT_TRUE(Until([&] {
    return Node("Attention").what.value == "The printer “Label” is gone: choose another one";
  }));
  ClickControl(c_->needs.choose);
  EXPECT_EQ(c_->stop, FocusStop::kPrinters);
  ClickNode("Studio 12");
  EXPECT_EQ(c_->choice.printer, "Studio 12");
  // A choice in the tool bar takes the keyboard's row with it, unless the keyboard is there.
  ChoosePrinter(c_, "Studio 3");
  EXPECT_EQ(c_->printer_list.at, "Studio 12");
  SetFocusStop(c_, FocusStop::kFiles);
  ChoosePrinter(c_, "Studio 4");
  EXPECT_EQ(c_->printer_list.At(), c_->printers.Chosen());
  EXPECT_TRUE(CanRun(c_, kPrintCommand));
  Turn(2);
  EXPECT_EQ(Node("Attention").what.value, "");
  EXPECT_EQ(c_->button_tips.front(), "Print (Ctrl+P)");
  // The key of a greyed command says why, until that is read; one that is held says it once.
  Enter(home_.At("Empty"));
  display::Modifiers(platform::controlKey);
  display::KeyDown('p', 'p');
  display::KeyDown('p', 'p');
  display::KeyUp('p', 'p');
  display::Modifiers(0);
  Turn(400);
  EXPECT_EQ(c_->status.message().text, "No file is selected");
  EXPECT_EQ(c_->button_tips.front(), "No file is selected");
  SetFocusStop(c_, FocusStop::kPlaces);
  Key(0xFF1B);
  EXPECT_FALSE(c_->status.HasError());
  EXPECT_EQ(c_->stop, FocusStop::kPlaces) << "one thing after the other";
}

// The preferences lie in a file below the home folder.
class PanesTest : public SideTest {
 protected:
  void Reopen() {
    if (c_) {
      CloseConsole(c_);
      c_ = nullptr;
      DropSession();
    }
    Open("127.0.0.9:1", Recall(home_.At("config/quorvik/console.conf")));
    // The banner takes its part of the height.
    EXPECT_TRUE(Until([&] { return c_->state.link == Link::kAway; }));
    Turn(2);
  }
  void Drag(int x, int y, int dx, int dy) {
    display::MovePointer(c_->window->x + x, c_->window->y + y);
    display::Press(1);
    Turn(2);
    display::MovePointer(c_->window->x + x + dx, c_->window->y + y + dy);
    Turn(2);
    display::Release(1);
    Turn(2);
  }
  void Resize(int width, int height) {
    XwMove(c_->window, c_->window->x, c_->window->y, width, height);
    Turn(3);
  }
  void ControlKey(char key) {
    display::Modifiers(platform::controlKey);
    Key(uint8_t(key), uint8_t(key));
    display::Modifiers(0);
    Turn(2);
  }
  // Nothing overlaps, and nothing is left over.
  void ExpectWhole() {
    const Layout& l = c_->layout;
    const int left = std::max(l.places.w, l.printers.w);
    EXPECT_EQ(left + l.folder.w + l.details.w, c_->window->width);
    EXPECT_GE(l.folder.w, 330);
    EXPECT_GE(l.folder.h, 60);
    EXPECT_GE(l.queue.h + l.banner.h + l.needs.h, 110);
    EXPECT_EQ(l.folder.bottom(), l.queue_head.y);
    EXPECT_EQ(l.queue.bottom() + l.banner.h + l.needs.h, l.status.y);
    EXPECT_EQ(std::max({l.places.bottom(), l.printers.bottom(), l.queue_head.y * (left == 0)}),
              l.queue_head.y);
  }
};

TEST_F(PanesTest, BordersMoveAndAreRemembered) {
  Reopen();
  Resize(1100, 700);
  const Layout usual = c_->layout;
  Drag(usual.places.right(), usual.folder.y + 100, 50, 0);
  Drag(usual.details.x, usual.folder.y + 100, 30, 0);
  Drag(usual.printers.x + 60, usual.printers.y, 0, -25);
  Drag(usual.queue_head.x + 300, usual.queue_head.y, 0, 40);
  const Layout moved = c_->layout;
  EXPECT_EQ(moved.places.w, usual.places.w + 50);
  EXPECT_EQ(moved.details.w, usual.details.w - 30);
  EXPECT_EQ(moved.queue.h, usual.queue.h - 40);
  EXPECT_EQ(moved.printers.h, usual.printers.h + 25);
  ExpectWhole();
  ControlKey('9');
  EXPECT_TRUE(c_->layout.details.Empty());
  Reopen();
  EXPECT_EQ(c_->layout.places, moved.places);
  EXPECT_EQ(c_->layout.queue, moved.queue);
  EXPECT_TRUE(c_->layout.details.Empty());
  ControlKey('9');
  EXPECT_EQ(c_->layout.details, moved.details);
  // Past everything it stops where the others have their least, and counts from there.
  Drag(moved.places.right(), moved.folder.y + 100, 2000, 0);
  ExpectWhole();
  const int most = c_->layout.places.w;
  Drag(most, moved.folder.y + 100, -20, 0);
  EXPECT_EQ(c_->layout.places.w, most - 20);
  // A double click gives it its usual size.
  for (int i = 0; i < 2; ++i) ClickAt(c_->layout.places.right(), moved.folder.y + 100);
  EXPECT_EQ(c_->layout.places.w, usual.places.w);
  // By the menu: all as usual, then the pane with the keyboard wider and lower.
  ChangePaneSize(c_, 4);
  EXPECT_EQ(c_->layout.places, usual.places);
  SetFocusStop(c_, FocusStop::kPlaces);
  ChangePaneSize(c_, 0);
  ChangePaneSize(c_, 3);
  EXPECT_EQ(c_->layout.places.w, usual.places.w + 40);
  EXPECT_EQ(c_->layout.places.h, usual.places.h - 40);
}

TEST_F(PanesTest, WhatANarrowWindowHidesOpensByItsKey) {
  Reopen();
  for (const auto& [width, height] : {std::pair(2440, 1340), {1000, 600}, {760, 480}}) {
    Resize(width, height);
    ExpectWhole();
  }
  EXPECT_TRUE(c_->layout.places.Empty());
  ControlKey('8');
  EXPECT_FALSE(c_->layout.printers.Empty());
  EXPECT_EQ(c_->stop, FocusStop::kPrinters);
  ControlKey('7');
  EXPECT_TRUE(c_->layout.printers.Empty());
  EXPECT_FALSE(c_->layout.places.Empty());
  EXPECT_EQ(c_->stop, FocusStop::kPlaces);
  ExpectWhole();
  ControlKey('9');
  EXPECT_TRUE(c_->layout.places.Empty());
  EXPECT_FALSE(c_->layout.details.Empty());
  EXPECT_EQ(c_->stop, FocusStop::kFiles);
  ControlKey('9');
  EXPECT_TRUE(c_->layout.details.Empty());
  ExpectWhole();
  Resize(1200, 700);
  EXPECT_FALSE(c_->layout.printers.Empty() || c_->layout.places.Empty() ||
               c_->layout.details.Empty());
  // Where it shows, its key goes there, and hides it from there.
  ControlKey('8');
  EXPECT_EQ(c_->stop, FocusStop::kPrinters);
  ControlKey('8');
  EXPECT_TRUE(c_->layout.printers.Empty());
  EXPECT_EQ(c_->stop, FocusStop::kFiles);
}

TEST_F(PanesTest, DetailsScrollWhereTheyHaveTooLittleRoom) {
  Reopen();
  Enter(home_.At(kFolder));
  Resize(760, 480);
  ControlKey('9');
  Click(FileRow(kLongName));
  EXPECT_EQ(Node("Name").help, kLongName);
  const auto picture = [] {
    const platform::Rect r = Node("Preview").what.bounds;
    return r.bottom - r.top;
  };
  const int whole = picture();
  ASSERT_GT(whole, 0);
  Key(kTabKey);
  EXPECT_EQ(c_->stop, FocusStop::kDetails);
  Key(kEndKey);
  EXPECT_LT(picture(), whole);
  const Area a = c_->layout.details;
  display::MovePointer(c_->window->x + a.x + a.w / 2, c_->window->y + a.y + a.h / 2);
  display::Scroll(0, -1000);
  Turn(3);
  EXPECT_EQ(picture(), whole);
  // Another document begins at its top; where all of it has room, Tab passes the pane.
  ClickAt(a.right() - 7, a.bottom() - 5);
  EXPECT_LT(picture(), whole) << "by the bar";
  SetFocusStop(c_, FocusStop::kFiles);
  ClickAt(a.x + 20, a.bottom() - 20);
  EXPECT_EQ(c_->stop, FocusStop::kDetails);
  Click(FileRow("second.txt"));
  EXPECT_EQ(picture(), whole);
  Resize(1300, 1000);
  EXPECT_GT(picture(), whole);
  Key(kTabKey);
  EXPECT_EQ(c_->stop, FocusStop::kQueue);
}

}  // namespace
}  // namespace console
