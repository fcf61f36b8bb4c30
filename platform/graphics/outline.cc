#include "platform/graphics/outline.h"

#include <cmath>
#include <memory>
#include <vector>

#include "platform/graphics/context_state.h"
#include "platform/graphics/font_library.h"
#include FT_OUTLINE_H
#include FT_STROKER_H

namespace platform {

// The coverage at one scale; its corner lies at (left, top) of the origin, in device pixels.
struct OutlineMask {
  double scale = 0;
  int left = 0, top = 0, width = 0, height = 0;
  std::vector<uint8_t> coverage;
};

struct Outline {
  std::vector<PathPart> parts;
  float stroke = 0;
  std::vector<OutlineMask> masks;
};

namespace {

constexpr float kFar = 16384;
constexpr int kLargestMask = 2048;
constexpr size_t kKeptMasks = 8;

bool Usable(const PathPart& p) {
  for (float v : {p.x, p.y, p.x1, p.y1, p.x2, p.y2})
    if (!std::isfinite(v) || std::fabs(v) > kFar) return false;
  return p.verb <= PathVerb::kClose;
}

// Points in 26.6 of a device pixel, y upwards.
FT_Vector At(float x, float y, double scale) {
  return {FT_Pos(std::lround(double(x) * scale * 64)),
          -FT_Pos(std::lround(double(y) * scale * 64))};
}

// An outline as the rasteriser takes it.
struct Shape {
  std::vector<FT_Vector> points;
  std::vector<unsigned char> tags;
  std::vector<short> contours;

  void Add(FT_Vector p, unsigned char tag) {
    points.push_back(p);
    tags.push_back(tag);
  }
  // The next point is the first of its contour: no curve leads to it.
  bool Fresh() const { return int(points.size()) == (contours.empty() ? 0 : contours.back() + 1); }
  void EndContour() {
    if (!Fresh()) contours.push_back(short(points.size() - 1));
  }
  FT_Outline Raw() {
    FT_Outline o{};
    o.n_points = decltype(o.n_points)(points.size());
    o.n_contours = decltype(o.n_contours)(contours.size());
    o.points = points.data();
    o.tags = reinterpret_cast<decltype(o.tags)>(tags.data());
    o.contours = reinterpret_cast<decltype(o.contours)>(contours.data());
    return o;
  }
};

constexpr unsigned char kOn = FT_CURVE_TAG_ON, kConic = FT_CURVE_TAG_CONIC,
                        kCubicTag = FT_CURVE_TAG_CUBIC;

Shape Filled(const std::vector<PathPart>& parts, double scale) {
  Shape s;
  for (const PathPart& p : parts) {
    switch (p.verb) {
      case PathVerb::kMove:
        s.EndContour();
        s.Add(At(p.x, p.y, scale), kOn);
        break;
      case PathVerb::kLine:
        s.Add(At(p.x, p.y, scale), kOn);
        break;
      case PathVerb::kQuad:
        if (!s.Fresh()) s.Add(At(p.x1, p.y1, scale), kConic);
        s.Add(At(p.x, p.y, scale), kOn);
        break;
      case PathVerb::kCubic:
        if (!s.Fresh()) {
          s.Add(At(p.x1, p.y1, scale), kCubicTag);
          s.Add(At(p.x2, p.y2, scale), kCubicTag);
        }
        s.Add(At(p.x, p.y, scale), kOn);
        break;
      case PathVerb::kClose:
        s.EndContour();
        break;
    }
  }
  s.EndContour();
  return s;
}

class Stroker {
 public:
  Stroker(float width, double scale) {
    if (FT_Stroker_New(FontLibrary(), &stroker_)) stroker_ = nullptr;
    if (stroker_)
      FT_Stroker_Set(stroker_, FT_Fixed(std::lround(double(width) * scale * 32)),
                     FT_STROKER_LINECAP_ROUND, FT_STROKER_LINEJOIN_ROUND, 0);
  }
  ~Stroker() {
    if (stroker_) FT_Stroker_Done(stroker_);
  }
  Stroker(const Stroker&) = delete;
  Stroker& operator=(const Stroker&) = delete;

  Shape Stroke(const std::vector<PathPart>& parts, double scale) {
    for (size_t i = 0; stroker_ && i < parts.size(); ++i) Take(parts, i, scale);
    End();
    FT_UInt points = 0, contours = 0;
    Shape s;
    if (!stroker_ || FT_Stroker_GetCounts(stroker_, &points, &contours) || points > 0x7FFF)
      return s;
    s.points.resize(points);
    s.tags.resize(points);
    s.contours.resize(contours);
    FT_Outline o = s.Raw();
    o.n_points = 0;
    o.n_contours = 0;
    FT_Stroker_Export(stroker_, &o);
    return s;
  }

 private:
  void Take(const std::vector<PathPart>& parts, size_t i, double scale) {
    const PathPart& p = parts[i];
    FT_Vector to = At(p.x, p.y, scale), a = At(p.x1, p.y1, scale), b = At(p.x2, p.y2, scale);
    if (p.verb == PathVerb::kMove || (!open_ && p.verb != PathVerb::kClose)) {
      End();
      bool closed = false;
      for (size_t j = i + 1; j < parts.size() && parts[j].verb != PathVerb::kMove && !closed; ++j)
        closed = parts[j].verb == PathVerb::kClose;
      FT_Stroker_BeginSubPath(stroker_, &to, !closed);
      open_ = true;
      return;
    }
    if (p.verb == PathVerb::kLine) FT_Stroker_LineTo(stroker_, &to);
    if (p.verb == PathVerb::kQuad) FT_Stroker_ConicTo(stroker_, &a, &to);
    if (p.verb == PathVerb::kCubic) FT_Stroker_CubicTo(stroker_, &a, &b, &to);
    if (p.verb == PathVerb::kClose) End();
  }
  void End() {
    if (open_ && stroker_) FT_Stroker_EndSubPath(stroker_);
    open_ = false;
  }

  FT_Stroker stroker_ = nullptr;
  bool open_ = false;
};

OutlineMask MakeMask(const Outline& o, double scale) {
  OutlineMask m;
  m.scale = scale;
  if (!FontLibrary()) return m;
  Shape shape =
      o.stroke > 0 ? Stroker(o.stroke, scale).Stroke(o.parts, scale) : Filled(o.parts, scale);
  if (shape.contours.empty()) return m;
  FT_Outline raw = shape.Raw();
  raw.flags = o.stroke > 0 ? FT_OUTLINE_NONE : FT_OUTLINE_EVEN_ODD_FILL;
  FT_BBox box;
  FT_Outline_Get_CBox(&raw, &box);
  const FT_Pos left = box.xMin & ~63, bottom = box.yMin & ~63;
  const FT_Pos right = (box.xMax + 63) & ~63, top = (box.yMax + 63) & ~63;
  const FT_Pos width = (right - left) / 64, height = (top - bottom) / 64;
  if (width < 1 || height < 1 || width > kLargestMask || height > kLargestMask) return m;
  FT_Outline_Translate(&raw, -left, -bottom);
  m.coverage.assign(size_t(width * height), 0);
  FT_Bitmap bitmap{};
  bitmap.rows = unsigned(height);
  bitmap.width = unsigned(width);
  bitmap.pitch = int(width);
  bitmap.buffer = m.coverage.data();
  bitmap.num_grays = 256;
  bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
  if (FT_Outline_Get_Bitmap(FontLibrary(), &raw, &bitmap)) return m;
  m.left = int(left / 64);
  m.top = int(-top / 64);
  m.width = int(width);
  m.height = int(height);
  return m;
}

const OutlineMask& MaskFor(Outline* o, double scale) {
  for (const OutlineMask& m : o->masks)
    if (m.scale == scale) return m;
  if (o->masks.size() >= kKeptMasks) o->masks.clear();
  o->masks.push_back(MakeMask(*o, scale));
  return o->masks.back();
}

}  // namespace

Outline* CreateOutline(const PathPart* parts, int count, float stroke) {
  if (!parts || count < 1 || count > kMostPathParts) return nullptr;
  if (!std::isfinite(stroke) || stroke > kFar) return nullptr;
  for (int i = 0; i < count; ++i)
    if (!Usable(parts[i])) return nullptr;
  return new Outline{{parts, parts + count}, stroke, {}};
}

void ReleaseOutline(Outline* o) {
  delete o;
}

void DrawOutline(ContextRef c, Outline* o, int x, int y, uint32_t rgb, int alpha) {
  if (!Ready(c) || !o) return;
  const OutlineMask& m = MaskFor(o, c->scale);
  const int left = EdgeX(c, x) + m.left, top = EdgeY(c, y) + m.top;
  const uint32_t color = 0xFF000000u | rgb, share = uint32_t(std::clamp(alpha, 0, 255));
  const DeviceRect whole{left, top, left + m.width, top + m.height};
  ForEachPart(c, whole, [&](const DeviceRect& part) {
    for (int py = part.top; py < part.bottom; ++py) {
      const uint8_t* in = m.coverage.data() + size_t(py - top) * size_t(m.width);
      uint32_t* row = c->row(py);
      for (int px = part.left; px < part.right; ++px)
        if (const uint32_t coverage = (in[px - left] * share + 127) / 255)
          row[px] = Blend(row[px], color, coverage);
    }
  });
  MarkClipped(c, whole);
}

}  // namespace platform
