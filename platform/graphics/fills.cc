// Rectangles, ovals and polygons: a shape covers the device pixels whose centres it contains, left
// and top border inclusive.
#include "platform/graphics/context_state.h"

namespace platform {
namespace {

// The run of columns [*left, *right) that an oval of w x h covers in its row `y`, all relative to
// its corner. A centre on the border counts.
void OvalRun(int w, int h, int y, int* left, int* right) {
  *left = *right = 0;
  if (y < 0 || y >= h || w <= 0) return;
  int64_t dy = 2 * int64_t{y} + 1 - h;
  __int128 limit = __int128(w) * w * (__int128(h) * h - __int128(dy) * dy);
  int64_t dx = int64_t(double(w) / h * std::sqrt(double(h) * h - double(dy) * double(dy)));
  if ((dx ^ (w - 1)) & 1) --dx;  // centres lie at odd or even distances from the axis
  while (dx >= 0 && __int128(dx) * dx * h * h > limit) dx -= 2;
  while (__int128(dx + 2) * (dx + 2) * h * h <= limit) dx += 2;
  if (dx < 0) return;
  *left = int((w - 1 - dx) / 2);
  *right = int((w - 1 + dx) / 2) + 1;
}

void FillRun(const Context* c, const DeviceRect& part, int y, int left, int right) {
  left = std::max(left, part.left);
  right = std::min(right, part.right);
  if (left < right) FillSpan(c->row(y) + left, right - left, c->color);
}

// Paints the oval of `r` without the oval that lies `inset` inside (none when inset is 0).
void PaintOval(const Context* c, const DeviceRect& r, int inset) {
  int w = r.width(), h = r.height();
  ForEachPart(c, r, [&](const DeviceRect& part) {
    for (int y = part.top; y < part.bottom; ++y) {
      int left, right, hole_left = 0, hole_right = 0;
      OvalRun(w, h, y - r.top, &left, &right);
      if (inset) OvalRun(w - 2 * inset, h - 2 * inset, y - r.top - inset, &hole_left, &hole_right);
      if (hole_left >= hole_right) {
        FillRun(c, part, y, r.left + left, r.left + right);
        continue;
      }
      FillRun(c, part, y, r.left + left, r.left + inset + hole_left);
      FillRun(c, part, y, r.left + inset + hole_right, r.left + right);
    }
    Mark(c, part);
  });
}

// --- Polygons: edges in one list sorted by their first row; an edge is active while its rows last.

int64_t FloorDivide(int64_t v, int64_t d) {
  return v >= 0 ? v / d : -((-v + d - 1) / d);
}

void AddEdge(Context* c, int x1, int y1, int x2, int y2) {
  if (y1 == y2) return;
  if (y1 > y2) {
    std::swap(x1, x2);
    std::swap(y1, y2);
  }
  if (y2 <= c->extents.top || y1 >= c->extents.bottom) return;
  int64_t dx = int64_t{x2} - x1, dy = int64_t{y2} - y1;
  int64_t skipped = std::max(0, c->extents.top - y1);
  // Row y1 + k crosses at x1 + (2k + 1) dx / 2dy; column X is inside from X + 1/2 on.
  PolygonEdge e;
  e.top = y1 + int(skipped);
  e.bottom = std::min(y2, c->extents.bottom);
  e.divisor = 2 * dy;
  int64_t value = 2 * dy * x1 + (2 * skipped + 1) * dx - dy;
  e.x = -FloorDivide(-value, e.divisor);
  e.rest = e.x * e.divisor - value;
  e.step = FloorDivide(2 * dx, e.divisor);
  e.step_rest = 2 * dx - e.step * e.divisor;
  c->edges.push_back(e);
}

void CollectEdges(Context* c, const int16_t* points, int count) {
  c->edges.clear();
  int px = EdgeX(c, points[2 * size_t(count) - 2]), py = EdgeY(c, points[2 * size_t(count) - 1]);
  for (size_t i = 0; i < size_t(count); ++i) {
    int x = EdgeX(c, points[2 * i]), y = EdgeY(c, points[2 * i + 1]);
    AddEdge(c, px, py, x, y);
    px = x;
    py = y;
  }
  std::sort(c->edges.begin(), c->edges.end(),
            [](const PolygonEdge& a, const PolygonEdge& b) { return a.top < b.top; });
}

void Advance(PolygonEdge* e) {
  e->x += e->step;
  e->rest -= e->step_rest;
  if (e->rest < 0) {
    e->rest += e->divisor;
    ++e->x;
  }
}

// Inserts a crossing in its place; rows have few.
void InsertCrossing(std::vector<int>* list, int x) {
  size_t i = list->size();
  list->push_back(x);
  for (; i > 0 && (*list)[i - 1] > x; --i) (*list)[i] = (*list)[i - 1];
  (*list)[i] = x;
}

void PaintRow(const Context* c, int y) {
  const std::vector<int>& x = c->crossings;
  const pixman_box32_t* end = c->boxes + c->box_count;
  for (const pixman_box32_t* b = FirstBox(c, y); b != end && b->y1 <= y; ++b) {
    if (b->y2 <= y) continue;
    for (size_t i = 0; i + 1 < x.size(); i += 2)
      FillRun(c, {b->x1, b->y1, b->x2, b->y2}, y, x[i], x[i + 1]);
  }
}

}  // namespace

void FillRect(ContextRef c, int x, int y, int w, int h) {
  if (!Ready(c) || w <= 0 || h <= 0) return;
  FillDevice(c, DeviceBox(c, x, y, w, h));
}

void FillOval(ContextRef c, int x, int y, int w, int h) {
  if (!Ready(c) || w <= 0 || h <= 0) return;
  PaintOval(c, DeviceBox(c, x, y, w, h), 0);
}

void FrameOval(ContextRef c, int x, int y, int w, int h) {
  if (!Ready(c) || w <= 0 || h <= 0) return;
  PaintOval(c, DeviceBox(c, x, y, w, h), c->pen);
}

void FillPolygon(ContextRef c, const int16_t* points, int count) {
  if (!Ready(c) || !points || count < 3) return;
  CollectEdges(c, points, count);
  std::vector<PolygonEdge>& edges = c->edges;
  if (edges.empty()) return;
  size_t first = 0, next = 0;  // edges[first, next) may be active
  DeviceRect box{kFarDevice, edges[0].top, -kFarDevice, edges[0].top};
  for (int y = edges[0].top; y < c->extents.bottom; ++y) {
    while (next < edges.size() && edges[next].top <= y) ++next;
    if (first == next && next == edges.size()) break;
    c->crossings.clear();
    for (size_t i = first; i < next; ++i) {
      PolygonEdge& e = edges[i];
      if (y >= e.bottom) {  // done: the front one, already handled in this row, takes its place
        e = edges[first++];
        continue;
      }
      InsertCrossing(&c->crossings, int(e.x));
      Advance(&e);
    }
    if (c->crossings.empty()) continue;
    PaintRow(c, y);
    box.left = std::min(box.left, c->crossings.front());
    box.right = std::max(box.right, c->crossings.back());
    box.bottom = y + 1;
  }
  MarkClipped(c, box);
}

}  // namespace platform
