// Outlines: how much they cover and where, at every scale; what they refuse; and the outlines of
// icons.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/graphics/outline.h"
#include "tests/support/canvas.h"
#include "toolkit/drawing/icons.h"

namespace {

using namespace platform;
using testkit::Canvas;
using enum PathVerb;

constexpr int kSide = 40, kX = 8, kY = 10;

// What black covers on white: the area in device pixels, and the pixels that are touched.
struct Ink {
  double area = 0;
  DeviceRect box{1 << 20, 1 << 20, 0, 0};
};
Ink InkOf(const Canvas& canvas, int side) {
  Ink ink;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const uint32_t dark = 255 - (canvas.at(x, y) & 0xFF);
      if (!dark) continue;
      ink.area += dark / 255.0;
      ink.box = {std::min(ink.box.left, x), std::min(ink.box.top, y),
                 std::max(ink.box.right, x + 1), std::max(ink.box.bottom, y + 1)};
    }
  return ink;
}

constexpr float kRound = 5.523f;  // the control points of a quarter of a circle of radius 10
struct Shape {
  const char* name;
  std::vector<PathPart> parts;
  float stroke;
  double area;
  struct {
    float left, top, right, bottom;
  } box;
};
const Shape kShapes[] = {
    {"triangle",
     {{kMove, 1.5f, 2}, {kLine, 13.5f, 2}, {kLine, 1.5f, 14}},
     0,
     72,
     {1.5f, 2, 13.5f, 14}},
    {"two of a kind leave a hole",
     {{kMove, 0, 0},
      {kLine, 20, 0},
      {kLine, 20, 20},
      {kLine, 0, 20},
      {kClose},
      {kMove, 5, 5},
      {kLine, 15, 5},
      {kLine, 15, 15},
      {kLine, 5, 15},
      {kClose}},
     0,
     300,
     {0, 0, 20, 20}},
    {"circle",
     {{kMove, 10, 0},
      {kCubic, 20, 10, 10 + kRound, 0, 20, 10 - kRound},
      {kCubic, 10, 20, 20, 10 + kRound, 10 + kRound, 20},
      {kCubic, 0, 10, 10 - kRound, 20, 0, 10 + kRound},
      {kCubic, 10, 0, 0, 10 - kRound, 10 - kRound, 0}},
     0,
     100 * std::numbers::pi,
     {0, 0, 20, 20}},
    // A parabola takes two thirds of its box; a curve that follows a close begins where it ends.
    {"parabola",
     {{kQuad, 0, 12, 99, 99}, {kQuad, 12, 12, 6, -12}, {kClose}, {kCubic, 30, 3, 9, 9, 9, 9}},
     0,
     96,
     {0, 0, 12, 12}},
    {"line",
     {{kMove, 2, 6}, {kLine, 22, 6}},
     3,
     20 * 3 + 2.25 * std::numbers::pi,
     {0.5f, 4.5f, 23.5f, 7.5f}},
    {"closed line",
     {{kMove, 2, 2}, {kLine, 22, 2}, {kLine, 22, 22}, {kLine, 2, 22}, {kClose}},
     2,
     80 * 2 - 4 + std::numbers::pi,
     {1, 1, 23, 23}},
};

TEST(Outline, CoversItsAreaAtEveryScale) {
  for (const Shape& s : kShapes)
    for (double scale : {1.0, 1.5, 2.0, 3.25}) {
      SCOPED_TRACE(std::string(s.name) + " at " + std::to_string(scale));
      Canvas canvas(kSide, kSide, scale);
      Outline* o = CreateOutline(s.parts.data(), int(s.parts.size()), s.stroke);
      ASSERT_NE(o, nullptr);
      for (int again = 0; again < 2; ++again) {
        canvas.Wipe();
        DrawOutline(canvas.context(), o, kX, kY, 0, 255);
      }
      const Ink ink = InkOf(canvas, canvas.surface().width);
      EXPECT_NEAR(ink.area, s.area * scale * scale, 0.01 * s.area * scale * scale);
      const int x = DeviceEdge(kX, scale), y = DeviceEdge(kY, scale);
      const DeviceRect box{
          x + int(std::floor(s.box.left * scale)), y + int(std::floor(s.box.top * scale)),
          x + int(std::ceil(s.box.right * scale)), y + int(std::ceil(s.box.bottom * scale))};
      EXPECT_EQ(ink.box, box);
      DrawOutline(canvas.context(), o, kX, kY, 0xFFFFFF, 255);
      // Drawn once it covers the same.
      canvas.Wipe();
      SetContextOrigin(canvas.context(), kX, kY);
      if (s.stroke > 0)
        StrokePath(canvas.context(), s.parts.data(), int(s.parts.size()), s.stroke, 0);
      else
        FillPath(canvas.context(), s.parts.data(), int(s.parts.size()), 0);
      const Ink once = InkOf(canvas, canvas.surface().width);
      EXPECT_NEAR(once.area, ink.area, 0.1);
      EXPECT_EQ(once.box, box);
      EXPECT_TRUE(canvas.GapsUntouched());
      ReleaseOutline(o);
    }
}

TEST(Outline, IsMixedAndCut) {
  Canvas canvas(kSide, kSide, 1.0);
  const PathPart square[] = {{kMove, 0, 0}, {kLine, 10, 0}, {kLine, 10, 10}, {kLine, 0, 10}};
  Outline* o = CreateOutline(square, 4, 0);
  DrawOutline(canvas.context(), o, 4, 4, 0x204060, 102);
  EXPECT_EQ(canvas.at(8, 8), 0xFFA6B3BFu);
  canvas.Wipe();
  ClipContextToRect(canvas.context(), {6, 6, 9, 30});
  DrawOutline(canvas.context(), o, 4, 4, 0, 255);
  const Ink ink = InkOf(canvas, kSide);
  EXPECT_EQ(ink.box, (DeviceRect{6, 6, 9, 14}));
  RestoreContextClip(canvas.context());
  canvas.Wipe();
  for (int far : {-(1 << 30), INT_MIN, INT_MAX}) {
    DrawOutline(canvas.context(), o, far, 4, 0, 255);
    DrawOutline(canvas.context(), o, 4, far, 0, 255);
  }
  DrawOutline(canvas.context(), nullptr, 0, 0, 0, 255);
  DrawOutline(nullptr, o, 0, 0, 0, 255);
  EXPECT_EQ(InkOf(canvas, kSide).area, 0);
  EXPECT_TRUE(canvas.GapsUntouched());
  ReleaseOutline(o);
}

TEST(Outline, RefusesWhatItCannotDraw) {
  const std::vector<PathPart> many(kMostPathParts + 1, {kLine, 1, 1});
  EXPECT_EQ(CreateOutline(many.data(), int(many.size()), 0), nullptr);
  const PathPart good{kMove, 1, 1};
  EXPECT_EQ(CreateOutline(nullptr, 1, 0), nullptr);
  EXPECT_EQ(CreateOutline(&good, 0, 0), nullptr);
  for (float number : {NAN, INFINITY, 16385.f}) {
    EXPECT_EQ(CreateOutline(&good, 1, number), nullptr);
    const PathPart bad{kLine, 1, 1, number, 1};
    EXPECT_EQ(CreateOutline(&bad, 1, 0), nullptr);
  }
  const PathPart none{PathVerb(5), 1, 1};
  EXPECT_EQ(CreateOutline(&none, 1, 0), nullptr);
  // One whose mask would be too large shows nothing; the largest number of parts does.
  Canvas canvas(kSide, kSide, 1.0);
  const PathPart large[] = {{kMove, -9000, 0}, {kLine, 9000, 0}, {kLine, 0, 9000}};
  std::vector<PathPart> most = many;
  most.resize(kMostPathParts);
  for (size_t i = 0; i < most.size(); ++i)
    most[i] = {kCubic, float(i % 7), float(i % 5), 3, 1, float(i % 9), 2};
  for (float stroke : {0.f, 2.f}) {
    Outline* o = CreateOutline(large, 3, stroke);
    DrawOutline(canvas.context(), o, 0, 0, 0, 255);
    EXPECT_EQ(InkOf(canvas, kSide).area, 0);
    ReleaseOutline(o);
    o = CreateOutline(most.data(), int(most.size()), stroke);
    DrawOutline(canvas.context(), o, 5, 5, 0, 255);
    EXPECT_EQ(InkOf(canvas, kSide).area > 0, stroke == 0);
    canvas.Wipe();
    ReleaseOutline(o);
  }
}

// A square of 12.5 a side at (2.25, 3.5), by the public calls.
const XwPathPart kSquare[] = {{XWP_MOVE, 2.25f, 3.5f, 0, 0, 0, 0},
                              {XWP_LINE, 14.75f, 3.5f, 0, 0, 0, 0},
                              {XWP_LINE, 14.75f, 16, 0, 0, 0, 0},
                              {XWP_LINE, 2.25f, 16, 0, 0, 0, 0},
                              {XWP_CLOSE, 0, 0, 0, 0, 0, 0}};

TEST(Path, IsCutByEveryClipAndMarksWhatItPaints) {
  Canvas canvas(kSide, kSide, 1.0, 3, 3);
  XwFillPath(kSquare, 5, 0x30A0F0);
  EXPECT_EQ(canvas.at(10, 10), 0xFFF0A030u) << "red is the low byte";
  EXPECT_EQ(canvas.at(5, 10) & 0xFF, 99u) << "three quarters of a column";
  std::vector<DeviceRect> damage;
  canvas.surface().damage.Take(&damage);
  ASSERT_EQ(damage.size(), 1u);
  EXPECT_EQ(Intersect(damage[0], {5, 6, 18, 19}), (DeviceRect{5, 6, 18, 19}));
  canvas.Wipe();
  for (const float width : {0.f, -1.f, NAN, INFINITY}) XwStrokePath(kSquare, 5, width, 0);
  EXPECT_EQ(InkOf(canvas, kSide).area, 0);
  Region parts({5, 5, 9, 12});
  parts.Add({12, 5, 15, 30});
  ClipContextToRect(canvas.context(), {0, 0, 1, 1});
  ClipContextToRegion(canvas.context(), parts);
  RestoreContextClip(canvas.context());  // the cuts of the clip before are gone
  XwFillPath(kSquare, 5, 0);
  XwStrokePath(kSquare, 5, 3, 0);
  XwStrokePath(kSquare, 5, -6, 0x0000FF);
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x)
      ASSERT_TRUE(parts.contains({x, y}) || canvas.at(x, y) == Canvas::kBlank) << x << " " << y;
  EXPECT_EQ(canvas.at(6, 10) & 0xFFFFFF, 0u);
  EXPECT_EQ(canvas.at(13, 10) & 0xFFFFFF, 0u);
}

// Nowhere to go: the stroker itself must not see such a line.
TEST(Path, ALineWithoutALengthIsADot) {
  for (const std::vector<PathPart>& parts :
       {std::vector<PathPart>{{kMove, 9, 9}, {kClose}},
        {{kMove, 9, 9}, {kLine, 9, 9}},
        {{kMove, 9, 9}, {kCubic, 9, 9, 9, 9, 9, 9}, {kQuad, 9, 9, 9.001f, 9}, {kClose}, {kClose}},
        {{kLine, 9, 9}, {kQuad, 9, 9, 9, 9}, {kMove, 3, 3}}}) {
    Canvas canvas(kSide, kSide, 1.0);
    StrokePath(canvas.context(), parts.data(), int(parts.size()), 4, 0);
    const Ink ink = InkOf(canvas, kSide);
    EXPECT_NEAR(ink.area, 4 * std::numbers::pi, 0.4);
    EXPECT_EQ(Intersect(ink.box, {7, 7, 12, 11}), ink.box);
  }
}

// Steps so short that the grid of the points bends each of them are still one straight line.
TEST(Path, ALineOfShortStepsIsNoThicker) {
  Canvas canvas(kSide, kSide, 2.0);
  std::vector<XwPathPart> parts;
  for (int i = 0; i < 10000; ++i) {
    const float x = 5 + float(i) * 0.003f, y = 5 + 0.3f * float(i) * 0.003f;
    parts.push_back({uint8_t(i ? XWP_CUBIC : XWP_MOVE), x, y, x, y, x, y});
  }
  XwStrokePath(parts.data(), 10000, 3.25f, 0x000000);
  const double length = 60 * std::hypot(1, 0.3);
  EXPECT_NEAR(InkOf(canvas, canvas.surface().width).area,
              length * 6.5 + 3.25 * 3.25 * std::numbers::pi, 2);
}

TEST(Path, NoShortStepIsLost) {
  const std::vector<PathPart> rows[] = {
      {{kMove, 100, 100}, {kLine, 100.8f, 100}, {kLine, 100.8f, 180}},
      {{kMove, 100, 100}, {kLine, 100.8f, 100}, {kCubic, 100.8f, 180, 100.8f, 130, 100.8f, 150}},
      {{kMove, 20, 105}, {kLine, 100, 105}, {kLine, 100.8f, 105}},
      {{kMove, 100, 20}, {kLine, 20, 105}, {kLine, 100, 105}, {kLine, 100.8f, 105}, {kClose}}};
  for (const auto& parts : rows) {
    Canvas canvas(300, 300, 1.0);
    StrokePath(canvas.context(), parts.data(), int(parts.size()), 160, 0);
    EXPECT_NEAR(int(canvas.at(180, 105) & 0xFF), 51, 16);
  }
}

// A line whose edges have more points than the rasteriser takes, to and fro in rows: it is still
// one line, without gaps and nowhere lighter or darker. Other lines lie below it.
TEST(Path, ALongLineIsDrawnWholeAndCoversOnce) {
  constexpr int kRows = 76, kSteps = 130;
  std::vector<PathPart> parts = {{kMove, 10, 160}, {kLine, 30, 160}, {kMove, 40, 160},
                                 {kLine, 60, 170}, {kLine, 40, 170}, {kClose}};
  const size_t others = parts.size();
  for (int row = 0; row < kRows; ++row)
    for (int step = 0; step <= kSteps; ++step) {
      const bool first = parts.size() == others;
      const float x = 3.25f + 1.5f * float(row % 2 ? kSteps - step : step);
      const float y = 1.375f + 2 * float(row);
      const PathPart p = first ? PathPart{kMove, x, y} : parts.back();
      parts.push_back({first ? kMove : kCubic, x, y, p.x + (x - p.x) / 3, p.y + (y - p.y) / 3,
                       p.x + (x - p.x) * 2 / 3, p.y + (y - p.y) * 2 / 3});
    }
  Canvas canvas(201, 300, 2.0);
  StrokePath(canvas.context(), parts.data(), int(parts.size()), 0.5f, 0);
  for (int row = 0; row < kRows; ++row)
    for (int x = 8; x < 393; ++x) {
      ASSERT_NEAR(int(canvas.at(x, 4 * row + 2) & 0xFF), 64, 4) << x << " " << row;
      ASSERT_NEAR(int(canvas.at(x, 4 * row + 3) & 0xFF), 191, 4) << x << " " << row;
    }
  for (const auto& [x, y] : {std::pair{40, 320}, {100, 330}, {100, 340}, {80, 330}})
    EXPECT_LT(canvas.at(x, y) & 0xFF, 200u) << x << " " << y;
  std::vector<DeviceRect> damage;
  canvas.surface().damage.Take(&damage);
  ASSERT_EQ(damage.size(), 1u);
  EXPECT_EQ(damage[0].bottom, InkOf(canvas, 402).box.bottom);
}

// An icon whose bits are its left half and whose outline is its upper half.
TEST(Outline, TakesThePlaceOfAnIconsBitsOnButtons) {
  Canvas canvas(kSide, kSide, 1.0);
  static const uint8_t bits[] = {0x0F, 0x0F, 0x0F, 0x0F, 0x0F, 0x0F, 0x0F, 0x0F};
  XwIcon icon = {8, 8, nullptr, bits};
  auto painted = [&] {
    canvas.Wipe();
    PaintIcon(canvas.context(), &icon, 4, 4, 0, 255, 0xFFFFFF);
    return InkOf(canvas, kSide).box;
  };
  const DeviceRect by_bits{4, 4, 8, 12}, by_outline{4, 4, 12, 8};
  EXPECT_EQ(painted(), by_bits);
  XwPathPart upper[] = {{XWP_MOVE, 0, 0, 0, 0, 0, 0},
                        {XWP_LINE, 8, 0, 0, 0, 0, 0},
                        {XWP_LINE, 8, 4, 0, 0, 0, 0},
                        {XWP_LINE, 0, 4, 0, 0, 0, 0}};
  XwSetIconOutline(&icon, upper, 4);
  upper[2].y = 8;  // it was copied
  EXPECT_EQ(painted(), by_outline);
  XwDrawIcon(&icon, 4, 20, 0, 0, 0, -1);
  EXPECT_EQ(canvas.at(4, 27), 0xFF000000u);
  EXPECT_EQ(canvas.at(8, 20), Canvas::kBlank);
  upper[1].verb = XWP_CLOSE + 1;
  XwSetIconOutline(&icon, upper, 4);
  EXPECT_EQ(painted(), by_outline) << "refused whole";
  XwSetIconOutline(&icon, upper, 0);
  EXPECT_EQ(painted(), by_bits);
  XwSetIconOutline(nullptr, upper, 1);
}

// Each of the toolkit's own icons covers about what its bits do, at the same place.
TEST(Outline, TheToolkitsIconsResembleTheirBits) {
  for (XwIcon* icon :
       {IC_POPUP_MORE_DATA_UP, IC_POPUP_MORE_DATA_DOWN, IC_EXCHANGE, IC_SMALL_ARROW_UP,
        IC_SMALL_ARROW_DOWN, IC_OPT_DIALOG, IC_OPT_MENU, IC_CHECKBOX, IC_ARROWS}) {
    SCOPED_TRACE(std::to_string(icon->width) + "x" + std::to_string(icon->height));
    Canvas canvas(kSide, kSide, 1.0);
    XwDrawIcon(icon, 4, 4, 0, 0, 0, -1);
    const Ink bits = InkOf(canvas, kSide);
    canvas.Wipe();
    PaintIcon(canvas.context(), icon, 4, 4, 0, 255, 0xFFFFFF);
    const Ink outline = InkOf(canvas, kSide);
    EXPECT_NEAR(outline.area, bits.area, 0.35 * bits.area);
    for (int DeviceRect::*edge :
         {&DeviceRect::left, &DeviceRect::top, &DeviceRect::right, &DeviceRect::bottom})
      EXPECT_NEAR(outline.box.*edge, bits.box.*edge, 2);
    EXPECT_LE(outline.box.right, 4 + icon->width);
    EXPECT_LE(outline.box.bottom, 4 + icon->height);
  }
}

}  // namespace
