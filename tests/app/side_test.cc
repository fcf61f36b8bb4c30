// The side panes: places, printers, and the borders between all of them.
#include <gtest/gtest.h>

#include "tests/app/console_fixture.h"

namespace console {
namespace {

constexpr uint32_t kTabKey = 0xFF09, kReturnKey = 0xFF0D;
constexpr uint32_t kLeftKey = 0xFF51, kUpKey = 0xFF52, kRightKey = 0xFF53, kDownKey = 0xFF54;

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
  ASSERT_TRUE(PlacesAre("-Computer +Home* /-Empty /Zoo "));
  display::Modifiers(platform::shiftKey);
  Key(kTabKey);
  display::Modifiers(0);
  ASSERT_EQ(c_->stop, FocusStop::kPlaces);
  for (const uint32_t key : {kDownKey, kRightKey}) Key(key);
  ASSERT_TRUE(PlacesAre("-Computer +Home* /+Empty //-a /Zoo "));
  for (const uint32_t key : {kRightKey, kRightKey, kRightKey}) Key(key);
  ASSERT_TRUE(PlacesAre("-Computer +Home* /+Empty //+a ///-b /Zoo "));
  Key(kReturnKey);
  ASSERT_TRUE(PlacesAre("-Computer +Home /+Empty //+a ///-b* /Zoo "));
  EXPECT_EQ(c_->files.folder.path(), home_.At("Empty/a/b"));
  // Out of the folders that it lies in, and the tree marks the nearest one.
  for (const uint32_t key : {kLeftKey, kLeftKey, kLeftKey, kLeftKey}) Key(key);
  ASSERT_TRUE(PlacesAre("-Computer +Home /-Empty /Zoo "));
  EXPECT_EQ(c_->places.list.at(), 2);
  // A click enters, a click on the mark opens. What comes to the disk comes to the tree.
  ClickNode("Zoo");
  ASSERT_TRUE(PlacesAre("-Computer +Home /-Empty /Zoo* "));
  home_.Folder("Zoo/new");
  ASSERT_TRUE(PlacesAre("-Computer +Home /-Empty /-Zoo* "));
  const Area row = c_->places.list.RowArea(3);
  ClickAt(row.x + 6 + 14 + 9, row.y + 10);
  ASSERT_TRUE(PlacesAre("-Computer +Home /-Empty /+Zoo* //new "));
  EXPECT_NE(c_->places.free_text.find(" free of "), std::string::npos);
  // Another volume has another tree; elsewhere in it the folder is found, too.
  Enter("/");
  Until([&] { return !c_->places_reader.request() && c_->places.tree.known(); });
  EXPECT_TRUE(Node("Computer").what.state & platform::kIsExpanded);
  EXPECT_TRUE(Node("Computer").what.state & platform::kIsSelected);
  EXPECT_FALSE(Node("Home").what.state & platform::kIsExpanded);
  EXPECT_GE(c_->places.Find("/tmp"), 0);
}

}  // namespace
}  // namespace console
