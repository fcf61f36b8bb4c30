// Lists: rows, the pointer, the keyboard, the wheel, and what they say of themselves.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/events/event.h"
#include "tests/toolkit/control_stage.h"

namespace {

using namespace stage;
using namespace platform;

constexpr uint32_t kHome = 0xFF50, kUp = 0xFF52, kDown = 0xFF54, kPageUp = 0xFF55,
                   kPageDown = 0xFF56, kEnd = 0xFF57;

// The texts "<name> <i>", as an array that ends with a null pointer.
class Texts {
 public:
  explicit Texts(int count, const std::string& name = "Row") {
    for (int i = 0; i < count; ++i) texts_.push_back(name + " " + std::to_string(i));
    for (const std::string& t : texts_) array_.push_back(t.c_str());
    array_.push_back(nullptr);
  }
  operator const char* const*() const { return array_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<const char*> array_;
};

// A list with the id 7 below the label "List"; it shows (height - 8) / 18 rows.
struct ListScreen : ControlScreen {
  XwWindow* list;
  explicit ListScreen(const char* const* items, int height = 116) {
    XwLabel(main, "List", 0, 10, 0, 100, 20, kOn);
    list = XwListBox(main, items, 7, 10, 20, 150, height, kOn);
    Settle();
  }
  DescribedNode FindList() {
    for (const DescribedNode& window : DescribeTree())
      for (const DescribedNode& n : window.children)
        if (n.what.role == ObjectRole::kList) return n;
    return {};
  }
  // The rows in view, the selected one in brackets.
  std::string View() {
    std::string out;
    for (const DescribedNode& row : FindList().children) {
      const bool selected = row.what.state & kIsSelected;
      out += (out.empty() ? "" : " ") + (selected ? "[" + row.what.name + "]" : row.what.name);
    }
    return out;
  }
  Rect RowBounds(int place) { return FindList().children.at(size_t(place)).what.bounds; }
  std::string ClickRow(int place) {
    const Rect r = RowBounds(place);
    return ClickAt(r.left + 20, r.top + 1);
  }
  int Top() {
    const std::string first = FindList().children.at(0).what.name;
    return atoi(first.substr(first.rfind(' ')).c_str());
  }
};

TEST(Lists, RowsAreReplacedAndLoseTheirChoice) {
  ListScreen s(Texts(5, "A"));
  EXPECT_EQ(s.View(), "A 0 A 1 A 2 A 3 A 4");
  EXPECT_EQ(s.FindList().what.name, "List");
  EXPECT_EQ(s.FindList().what.bounds, (Rect{112, 122, 258, 234}));
  EXPECT_EQ(XwGetValue(s.list), -1);
  EXPECT_EQ(s.ClickRow(3), "7=3");
  EXPECT_EQ(s.FindList().what.value, "A 3");
  const Texts two(2, "Bcd"), five(5, "E"), none(0);
  const char* const mac[] = {"\216t\216", "", "plain", nullptr};
  const char* const utf8[] = {"\xCE\xB1\xCE\xB2", "bad \xFF", nullptr};
  const struct {
    void (*set)(XwWindow*, const char* const*);
    const char* const* items;
    const char* view;
  } rows[] = {
      {XwUpdateListBox, two, "Bcd 0 Bcd 1"},
      {XwUpdateListBox, five, "E 0 E 1 E 2 E 3 E 4"},
      {[](XwWindow* w, const char* const* t) { XwSetText(w, t); }, two, "Bcd 0 Bcd 1"},
      {XwUpdateListBox, none, ""},
      {XwUpdateListBox, mac, "\xC3\xA9t\xC3\xA9  plain"},
      {[](XwWindow* w, const char* const* t) { XwSetTextUtf8(w, t); }, utf8,
       "\xCE\xB1\xCE\xB2 bad \xEF\xBF\xBD"},
      {XwUpdateListBox, nullptr, ""},
      {XwUpdateListBox, five, "E 0 E 1 E 2 E 3 E 4"},
  };
  for (const auto& row : rows) {
    row.set(s.list, row.items);
    EXPECT_EQ(s.View(), row.view);
    EXPECT_EQ(XwGetValue(s.list), -1);
    EXPECT_EQ(s.FindList().what.value, "");
    XwSetValue(s.list, 1);
  }
  EXPECT_EQ(s.View(), "E 0 [E 1] E 2 E 3 E 4");
  XwSetValue(s.list, 9);
  EXPECT_EQ(s.View(), "E 0 E 1 E 2 E 3 E 4") << "a row that is not there selects nothing";
  EXPECT_EQ(XwGetValue(s.list), 9);
  char text[256] = "xx";
  XwGetText(s.list, text);
  EXPECT_EQ(std::string(text, 2), std::string("\0x", 2)) << "no title";
  XwUpdateListBox(s.main, five);
  XwMove(s.list, 20, 30, 100, 60);
  EXPECT_EQ(s.FindList().what.bounds, (Rect{122, 132, 218, 188}));
  EXPECT_EQ(s.View(), "E 0 E 1");
  XwUpdateListBox(XwListBox(s.main, nullptr, 1, 0, 0, 0, 0, kOn), five);
  const XwDialogItem items[] = {
      {9, reinterpret_cast<const char*>(static_cast<const char* const*>(two)), 8, 10, 140, 90, 50,
       kOn, 0, 0, 0, 0, 0},
      {9, nullptr, 9, 110, 140, 90, 50, kOn, 0, 0, 0, 0, 0},
      {}};
  XwCreateDialogItems(s.main, items, 0, 0);
  EXPECT_EQ(XwFind(s.main, 8)->kind, XWK_LIST);
  EXPECT_EQ(XwGetValue(XwFind(s.main, 9)), -1);
}

TEST(Lists, PointerSelectsAndReportsOnce) {
  ListScreen s(Texts(4));
  EXPECT_EQ(s.ClickRow(2), "7=2");
  EXPECT_EQ(s.ClickRow(2), "7=2") << "told again on the same row";
  EXPECT_EQ(FocusedId(), 7) << "a press gives a list the keyboard";
  // A double click is two of them.
  uint32_t last = 0;
  XwDoubleClick(&last);
  input::Step(1);
  std::string doubles;
  for (int i = 0; i < 2; ++i) {
    s.ClickRow(1);
    doubles += XwDoubleClick(&last) ? '2' : '1';
  }
  EXPECT_EQ(doubles, "12");
  // Below the last row nothing is.
  const Rect row = s.RowBounds(3);
  EXPECT_EQ(ClickAt(row.left + 5, row.bottom + 4), "");
  EXPECT_EQ(s.View(), "Row 0 [Row 1] Row 2 Row 3");
  // A drag selects on its way and reports where it ends, also outside.
  PressAt(row.left + 5, s.RowBounds(0).top + 2);
  EXPECT_EQ(s.View(), "[Row 0] Row 1 Row 2 Row 3");
  EXPECT_EQ(Reports(), "");
  input::MovePointer(row.left + 5, s.RowBounds(2).top + 2);
  RunLoop();
  EXPECT_EQ(s.View(), "Row 0 Row 1 [Row 2] Row 3");
  input::MovePointer(row.left + 300, row.bottom + 4);
  LetGo();
  EXPECT_EQ(Reports(), "7=3");
  EXPECT_EQ(XwGetValue(s.list), 3);
  // One that is taken away gives back what was selected.
  PressAt(row.left + 5, s.RowBounds(1).top + 2);
  RawEvent lost;
  lost.type = RawEvent::kGrabLost;
  input::Inject(lost);
  RunLoop();
  LetGo();
  EXPECT_EQ(Reports(), "");
  EXPECT_EQ(s.View(), "Row 0 Row 1 Row 2 [Row 3]");
  // Unless the rows are others by then.
  input::Press(1);
  RunLoop();
  XwUpdateListBox(s.list, Texts(4));
  input::Inject(lost);
  RunLoop();
  EXPECT_EQ(s.View(), "Row 0 Row 1 Row 2 Row 3");
  LetGo();
  s.ClickRow(3);
  // Greyed while it is held, it forgets the drag; greyed, it takes no press.
  PressAt(row.left + 5, s.RowBounds(1).top + 2);
  XwEnable(s.list, 0);
  LetGo();
  EXPECT_EQ(Reports() + s.ClickRow(0), "");
  EXPECT_EQ(s.View(), "Row 0 Row 1 Row 2 [Row 3]");
}

TEST(Lists, ScrollsWhileItIsHeldOutside) {
  ListScreen s(Texts(100000), 116);  // six rows in view
  const Rect first = s.RowBounds(0);
  input::MovePointer(first.left + 5, first.top + 2);
  input::Press(1);
  input::MovePointer(first.left + 5, s.FindList().what.bounds.bottom + 2);
  RunFor(0.51);
  const int slow = s.Top();
  EXPECT_GE(slow, 8);
  EXPECT_LE(slow, 12);
  input::MovePointer(first.left + 5, s.FindList().what.bounds.bottom + 200);
  RunFor(0.5);
  EXPECT_GT(s.Top(), slow + 50) << "farther away is faster";
  input::MovePointer(first.left + 5, first.top + 20);
  RunLoop();
  const int rests = s.Top();
  RunFor(0.5);
  EXPECT_EQ(s.Top(), rests);
  input::MovePointer(first.left + 5, 0);
  RunFor(10);
  EXPECT_EQ(s.Top(), 0);
  EXPECT_EQ(Reports(), "");
  LetGo();
  EXPECT_EQ(Reports(), "7=0");
  RunFor(1);
  EXPECT_EQ(s.Top(), 0);
  // Destroyed while it is held and scrolls.
  input::MovePointer(first.left + 5, first.top + 2);
  input::Press(1);
  input::MovePointer(first.left + 5, 2000);
  RunFor(0.2);
  XwDestroy(s.list);
  RunFor(0.5);
  LetGo();
  EXPECT_EQ(Reports(), "");
}

TEST(Lists, WheelAndBarScroll) {
  ListScreen s(Texts(50), 116);
  const Rect list = s.FindList().what.bounds, row = s.RowBounds(0);
  EXPECT_EQ(row.right, list.right - 1 - 15) << "the bar's place";
  EXPECT_EQ(s.FindList().children.size(), 6u) << "no row is cut";
  input::MovePointer(list.left + 10, list.top + 10);
  input::Scroll(0, 48);
  RunLoop();
  EXPECT_EQ(s.Top(), 3);
  for (int i = 0; i < 3; ++i) input::Scroll(0, 8);
  RunLoop();
  EXPECT_EQ(s.Top(), 4) << "fractions are summed";
  input::Scroll(0, -4800);
  RunLoop();
  EXPECT_EQ(s.Top(), 0);
  const int bar = list.right - 8;
  ClickAt(bar, list.bottom - 6);
  EXPECT_EQ(s.Top(), 6) << "a page";
  input::MovePointer(bar, list.top + 20);
  input::Press(1);
  input::MovePointer(bar, 2000);
  LetGo();
  EXPECT_EQ(s.Top(), 44);
  EXPECT_EQ(XwGetValue(s.list), -1);
  EXPECT_EQ(Reports(), "");
  XwSetValue(s.list, 2);
  EXPECT_EQ(s.View(), "[Row 2] Row 3 Row 4 Row 5 Row 6 Row 7") << "as little as it takes";
  XwSetValue(s.list, 8);
  EXPECT_EQ(s.View(), "Row 3 Row 4 Row 5 Row 6 Row 7 [Row 8]");
  XwUpdateListBox(s.list, Texts(3));
  EXPECT_EQ(s.View(), "Row 0 Row 1 Row 2");
  EXPECT_EQ(s.RowBounds(0).right, list.right - 1) << "no bar where all rows show";
  XwUpdateListBox(s.list, Texts(8));
  XwMove(s.list, 10, 20, 150, 180);
  EXPECT_EQ(s.RowBounds(7).right, list.right - 1);
  // Lower than a row it shows no part of a text.
  XwMove(s.list, 10, 20, 150, 20);
  const char* const blank[] = {"", nullptr};
  auto look = [&](const char* const* rows) {
    XwUpdateListBox(s.list, rows);
    RunLoop();
    return input::TakePicture(Native(s.main)).pixels;
  };
  EXPECT_EQ(look(Texts(1)), look(blank));
  XwShow(s.list, 0);
  EXPECT_FALSE(s.FindList().what.state & kIsShown);
}

std::string Typed(const char* keys) {
  for (; *keys; ++keys) {
    input::KeyDown(uint8_t(*keys), uint8_t(*keys));
    input::KeyUp(uint8_t(*keys), uint8_t(*keys));
  }
  RunLoop();
  return Reports();
}

TEST(Lists, KeyboardAlone) {
  const char* const words[] = {"Beta",     "alpha", "Alpine",  "al fresco", "gamma",
                               "\216tude", "Delta", "delta v", "Omega",     nullptr};
  ListScreen s(words, 98);  // five rows in view
  XwButton(s.main, "Button", 8, 200, 10, 60, 26, kOn, 0);
  Key(0xFF09, 9);
  EXPECT_EQ(FocusedId(), 7);
  const struct {
    uint32_t key;
    const char* reports;
  } moves[] = {{kDown, "7=0"},   {kDown, "7=1"}, {kUp, "7=0"}, {kUp, ""},     {kPageDown, "7=4"},
               {kPageUp, "7=0"}, {kEnd, "7=8"},  {kDown, ""},  {kHome, "7=0"}};
  for (const auto& row : moves) EXPECT_EQ(Key(row.key, 0), row.reports) << row.key;
  const struct {
    double wait;
    const char *keys, *reports;
  } beginnings[] = {{2, "a", "7=1"},   {0.9, "l", ""},      {0.9, "p", ""},
                    {0.9, "i", "7=2"}, {1.1, "a", "7=3"},   {2, "AL F", "7=1 7=3"},
                    {2, "d", "7=6"},   {0, "elta ", "7=7"}, {2, "x", ""},
                    {0.5, "d", ""},    {2, "\xE9", "7=5"},  {2, "d", "7=6"},
                    {1.1, "d", "7=7"}, {1.1, "d", "7=6"}};
  for (const auto& row : beginnings) {
    input::Step(row.wait);
    EXPECT_EQ(Typed(row.keys), row.reports) << row.keys;
  }
  // The report takes the place of the key; a key that chooses nothing is delivered, and one with
  // Control is no part of a beginning.
  Key(kHome, 0);
  input::KeyDown(kDown);
  RunLoop();
  EXPECT_EQ(Others(), "");
  input::KeyUp(kDown);
  EXPECT_EQ(Key('g', 'g', controlKey), "");
  EXPECT_EQ(s.FindList().what.value, "alpha");
  Key(kEnd, 0);
  input::KeyDown(kDown);
  RunLoop();
  EXPECT_EQ(Others(), "528");
  input::KeyUp(kDown);
  // Return and Escape stay the default buttons'.
  XwSetDefaultButtons(s.main, XwFind(s.main, 8), nullptr);
  EXPECT_EQ(Key(0xFF0D, 13), "8=0");
  // None chosen: down begins at the top, up at the end.
  XwUpdateListBox(s.list, words);
  EXPECT_EQ(Key(kUp, 0), "7=8");
  XwUpdateListBox(s.list, words);
  EXPECT_EQ(Key(kDown, 0), "7=0");
  XwUpdateListBox(s.list, nullptr);
  EXPECT_EQ(Key(kDown, 0) + Typed("a"), "");
}

TEST(Lists, AMillionRowsAnswerAtOnce) {
  constexpr int kRows = 1000000;
  ListScreen s(Texts(kRows), 98);
  XwFocusControl(s.list);
  EXPECT_EQ(Key(kEnd, 0), "7=999999");
  EXPECT_EQ(s.Top(), kRows - 5);
  EXPECT_EQ(Typed("row 77777"), "7=0 7=7 7=77 7=777 7=7777 7=77777");
}

TEST(Lists, AssistiveToolsChooseRows) {
  ListScreen s(Texts(10));
  const DescribedNode list = s.FindList(), row = list.children[2];
  EXPECT_EQ(list.what.actions, uint32_t{kActionFocus});
  EXPECT_EQ(row.what.role, ObjectRole::kRow);
  EXPECT_TRUE(ActOn(row.serial, kActionPress));
  RunLoop();
  EXPECT_EQ(Reports(), "7=2");
  EXPECT_EQ(XwGetValue(s.list), 2);
  EXPECT_EQ(s.FindList().children[2].serial, row.serial);
  XwUpdateListBox(s.list, Texts(2));
  EXPECT_FALSE(ActOn(row.serial, kActionPress)) << "the row is gone";
  // One with the id 0 tracks and reports nothing.
  s.list->id = 0;
  EXPECT_EQ(s.ClickRow(1), "");
  EXPECT_EQ(s.View(), "Row 0 [Row 1]");
}

}  // namespace
