// What the calls promise beyond pixels of single shapes: state, markers, numbers of any size.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <iterator>
#include <string>

#include "platform/theme/roles.h"
#include "platform/theme/theme.h"
#include "tests/support/canvas.h"

using namespace platform;
using testkit::Canvas;

namespace {

constexpr uint32_t kRed = 0xFFFF0000u, kGreen = 0xFF00FF00u, kBlue = 0xFF0000FFu;
constexpr int32_t kRedColour = 0x0000FF, kGreenColour = 0x00FF00, kBlueColour = 0xFF0000;

int Painted(const Canvas& c) {
  return 40 * 40 - c.Count(Canvas::kBlank);
}

constexpr int16_t kPoints[] = {2, 3, 30, 38, 9, 38, 2, 3};
constexpr int kWidths[] = {10, 6, 0};
const uint8_t kPixels[4 * 3] = {};

// Each call, with something to paint.
void (*const kCalls[])() = {
    [] { XwClear(0, 0, 0, 0); },
    [] { XwBox(3, 4, 9, 2, 0); },
    [] { XwFillRect(3, 4, 9, 2); },
    [] { XwDrawRect(3, 4, 9, 20); },
    [] { XwDrawLine(1, 38, 37, 2); },
    [] { XwDrawLines(kPoints, 4); },
    [] { XwFillPolygon(kPoints, 3); },
    [] { XwDrawEllipse(5, 5, 20, 30); },
    [] { XwFillEllipse(5, 5, 20, 30); },
    [] { XwDrawBevel(5, 5, 20, 20, 1); },
    [] { XwDrawHole(5, 5, 20, 20, 0x123456); },
    [] { XwDrawBorder(); },
    [] { XwDrawSeparator(5, 5, 9, 0); },
    [] { XwDrawTable(4, 4, 2, 8, kWidths); },
    [] { XwDrawProgress(5, 5, 30, 12, 9); },
    [] { XwDrawText(LoadFont("DejaVu Sans", 13, 0), 0, 3, 5, 0, 0, "gy", 0, -1); },
    [] { XwDrawIcon(IC_ARROWS, 5, 5, 30, 30, 0, 0); },
    [] { XwPutImageData(2, 3, 3, 1, kPixels); },
};

}  // namespace

TEST(State, DashesStayAndChangeOnlyLines) {
  Canvas c(40, 40);
  const uint8_t pattern[] = {2, 2, 0}, none[] = {0};
  XwSetColor(kGreenColour);
  XwSetDashes(pattern, 0, kRedColour, kBlueColour);
  EXPECT_EQ(DashCount, 2);
  EXPECT_EQ(DashCol1[0], 1.0f);
  EXPECT_EQ(DashCol2[2], 1.0f);
  XwDrawLine(0, 0, 7, 0);
  for (int x = 0; x < 8; ++x) EXPECT_EQ(c.at(x, 0), x % 4 < 2 ? kRed : kBlue) << x;
  XwFillRect(0, 2, 1, 1);  // fills keep their colour
  EXPECT_EQ(c.at(0, 2), kGreen);
  XwFillEllipse(0, 4, 3, 3);
  EXPECT_EQ(c.at(1, 5), kGreen);
  // An empty pattern: no dashes are set, those of the context and the second colour remain.
  XwSetDashes(none, 0, 0, 0);
  EXPECT_EQ(DashCount, 0);
  XwDrawSeparator(20, 30, 9, 0);  // is solid, and leaves them
  EXPECT_EQ(c.at(22, 30), 0xFFDAD7D2u);
  XwDrawLine(0, 10, 7, 10);
  for (int x = 0; x < 8; ++x) EXPECT_EQ(c.at(x, 10), x % 4 < 2 ? Canvas::kBlank : kBlue) << x;
  XwSetDashes(nullptr, 0, 0, 0);
  XwDrawLine(0, 12, 7, 12);
  for (int x = 0; x < 8; ++x) EXPECT_EQ(c.at(x, 12), kBlue) << x;
  XwSetColor(kRedColour);
  XwDrawLine(0, 14, 7, 14);
  EXPECT_EQ(c.at(3, 14), kRed);
  std::string longest(500, '\1');
  XwSetDashes(reinterpret_cast<const uint8_t*>(longest.c_str()), 0, 0, 0);
  EXPECT_EQ(DashCount, 128);
  XwSetDashes(nullptr, 0, 0, 0);
}

TEST(State, DashesAndColoursOutliveTheTarget) {
  const uint8_t pattern[] = {2, 4, 0};  // the second colour goes before the first
  {
    Canvas c(40, 40);
    XwSetColor(kRedColour);
    XwSetDashes(pattern, 1, kGreenColour, kBlueColour);
  }
  Canvas c(40, 40);
  XwFillRect(0, 0, 1, 1);
  EXPECT_EQ(c.at(0, 0), kRed);
  XwDrawLine(0, 5, 39, 5);
  for (int x = 0; x < 40; ++x) {
    const int at = (x + 1) % 6;
    EXPECT_EQ(c.at(x, 5), at < 2 ? kGreen : at < 4 ? Canvas::kBlank : kBlue) << x;
  }
  XwSetDashes(nullptr, 0, 0, 0);
}

TEST(State, Markers) {
  for (int32_t marker = -10; marker <= -1; ++marker) {
    Canvas c(40, 40);
    XwBox(0, 0, 10, 10, marker);
    XwDrawIcon(IC_ARROWS, 0, 0, 0, 0, marker, marker);
    EXPECT_EQ(Painted(c), 0) << marker;
    XwDrawHole(0, 0, 20, 20, marker);
    EXPECT_EQ(c.at(10, 10), Canvas::kBlank);
  }
  Canvas c(40, 40);
  XwBox(0, 0, 10, 10, int32_t(0x80808080));  // the high byte is not part of a colour
  EXPECT_EQ(c.Count(0xFF808080u), 100);
  c.Wipe();
  XwBox(0, 0, 10, 10, -11);
  EXPECT_EQ(c.Count(0xFFF5FFFFu), 100);
}

TEST(State, Clearing) {
  struct {
    int32_t colour;
    int brush;
    uint32_t pixel;
  } const backgrounds[] = {{kRedColour, 0, kRed},
                           {-1, 15, 0xFFFFFFFFu},
                           {-1, 7, 0xFFF6F5F3u},
                           {kRedColour, -1, 0xFF000000u}};
  for (const auto& g : backgrounds) {
    Canvas c(40, 40);
    XwBox(0, 0, 40, 40, kGreenColour);
    c.window().color = g.colour;
    c.window().brush = int16_t(g.brush);
    XwClear(5, 5, 10, 10);
    EXPECT_EQ(c.Count(g.pixel), 100);
    XwClear(5, 5, -10, 10);
    XwClear(30, 30, 0, 10);
    EXPECT_EQ(c.Count(g.pixel), 100);
    XwClear(99, -99, 0, 0);
    EXPECT_EQ(c.Count(g.pixel), 1600);
  }
  Canvas c(40, 40);
  c.window().color = kGreenColour;
  XwDrawHole(0, 0, 20, 20, -2);
  EXPECT_EQ(c.Count(kGreen), 14 * 14) << "two pixels from the left and top, four from the others";
  c.window().color = -1;
  XwBox(0, 0, 40, 40, kGreenColour);
  XwClear(0, 0, 0, 0);  // neither brush nor colour
  EXPECT_EQ(c.Count(kGreen), 1600);
  // A separator erases with the background above, white where there is none.
  XwWindow parent{};
  parent.kind = 0;
  parent.color = kBlueColour;
  c.window().kind = 12;
  c.window().parent = &parent;
  XwDrawSeparator(5, 10, 20, 0);
  EXPECT_EQ(c.at(5, 9), kBlue);
  EXPECT_NE(c.at(5, 10), kBlue);
  EXPECT_NE(c.at(5, 10), kGreen);
  parent.color = -1;
  XwDrawSeparator(20, 20, 5, 5);
  EXPECT_EQ(c.at(19, 22), 0xFFFFFFFFu);
  c.window().parent = nullptr;
}

TEST(Elements, HugeSizesReachTheEdges) {
  Canvas c(40, 40);
  XwBox(5, 5, INT_MAX, INT_MAX, kRedColour);
  EXPECT_EQ(c.Count(kRed), 35 * 35);
  XwDrawBevel(5, 5, INT_MAX, INT_MAX, 1);
  EXPECT_EQ(c.at(39, 39), 0xFFFEFEFDu);
}

// Where the hairline and the erased pixels of separators lie: 'h' hairline, 'e' erased.
TEST(Elements, Separators) {
  struct {
    int w, h;
    Rect erased, line;
  } const cases[] = {
      {10, 0, {5, 4, 15, 6}, {5, 5, 15, 6}},
      {0, 10, {4, 5, 6, 15}, {5, 5, 6, 15}},
      {5, 5, {4, 5, 6, 10}, {5, 5, 6, 10}},
      {3, 0, {5, 4, 8, 6}, {5, 5, 8, 6}},
      {2, 0, {5, 4, 7, 6}, {6, 4, 7, 6}},
      {1, 0, {5, 4, 6, 6}, {5, 4, 6, 6}},
      {0, 1, {4, 5, 6, 6}, {4, 5, 6, 6}},
      {0, 0, {}, {}},
      {-3, 0, {}, {}},
      {-5, -9, {}, {}},
  };
  for (const auto& s : cases) {
    Canvas c(40, 40);
    c.window().color = kGreenColour;
    XwDrawSeparator(5, 5, s.w, s.h);
    for (int y = 0; y < 40; ++y)
      for (int x = 0; x < 40; ++x) {
        uint32_t want = s.line.contains({x, y})     ? 0xFFDAD7D2u
                        : s.erased.contains({x, y}) ? kGreen
                                                    : Canvas::kBlank;
        ASSERT_EQ(c.at(x, y), want) << s.w << "x" << s.h << " at " << x << ", " << y;
      }
  }
}

TEST(Elements, TablesAndProgress) {
  const int none[] = {0};
  auto hairlines = [](int rows, int height, const int* widths) {
    Canvas c(40, 40);
    XwDrawTable(4, 4, rows, height, widths);
    return c.Count(0xFFDAD7D2u);
  };
  EXPECT_EQ(hairlines(2, 8, kWidths), 3 * 16 + 3 * 16 - 4);  // four crossings
  EXPECT_EQ(hairlines(0, 8, kWidths), 16);
  EXPECT_EQ(hairlines(-1, 8, kWidths), 0);
  EXPECT_EQ(hairlines(2, 8, none), 16);
  EXPECT_EQ(hairlines(2, 8, nullptr), 0);
  EXPECT_EQ(hairlines(INT_MAX, INT_MAX, kWidths), 16 + 3 * 36 - 2);
  EXPECT_EQ(hairlines(INT_MAX, 1, kWidths) > 0, true);
  // The bar's right edge at value v: four pixels of round end, then v.
  for (int value : {0, 1, 10, 22, 30, 1000, -5}) {
    Canvas c(40, 40);
    c.window().color = kGreenColour;
    XwDrawProgress(5, 10, 30, 12, value);
    EXPECT_EQ(c.at(38, 23), kGreen) << "cleared around it";
    EXPECT_EQ(c.at(39, 23), Canvas::kBlank);
    int right = value <= 0 ? 5 : value >= 22 ? 35 : 5 + 4 + value;
    for (int x = 11; x < 29; ++x)
      EXPECT_EQ(c.at(x, 15) == 0xFF3875D7u, x < right) << value << " at " << x;
  }
}

TEST(Elements, AnInactiveDefaultButtonIsPlain) {
  ThemeButtonDrawInfo info;
  info.adornment = kThemeAdornmentDefault;
  for (const int state : {kThemeStateInactive, kThemeStateActive}) {
    info.state = state;
    const Role ink = state == kThemeStateInactive ? Role::kInk : Role::kDocument;
    EXPECT_EQ(ThemeButtonTextColor(kThemePushButton, info), RoleColor(ink));
  }
}

TEST(Images, AllocationAndCuts) {
  Canvas c(40, 40);
  EXPECT_EQ(XwAllocImage(-1, 5), nullptr);
  EXPECT_EQ(XwAllocImage(INT_MAX, INT_MAX), nullptr);
  EXPECT_EQ(XwAllocImage(1 << 20, 1 << 10), nullptr);
  uint8_t* image = XwAllocImage(0, 0);  // the target's size
  ASSERT_NE(image, nullptr);
  image[4 * (40 * 40 - 1) + 1] = 0xFF;
  XwPutImage(0, 0, 0, 0, 1000, 1000, image);
  EXPECT_EQ(c.at(39, 39), kRed);
  c.Wipe();
  for (int far : {40, 41, INT_MAX}) XwPutImage(far, 0, 0, 0, 10, 10, image);
  XwPutImage(INT_MIN, INT_MIN, 0, 0, INT_MAX, INT_MAX, image);
  XwPutImage(0, 0, 0, 0, -1, 5, image);
  XwPutImage(0, 0, INT_MIN, INT_MAX, 40, 40, image);
  XwPutImage(0, 0, 0, 0, 5, 5, nullptr);
  XwPutImageData(0, 0, 5, 5, nullptr);
  EXPECT_EQ(Painted(c), 0);
  for (int i = 0; i < 40; ++i) image[4 * i + 3] = uint8_t(i);
  XwPutImageData(0, 0, 40, 1, image);
  for (int i = 0; i < 40; ++i) EXPECT_EQ(c.at(i, 0), 0xFF000000u + uint32_t(i));
  image = XwReallocImage(image, 2, 1);
  EXPECT_EQ(image[7], 0);
  XwFreeImage(image);
  XwFreeImage(nullptr);
  // The mean of the opacity is rounded: half of four is 128 of 255.
  const uint32_t argb[] = {0xFF000000u, 0xFF000000u, 0, 0};
  DrawIconPicture(c.context(), 1, 1, 1, 1, argb, 2);
  EXPECT_EQ(c.at(1, 1), 0xFF7F7F7Fu);
  XW = nullptr;
  EXPECT_EQ(XwAllocImage(0, 0), nullptr);
}

TEST(Icons, ReadOnlyTheirBits) {
  Canvas c(40, 40);
  XwIcon bad[] = {{0, 5, nullptr, nullptr},
                  {-3, 5, nullptr, nullptr},
                  {40000, 2, nullptr, nullptr},
                  {8, 8, nullptr, nullptr}};
  for (XwIcon& icon : bad) {
    EXPECT_EQ(XwLoadIcon(&icon), &icon);
    XwDrawIcon(&icon, 0, 0, 10, 10, 0, 0);
  }
  EXPECT_EQ(XwLoadIcon(nullptr), nullptr);
  XwDrawIcon(nullptr, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(Painted(c), 0);
  const uint8_t bits[] = {0xFF, 0xFF};  // three columns: the other bits are no pixels
  XwIcon small = {3, 2, nullptr, bits};
  XwDrawIcon(&small, 0, 0, 0, 0, kRedColour, kBlueColour);
  EXPECT_EQ(c.Count(kRed), 6);
  XwFillRect(10, 10, 1, 1);
  EXPECT_EQ(c.at(10, 10), kBlue);  // the colour used last
  c.Wipe();
  XwDrawIcon(IC_ARROWS, INT_MIN, INT_MIN, INT_MAX, INT_MAX, 0, 0);
  XwDrawIcon(IC_ARROWS, -1000000, -1000000, INT_MAX, INT_MAX, 0, 0);
  EXPECT_EQ(Painted(c), 1600);
}

// A context made for pixels that are gone paints nothing.
TEST(Contexts, StaleGenerationPaintsNothing) {
  Canvas c(40, 40);
  ++*c.surface().generation;
  for (const auto& call : kCalls) call();
  EXPECT_EQ(Painted(c), 0);
}

// Whatever is painted is marked: the damage covers every pixel that changed.
TEST(Contexts, DamageCoversWhatIsPainted) {
  for (double scale : {1.0, 1.5, 2.0}) {
    for (size_t i = 0; i < std::size(kCalls); ++i) {
      Canvas c(40, 40, scale);
      c.window().color = 0;
      XwSetColor(0);
      kCalls[i]();
      std::vector<DeviceRect> damage;
      c.surface().damage.Take(&damage);
      for (int y = 0; y < c.surface().height; ++y)
        for (int x = 0; x < c.surface().width; ++x) {
          if (c.at(x, y) == Canvas::kBlank) continue;
          bool covered = false;
          for (const DeviceRect& r : damage) covered = covered || r.contains({x, y});
          ASSERT_TRUE(covered) << "call " << i << " at " << x << ", " << y;
        }
    }
  }
}
