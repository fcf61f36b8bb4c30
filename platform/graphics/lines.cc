// Thin lines. A logical pixel of a line becomes a square of one pen at its top-left device corner;
// a free end of a line along an axis covers its whole logical pixel. Oblique lines step in device
// pixels along their longer axis, with one pen across, and have a whole pen at both ends.
#include "platform/graphics/context_state.h"

namespace platform {
namespace {

// Walks a dash pattern along a path counted in device pixels.
class DashWalk {
 public:
  DashWalk(const Dash& dash, double scale) : dash_(dash), scale_(scale) {}
  // Goes to position `t`; afterwards on() holds from there to end().
  void Seek(int64_t t) {
    if (index_ < 0 || t < last_) {
      round_ = int64_t(std::floor((double(t) / scale_ + dash_.phase) / dash_.total)) - 1;
      index_ = 0;
    }
    last_ = t;
    while ((end_ = EndOf(index_)) <= t) {
      if (++index_ == dash_.count) {
        index_ = 0;
        ++round_;
      }
    }
  }
  bool on() const { return index_ % 2 == 0; }
  int64_t end() const { return end_; }

 private:
  int64_t EndOf(int index) const {
    double logical = double(round_) * dash_.total - dash_.phase + dash_.ends[index];
    double edge = logical * scale_ + 0.5;
    int64_t whole = int64_t(edge);
    return whole - (edge < double(whole));  // the floor
  }
  const Dash& dash_;
  double scale_;
  int64_t round_ = 0, last_ = 0, end_ = 0;
  int index_ = -1;
};

// A run of device pixels along an axis: `length` pixels from `start` on, in direction `step`, over
// the device rows (or columns) [across, across + pen). `path` is where on the path it begins.
struct AxisRun {
  bool horizontal;
  int start, length, step, across;
  int64_t path;
};

DeviceRect AxisRect(const Context* c, const AxisRun& run, int from, int to) {
  int a = run.start + run.step * from, b = run.start + run.step * (to - 1);
  if (a > b) std::swap(a, b);
  return run.horizontal ? DeviceRect{a, run.across, b + 1, run.across + c->pen}
                        : DeviceRect{run.across, a, run.across + c->pen, b + 1};
}

// Calls paint(from, to) for each dash within [from, to) of a stretch that begins at `path`.
template <typename Paint>
void ForEachDash(const Context* c, int64_t path, int from, int to, Paint paint) {
  DashWalk walk(c->dash, c->scale);
  for (int64_t t = from; t < to;) {
    walk.Seek(path + t);
    int64_t end = std::min<int64_t>(walk.end() - path, to);
    if (walk.on()) paint(int(t), int(end));
    t = end;
  }
}

void PaintAxis(const Context* c, const AxisRun& run) {
  if (run.length <= 0) return;
  DeviceRect all = AxisRect(c, run, 0, run.length);
  if (!c->dash.count) return FillDevice(c, all);
  ForEachPart(c, all, [&](const DeviceRect& part) {
    int low = run.horizontal ? part.left : part.top;
    int high = run.horizontal ? part.right : part.bottom;
    int from = run.step > 0 ? low - run.start : run.start - (high - 1);
    ForEachDash(c, run.path, from, from + high - low,
                [&](int a, int b) { FillPart(c, Intersect(AxisRect(c, run, a, b), part)); });
    Mark(c, part);
  });
}

// An oblique line from its end with the smaller major coordinate. Step k of 0..n lies at
// major + k, minor + sign * ((2 k m + round) / 2n).
struct Oblique {
  bool x_major, forward;  // forward: the path begins at step 0
  int major, minor, n, m, sign, round;

  Oblique(int x1, int y1, int x2, int y2) {
    int dx = std::abs(x2 - x1), dy = std::abs(y2 - y1);
    x_major = dx >= dy;
    forward = x_major ? x1 <= x2 : y1 <= y2;
    if (!forward) {
      std::swap(x1, x2);
      std::swap(y1, y2);
    }
    major = x_major ? x1 : y1;
    minor = x_major ? y1 : x1;
    n = std::max(dx, dy);
    m = std::min(dx, dy);
    sign = (x_major ? y2 >= y1 : x2 >= x1) ? 1 : -1;
    round = sign > 0 ? n - 1 : n;  // a tie goes to the smaller coordinate
  }
  int Across(int64_t k) const {  // both ends without a division
    return k == 0 ? 0 : k == n ? m : int((2 * k * m + round) / (2 * int64_t{n}));
  }
  // The first step whose distance across is at least `a`.
  int64_t FirstAcross(int64_t a) const {
    int64_t over = 2 * int64_t{n} * a - round, by = 2 * int64_t{m};
    return over >= 0 ? (over + by - 1) / by : -(-over / by);
  }
  DeviceRect Bounds(int from, int to, int pen) const {
    int a = minor + sign * Across(from), b = minor + sign * Across(to);
    if (a > b) std::swap(a, b);
    if (x_major) return {major + from, a, major + to + 1, b + pen};
    return {a, major + from, b + pen, major + to + 1};
  }
};

// Cuts the steps [*from, *to] to those that touch the box.
void CutSteps(const Oblique& o, const pixman_box32_t& box, int pen, int* from, int* to) {
  int low = o.x_major ? box.x1 : box.y1, high = o.x_major ? box.x2 : box.y2;
  int64_t first = std::max(*from, low - o.major), last = std::min(*to, high - 1 - o.major);
  int side_low = (o.x_major ? box.y1 : box.x1) - pen + 1;
  int side_high = (o.x_major ? box.y2 : box.x2) - 1;
  int64_t a = o.sign > 0 ? side_low - o.minor : o.minor - side_high;
  int64_t b = o.sign > 0 ? side_high - o.minor : o.minor - side_low;
  *from = int(std::max(first, o.FirstAcross(a)));
  *to = int(std::min(last, o.FirstAcross(b + 1) - 1));
}

// The pixels of an oblique line one after another, up its steps or down.
template <bool kUp>
class Pixels {
 public:
  Pixels(const Context* c, const Oblique& o, int step) {
    int64_t round = 2 * int64_t{o.n}, add = 2 * int64_t{o.m};
    int across = o.Across(step);
    error_ = uint64_t(step * add + o.round - across * round);
    sum_ = uint64_t(kUp ? add : round - add);
    less_ = sum_ - uint64_t(round);
    intptr_t stride = c->surface->stride, along = o.x_major ? 1 : stride;
    intptr_t aside = (o.x_major ? stride : 1) * o.sign;
    above_ = kUp ? along + aside : -along;
    below_ = -aside;
    int x = o.x_major ? o.major + step : o.minor + o.sign * across;
    int y = o.x_major ? o.minor + o.sign * across : o.major + step;
    at = c->row(y) + x;
  }
  // The next error is the sum modulo a round. Of the sum and the sum less one round exactly one is
  // within a round; compared as unsigned numbers it is the smaller. So no branch is needed.
  void Next() {
    uint64_t sum = error_ + sum_, less = error_ + less_;
    at += above_ + (below_ & int64_t(less) >> 63);
    error_ = std::min(sum, less);
  }
  uint32_t* at;

 private:
  uint64_t error_, sum_, less_;
  intptr_t above_, below_;  // what a step moves; added to it when `less` is below 0
};

// Draws from both ends to the middle: each pixel depends on the one before it, and the processor
// computes two independent chains in the time of one.
void ThinSteps(const Context* c, const Oblique& o, int from, int to) {
  Pixels<true> low(c, o, from);
  Pixels<false> high(c, o, to);
  uint32_t color = c->color;
  int left = to - from + 1;
  for (; left > 1; left -= 2) {
    *low.at = color;
    *high.at = color;
    low.Next();
    high.Next();
  }
  if (left) *low.at = color;
}

void ThickSteps(const Context* c, const Oblique& o, const pixman_box32_t& box, int from, int to) {
  int low = o.x_major ? box.y1 : box.x1, high = o.x_major ? box.y2 : box.x2;
  intptr_t stride = c->surface->stride;
  for (int k = from; k <= to; ++k) {
    int side = o.minor + o.sign * o.Across(k);
    int a = std::max(side, low), b = std::min(side + c->pen, high);
    if (a >= b) continue;
    uint32_t* p = o.x_major ? c->row(a) + o.major + k : c->row(o.major + k) + a;
    for (; a < b; ++a, p += o.x_major ? stride : 1) *p = c->color;
  }
}

// The whole pen of an end.
void FillPen(const Context* c, const Oblique& o, int k) {
  int side = o.minor + o.sign * o.Across(k);
  int x = o.x_major ? o.major + k : side, y = o.x_major ? side : o.major + k;
  FillDevice(c, {x, y, x + c->pen, y + c->pen});
}

void PaintSteps(const Context* c, const Oblique& o, int from, int to) {
  DeviceRect bounds = o.Bounds(from, to, c->pen);
  if (o.m == 0) return FillDevice(c, bounds);  // far away, or a scale below one
  const pixman_box32_t* end = c->boxes + c->box_count;
  for (const pixman_box32_t* b = FirstBox(c, bounds.top); b != end && b->y1 < bounds.bottom; ++b) {
    DeviceRect part = Intersect(bounds, {b->x1, b->y1, b->x2, b->y2});
    if (part.empty()) continue;
    int first = from, last = to;
    if (part != bounds) CutSteps(o, *b, c->pen, &first, &last);
    if (first > last) continue;
    if (c->pen == 1)
      ThinSteps(c, o, first, last);
    else
      ThickSteps(c, o, *b, first, last);
    Mark(c, part);
  }
  if (c->pen == 1) return;
  if (from == 0) FillPen(c, o, 0);
  if (to == o.n) FillPen(c, o, o.n);
}

// Paints steps [from, to) counted along the path, in whichever direction that runs.
void PaintAlong(const Context* c, const Oblique& o, int from, int to) {
  if (o.forward) return PaintSteps(c, o, from, to - 1);
  PaintSteps(c, o, o.n - (to - 1), o.n - from);
}

// Steps [from, to) along the path, all of them inside the clip, with a pen of one pixel.
template <bool kUp>
void ThinDashes(const Context* c, const Oblique& o, int from, int to, int64_t path) {
  Pixels<kUp> pixels(c, o, kUp ? from : o.n - from);
  uint32_t color = c->color;
  int at = from;
  ForEachDash(c, path, from, to, [&](int a, int b) {
    for (; at < a; ++at) pixels.Next();
    for (; at < b; ++at, pixels.Next()) *pixels.at = color;
  });
}

void PaintOblique(const Context* c, const Oblique& o, int skip, int64_t path) {
  if (!c->dash.count || o.m == 0) return PaintSteps(c, o, 0, o.n);
  path -= skip;  // where step 0 lies
  DeviceRect bounds = o.Bounds(0, o.n, c->pen);
  if (c->pen == 1 && c->box_count == 1 && Intersect(bounds, c->extents) == bounds) {
    o.forward ? ThinDashes<true>(c, o, skip, o.n + 1, path)
              : ThinDashes<false>(c, o, skip, o.n + 1, path);
    return Mark(c, bounds);
  }
  const Rect& e = c->extents;
  int first = 0, last = o.n;
  CutSteps(o, {e.left - c->pen, e.top - c->pen, e.right, e.bottom}, c->pen, &first, &last);
  if (first > last) return;
  int from = o.forward ? first : o.n - last, to = (o.forward ? last : o.n - first) + 1;
  ForEachDash(c, path, std::max(from, skip), to, [&](int a, int b) { PaintAlong(c, o, a, b); });
}

// One stretch of a path between two logical pixels. A joined end shares its pen with a neighbour;
// `skip_first`: the first pen has been counted already. Returns how many device pixels it counts.
struct Stretch {
  int64_t x1, y1, x2, y2;
  bool start_joined, end_joined, skip_first;
};

int64_t PaintStretch(const Context* c, const Stretch& s, int64_t path) {
  if (s.x1 != s.x2 && s.y1 != s.y2) {
    Oblique o(Edge(c, s.x1), Edge(c, s.y1), Edge(c, s.x2), Edge(c, s.y2));
    int skip = s.skip_first ? 1 : 0;
    PaintOblique(c, o, skip, path);
    return int64_t{o.n} + 1 - skip;
  }
  bool horizontal = s.y1 == s.y2;
  int64_t from = horizontal ? s.x1 : s.y1, to = horizontal ? s.x2 : s.y2;
  bool up = from <= to;
  bool high_joined = up ? s.end_joined : s.start_joined;
  int low = Edge(c, std::min(from, to));
  int high = high_joined ? Edge(c, std::max(from, to)) + c->pen : Edge(c, std::max(from, to) + 1);
  int skip = s.skip_first ? c->pen : 0;
  AxisRun run{horizontal, 0, high - low - skip, up ? 1 : -1, Edge(c, horizontal ? s.y1 : s.x1),
              path};
  run.start = up ? low + skip : high - 1 - skip;
  if (!c->dash.count && skip) {  // solid: the joint may be painted twice
    run.start = up ? low : high - 1;
    run.length = high - low;
  }
  PaintAxis(c, run);
  return std::max(0, high - low - skip);
}

void PaintDot(const Context* c, int64_t x, int64_t y) {
  if (c->dash.count) {
    DashWalk walk(c->dash, c->scale);
    walk.Seek(0);
    if (!walk.on()) return;
  }
  FillDevice(c, {Edge(c, x), Edge(c, y), Edge(c, x + 1), Edge(c, y + 1)});
}

}  // namespace

void StrokeLine(ContextRef c, int x1, int y1, int x2, int y2) {
  if (!Ready(c)) return;
  Stretch s{int64_t{x1} + c->origin_x,
            int64_t{y1} + c->origin_y,
            int64_t{x2} + c->origin_x,
            int64_t{y2} + c->origin_y,
            false,
            false,
            false};
  if (x1 == x2 && y1 == y2) return PaintDot(c, s.x1, s.y1);
  PaintStretch(c, s, 0);
}

void StrokeLineSolid(ContextRef c, int x1, int y1, int x2, int y2) {
  if (!c) return;
  int count = c->dash.count;
  c->dash.count = 0;
  StrokeLine(c, x1, y1, x2, y2);
  c->dash.count = count;
}

void StrokeLines(ContextRef c, const int16_t* points, int count, int dx, int dy) {
  if (!Ready(c) || !points || count < 2) return;
  int64_t ox = int64_t{dx} + c->origin_x, oy = int64_t{dy} + c->origin_y;
  size_t last = size_t(count) - 1;
  while (last > 0 && points[2 * last] == points[2 * last - 2] &&
         points[2 * last + 1] == points[2 * last - 1])
    --last;  // points that repeat the last one are no stretch of their own
  if (last == 0) return PaintDot(c, points[0] + ox, points[1] + oy);
  bool closed = last > 1 && points[0] == points[2 * last] && points[1] == points[2 * last + 1];
  int64_t path = 0;
  bool first = true;
  for (size_t i = 1; i <= last; ++i) {
    const int16_t *a = points + 2 * i - 2, *b = points + 2 * i;
    if (a[0] == b[0] && a[1] == b[1]) continue;
    Stretch s{a[0] + ox,        a[1] + oy,          b[0] + ox, b[1] + oy,
              !first || closed, i < last || closed, !first};
    path += PaintStretch(c, s, path);
    first = false;
  }
}

void FrameRect(ContextRef c, int x, int y, int w, int h) {
  if (!Ready(c) || w <= 0 || h <= 0) return;
  DeviceRect r = DeviceBox(c, x, y, w, h);
  int p = c->pen;
  if (r.empty() || Intersect(r, c->extents).empty()) return;
  int width = r.width(), height = r.height();
  if (!c->dash.count) {
    FillDevice(c, {r.left, r.top, r.right, std::min(r.top + p, r.bottom)});
    if (height > p) FillDevice(c, {r.left, r.bottom - p, r.right, r.bottom});
    if (height <= 2 * p) return;
    FillDevice(c, {r.left, r.top + p, r.left + p, r.bottom - p});
    if (width > p) FillDevice(c, {r.right - p, r.top + p, r.right, r.bottom - p});
    return;
  }
  int64_t right = width, up = right + height - p, left = up + width - p;
  PaintAxis(c, {true, r.left, width, 1, r.bottom - p, 0});
  PaintAxis(c, {false, r.bottom - 1 - p, height - p, -1, r.right - p, right});
  PaintAxis(c, {true, r.right - 1 - p, width - p, -1, r.top, up});
  PaintAxis(c, {false, r.top + p, height - 2 * p, 1, r.left, left});
}

}  // namespace platform
