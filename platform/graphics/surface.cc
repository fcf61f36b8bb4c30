#include "platform/graphics/surface.h"

#include <algorithm>

namespace platform {

void Damage::Reset(int width, int height) {
  width_ = width;
  height_ = height;
  shift_ = 6;
  while (width > 0 && ((width - 1) >> shift_) > 63) ++shift_;
  rows_.assign(size_t(((height > 0 ? height - 1 : 0) >> shift_) + 1), 0);
  box_ = {1 << 30, 1 << 30, -(1 << 30), -(1 << 30)};
}

void Damage::Take(std::vector<DeviceRect>* out) {
  if (empty()) return;
  size_t open = out->size();  // rectangles of the row above that may grow downwards
  for (size_t r = 0; r < rows_.size(); ++r) {
    uint64_t mask = rows_[r];
    rows_[r] = 0;
    int top = int(r) << shift_, bottom = top + (1 << shift_);
    size_t row_start = out->size();
    bool same = true;
    size_t above = open;
    while (mask) {
      int first = __builtin_ctzll(mask);
      uint64_t run = mask >> first;
      int length = run == ~uint64_t{0} ? 64 : __builtin_ctzll(~run);
      mask &= length == 64 ? 0 : ~(((uint64_t{1} << length) - 1) << first);
      DeviceRect d = Intersect({first << shift_, top, (first + length) << shift_, bottom}, box_);
      if (d.empty()) continue;
      out->push_back(d);
      same = same && above < row_start && (*out)[above].left == d.left &&
             (*out)[above].right == d.right && (*out)[above].bottom == d.top;
      ++above;
    }
    size_t added = out->size() - row_start;
    if (same && added && above == row_start && row_start - open == added) {
      for (size_t i = 0; i < added; ++i) (*out)[open + i].bottom = (*out)[row_start + i].bottom;
      out->resize(row_start);
    } else {
      open = row_start;
    }
  }
  box_ = {1 << 30, 1 << 30, -(1 << 30), -(1 << 30)};
}

void FillSurface(Surface* s, DeviceRect r, uint32_t rgb) {
  r = Intersect(r, {0, 0, s->width, s->height});
  if (r.empty() || !s->pixels) return;
  for (int y = r.top; y < r.bottom; ++y) {
    uint32_t* row = s->pixels + int64_t(y) * s->stride;
    std::fill(row + r.left, row + r.right, 0xFF000000u | rgb);
  }
  s->damage.Mark(r.left, r.top, r.right, r.bottom);
}

}  // namespace platform
