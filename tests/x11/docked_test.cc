// Windows docked to the first one, under both window managers: they go where it goes.
#include "platform/display/x11/x.h"
#include "tests/x11/managed.h"

namespace x11_test {
namespace {

class Docked : public Managed, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    Start(GetParam());
    first = Show("First", {200, 150, 500, 350});
    docked = CreateNewWindow(kSimpleWindowClass, 0, {500, 150, 600, 350});
    WindowGroupRef group =
        CreateWindowGroup(kWindowGroupAttrMoveTogether | kWindowGroupAttrLayerTogether |
                          kWindowGroupAttrSharedActivation | kWindowGroupAttrHideOnCollapse);
    SetWindowGroup(first, group);
    SetWindowGroup(docked, group);
    SetWindowBackgroundColor(docked, 0x00AA00);
    ShowWindow(docked);
    Settle();
  }
  bool Viewable(WindowRef w) { return user().Viewable(Id(w)); }
  WindowRef first = nullptr, docked = nullptr;
};

TEST_P(Docked, MoveWithTheFirst) {
  EXPECT_TRUE(HasState(docked, "_NET_WM_STATE_SKIP_TASKBAR"));
  SetWindowBounds(first, {260, 190, 560, 390});
  EXPECT_TRUE(RunUntil([&] { return user().Where(Id(docked)).x == 560; }));
  EXPECT_EQ(user().Where(Id(docked)).y, 190);
  Settle();
  const auto frame = user().Where(user().Frame(Id(first)));
  const Rect before = first->content;
  Drag(frame.x + frame.width / 2, frame.y + 8, 40, 30);
  Settle();
  EXPECT_EQ(first->content.left, before.left + 40);
  EXPECT_EQ(docked->content.left, first->content.right);
  ExpectBoundsAgree(first);
  ExpectBoundsAgree(docked);
}

// Another program's window comes between: both get above it together, the docked one on top.
TEST_P(Docked, LayerWithTheFirst) {
  const xcb_window_t other = Foreign({250, 200, 580, 330});
  ASSERT_TRUE(RunUntil([&] { return user().Focus() == other; }));
  Settle();
  EXPECT_FALSE(IsApplicationActive());
  EXPECT_FALSE(IsWindowActive(first));
  EXPECT_FALSE(IsWindowActive(docked));
  SelectWindow(first);
  EXPECT_TRUE(RunUntil([&] { return first->focused && AboveId(Id(first), other); }));
  Settle();
  EXPECT_TRUE(AboveId(Id(docked), other));
  EXPECT_TRUE(Above(docked, first));
  EXPECT_TRUE(IsWindowActive(first));
  EXPECT_TRUE(IsWindowActive(docked));
  EXPECT_EQ(user().Look().at(550, 300), 0x00AA00u);
}

TEST_P(Docked, HideWithTheFirst) {
  HideWindow(first);
  EXPECT_TRUE(RunUntil([&] { return !Viewable(first) && !Viewable(docked); }));
  ShowWindow(first);
  EXPECT_TRUE(RunUntil([&] { return Viewable(first) && Viewable(docked); }));
  Settle();
  ExpectBoundsAgree(first);
  ExpectBoundsAgree(docked);
  EXPECT_TRUE(Above(docked, first));
  // One that is not shown stays so.
  HideWindow(docked);
  HideWindow(first);
  ShowWindow(first);
  EXPECT_TRUE(RunUntil([&] { return Viewable(first); }));
  Settle();
  EXPECT_FALSE(Viewable(docked));
}

TEST_P(Docked, AreIconifiedWithTheFirst) {
  for (int round = 0; round < 2; ++round) {
    user().Ask(Id(first), "WM_CHANGE_STATE", {3});
    EXPECT_TRUE(RunUntil([&] { return !Viewable(first) && !Viewable(docked); }));
    Settle();
    user().Ask(Id(first), "_NET_ACTIVE_WINDOW", {2, 0, 0});
    EXPECT_TRUE(RunUntil([&] { return Viewable(first) && Viewable(docked); }));
    Settle();
    ExpectBoundsAgree(first);
    ExpectBoundsAgree(docked);
    EXPECT_EQ(docked->content.left, 500);
    EXPECT_TRUE(Above(docked, first));
    EXPECT_EQ(user().Look().at(550, 300), 0x00AA00u);
  }
}

INSTANTIATE_TEST_SUITE_P(Managers, Docked, testing::Values("openbox", "icewm"),
                         [](const auto& i) { return std::string(i.param); });

}  // namespace
}  // namespace x11_test
