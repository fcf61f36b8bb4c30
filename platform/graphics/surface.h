// The pixels of one window (or of memory) and the record of what changed in them since they were
// last shown. Owned by the window; the memory itself comes from the display.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/base.h"

namespace platform {

// Which parts changed: a bit a tile, and the box around everything. Marking costs a few words
// whatever is drawn; the list of rectangles is made when the pixels are shown.
class Damage {
 public:
  void Reset(int width, int height);
  // Device pixels, already clipped to the surface.
  void Mark(int left, int top, int right, int bottom) {
    if (right <= left || bottom <= top) return;
    if (left < box_.left) box_.left = left;
    if (top < box_.top) box_.top = top;
    if (right > box_.right) box_.right = right;
    if (bottom > box_.bottom) box_.bottom = bottom;
    int c0 = left >> shift_, c1 = (right - 1) >> shift_;
    uint64_t mask = (~uint64_t{0} << c0) & (~uint64_t{0} >> (63 - c1));
    for (int r = top >> shift_, r1 = (bottom - 1) >> shift_; r <= r1; ++r) rows_[size_t(r)] |= mask;
  }
  bool empty() const { return box_.empty(); }
  // Appends rectangles that cover everything marked, then forgets it.
  void Take(std::vector<DeviceRect>* out);

 private:
  int width_ = 0, height_ = 0;
  int shift_ = 6;
  Rect box_{1 << 30, 1 << 30, -(1 << 30), -(1 << 30)};
  std::vector<uint64_t> rows_;
};

// 32 bits a pixel, 0xFFRRGGBB in the machine's byte order.
struct Surface {
  Surface() = default;
  ~Surface() { *generation = 0; }
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  uint32_t* pixels = nullptr;
  int width = 0, height = 0;  // device pixels
  int stride = 0;             // in pixels
  double scale = 1.0;
  // Changes whenever `pixels` or the size does, and is 0 once the surface is gone. Contexts share
  // it: they compare it before they paint, and so never reach a surface that is not there.
  std::shared_ptr<uint32_t> generation = std::make_shared<uint32_t>(1);
  Damage damage;
};

// Fills device pixels, cut to the surface, and marks them. `rgb` is 0xRRGGBB.
void FillSurface(Surface* s, DeviceRect r, uint32_t rgb);

}  // namespace platform
