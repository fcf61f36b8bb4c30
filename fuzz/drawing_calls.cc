// Any sequence of drawing calls with any numbers: nothing outside the target is touched, and all
// that is painted is marked as damage.
#include <vector>

#include "fuzz/input.h"
#include "tests/support/canvas.h"

using namespace platform;
using testkit::Canvas;

namespace {

constexpr int kSide = 32, kMargin = 4;
constexpr double kScales[] = {1, 1.25, 1.5, 2, 3};

std::vector<int16_t> Points(Input& in) {
  std::vector<int16_t> points(2 * size_t(in.Byte() % 12));
  for (int16_t& v : points) v = int16_t(in.Number());
  return points;
}

void Draw(Input& in) {
  uint8_t op = in.Byte() % 17;
  int a = in.Number(), b = in.Number(), c = in.Number(), d = in.Number(), e = in.Number();
  std::vector<int16_t> points;
  switch (op) {
    case 0:
      return XwBox(a, b, c, d, e);
    case 1:
      return XwDrawRect(a, b, c, d);
    case 2:
      return XwDrawLine(a, b, c, d);
    case 3:
      points = Points(in);
      return XwDrawLines(points.data(), int(points.size() / 2));
    case 4:
      points = Points(in);
      return XwFillPolygon(points.data(), int(points.size() / 2));
    case 5:
      return XwDrawEllipse(a, b, c, d);
    case 6:
      return XwFillEllipse(a, b, c, d);
    case 7:
      return XwDrawBevel(a, b, c, d, e);
    case 8:
      return XwDrawHole(a, b, c, d, e);
    case 9:
      return XwDrawSeparator(a, b, c, d);
    case 10: {
      const int widths[] = {d, e, a, 0};
      return XwDrawTable(a, b, c, d, widths);
    }
    case 11:
      return XwDrawProgress(a, b, c, d, e);
    case 12:
      return XwDrawIcon(IC_EXCHANGE, a, b, c, d, e, a);
    case 13:
      return XwClear(a, b, c, d);
    case 14:
      return XwSetColor(e);
    case 15: {
      uint8_t pattern[5] = {in.Byte(), in.Byte(), in.Byte(), in.Byte(), 0};
      return XwSetDashes(a & 1 ? pattern : nullptr, b, c, d);
    }
    default: {
      uint8_t* image = XwAllocImage(8, 5);
      XwPutImage(a, b, c, d, e, in.Number(), image);
      XwFreeImage(image);
    }
  }
}

void Check(Canvas& canvas, double scale) {
  Surface& s = canvas.surface();
  std::vector<DeviceRect> damage;
  s.damage.Take(&damage);
  int from = DeviceEdge(kMargin, scale), to = DeviceEdge(kMargin + kSide, scale);
  for (int y = 0; y < s.height; ++y) {
    for (int x = 0; x < s.width; ++x) {
      if (canvas.at(x, y) == Canvas::kBlank) continue;
      if (x < from || x >= to || y < from || y >= to) __builtin_trap();
      bool marked = false;
      for (const DeviceRect& r : damage) marked = marked || r.contains({x, y});
      if (!marked) __builtin_trap();
    }
  }
  if (!canvas.GapsUntouched()) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, std::min(size, size_t{512}));
  double scale = kScales[in.Byte() % 5];
  Canvas canvas(kSide, kSide, scale, kMargin, kMargin);
  canvas.window().color = in.Number();
  Region clip({kMargin, kMargin, kMargin + kSide, kMargin + kSide});
  int x = in.Byte() % 40, y = in.Byte() % 40;
  clip.Subtract(Rect{x, y, x + in.Byte() % 20, y + in.Byte() % 20});
  ClipContextToRegion(canvas.context(), clip);
  XwSetDashes(nullptr, 0, 0, 0);
  while (!in.done()) Draw(in);
  Check(canvas, scale);
  return 0;
}
