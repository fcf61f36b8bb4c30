// The table by itself: columns, selection, scrolling, hits, and what is drawn where.
#include "app/table/table.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

#include "app/format/texts.h"
#include "app/panes/scrolled_area.h"
#include "platform/display/headless/headless.h"
#include "platform/windows/windows.h"

namespace console {
namespace {

constexpr int kOwner = 5;

std::vector<Column> ThreeColumns() {
  return {{"Name", 200, 3, Align::kLeft, true},
          {"Owner", 80, 1, Align::kLeft, false, 2},
          {"Size", 100, 0, Align::kRight, true, 1}};
}

// Rows that are numbers.
struct Numbers {
  int n = 0;
  int count() const { return n; }
  int IdAt(int row) const {
    EXPECT_TRUE(row >= 0 && row < n) << row;
    return row;
  }
  int RowOf(int id) const { return id < n ? id : -1; }
  bool Has(int id) const { return id < n; }
};

struct NumberTable {
  NumberTable(
      const Area& a, int n, std::vector<Column> columns = ThreeColumns(),
      Table::DrawCell draw = [](int, int, const CellLook&) {})
      : table(kOwner, std::move(columns), std::move(draw), &selection) {
    table.Place(a);
    SetRows(n);
  }
  NumberTable(const NumberTable&) = delete;
  void SetRows(int n) {
    numbers.n = n;
    selection.Renew();
    table.SetRows(n);
  }
  Table* operator->() { return &table; }

  Numbers numbers;
  SelectionOf<Numbers, int> selection{numbers};
  Table table;
};

TEST(Columns, FillTheWidthAndDropByRank) {
  const struct {
    int width, rows;
    bool shown[3];
  } kRows[] = {
      {600, 3, {true, true, true}},  {395, 3, {true, true, true}},   {394, 3, {true, false, true}},
      {315, 3, {true, false, true}}, {314, 3, {true, false, false}}, {120, 3, {true, false, false}},
      {395, 99, {true, true, true}}, {394, 99, {true, false, true}},
  };  // whether there is a scroll bar or not
  for (const auto& row : kRows) {
    NumberTable list({10, 20, row.width, 200}, row.rows);
    Table& t = list.table;
    int x = t.Body().x;
    for (int i = 0; i < 3; ++i) {
      const Area c = t.ColumnArea(i);
      EXPECT_EQ(!c.Empty(), row.shown[i]) << row.width << " " << i;
      if (c.Empty()) continue;
      EXPECT_EQ(c.x, x);
      x = c.right();
    }
    EXPECT_EQ(x, 10 + std::max(200, row.width - Table::kScrollBar)) << row.width;
  }
}

std::vector<int> Widths(const Table& t) {
  std::vector<int> widths;
  for (int i = 0; i < 3; ++i) widths.push_back(t.ColumnArea(i).w);
  return widths;
}

TEST(Columns, ABorderMovesRoomFromOneToTheOther) {
  // Widths 365, 135, 100; the least are 46 each.
  const struct {
    int border, by;
    std::vector<int> after;
  } kRows[] = {
      {0, 30, {395, 105, 100}},  {0, -100, {265, 235, 100}}, {0, 900, {454, 46, 100}},
      {0, -900, {46, 454, 100}}, {1, 20, {365, 155, 80}},    {1, 900, {365, 189, 46}},
      {2, 50, {365, 135, 100}},  {7, 50, {365, 135, 100}},
  };
  for (const auto& row : kRows) {
    constexpr int kBar = Table::kScrollBar;
    NumberTable list({10, 20, 600 + kBar, 200}, 3);
    Table& t = list.table;
    ASSERT_EQ(Widths(t), (std::vector<int>{365, 135, 100}));
    const int x = t.ColumnArea(row.border).right() + 2;  // a little beside it
    t.Press({kOwner, Table::kBorder, row.border}, x);
    t.Drag(x + row.by / 2, 30);
    t.Drag(x + row.by, 30);
    t.Release();
    EXPECT_FALSE(t.Drag(x, 30));
    t.Press({kOwner, Table::kBorder, 0}, t.ColumnArea(0).right());
    t.Drag(t.ColumnArea(0).right() - 7, 30);
    t.Cancel();
    EXPECT_EQ(Widths(t), row.after) << row.border << " " << row.by;
    // They stay so in the same room, and give and take in another one.
    t.Place({10, 20, 500 + kBar, 200});
    EXPECT_EQ(t.ColumnArea(2).right(), 510) << row.border << " " << row.by;
    // Each that was made wider gives its own part first.
    const std::vector<int> given = {200, 200, 100};
    EXPECT_TRUE(row.by != -100 || Widths(t) == given);
    t.Place({10, 20, 300 + kBar, 200});
    EXPECT_TRUE(t.ColumnArea(1).Empty());
    EXPECT_EQ(t.ColumnArea(2).right(), 310) << row.border << " " << row.by;
    t.Place({10, 20, 900 + kBar, 200});
    EXPECT_EQ(t.ColumnArea(2).right(), 910);
    t.Place({10, 20, 600 + kBar, 200});
    EXPECT_EQ(Widths(t), row.after);
    t.ResetColumns();
    EXPECT_EQ(Widths(t), (std::vector<int>{365, 135, 100}));
  }
}

TEST(Keys, MoveTheSelectionAndKeepItInSight) {
  // Ten whole rows of a hundred are in sight.
  const struct {
    int from, key, to;
  } kRows[] = {
      {-1, XWE_DOWN, 0},      {-1, XWE_UP, 99},    {0, XWE_UP, 0},         {99, XWE_DOWN, 99},
      {5, XWE_DOWN, 6},       {5, XWE_UP, 4},      {5, XWE_PAGE_DOWN, 14}, {95, XWE_PAGE_DOWN, 99},
      {50, XWE_PAGE_UP, 41},  {3, XWE_PAGE_UP, 0}, {50, XWE_HOME, 0},      {50, XWE_END, 99},
      {-1, XWE_PAGE_DOWN, 9}, {-1, XWE_END, 99},
  };
  for (const auto& row : kRows) {
    NumberTable list({0, 0, 500, 22 + 10 * 22 + 7}, 100);
    Table& t = list.table;
    t.Select(row.from);
    EXPECT_TRUE(t.Key(row.key));
    EXPECT_EQ(t.selected(), row.to) << row.from << " " << row.key;
    for (const int rows : {10, 3}) {  // also where the table becomes smaller
      const bool whole = t.top() % Table::kRowHeight == 0;
      t.Place({0, 0, 500, 22 + rows * 22 + 7});
      EXPECT_TRUE(!whole || t.top() % Table::kRowHeight == 0) << row.from << " " << row.key;
      const Area a = t.RowArea(t.selected()), body = t.Body();
      EXPECT_GE(a.y, body.y);
      EXPECT_LE(a.bottom(), body.bottom());
    }
  }
  // A row that has the keyboard and is not selected comes first.
  NumberTable list({0, 0, 500, 200}, 9);
  const struct {
    int key;
    SelectionKeys keys;
    int to;
  } kFromThere[] = {{XWE_DOWN, {}, 4},      {XWE_UP, {}, 4},     {XWE_DOWN, {true, false}, 4},
                    {XWE_UP, {true}, 4},    {XWE_HOME, {}, 0},   {XWE_END, {}, 8},
                    {XWE_PAGE_DOWN, {}, 8}, {XWE_PAGE_UP, {}, 0}};
  for (const auto& row : kFromThere) {
    list->Select(4);
    list->Key(' ', {false, true});
    ASSERT_EQ(list->selected(), -1);
    list->Key(row.key, row.keys);
    EXPECT_EQ(list->selected(), row.to) << row.key;
  }
  // Beside the rows none has it.
  list->Press({kOwner, Table::kBody, 0}, 5);
  list->Key(XWE_DOWN);
  EXPECT_EQ(list->selected(), 0);
  NumberTable none({0, 0, 500, 200}, 0);
  Table& empty = none.table;
  for (int key : {XWE_UP, XWE_DOWN, XWE_HOME, XWE_END, XWE_PAGE_UP, XWE_PAGE_DOWN}) {
    EXPECT_TRUE(empty.Key(key));
    EXPECT_EQ(empty.selected(), -1);
  }
  EXPECT_FALSE(empty.Key(XWE_RETURN));
}

std::string Chosen(const NumberTable& list) {
  std::string all;
  for (const int id : list.selection.Ids()) all += std::to_string(id) + " ";
  return all;
}

// Ten whole rows of a hundred are in sight, from row 20 on; the pointer is dragged from row to row,
// and beyond the edges, where the table scrolls on.
TEST(Dragging, SelectsRowsAndScrollsBeyondTheEdge) {
  NumberTable list({0, 0, 500, 22 + 10 * 22}, 100);
  Table& t = list.table;
  t.ScrollTo(20 * 22);
  const auto middle = [&t](int row) { return t.RowArea(row).y + 11; };
  const auto press = [&t](int row, SelectionKeys keys = {}) {
    t.Press({kOwner, Table::kRow, row}, 5, keys);
  };
  press(22);
  EXPECT_FALSE(t.Drag(9, middle(22) + 3)) << "a hand that shakes drags nothing";
  EXPECT_TRUE(t.Drag(9, middle(24)));
  t.Release();
  EXPECT_EQ(Chosen(list), "22 23 24 ");
  press(27, {false, true});
  t.Drag(9, middle(26));
  EXPECT_EQ(Chosen(list), "22 23 24 26 27 ");
  t.Drag(9, middle(28));
  EXPECT_EQ(Chosen(list), "22 23 24 27 28 ");
  EXPECT_FALSE(t.ScrollsByDrag());
  t.Release();
  // One of the selected: from there, and not from where the last range began.
  press(23);
  EXPECT_EQ(Chosen(list), "22 23 24 27 28 ");
  t.Drag(9, t.Body().bottom() + 8);
  EXPECT_EQ(Chosen(list), "23 24 25 26 27 28 29 ");
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(t.ScrollByDrag());
  EXPECT_EQ(t.top(), 20 * 22 + 3 * 9);
  EXPECT_EQ(list.selection.Ids().back(), 31);
  t.Drag(9, t.Body().y - 4000);
  for (int i = 0; i < 60; ++i) t.ScrollByDrag();
  EXPECT_EQ(t.top(), 0);
  EXPECT_EQ(list.selection.Ids().size(), 24u);
  t.Release();
  EXPECT_FALSE(t.Drag(9, middle(5)));
  // What is ended leaves no trace.
  press(3);
  t.Release();
  press(5, {false, true});
  t.Release();
  for (const SelectionKeys keys : {SelectionKeys{}, {true, false}, {false, true}}) {
    for (const int from : {1, 5}) {
      press(from, keys);
      t.Drag(9, middle(7));
      EXPECT_TRUE(t.Cancel());
      EXPECT_EQ(Chosen(list), "3 5 ") << from;
      EXPECT_EQ(t.focus(), 5);
      EXPECT_FALSE(t.Drag(9, middle(8)));
      EXPECT_FALSE(t.Cancel());
    }
  }
  // Fewer rows come while one is held.
  press(8);
  t.Drag(9, middle(9));
  list.SetRows(4);  // the keyboard goes to the last
  EXPECT_TRUE(t.Drag(9, middle(2)));
  t.Release();
  EXPECT_EQ(Chosen(list), "2 3 ");
  // From the empty room below the rows: what lies between that and the pointer.
  const auto press_below = [&t](SelectionKeys keys) {
    t.Press({kOwner, Table::kBody, 0}, 5, keys);
    EXPECT_FALSE(t.Drag(9, t.RowArea(4).y + 30));
  };
  press_below({});
  EXPECT_EQ(Chosen(list), "");
  t.Drag(9, middle(2));
  EXPECT_EQ(Chosen(list), "2 3 ");
  t.Drag(9, middle(6));
  EXPECT_EQ(Chosen(list), "");
  t.Drag(9, middle(3));
  t.Release();
  EXPECT_EQ(Chosen(list), "3 ");
  press(1);
  t.Release();
  press_below({false, true});
  t.Drag(9, middle(3));
  EXPECT_EQ(Chosen(list), "1 3 ");
  EXPECT_TRUE(t.Cancel());
  press_below({});
  EXPECT_TRUE(t.Cancel());
  EXPECT_EQ(Chosen(list), "1 ");
}

TEST(Carrying, GoesToAGapOrOutOfTheTable) {
  NumberTable list({0, 0, 500, 22 + 10 * 22}, 100);
  Table& t = list.table;
  t.SetCarries(true, true);
  t.SetFirstGap(2);
  t.Select(0);
  t.Press({kOwner, Table::kRow, 0}, 5);
  EXPECT_TRUE(t.Drag(9, -5));
  EXPECT_TRUE(t.Carries()) << "the first row can be taken up and away";
  EXPECT_EQ(t.gap(), -1);
  EXPECT_TRUE(t.Drag(9, t.RowArea(0).y + 3)) << "the line comes";
  EXPECT_EQ(t.gap(), 2) << "what stands before that stays there";
  t.Drag(9, t.Body().bottom() + 8);
  EXPECT_TRUE(t.ScrollsByDrag());
  t.Drag(9, t.Body().bottom() + 2 * Table::kHeaderHeight);
  EXPECT_FALSE(t.ScrollsByDrag()) << "it goes somewhere else";
  t.Release();
  EXPECT_EQ(Chosen(list), "0 ");
  t.Press({kOwner, Table::kBody, 0}, 5);
  t.Drag(9, t.RowArea(98).y);
  EXPECT_FALSE(t.Carries()) << "nothing was taken";
  EXPECT_FALSE(t.TakeUp());
  // Something outside takes rows: of a range nothing is left but what was pressed.
  t.SetCarries(false, false);
  const struct {
    int row;
    SelectionKeys keys;
    const char *carried, *back;  // with the pointer in the table again
  } kRows[] = {{5, {}, "5 ", "5 6 7 "},
               {3, {}, "1 3 ", "3 4 5 6 7 "},
               {5, {false, true}, "1 3 5 ", "1 3 5 6 7 "},
               {3, {false, true}, "1 3 ", "1 3 4 5 6 7 "}};
  for (const auto& row : kRows) {
    list.selection.Set({1, 3});
    t.Press({kOwner, Table::kRow, row.row}, 5, row.keys);
    t.Drag(9, t.Body().bottom() + 20);
    t.ScrollByDrag();
    EXPECT_TRUE(t.TakeUp() && !t.Drag(900, 50) && !t.ScrollsByDrag() && t.top() == 0);
    EXPECT_EQ(Chosen(list), row.carried);
    t.Drag(9, t.RowArea(7).y + 3);
    EXPECT_EQ(Chosen(list), row.back);
    t.Cancel();
    EXPECT_EQ(Chosen(list), "1 3 ");
  }
}

TEST(Keys, SelectRangesWithShiftAndWalkWithControl) {
  const SelectionKeys kShift{true, false}, kControl{false, true};
  NumberTable list({0, 0, 500, 22 + 10 * 22}, 100);
  Table& t = list.table;
  t.Select(5);
  t.Key(XWE_DOWN, kShift);
  t.Key(XWE_DOWN, kShift);
  EXPECT_EQ(Chosen(list), "5 6 7 ");
  EXPECT_EQ(t.selected(), -1);
  t.Key(XWE_END, kControl);
  EXPECT_EQ(Chosen(list), "5 6 7 ");
  EXPECT_EQ(t.focus(), 99);
  EXPECT_EQ(t.top(), 90 * 22) << "the row with the keyboard is in sight";
  EXPECT_FALSE(t.Key(' ')) << "without Control it is not the table's";
  EXPECT_TRUE(t.Key(' ', kControl));
  EXPECT_EQ(Chosen(list), "5 6 7 99 ");
  t.Key(XWE_UP, {true, true});
  EXPECT_EQ(Chosen(list), "5 6 7 98 99 ");
  t.Key(XWE_PAGE_UP, kShift);
  EXPECT_EQ(list.selection.Ids().size(), 11u);
  t.Key(XWE_HOME);
  EXPECT_EQ(Chosen(list), "0 ");
}

TEST(Scrolling, StaysWithinItsBoundsWhateverComes) {
  std::mt19937 random(7);
  auto below = [&random](int n) { return int(random() % unsigned(n)); };
  NumberTable list({0, 0, 400, 300}, 40);
  Table& t = list.table;
  for (int i = 0; i < 20000; ++i) {
    switch (below(6)) {
      case 0:
        t.Wheel(float(below(4000) - 2000) / 7);
        break;
      case 1:
        t.Place({below(50), below(50), below(700), below(400)});
        break;
      case 2:
        list.SetRows(below(30) ? below(60) : below(100000));
        break;
      case 3:
        t.Select(below(70) - 5);
        break;
      case 4:
        t.Press({kOwner, 1 + below(4), below(80)}, below(700));
        t.Drag(below(2000) - 500, below(500) - 50);
        t.ScrollByDrag();
        t.Release();
        break;
      default:
        t.Key(XWE_HOME + below(7));
        break;
    }
    const int64_t most = std::max<int64_t>(0, int64_t{t.rows()} * 22 - std::max(0, t.Body().h));
    ASSERT_GE(t.top(), 0);
    ASSERT_LE(t.top(), most);
    ASSERT_LT(t.selected(), std::max(t.rows(), 0));
  }
}

TEST(Scrolling, WheelAddsUpPartsOfPixels) {
  NumberTable list({0, 0, 400, 22 + 220}, 100);
  Table& t = list.table;
  for (int i = 0; i < 10; ++i) t.Wheel(0.5f);
  EXPECT_EQ(t.top(), 5);
}

TEST(Texts, ReadAsAPersonReadsThem) {
  setenv("TZ", "UTC", 1);
  const struct {
    int64_t bytes;
    const char* text;
  } kSizes[] = {{-5, "0 bytes"},        {0, "0 bytes"},           {1, "1 byte"},
                {999, "999 bytes"},     {1000, "1 KB"},           {83400, "83 KB"},
                {999499, "999 KB"},     {999500, "1.0 MB"},       {4200000, "4.2 MB"},
                {99949999, "99.9 MB"},  {99960000, "100 MB"},     {118000000, "118 MB"},
                {2500000000, "2.5 GB"}, {3000000000000, "3.0 TB"}};
  for (const auto& row : kSizes) EXPECT_EQ(SizeText(row.bytes), row.text);
  EXPECT_EQ(PartText(2100000, 4200000), "2.1 of 4.2 MB");
  EXPECT_EQ(PartText(500, 4200000), "0.0 of 4.2 MB");
  constexpr int64_t kThen = 1700000000, kDay = 86400;  // 14 Nov 2023 22:13
  const struct {
    int64_t now;
    const char *day, *hour;
  } kTimes[] = {{kThen + 60, "14 Nov 22:13", "22:13"},
                {kThen + 2 * 3600, "14 Nov 22:13", "14 Nov"},
                {kThen + 30 * kDay, "14 Nov 22:13", "14 Nov"},  // the 14th of another month
                {kThen + 366 * kDay, "14 Nov 2023", "14 Nov 2023"}};
  for (const auto& row : kTimes) {
    EXPECT_EQ(DayText(kThen, row.now), row.day);
    EXPECT_EQ(HourText(kThen, row.now), row.hour);
  }
  EXPECT_EQ(DayText(0, kThen) + HourText(0, kThen), "");
  EXPECT_EQ(CountText(1, "file", "files") + CountText(0, "file", "files"), "1 file0 files");
}

// A window on the headless display that a table is drawn in.
class OnAWindow : public testing::Test {
 protected:
  void SetUp() override {
    XwSession("table", "Table", 7);
    window_ = XwCreate(0, 50, 50, 420, 320, nullptr);
    ASSERT_NE(window_, nullptr);
    XwShow(window_, 1);
  }
  // What is on the window, 0xRRGGBB, bar left out.
  uint32_t At(int x, int y) {
    const auto native = static_cast<platform::WindowRef>(window_->platform);
    if (picture_.pixels.empty()) picture_ = platform::headless::TakePicture(native);
    const int bar = picture_.height - window_->height;
    return picture_.pixels[size_t(y + bar) * size_t(picture_.width) + size_t(x)] & 0xFFFFFF;
  }
  void Draw(Table* t) {
    XwSet(window_);
    XwBox(0, 0, 420, 320, 0xFF00FF);
    t->Draw({});
    XwSync();
    picture_ = {};
  }
  XwWindow* window_ = nullptr;
  platform::headless::Picture picture_;
};

TEST_F(OnAWindow, EveryPixelOfARowHitsThatRow) {
  NumberTable list({15, 31, 380, 251}, 60);
  Table& t = list.table;
  for (int top : {0, 7, 22, 1000, 100000}) {
    t.ScrollTo(top);
    Hits hits;
    XwSet(window_);
    hits.Begin();
    t.AddHits(&hits);
    hits.End();
    const Area body = t.Body();
    for (int y = body.y; y < body.bottom(); ++y) {
      for (int x : {body.x, body.x + 100, body.right() - 1}) {
        Inp.window = window_;
        Inp.px = x;
        Inp.py = y;
        platform::headless::MovePointer(window_->x + x, window_->y + y);
        while (XwWaitEvent(reinterpret_cast<XwWindow*>(-1)) != XWE_MOTION) {
        }
        const Hit want{kOwner, Table::kRow, (y - body.y + t.top()) / Table::kRowHeight};
        ASSERT_EQ(hits.At(Inp.item), want) << x << " " << y << " " << t.top();
      }
    }
  }
}

TEST_F(OnAWindow, AnAreaScrollsAsFarAsItsContentGoes) {
  ScrolledArea area(22);
  area.MakeControls(window_, 7, "Area");
  area.Place({0, 0, 100, 100});
  area.SetHeight(500);
  EXPECT_LT(area.Body().w, 100);
  area.Key(XWE_END);
  EXPECT_EQ(area.top(), 400);
  for (int i = 0; i < 10; ++i) area.Wheel(-0.5f);
  EXPECT_EQ(area.top(), 395);
  area.SetHeight(200);
  EXPECT_EQ(area.top(), 100);
  area.SetHeight(100);
  EXPECT_EQ(area.top(), 0);
  EXPECT_EQ(area.Body().w, 100);
}

TEST_F(OnAWindow, NothingIsDrawnOutsideAndTextIsCutAtALetter) {
  const Style& l = TheStyle();
  NumberTable list({20, 10, 300, 200}, 40, {{"Wide", 60}, {"Empty", 100}},
                   [&](int, int column, const CellLook& cell) {
                     if (column == 0)
                       DrawLabel(l.view, Align::kLeft, cell.area, std::string(80, 'W'), cell.ink);
                   });
  Table& t = list.table;
  t.ScrollTo(13);
  Draw(&t);
  const Area body = t.Body(), first = t.ColumnArea(0);
  auto is_ground = [](uint32_t p) { return p == 0xFFFFFF || p == 0xFBFAF9; };
  int inked = 0;
  for (int y = 0; y < 320; ++y) {
    for (int x = 0; x < 420; ++x) {
      if (!t.area().Holds(x, y)) {
        ASSERT_EQ(At(x, y), 0xFF00FFu) << x << " " << y;
      } else if (body.Holds(x, y)) {
        if (x < first.x + 10 || x >= first.right() - 10)
          ASSERT_TRUE(is_ground(At(x, y))) << x << " " << y;
        else
          inked += !is_ground(At(x, y));
      }
    }
  }
  EXPECT_GT(inked, 1000);
  int cut_off = 0;  // of the row that is only half in sight
  for (int x = first.x; x < first.right(); ++x)
    for (int y = body.bottom() - 9; y < body.bottom(); ++y) cut_off += !is_ground(At(x, y));
  EXPECT_GT(cut_off, 20);
  // Whole letters: nothing is left of the room that another letter would have fitted in.
  const int letter = XwTextWidth(l.view, "W");
  int rightmost = 0;
  for (int x = first.x; x < first.right(); ++x)
    for (int y = body.y; y < body.bottom(); ++y)
      if (!is_ground(At(x, y))) rightmost = x;
  EXPECT_GE(rightmost, first.x + 10 + (40 / letter) * letter - 3);
}

TEST_F(OnAWindow, TheSelectionTellsWhetherItHasTheKeyboard) {
  NumberTable list({0, 0, 400, 300}, 5);
  Table& t = list.table;
  t.Select(2);
  const Area row = t.RowArea(2);
  const struct {
    bool focused, muted;
    uint32_t background, edge;
  } kRows[] = {{true, false, 0x3875D7, 0x3875D7},
               {false, false, 0xD8D5CF, 0xD8D5CF},
               {true, true, 0xD8D5CF, 0x88ACE7}};
  for (const auto& r : kRows) {
    t.SetFocused(r.focused);
    t.SetMuted(r.muted);
    Draw(&t);
    EXPECT_EQ(At(row.x + 3, row.y), r.background);
    EXPECT_EQ(At(row.right() - 1, row.bottom() - 1), r.edge)
        << "the table's, where no row tells it";
    EXPECT_EQ(At(row.x + 3, row.y - 1), 0xFBFAF9u);
    EXPECT_EQ(At(row.x + 3, row.bottom()), 0xFBFAF9u);
  }
}

}  // namespace
}  // namespace console
