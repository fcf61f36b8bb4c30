// Random drawing compared with the slow reference. The number of a case is its seed:
// QUORVIK_CASE=n runs that one alone, QUORVIK_CASES=n that many.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/drawing/reference.h"
#include "tests/support/canvas.h"
#include "tests/support/seed.h"

using namespace platform;
using reference::Painter;
using testkit::Canvas;

namespace {

class Dice : public support::Dice {
 public:
  using support::Dice::Dice;
  // Mostly near the target.
  int Place() { return OneIn(8) ? Between(-60, 90) : Between(-6, 30); }
  int Size() { return OneIn(8) ? Between(-5, 100) : Between(0, 20); }
  int32_t Color() { return Between(0, 0xFFFFFF); }
};

uint32_t Rgb(int32_t colour) {
  return uint32_t(colour & 0xFF) << 16 | uint32_t(colour & 0xFF00) | uint32_t(colour >> 16 & 0xFF);
}

constexpr double kScales[] = {1, 1, 1.25, 1.5, 1.75, 2, 2.5, 3};
constexpr int kSide = 24;

struct Case {
  Dice dice;
  double scale;
  int left, top;
  Canvas canvas;
  Painter painter;
  std::string what;

  explicit Case(uint32_t seed)
      : dice(seed),
        scale(kScales[size_t(dice.Between(0, 7))]),
        left(dice.Between(0, 5)),
        top(dice.Between(0, 5)),
        canvas(kSide, kSide, scale, left, top),
        painter(canvas.surface().width, canvas.surface().height, scale, left, top) {}

  void Clip() {
    Region clip({left, top, left + kSide, top + kSide});
    for (int i = dice.Between(0, 3); i > 0; --i) {
      int x = left + dice.Between(-3, kSide), y = top + dice.Between(-3, kSide);
      clip.Subtract(Rect{x, y, x + dice.Between(0, 12), y + dice.Between(0, 12)});
    }
    ClipContextToRegion(canvas.context(), clip);
    std::vector<bool> visible;
    for (int y = 0; y < painter.height; ++y) {
      for (int x = 0; x < painter.width; ++x) {
        bool in = false;
        for (const pixman_box32_t& b : clip.boxes())
          in = in || (x >= DeviceEdge(b.x1, scale) && x < DeviceEdge(b.x2, scale) &&
                      y >= DeviceEdge(b.y1, scale) && y < DeviceEdge(b.y2, scale));
        visible.push_back(in);
      }
    }
    painter.SetVisible(visible);
  }

  // Paints with whatever colour is current on both sides.
  template <typename Paint>
  void Stroked(Paint paint) {
    if (!dice.OneIn(2)) {
      paint();
      return;
    }
    uint8_t pattern[6] = {};
    int n = dice.Between(1, 4), offset = dice.Between(-20, 20);
    for (int i = 0; i < n; ++i) pattern[i] = uint8_t(dice.Between(1, 6));
    int32_t one = dice.Color(), two = dice.Color();
    XwSetDashes(pattern, offset, one, two);
    painter.pattern.lengths.assign(pattern, pattern + n);
    painter.pattern.phase = offset;
    painter.color = Rgb(one);
    paint();
    painter.pattern.phase = offset + pattern[0];
    painter.color = Rgb(two);
    paint();
    painter.pattern = {};
  }

  std::vector<int16_t> Points(int low, int high) {
    std::vector<int16_t> points;
    for (int i = dice.Between(low, high); i > 0; --i) {
      bool repeat = points.size() >= 2 && dice.OneIn(4);
      for (int k = 0; k < 2; ++k)
        points.push_back(repeat && dice.OneIn(2) ? points[points.size() - 2]
                                                 : int16_t(dice.Place()));
    }
    if (points.size() > 4 && dice.OneIn(4)) {
      points.push_back(points[0]);
      points.push_back(points[1]);
    }
    return points;
  }

  void Draw();
  void DrawPicture();
  void DrawIcon();
  testing::AssertionResult Same() const;
};

void Case::DrawPicture() {
  int w = dice.Between(1, 9), h = dice.Between(1, 9), x = dice.Place(), y = dice.Place();
  std::vector<uint32_t> colors;
  uint8_t* image = XwAllocImage(w, h);
  for (int i = 0; i < w * h; ++i) {
    uint32_t rgb = Rgb(dice.Color());
    colors.push_back(rgb);
    image[4 * i] = uint8_t(dice.Between(0, 255));
    for (int k = 1; k < 4; ++k) image[4 * i + k] = uint8_t(rgb >> (8 * (3 - k)));
  }
  int sx = dice.Between(-3, w), sy = dice.Between(-3, h), cw = dice.Between(-1, 12),
      ch = dice.Between(-1, 12);
  what = "image";
  XwPutImage(sx, sy, x, y, cw, ch, image);
  std::vector<uint32_t> part;
  int x0 = std::max(sx, 0), y0 = std::max(sy, 0), x1 = std::min(sx + cw, w),
      y1 = std::min(sy + ch, h);
  for (int py = y0; py < y1; ++py)
    for (int px = x0; px < x1; ++px) part.push_back(colors[size_t(py * w + px)]);
  if (x1 > x0 && y1 > y0) painter.Picture(x + x0 - sx, y + y0 - sy, x1 - x0, y1 - y0, part);
  XwFreeImage(image);
}

void Case::DrawIcon() {
  what = "icon";
  int iw = dice.Between(1, 11), ih = dice.Between(1, 6);
  std::vector<uint8_t> bytes(size_t(ih) * size_t((iw + 7) / 8));
  for (uint8_t& b : bytes) b = uint8_t(dice.Between(0, 255));
  std::vector<bool> bits;
  for (int y = 0; y < ih; ++y)
    for (int x = 0; x < iw; ++x)
      bits.push_back(bytes[size_t(y * ((iw + 7) / 8) + x / 8)] >> (x % 8) & 1);
  XwIcon icon{iw, ih, nullptr, bytes.data()};
  int x = dice.Place(), y = dice.Place(), w = dice.Between(0, 30), h = dice.Between(0, 30);
  int32_t colour = dice.Color(), background = dice.OneIn(2) ? dice.Between(-10, -1) : dice.Color();
  XwDrawIcon(&icon, x, y, w, h, colour, background);
  if (!w) w = iw;
  if (!h) h = ih;
  painter.color = Rgb(colour);
  painter.Icon(iw, ih, bits, true, x, y, w, h);
  painter.color = Rgb(background);
  if (background >= 0) painter.Icon(iw, ih, bits, false, x, y, w, h);
}

void Case::Draw() {
  int32_t colour = dice.Color();
  XwSetColor(colour);
  XwSetDashes(nullptr, 0, 0, 0);
  painter.color = Rgb(colour);
  int x = dice.Place(), y = dice.Place(), w = dice.Size(), h = dice.Size();
  bool far = dice.OneIn(16);
  int fx = far ? -dice.Between(0, 2000000000) : x, fw = far ? dice.Between(0, 2000000000) : w;
  switch (dice.Between(0, 9)) {
    case 0:
      what = "fill";
      XwFillRect(fx, y, fw, h);
      return painter.FillRect(fx, y, fw, h);
    case 1:
      what = "frame";
      Stroked([&] { painter.FrameRect(x, y, w, h); });
      return XwDrawRect(x, y, w, h);
    case 2: {
      what = "line";
      int x2 = dice.OneIn(4) ? x : dice.Place(), y2 = dice.OneIn(4) ? y : dice.Place();
      Stroked([&] { painter.Line(x, y, x2, y2); });
      return XwDrawLine(x, y, x2, y2);
    }
    case 3: {
      what = "lines";
      std::vector<int16_t> points = Points(0, 6);
      Stroked([&] { painter.Lines(points, -1); });
      return XwDrawLines(points.data(), int(points.size() / 2));
    }
    case 4:
    case 5: {
      what = "polygon";
      std::vector<int16_t> points = Points(0, 8);
      painter.Polygon(points);
      return XwFillPolygon(points.data(), int(points.size() / 2));
    }
    case 6:
      what = "oval";
      painter.Oval(x, y, w, h, false);
      return XwFillEllipse(x, y, w, h);
    case 7:
      what = "oval frame";
      painter.Oval(x, y, w, h, true);
      return XwDrawEllipse(x, y, w, h);
    case 8:
      return DrawPicture();
    default:
      return DrawIcon();
  }
}

testing::AssertionResult Case::Same() const {
  for (int y = 0; y < painter.height; ++y)
    for (int x = 0; x < painter.width; ++x)
      if (canvas.at(x, y) != painter.pixels[size_t(y * painter.width + x)])
        return testing::AssertionFailure()
               << what << " at scale " << scale << ": pixel " << x << ", " << y << " is "
               << std::hex << canvas.at(x, y) << " instead of "
               << painter.pixels[size_t(y * painter.width + x)];
  if (!canvas.GapsUntouched()) return testing::AssertionFailure() << what << " wrote past a row";
  return testing::AssertionSuccess();
}

int FromEnvironment(const char* name, int otherwise) {
  const char* value = getenv(name);
  return value ? atoi(value) : otherwise;
}

}  // namespace

// In four parts, so that they can run side by side.
class RandomDrawing : public testing::TestWithParam<int> {};

TEST_P(RandomDrawing, EqualsReference) {
  int only = FromEnvironment("QUORVIK_CASE", -1);
  int part = FromEnvironment("QUORVIK_CASES", 100000) / 4;
  int first = only >= 0 ? only : GetParam() * part, last = only >= 0 ? only + 1 : first + part;
  int failures = 0;
  for (int i = first; i < last && failures < 5; ++i) {
    Case c{uint32_t(i)};
    c.Clip();
    for (int k = c.dice.Between(1, 2); k > 0; --k) c.Draw();
    testing::AssertionResult same = c.Same();
    EXPECT_TRUE(same) << "QUORVIK_CASE=" << i;
    failures += !same;
  }
}

INSTANTIATE_TEST_SUITE_P(Parts, RandomDrawing, testing::Range(0, 4));
