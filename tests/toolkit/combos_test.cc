// Combo boxes: the pop-up of one, two items that take turns, separators, the keyboard.
#include <gtest/gtest.h>

#include <functional>

#include "platform/events/event.h"
#include "tests/toolkit/control_stage.h"

namespace {

using namespace stage;
using namespace platform;

constexpr uint32_t kUp = 0xFF52, kDown = 0xFF54, kReturn = 0xFF0D, kEscape = 0xFF1B;
const char* const kPrinters[] = {"Proof", "Wide", "", "Office", "Label", nullptr};
const char* const kTwo[] = {"Draft", "Best", nullptr};

std::string User(std::vector<std::function<void()>> what) {
  RunSteps(0.3, std::move(what));
  return Reports();
}

DescribedNode OpenMenu() {
  const auto roots = DescribeTree();
  return !roots.empty() && !roots[0].children.empty() &&
                 roots[0].children.back().what.role == ObjectRole::kMenu
             ? roots[0].children.back()
             : DescribedNode();
}
// The items of the open menu: "*" the selected one, "+" the one with a tick, "-" a separator.
std::string Items() {
  std::string out;
  for (const DescribedNode& i : OpenMenu().children) {
    out += out.empty() ? "" : " ";
    if (i.what.role == ObjectRole::kSeparator) out += "-";
    if (i.what.state & kIsFocused) out += "*";
    if (i.what.state & kIsChecked) out += "+";
    out += i.what.name;
  }
  return out;
}
std::string shown;
void Look() {
  shown = Items();
}
std::function<void()> Click(int x, int y) {
  return [=] { input::Click(x, y); };
}
std::function<void()> ClickItem(const char* name) {
  return [=] {
    const Rect r = Node(name).what.bounds;
    input::Click(r.left + 20, r.top + 5);
  };
}
std::function<void()> Type(uint32_t key, uint32_t modifiers = 0) {
  return [=] {
    if (modifiers) input::Modifiers(modifiers);
    input::KeyDown(key, key < 0x100 ? key : 0);
    input::KeyUp(key, key < 0x100 ? key : 0);
    if (modifiers) input::Modifiers(0);
  };
}

// A pop-up with the id 7 below the label "Printer".
struct ComboScreen : ControlScreen {
  XwWindow* combo;
  explicit ComboScreen(const char* const* items = kPrinters, int value = 0, uint32_t style = 0) {
    XwLabel(main, "Printer", 0, 10, 0, 100, 20, kOn);
    combo = XwComboBox(main, items, 7, 10, 20, 120, 24, kOn | style, value);
    Settle();
  }
  Description What() {
    const std::vector<DescribedNode> roots = DescribeTree();
    for (const DescribedNode& n : roots[0].children)
      if (n.what.role == ObjectRole::kPopUpButton) return n.what;
    return {};
  }
  std::function<void()> Press() { return Click(150, 135); }
};

TEST(Combos, ShowTheChosenItemAndTakeAnother) {
  ComboScreen s(kPrinters, 1);
  Description d = s.What();
  EXPECT_EQ(d.name + "=" + d.value, "Printer=Wide");
  EXPECT_EQ(d.bounds, (Rect{111, 122, 228, 146}));
  EXPECT_TRUE(d.state & kHasMenu);
  EXPECT_EQ(XwGetValue(s.combo), 1);
  EXPECT_EQ(User({s.Press(), Look, ClickItem("Label")}), "7=4");
  EXPECT_EQ(shown, "Proof *+Wide - Office Label");
  EXPECT_EQ(s.What().value, "Label");
  EXPECT_EQ(XwGetValue(s.combo), 4) << "a separator counts";
  // Dismissed, it keeps what it has.
  EXPECT_EQ(User({s.Press(), Look, Type(kEscape), s.Press(), Click(350, 280)}), "");
  EXPECT_EQ(shown, "Proof Wide - Office *+Label");
  EXPECT_EQ(XwGetValue(s.combo), 4);
  // Held, moved and let go.
  EXPECT_EQ(User({[] { input::MovePointer(150, 135); }, [] { input::Press(1); },
                  [] {
                    const Rect r = Node("Proof").what.bounds;
                    EXPECT_GE(r.top, 146) << "below the button";
                    EXPECT_EQ(OpenMenu().children[0].what.bounds.left, 111 + 1);
                    input::MovePointer(r.left + 9, r.top + 9);
                  },
                  [] { input::Release(1); }}),
            "7=0");
  // The button looks pressed while its menu is open, and the menu is as wide.
  User({s.Press(), [&s] { EXPECT_TRUE(s.What().state & kIsPressed); },
        [] { EXPECT_GE(OpenMenu().children[0].what.bounds.width(), 115); }, Type(kEscape)});
  EXPECT_FALSE(s.What().state & kIsPressed);
  EXPECT_EQ(Others(), "");
  // Another array: what no longer is there goes to the last one.
  XwSetValue(s.combo, 4);
  XwSetText(s.combo, kTwo);
  EXPECT_EQ(s.What().value, "Best");
  const char* const utf8[] = {"\xCE\xB1", nullptr};
  XwSetTextUtf8(s.combo, utf8);
  EXPECT_EQ(s.What().value, "\xCE\xB1");
  const char* const none[] = {nullptr};
  XwSetText(s.combo, none);
  EXPECT_EQ(s.What().value + std::to_string(XwGetValue(s.combo)), "-1");
  EXPECT_EQ(User({s.Press(), Look}), "");
  EXPECT_EQ(shown, "") << "nothing to show";
  char title[256];
  EXPECT_EQ(std::string(XwGetText(s.combo, title), 9),
            "\x08"
            "ComboBox");
}

TEST(Combos, ValuesStayInTheirRange) {
  ComboScreen s(kPrinters, -1);
  EXPECT_EQ(XwGetValue(s.combo), -1);
  EXPECT_EQ(s.What().value, "");
  for (const auto& [set, got] : {std::pair{0, 0},
                                 {3, 3},
                                 {4, 4},
                                 {5, 4},
                                 {-1, -1},
                                 {-9, -1},
                                 {INT32_MAX, 4},
                                 {INT32_MIN, -1}}) {
    XwSetValue(s.combo, set);
    EXPECT_EQ(XwGetValue(s.combo), got) << set;
    EXPECT_EQ(s.combo->value, set);
  }
  XwMove(s.combo, 20, 40, 100, 20);
  EXPECT_EQ(s.What().bounds, (Rect{121, 142, 218, 162}));
  XwSetValue(s.combo, 0);
  const std::string text = std::string(300, 'x');
  const char* const items[] = {text.c_str(), nullptr};
  XwSetText(s.combo, items);
  EXPECT_EQ(s.What().value.size(), 255u);
  const XwDialogItem list[] = {
      {4, reinterpret_cast<const char*>(kPrinters), 8, 10, 140, 90, 24, kOn, 3, 0, 0, 0, 0},
      {4, nullptr, 9, 110, 140, 90, 24, kOn, 0, 0, 0, 0, 0},
      {}};
  XwCreateDialogItems(s.main, list, 0, 0);
  EXPECT_EQ(XwGetValue(XwFind(s.main, 8)), 3);
  EXPECT_EQ(XwGetValue(XwFind(s.main, 9)), -1);
}

TEST(Combos, TwoItemsTakeTurns) {
  ComboScreen s(kTwo, -1);
  for (const char* report : {"7=0", "7=1", "7=0"}) EXPECT_EQ(ClickAt(150, 135), report);
  EXPECT_EQ(s.What().value, "Draft");
  XwFocusControl(s.combo);
  EXPECT_EQ(Key(' ', ' '), "7=1");
  input::KeyDown(kDown);
  input::KeyDown(kDown);
  EXPECT_EQ(Key(kDown, 0), "7=0") << "its repeats press nothing";
  XwEnable(s.combo, 0);
  EXPECT_EQ(ClickAt(150, 135), "");
  EXPECT_EQ(XwGetValue(s.combo), 0);
  // With the style bit they have a menu.
  ComboScreen with(kTwo, 0, XWC_VARIANT);
  EXPECT_EQ(User({with.Press(), Look, ClickItem("Best")}), "7=1");
  EXPECT_EQ(shown, "*+Draft Best");
}

TEST(Combos, AMenuButtonReportsTheCommand) {
  ControlScreen s;
  static XwMenuItem items[] = {{"First", 0, 71, nullptr}, {"Second", 0, 72, nullptr}, {}};
  XwWindow* more = XwButton(s.main, "More", 7, 10, 20, 120, 24, kOn | XWC_MENU, items);
  Settle();
  EXPECT_EQ(User({Click(150, 135), ClickItem("Second")}), "72=0");
  EXPECT_EQ(User({Click(150, 135), Type(kEscape)}), "") << "dismissed";
  XwFocusControl(more);
  EXPECT_EQ(User({Type(' '), Type(kDown), Type(kReturn)}), "71=0");
  XwEnable(more, 0);
  EXPECT_EQ(User({Click(150, 135)}), "");
}

TEST(Combos, KeyboardAlone) {
  ComboScreen s;
  XwButton(s.main, "OK", 8, 200, 10, 60, 26, kOn, 0);
  XwSetDefaultButtons(s.main, XwFind(s.main, 8), nullptr);
  Key(0xFF09, 9);
  EXPECT_EQ(FocusedId(), 7);
  EXPECT_EQ(User({Type(kDown), Type(kDown), Type(kReturn)}), "7=1");
  EXPECT_EQ(User({Type(' '), Look, Type(kDown), Type(' ')}), "7=3") << "a separator is skipped";
  EXPECT_EQ(User({Type(kDown, optionKey), Type('p'), Type(kReturn)}), "7=0");
  EXPECT_EQ(User({Type(kDown), Type(kDown), Type(kEscape)}), "");
  EXPECT_EQ(XwGetValue(s.combo), 0);
  EXPECT_EQ(User({Type(kReturn)}), "8=0") << "Return is the default button's";
  EXPECT_EQ(User({Type(kUp)}), "");
  XwEnable(s.combo, 0);
  EXPECT_EQ(FocusedId(), 0);
}

TEST(Combos, ALongMenuScrollsToItsItem) {
  std::vector<std::string> names;
  std::vector<const char*> items;
  for (int i = 0; i < 300; ++i) names.push_back("Item " + std::to_string(i));
  for (const std::string& n : names) items.push_back(n.c_str());
  items.push_back(nullptr);
  ComboScreen s(items.data(), 250);
  User({s.Press(),
        [] {
          EXPECT_FALSE(Node("Item 250").what.bounds.empty());
          EXPECT_TRUE(Node("Item 0").what.bounds.empty());
          const Rect r = Node("Item 250").what.bounds;
          input::MovePointer(r.left + 20, r.top + 5);
          input::Scroll(0, -600);
        },
        [] { EXPECT_TRUE(Node("Item 250").what.bounds.empty()); }, Type(kEscape)});
  EXPECT_EQ(s.What().value, "Item 250");
}

TEST(Combos, EndWhileTheirMenuIsOpen) {
  ComboScreen s;
  EXPECT_EQ(User({s.Press(), [&s] { XwDestroy(s.combo); }}), "");
  EXPECT_EQ(Items(), "");
  XwWindow* other = XwComboBox(s.main, kPrinters, 5, 10, 60, 120, 24, kOn, 0);
  RunLoop();
  EXPECT_EQ(User({Click(150, 175), [other] { XwSetText(other, kTwo); }}), "") << "the menu is gone";
  EXPECT_EQ(User({Click(150, 175)}), "5=1");
  XwWindow* second = XwCreate(0, 500, 100, 200, 200, Record);
  XwComboBox(second, kPrinters, 6, 10, 20, 120, 24, kOn, 0);
  XwShow(second, 1);
  Settle();
  EXPECT_EQ(User({Click(550, 135), [second] { XwDestroy(second); }}), "");
}

// Beside an edit box: the menu fills the box. Its button is at (217, 120) to (240, 135).
struct EditableScreen : ControlScreen {
  XwWindow* combo = nullptr;
  explicit EditableScreen(uint32_t style = kOn) {
    combo = XwComboBox(main, kPrinters, 7, 10, 20, 130, 24, style | XWC_EDITABLE, 3);
    Settle();
  }
  static std::string Text(XwWindow* w) {
    char text[256];
    return XwGetText(w, text);
  }
  std::string Text() { return Text(combo); }
  std::function<void()> Press() { return Click(225, 127); }
};

TEST(Combos, AnEditableOneFillsItsBox) {
  EditableScreen s;
  XwWindow* box = s.combo->linked;
  ASSERT_EQ(box, XwFind(s.main, -7));
  EXPECT_EQ(box->x + box->width, 115);
  EXPECT_EQ(s.Text(), "");
  EXPECT_EQ(XwGetValue(s.combo), -1);
  EXPECT_EQ(User({s.Press(), Look, [] { EXPECT_LT(OpenMenu().what.bounds.top, 130); },
                  ClickItem("Office")}),
            "7=3");
  EXPECT_EQ(shown, "Proof Wide - Office Label") << "no tick, nothing selected";
  EXPECT_EQ(s.Text(), "Office");
  EXPECT_EQ(XwGetValue(s.combo), -1);
  XwSetFocus(s.combo);
  EXPECT_EQ(FocusedId(), -7);
  EXPECT_EQ(User({s.Press(), Type(kEscape)}), "");
  EXPECT_EQ(s.Text() + std::to_string(FocusedId()), "Office-7");
  EXPECT_EQ(User({s.Press(), ClickItem("Office")}), "7=3");
  EXPECT_EQ(FocusedId(), 0) << "who chooses has done with the box";
  XwSetText(s.combo, "Mine");
  EXPECT_EQ(s.Text(box), "Mine") << "one string, not an array";
  // Another menu; small numbers are none.
  XwSetValue(s.combo, 3);
  XwSetValue(s.combo, reinterpret_cast<XwValue>(kTwo));
  EXPECT_EQ(User({s.Press(), Look, ClickItem("Best")}), "7=1") << "two items do not take turns";
  EXPECT_EQ(shown, "Draft Best");
  XwSetValue(s.combo, 0);
  EXPECT_EQ(User({s.Press(), Look}), "");
  EXPECT_EQ(shown, "");
  EXPECT_EQ(s.Text(), "Best");
}

TEST(Combos, TheBoxOfAnEditableOneGoesAlong) {
  EditableScreen s;
  XwWindow* box = s.combo->linked;
  XwMove(s.combo, 30, 60, 105, 26);
  EXPECT_EQ((Rect{box->x, box->y, box->x + box->width, box->y + box->height}),
            (Rect{30, 60, 110, 86}));
  XwShow(s.combo, 0);
  EXPECT_FALSE(box->flags & XW_SHOWN);
  XwShow(s.combo, 1);
  XwEnable(s.combo, 0);
  EXPECT_FALSE(box->enabled);
  XwEnable(s.combo, 1);
  // Without its box it has nothing to fill, and its box stays when it goes.
  XwWindow* other = XwEditBox(s.main, "other", -7, 10, 200, 80, 24, kOn);
  XwDestroy(box);
  EXPECT_EQ(s.combo->linked, nullptr);
  XwMove(s.combo, 10, 20, 130, 24);
  XwSetText(s.combo, "lost");
  EXPECT_EQ(User({s.Press(), ClickItem("Wide")}), "");
  EXPECT_EQ(s.Text() + s.Text(other), "other");
  EditableScreen read_only(kOn | XWC_VARIANT);
  XwWindow* stays = read_only.combo->linked;
  EXPECT_EQ(ClickAt(150, 132), "-7=0") << "the box can only be read";
  XwDestroy(read_only.combo);
  EXPECT_EQ(XwFind(read_only.main, -7), stays);
}

TEST(Combos, AnEditableOneEndsWhileItsMenuIsOpen) {
  EditableScreen s;
  EXPECT_EQ(User({s.Press(), [&s] { XwDestroy(s.combo->linked); }, ClickItem("Wide")}), "");
  EXPECT_EQ(User({s.Press(), [&s] { XwDestroy(s.combo); }}), "");
  EXPECT_EQ(Items(), "");
}

}  // namespace
