// The pointer shapes: their records, and a sheet of all of them to look at.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/display/cursor.h"
#include "tests/support/picture.h"
#include "tests/toolkit/stage.h"
#include "toolkit/events/cursor_art.h"
#include "toolkit/events/cursors.h"

namespace {

using namespace stage;

constexpr int kCellWidth = 150, kCellHeight = 124, kColumns = 7, kZoom = 3;
constexpr int32_t kGround = 0xD0C4B8;

platform::Cursor* Make(const CursorArt& art) {
  CursorRecord record = MakeCursorRecord(art);
  return reinterpret_cast<platform::Cursor*>(XwCocoaCreateCursor(record.bytes));
}

void DrawCursor(const platform::Cursor& c, int left, int top, int zoom) {
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      uint32_t p = c.pixels[size_t(y * c.width + x)];
      if (p >> 24 == 0) continue;
      int32_t bgr = int32_t((p & 0xFF) << 16 | (p & 0xFF00) | (p >> 16 & 0xFF));
      XwBox(left + x * zoom, top + y * zoom, zoom, zoom, bgr);
    }
  }
  // The hot spot, on the large one.
  if (zoom > 1) XwBox(left + c.hot_x * zoom + 1, top + c.hot_y * zoom + 1, 1, 1, 0xFFFF00);
}

TEST(Cursors, Sheet) {
  Open();
  int count = 0;
  const CursorArt* all = AllCursorArt(&count);
  int rows = (count + kColumns - 1) / kColumns;
  XwWindow* w = XwCreate(-255, 0, 24, kColumns * kCellWidth, rows * kCellHeight, nullptr);
  XwShow(w, 1);
  XwSet(w);
  XwBox(0, 0, w->width, w->height, kGround);
  for (int i = 0; i < count; ++i) {
    int left = i % kColumns * kCellWidth + 8, top = i / kColumns * kCellHeight + 6;
    platform::Cursor* c = Make(all[i]);
    ASSERT_NE(c, nullptr);
    XwDrawText(XWF_NORMAL, 0, left, top, 0, 0, all[i].name, 0, -1);
    DrawCursor(*c, left, top + 20, 1);
    DrawCursor(*c, left + 40, top + 20, kZoom);
    platform::ReleaseCursor(c);
  }
  platform::FlushWindow(Native(w));
  input::Picture whole = input::TakePicture(Native(w));
  testkit::Picture sheet{w->width, w->height, {}};
  sheet.pixels.assign(whole.pixels.end() - w->width * w->height, whole.pixels.end());
  EXPECT_TRUE(testkit::MatchesReference(sheet, PICTURES, "cursors"));
}

TEST(Cursors, Records) {
  Open();
  const struct {
    const char* name;
    int index, side, hot_x, hot_y;
    uint32_t color;
  } rows[] = {
      {"NullCursor", 1, 16, 0, 0, 0},
      {"ArrowCursor", 3, 16, 1, 1, 0xFF0000},
      {"ArrowCursorAdd", 4, 16, 1, 1, 0xFF0000},
      {"ArrowCursorRight", 5, 16, 1, 1, 0xFF0000},
      {"RotateCursor", 6, 16, 8, 8, 0},
      {"MoveCursor", 7, 16, 8, 8, 0},
      {"SizeN", 8, 16, 9, 1, 0},
      {"SizeS", 9, 16, 9, 14, 0},
      {"SizeE", 10, 16, 14, 9, 0},
      {"SizeW", 11, 16, 1, 9, 0},
      {"SizeNW", 12, 16, 1, 1, 0},
      {"SizeNE", 13, 16, 14, 1, 0},
      {"SizeSW", 14, 16, 1, 14, 0},
      {"SizeSE", 15, 16, 14, 14, 0},
      {"ZoomInCursor", 17, 16, 8, 8, 0},
      {"ZoomOutCursor", 18, 16, 8, 8, 0},
      {"PointerCursor", -1, 16, 8, 8, 0},
      {"PanCursor", -1, 16, 8, 8, 0},
      {"LockCursor", -1, 32, 15, 15, 0xFF0000},
      {"UnlockCursor", -1, 32, 15, 15, 0},
      {"PointerCursorLarge", -1, 32, 15, 15, 0},
  };
  int count = 0;
  const CursorArt* all = AllCursorArt(&count);
  ASSERT_EQ(count, int(std::size(rows)));
  for (int i = 0; i < count; ++i) {
    SCOPED_TRACE(rows[i].name);
    EXPECT_STREQ(all[i].name, rows[i].name);
    EXPECT_EQ(all[i].index, rows[i].index);
    CursorRecord record = MakeCursorRecord(all[i]);
    const uint8_t* b = record.bytes;
    EXPECT_EQ(uint32_t(b[0]) << 16 | b[1] << 8 | b[2], rows[i].color);
    EXPECT_EQ(uint32_t(b[3]) << 16 | b[4] << 8 | b[5], 0xFFFFFFu);
    const uint8_t head[] = {uint8_t(rows[i].side), uint8_t(rows[i].side), uint8_t(rows[i].hot_x),
                            uint8_t(rows[i].hot_y)};
    EXPECT_EQ(memcmp(b + 6, head, sizeof head), 0);
    platform::Cursor* c = Make(all[i]);
    // The hot spot of a shape that points lies on it.
    size_t hot = size_t(c->hot_y * c->width + c->hot_x);
    if (rows[i].index != 1 && rows[i].index != 6) {
      EXPECT_NE(c->pixels[hot] >> 24, 0u);
    }
    platform::ReleaseCursor(c);
  }
}

TEST(Cursors, PlanesGoByTheRecordsOwnSize) {
  Open();
  // 8 x 2: colour A where plane A is set, else B where plane B is, lowest bit leftmost.
  uint8_t record[266] = {1, 2, 3, 0xA0, 0xB0, 0xC0, 8, 2, 7, 1, 0x81, 0x00, 0x83, 0x40};
  auto* c = reinterpret_cast<platform::Cursor*>(XwCocoaCreateCursor(record));
  ASSERT_NE(c, nullptr);
  const uint32_t a = 0xFF010203, b = 0xFFA0B0C0;
  const std::vector<uint32_t> expected = {a, b, 0, 0, 0, 0, 0, a, 0, 0, 0, 0, 0, 0, b, 0};
  EXPECT_EQ(c->pixels, expected);
  EXPECT_EQ(c->hot_x, 7);
  platform::ReleaseCursor(c);
  for (int width : {0, 7, 33, 40, 255}) {
    record[6] = uint8_t(width);
    EXPECT_EQ(XwCocoaCreateCursor(record), nullptr) << width;
  }
  EXPECT_EQ(XwCocoaCreateCursor(nullptr), nullptr);
}

}  // namespace
