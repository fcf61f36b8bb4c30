#include "tests/drawing/reference.h"

#include <algorithm>
#include <cmath>

namespace reference {

Painter::Painter(int w, int h, double scale, int left, int top)
    : width(w), height(h), scale_(scale), left_(left), top_(top) {
  pen_ = std::max(1, int(scale));
  pixels.assign(size_t(w) * size_t(h), 0xFFFFFFFFu);
  visible_.assign(pixels.size(), true);
  for (int d = 0; d < std::max(w, h); ++d) {
    int64_t logical = 0;
    while (Edge(logical + 1) <= d) ++logical;
    if (d < w) columns_.push_back(logical);
    if (d < h) rows_.push_back(logical);
  }
}

int64_t Painter::Edge(int64_t logical) const {
  return llround(double(logical) * scale_);
}

void Painter::Put(int64_t x, int64_t y, uint32_t value) {
  if (x < 0 || y < 0 || x >= width || y >= height) return;
  size_t i = size_t(y) * size_t(width) + size_t(x);
  if (visible_[i]) pixels[i] = 0xFF000000u | value;
}

void Painter::FillRect(int64_t x, int64_t y, int64_t w, int64_t h) {
  for (int py = 0; py < height; ++py)
    for (int px = 0; px < width; ++px)
      if (Column(px) >= x && Column(px) < x + w && Row(py) >= y && Row(py) < y + h)
        Put(px, py, color);
}

// Position along the path in device pixels. The boundaries of dashes are walked from far before the
// path's beginning; each is rounded to a device pixel.
bool Painter::On(int64_t position) const {
  if (pattern.lengths.empty()) return true;
  double at = -pattern.phase;
  int64_t round_length = 0;
  for (int n : pattern.lengths) round_length += n;
  bool on = true;
  while (at > 0) at -= double(2 * round_length);
  for (size_t i = 0;; i = (i + 1) % pattern.lengths.size()) {
    at += pattern.lengths[i];
    if (int64_t(std::floor(at * scale_ + 0.5)) > position) return on;
    on = !on;
  }
}

void Painter::Stroke(const std::vector<Dab>& path) {
  for (size_t i = 0; i < path.size(); ++i) {
    if (!On(int64_t(i))) continue;
    for (int dy = 0; dy < path[i].h; ++dy)
      for (int dx = 0; dx < path[i].w; ++dx) Put(path[i].x + dx, path[i].y + dy, color);
  }
}

// Distance across after k of n steps when the whole line goes `m` aside (either sign): the nearest
// row, a tie to the smaller one.
static int64_t Nearest(int64_t k, int64_t n, int64_t m) {
  int64_t best = 0;
  // |q - k m / n| in units of 1 / n.
  auto distance = [&](int64_t q) { return std::abs(q * n - k * m); };
  for (int64_t q = std::min<int64_t>(0, m); q <= std::max<int64_t>(0, m); ++q)
    if (q == std::min<int64_t>(0, m) || distance(q) < distance(best)) best = q;
  return best;
}

void Painter::AddStretch(std::vector<Dab>* path, int64_t x1, int64_t y1, int64_t x2, int64_t y2,
                         bool start_joined, bool end_joined, bool skip_first) const {
  std::vector<Dab> dabs;
  if (x1 == x2 || y1 == y2) {
    bool horizontal = y1 == y2;
    int64_t a = horizontal ? x1 : y1, b = horizontal ? x2 : y2;
    bool low_first = a <= b;
    int64_t low = std::min(a, b), high = std::max(a, b);
    bool joined = low_first ? end_joined : start_joined;
    int64_t end = joined ? Edge(high) + pen_ : Edge(high + 1);
    for (int64_t d = Edge(low); d < end; ++d)
      dabs.push_back(horizontal ? Dab{d, Edge(y1), 1, pen_} : Dab{Edge(x1), d, pen_, 1});
    if (!low_first) std::reverse(dabs.begin(), dabs.end());
    if (skip_first)
      dabs.erase(dabs.begin(), dabs.begin() + std::min<int64_t>(pen_, int64_t(dabs.size())));
  } else {
    int64_t ax = Edge(x1), ay = Edge(y1), bx = Edge(x2), by = Edge(y2);
    bool x_major = std::abs(bx - ax) >= std::abs(by - ay);
    bool swapped = x_major ? ax > bx : ay > by;
    if (swapped) {
      std::swap(ax, bx);
      std::swap(ay, by);
    }
    int64_t n = x_major ? bx - ax : by - ay, m = x_major ? by - ay : bx - ax;
    for (int64_t k = 0; k <= n; ++k) {
      int64_t aside = Nearest(k, n, m);
      Dab dab = x_major ? Dab{ax + k, ay + aside, 1, pen_} : Dab{ax + aside, ay + k, pen_, 1};
      if (k == 0 || k == n) dab.w = dab.h = pen_;
      dabs.push_back(dab);
    }
    if (swapped) std::reverse(dabs.begin(), dabs.end());
    if (skip_first) dabs.erase(dabs.begin());
  }
  path->insert(path->end(), dabs.begin(), dabs.end());
}

void Painter::Line(int64_t x1, int64_t y1, int64_t x2, int64_t y2) {
  if (x1 == x2 && y1 == y2) {
    if (On(0)) FillRect(x1, y1, 1, 1);
    return;
  }
  std::vector<Dab> path;
  AddStretch(&path, x1 + left_, y1 + top_, x2 + left_, y2 + top_, false, false, false);
  Stroke(path);
}

void Painter::Lines(const std::vector<int16_t>& points, int dy) {
  std::vector<std::pair<int64_t, int64_t>> distinct;
  for (size_t i = 0; i + 1 < points.size(); i += 2) {
    std::pair<int64_t, int64_t> p{points[i], points[i + 1] + dy};
    if (distinct.empty() || distinct.back() != p) distinct.push_back(p);
  }
  if (points.size() < 4) return;
  if (distinct.size() == 1)
    return Line(distinct[0].first, distinct[0].second, distinct[0].first, distinct[0].second);
  bool closed = distinct.size() > 2 && distinct.front() == distinct.back();
  std::vector<Dab> path;
  for (size_t i = 1; i < distinct.size(); ++i)
    AddStretch(&path, distinct[i - 1].first + left_, distinct[i - 1].second + top_,
               distinct[i].first + left_, distinct[i].second + top_, i > 1 || closed,
               i + 1 < distinct.size() || closed, i > 1);
  Stroke(path);
}

void Painter::FrameRect(int64_t x, int64_t y, int64_t w, int64_t h) {
  if (w <= 0 || h <= 0) return;
  int64_t l = Edge(x + left_), t = Edge(y + top_), r = Edge(x + w + left_), b = Edge(y + h + top_);
  std::vector<Dab> path;
  for (int64_t d = l; d < r; ++d) path.push_back({d, b - pen_, 1, pen_});
  for (int64_t d = b - pen_ - 1; d >= t; --d) path.push_back({r - pen_, d, pen_, 1});
  for (int64_t d = r - pen_ - 1; d >= l; --d) path.push_back({d, t, 1, pen_});
  for (int64_t d = t + pen_; d < b - pen_; ++d) path.push_back({l, d, pen_, 1});
  Stroke(path);
}

void Painter::Polygon(const std::vector<int16_t>& points) {
  size_t n = points.size() / 2;
  if (n < 3) return;
  std::vector<int64_t> xs, ys;
  for (size_t i = 0; i < n; ++i) {
    xs.push_back(Edge(points[2 * i] + left_));
    ys.push_back(Edge(points[2 * i + 1] + top_));
  }
  for (int py = 0; py < height; ++py) {
    for (int px = 0; px < width; ++px) {
      // Everything doubled, so that centres are whole numbers. A crossing at or left of the centre
      // counts.
      int64_t cx = 2 * px + 1, cy = 2 * py + 1;
      bool inside = false;
      for (size_t i = 0; i < n; ++i) {
        int64_t x1 = 2 * xs[i], y1 = 2 * ys[i];
        int64_t x2 = 2 * xs[(i + 1) % n], y2 = 2 * ys[(i + 1) % n];
        if ((y1 < cy) == (y2 < cy)) continue;
        if (y1 > y2) {
          std::swap(x1, x2);
          std::swap(y1, y2);
        }
        if (x1 * (y2 - y1) + (cy - y1) * (x2 - x1) <= cx * (y2 - y1)) inside = !inside;
      }
      if (inside) Put(px, py, color);
    }
  }
}

static bool InOval(int64_t x, int64_t y, int64_t l, int64_t t, int64_t r, int64_t b) {
  if (r <= l || b <= t) return false;
  __int128 w = r - l, h = b - t, dx = 2 * x + 1 - l - r, dy = 2 * y + 1 - t - b;
  return dx * dx * h * h + dy * dy * w * w <= w * w * h * h;
}

void Painter::Oval(int64_t x, int64_t y, int64_t w, int64_t h, bool frame) {
  if (w <= 0 || h <= 0) return;
  int64_t l = Edge(x + left_), t = Edge(y + top_), r = Edge(x + w + left_), b = Edge(y + h + top_);
  for (int py = 0; py < height; ++py)
    for (int px = 0; px < width; ++px)
      if (InOval(px, py, l, t, r, b) &&
          !(frame && InOval(px, py, l + pen_, t + pen_, r - pen_, b - pen_)))
        Put(px, py, color);
}

void Painter::Picture(int64_t x, int64_t y, int64_t w, int64_t h,
                      const std::vector<uint32_t>& source) {
  for (int py = 0; py < height; ++py) {
    for (int px = 0; px < width; ++px) {
      int64_t sx = Column(px) - x, sy = Row(py) - y;
      if (sx >= 0 && sy >= 0 && sx < w && sy < h) Put(px, py, source[size_t(sy * w + sx)]);
    }
  }
}

void Painter::Icon(int iw, int ih, const std::vector<bool>& bits, bool set, int64_t x, int64_t y,
                   int64_t w, int64_t h) {
  for (int py = 0; py < height; ++py) {
    for (int px = 0; px < width; ++px) {
      int64_t dx = Column(px) - x, up = y + h - 1 - Row(py);  // up from the bottom row
      if (dx < 0 || up < 0 || dx >= w || up >= h) continue;
      int64_t bx = dx % iw, by = ih - 1 - up % ih;
      if (bits[size_t(by * iw + bx)] == set) Put(px, py, color);
    }
  }
}

}  // namespace reference
