// Damage and regions against plain bitmaps.
#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "platform/graphics/png.h"
#include "platform/graphics/region.h"
#include "platform/graphics/surface.h"

namespace platform {
namespace {

// Calls `visit` with each pixel of `r` that lies in w x h.
template <typename Visit>
void ForPixels(const Rect& r, int w, int h, Visit visit) {
  Rect c = Intersect(r, {0, 0, w, h});
  for (int y = c.top; y < c.bottom; ++y)
    for (int x = c.left; x < c.right; ++x) visit(size_t(y) * size_t(w) + size_t(x));
}

TEST(Damage, CoversAllThatIsMarkedAndNothingOutsideTheBox) {
  std::mt19937 random(7);
  auto below = [&](int n) { return int(random() % uint32_t(n)); };
  const int sizes[][2] = {{1, 1},     {63, 65},   {64, 64},  {640, 480},
                          {1000, 30}, {4160, 70}, {70, 3000}};
  for (const auto& size : sizes) {
    const int w = size[0], h = size[1];
    Damage damage;
    damage.Reset(w, h);
    for (int round = 0; round < 60; ++round) {
      std::vector<char> marked(size_t(w) * size_t(h));
      Rect box{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
      for (int n = below(6); n >= 0; --n) {
        int left = below(w), top = below(h);
        Rect r{left, top, left + below(w - left + 1), top + below(h - top + 1)};
        damage.Mark(r.left, r.top, r.right, r.bottom);
        if (r.empty()) continue;
        ForPixels(r, w, h, [&](size_t i) { marked[i] = 1; });
        box = {std::min(box.left, r.left), std::min(box.top, r.top), std::max(box.right, r.right),
               std::max(box.bottom, r.bottom)};
      }
      EXPECT_EQ(damage.empty(), box.empty());
      std::vector<DeviceRect> rects;
      damage.Take(&rects);
      std::vector<char> covered(marked.size());
      for (const DeviceRect& r : rects) {
        ASSERT_FALSE(r.empty());
        ASSERT_EQ(Intersect(r, box), r) << "outside the box";
        ForPixels(r, w, h, [&](size_t i) {
          ASSERT_FALSE(covered[i]) << "shown twice";
          covered[i] = 1;
        });
      }
      for (size_t i = 0; i < marked.size(); ++i) ASSERT_LE(marked[i], covered[i]) << i;
      EXPECT_TRUE(damage.empty());
      rects.clear();
      damage.Take(&rects);
      EXPECT_TRUE(rects.empty()) << "taken is forgotten";
    }
  }
}

TEST(Damage, MarksOfASurface) {
  std::vector<uint32_t> pixels(100 * 50);
  Surface s;
  s.pixels = pixels.data();
  s.width = s.stride = 100;
  s.height = 50;
  s.damage.Reset(100, 50);
  FillSurface(&s, {-10, -10, 5, 5}, 0x123456);
  FillSurface(&s, {200, 0, 300, 10}, 1);
  FillSurface(&s, {10, 10, 10, 20}, 1);
  std::vector<DeviceRect> rects;
  s.damage.Take(&rects);
  EXPECT_EQ(rects, (std::vector<DeviceRect>{{0, 0, 5, 5}}));
  EXPECT_EQ(pixels[4 * 100 + 4], 0xFF123456u);
  EXPECT_EQ(pixels[5 * 100 + 4], 0u);
  std::vector<uint32_t> part;
  for (size_t i = 0; i < 6 * 8; ++i) part.push_back(pixels[i / 8 * 100 + i % 8]);
  EXPECT_EQ(EncodePng(pixels.data(), 8, 6, 100), EncodePng(part.data(), 8, 6, 8));
}

TEST(Region, ArithmeticAgreesWithABitmap) {
  constexpr int kSide = 48;
  std::mt19937 random(11);
  auto some = [&] {
    int left = int(random() % 60) - 6, top = int(random() % 60) - 6;
    return Rect{left, top, left + int(random() % 25) - 2, top + int(random() % 25) - 2};
  };
  for (int round = 0; round < 300; ++round) {
    Region region;
    std::vector<char> bits(kSide * kSide);
    for (int step = 0; step < 12; ++step) {
      Rect r = some();
      switch (random() % 6) {
        case 0: {
          std::vector<Rect> holes = {r, some(), some()};
          region.Subtract(holes);
          for (const Rect& hole : holes)
            ForPixels(hole, kSide, kSide, [&](size_t i) { bits[i] = 0; });
          break;
        }
        case 1:
          if (random() % 3) break;
          region.Intersect(r);
          for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x)
              if (!r.contains({x, y})) bits[size_t(y * kSide + x)] = 0;
          break;
        case 2:
          region.Subtract(r);
          ForPixels(r, kSide, kSide, [&](size_t i) { bits[i] = 0; });
          break;
        default:
          region.Add(r);
          ForPixels(r, kSide, kSide, [&](size_t i) { bits[i] = 1; });
      }
    }
    Region copy = region;
    Region moved = std::move(region);
    moved.Translate(1000, -7);
    moved.Translate(-1000, 7);
    for (const Region* same : {&copy, &moved}) {
      std::vector<char> covered(bits.size());
      for (const pixman_box32_t& b : same->boxes()) {
        ForPixels({b.x1, b.y1, b.x2, b.y2}, kSide, kSide, [&](size_t i) {
          ASSERT_FALSE(covered[i]) << "boxes overlap";
          covered[i] = 1;
        });
      }
      ASSERT_EQ(covered, bits);
    }
    for (int y = 0; y < kSide; y += 5)
      for (int x = 0; x < kSide; x += 3)
        ASSERT_EQ(copy.contains({x, y}), bits[size_t(y * kSide + x)] != 0);
    copy.Clear();
    EXPECT_TRUE(copy.empty());
  }
}

TEST(Region, ExtremeRectangles) {
  Region region({INT_MIN, INT_MIN, INT_MAX, INT_MAX});
  EXPECT_TRUE(region.contains({0, 0}));
  region.Subtract({INT_MAX, 0, INT_MIN, 10});
  EXPECT_TRUE(region.contains({5, 5}));
  region.Subtract(Rect{INT_MIN, INT_MIN, 0, INT_MAX});
  EXPECT_FALSE(region.contains({-1, 0}));
  EXPECT_EQ(region.extents().left, 0);
  region.Intersect({5, 5, 5, 50});
  EXPECT_TRUE(region.empty());
}

TEST(Geometry, EdgesNeverGapAndSizesCoverWhatIsGranted) {
  for (double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.6, 3.0}) {
    for (int l = -500; l < 500; ++l) {
      int here = DeviceEdge(l, scale), next = DeviceEdge(l + 1, scale);
      EXPECT_GE(next - here, int(scale));
      EXPECT_LE(next - here, int(scale) + 1);
      EXPECT_EQ(DeviceEdge(-l, scale), -here) << "the same on both sides of zero";
    }
    for (int device = 1; device < 500; ++device) {
      int logical = LogicalSize(device, scale);
      EXPECT_GE(DeviceEdge(logical, scale), device);
      EXPECT_LT(DeviceEdge(logical - 1, scale), device);
    }
    EXPECT_EQ(DeviceEdge(INT_MAX, scale) > 0, true);
    EXPECT_EQ(DeviceEdge(INT_MIN, scale) < 0, true);
  }
}

}  // namespace
}  // namespace platform
