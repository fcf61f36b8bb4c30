// The drawing rules once more, one pixel at a time and without regard to speed: what the fast loops
// are compared with.
#pragma once
#include <stddef.h>

#include <cstdint>
#include <vector>

namespace reference {

struct Pattern {
  std::vector<int> lengths;  // empty: solid
  double phase = 0;
};

// Device pixels of a target whose origin lies at logical (left, top) of the surface. `visible` is
// asked for each device pixel.
class Painter {
 public:
  Painter(int width, int height, double scale, int left, int top);

  void SetVisible(std::vector<bool> visible) { visible_ = std::move(visible); }
  uint32_t color = 0;
  Pattern pattern;

  void FillRect(int64_t x, int64_t y, int64_t w, int64_t h);
  void FrameRect(int64_t x, int64_t y, int64_t w, int64_t h);
  void Line(int64_t x1, int64_t y1, int64_t x2, int64_t y2);
  void Lines(const std::vector<int16_t>& points, int dy);
  void Polygon(const std::vector<int16_t>& points);
  void Oval(int64_t x, int64_t y, int64_t w, int64_t h, bool frame);
  // `pixel` of each source pixel of a w x h picture.
  void Picture(int64_t x, int64_t y, int64_t w, int64_t h, const std::vector<uint32_t>& pixels);
  void Icon(int iw, int ih, const std::vector<bool>& bits, bool set, int64_t x, int64_t y,
            int64_t w, int64_t h);

  int width, height;
  std::vector<uint32_t> pixels;

 private:
  // One step of a path: the device pixels that it paints.
  struct Dab {
    int64_t x, y;
    int w, h;
  };
  int64_t Edge(int64_t logical) const;  // of the surface
  // The logical column (row) that a device column (row) belongs to, in the target's coordinates.
  int64_t Column(int x) const { return columns_[size_t(x)] - left_; }
  int64_t Row(int y) const { return rows_[size_t(y)] - top_; }
  void Put(int64_t x, int64_t y, uint32_t value);
  void Stroke(const std::vector<Dab>& path);
  bool On(int64_t position) const;
  void AddStretch(std::vector<Dab>* path, int64_t x1, int64_t y1, int64_t x2, int64_t y2,
                  bool start_joined, bool end_joined, bool skip_first) const;

  double scale_;
  int left_, top_, pen_;
  std::vector<int64_t> columns_, rows_;
  std::vector<bool> visible_;
};

}  // namespace reference
