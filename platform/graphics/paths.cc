// Paths that are drawn once: rasterised straight into the pixels, without a mask in between.
#include <memory>

#include "platform/graphics/context_state.h"
#include "platform/graphics/font_library.h"
#include "platform/graphics/outline_shape.h"

namespace platform {
namespace {

// Memory that stays for the next path.
struct Scratch {
  Shape shape;
  std::vector<uint8_t> mask;
  std::vector<PathPart> piece;
};
Scratch& Kept() {
  static auto* scratch = new Scratch;
  return *scratch;
}

bool IsDrawable(ContextRef c, const PathPart* parts, int count) {
  return Ready(c) && parts && count >= 1 && count <= kMostDrawnParts && FontLibrary() &&
         std::all_of(parts, parts + count, IsUsable);
}

// The shape with its origin where the context has its own, moved so that the rasteriser's origin is
// the lower left corner of the clip. False when none of it shows.
bool MoveIntoClip(const Context* c, FT_Outline* shape, DeviceRect* box) {
  if (shape->n_contours == 0) return false;
  FT_Outline_Translate(shape, FT_Pos{EdgeX(c, 0) - c->extents.left} * 64,
                       FT_Pos{c->extents.bottom - EdgeY(c, 0)} * 64);
  FT_BBox b;
  FT_Outline_Get_CBox(shape, &b);
  auto within = [](FT_Pos v, int most) { return int(std::clamp<FT_Pos>(v, 0, most)); };
  const int width = c->extents.width(), height = c->extents.height();
  const int left = within(b.xMin >> 6, width), right = within((b.xMax + 63) >> 6, width);
  const int low = within(b.yMin >> 6, height), high = within((b.yMax + 63) >> 6, height);
  *box = {c->extents.left + left, c->extents.bottom - high, c->extents.left + right,
          c->extents.bottom - low};
  return !box->empty();
}

// Calls `spans` for what lies within the extents of the clip.
void Render(const Context* c, FT_Outline* shape, FT_SpanFunc spans, void* user) {
  FT_Raster_Params params{};
  params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
  params.gray_spans = spans;
  params.user = user;
  params.clip_box = {0, 0, c->extents.width(), c->extents.height()};
  FT_Outline_Render(FontLibrary(), shape, &params);
}

struct Ink {
  const Context* c;
  uint32_t color;
};

inline void PaintRun(uint32_t* p, int n, uint32_t color, uint32_t coverage) {
  if (coverage == 255) return FillSpan(p, n, color);
  for (int i = 0; i < n; ++i) p[i] = Blend(p[i], color, coverage);
}

void PaintSpans(int y, int count, const FT_Span* spans, void* user) {
  const auto* ink = static_cast<const Ink*>(user);
  const Context* c = ink->c;
  const int row = c->extents.bottom - 1 - y;
  uint32_t* pixels = c->row(row);
  const pixman_box32_t* end = c->boxes + c->box_count;
  for (const pixman_box32_t* b = FirstBox(c, row); b != end && b->y1 <= row; ++b) {
    if (b->y2 <= row) continue;
    for (const FT_Span* s = spans; s != spans + count; ++s) {
      const int left = std::max(c->extents.left + s->x, b->x1);
      const int right = std::min(c->extents.left + s->x + s->len, b->x2);
      if (left < right) PaintRun(pixels + left, right - left, ink->color, s->coverage);
    }
  }
}

void Paint(ContextRef c, Shape* shape, int flags, uint32_t rgb) {
  FT_Outline raw = shape->Raw(flags);
  DeviceRect box;
  if (!MoveIntoClip(c, &raw, &box)) return;
  Ink ink{c, 0xFF000000u | rgb};
  Render(c, &raw, PaintSpans, &ink);
  MarkClipped(c, box);
}

// --- A line whose edges have more points than the rasteriser takes is drawn in pieces: each has
// --- round ends, as the joins are, and what several cover is covered once.

// --- Where two meet, both have some parts of the other: at their ends alone, with a half of a
// pixel
// --- each, they would leave it lighter.

constexpr size_t kPieceParts = 64, kSharedParts = 8;

struct Mask {
  const Context* c;
  DeviceRect box;  // of everything that is covered
  std::vector<uint8_t>& coverage;
};

void CoverSpans(int y, int count, const FT_Span* spans, void* user) {
  const auto* mask = static_cast<const Mask*>(user);
  const DeviceRect& e = mask->c->extents;
  uint8_t* row = mask->coverage.data() + size_t(e.height() - 1 - y) * size_t(e.width());
  for (const FT_Span* s = spans; s != spans + count; ++s)
    for (int i = 0; i < s->len; ++i) row[s->x + i] = std::max(row[s->x + i], s->coverage);
}

void Cover(Mask* mask, double width) {
  Scratch& kept = Kept();
  if (!MakeStroked(kept.piece, width, mask->c->scale, &kept.shape)) return;
  FT_Outline raw = kept.shape.Raw(FT_OUTLINE_NONE);
  DeviceRect box;
  if (!MoveIntoClip(mask->c, &raw, &box)) return;
  Render(mask->c, &raw, CoverSpans, mask);
  DeviceRect& all = mask->box;
  all = {std::min(all.left, box.left), std::min(all.top, box.top), std::max(all.right, box.right),
         std::max(all.bottom, box.bottom)};
}

void CoverPieces(Mask* mask, std::span<const PathPart> parts, double width) {
  std::vector<PathPart>& piece = Kept().piece;
  PathPart start{PathVerb::kMove};
  piece.clear();
  for (const PathPart& p : parts) {
    PathPart part = p;
    const bool closes = p.verb == PathVerb::kClose;
    if (closes) part = {PathVerb::kLine, start.x, start.y};
    if (p.verb == PathVerb::kMove || piece.empty()) {
      if (!piece.empty()) Cover(mask, width);
      piece.clear();
      if (closes) continue;
      part = start = {PathVerb::kMove, p.x, p.y};
    }
    piece.push_back(part);
    if (!closes && piece.size() < kPieceParts) continue;
    Cover(mask, width);
    if (closes) {
      piece.clear();
    } else {
      piece.erase(piece.begin(), piece.end() - kSharedParts - 1);
      piece.front() = {PathVerb::kMove, piece.front().x, piece.front().y};
    }
  }
  if (!piece.empty()) Cover(mask, width);
  piece.clear();
}

void StrokeInPieces(ContextRef c, std::span<const PathPart> parts, double width, uint32_t rgb) {
  const DeviceRect& e = c->extents;
  Mask mask{c, {e.right, e.bottom, e.left, e.top}, Kept().mask};
  mask.coverage.assign(size_t(e.width()) * size_t(e.height()), 0);
  CoverPieces(&mask, parts, width);
  if (mask.box.empty()) return;
  ForEachPart(c, mask.box, [&](const DeviceRect& part) {
    for (int y = part.top; y < part.bottom; ++y) {
      const uint8_t* in = mask.coverage.data() + size_t(y - e.top) * size_t(e.width());
      for (int x = part.left; x < part.right; ++x)
        if (in[x - e.left]) PaintRun(c->row(y) + x, 1, 0xFF000000u | rgb, in[x - e.left]);
    }
  });
  MarkClipped(c, mask.box);
  mask.coverage = {};
}

}  // namespace

void FillPath(ContextRef c, const PathPart* parts, int count, uint32_t rgb) {
  if (!IsDrawable(c, parts, count)) return;
  Shape& shape = Kept().shape;
  MakeFilled({parts, size_t(count)}, c->scale, &shape);
  Paint(c, &shape, FT_OUTLINE_EVEN_ODD_FILL, rgb);
}

void StrokePath(ContextRef c, const PathPart* parts, int count, float width, uint32_t rgb) {
  if (!(width > 0) || !(width <= kFarPath) || !IsDrawable(c, parts, count)) return;
  Shape& shape = Kept().shape;
  const std::span<const PathPart> all(parts, size_t(count));
  if (MakeStroked(all, double(width), c->scale, &shape))
    Paint(c, &shape, FT_OUTLINE_NONE, rgb);
  else
    StrokeInPieces(c, all, double(width), rgb);
}

}  // namespace platform
