#include "platform/graphics/outline_shape.h"

#include <cmath>
#include <cstdlib>

#include "platform/graphics/font_library.h"

namespace platform {
namespace {

// Points in 26.6 of a device pixel, y upwards.
FT_Vector At(float x, float y, double scale) {
  return {FT_Pos(std::lround(double(x) * scale * 64)),
          -FT_Pos(std::lround(double(y) * scale * 64))};
}

constexpr unsigned char kOn = FT_CURVE_TAG_ON, kConic = FT_CURVE_TAG_CONIC,
                        kCubicTag = FT_CURVE_TAG_CUBIC;

class Stroker {
 public:
  Stroker(double width, double scale) {
    if (FT_Stroker_New(FontLibrary(), &stroker_)) stroker_ = nullptr;
    const FT_Fixed radius = std::lround(width * scale * 32);
    if (stroker_)
      FT_Stroker_Set(stroker_, radius, FT_STROKER_LINECAP_ROUND, FT_STROKER_LINEJOIN_ROUND, 0);
    short_ = std::max(2L, std::lround(0.75 * std::sqrt(double(radius))));
  }
  ~Stroker() {
    if (stroker_) FT_Stroker_Done(stroker_);
  }
  Stroker(const Stroker&) = delete;
  Stroker& operator=(const Stroker&) = delete;

  bool Stroke(std::span<const PathPart> parts, double scale, Shape* shape) {
    shape->Clear();
    if (!stroker_) return false;
    for (size_t i = 0; i < parts.size(); ++i) Take(parts, i, scale);
    End();
    FT_UInt points = 0, contours = 0;
    Shape& s = *shape;
    if (FT_Stroker_GetCounts(stroker_, &points, &contours) || points > kMostPoints) return false;
    s.points.resize(points);
    s.tags.resize(points);
    s.contours.resize(contours);
    FT_Outline o = s.Raw(0);
    o.n_points = 0;
    o.n_contours = 0;
    FT_Stroker_Export(stroker_, &o);
    return true;
  }

 private:
  void Take(std::span<const PathPart> parts, size_t i, double scale) {
    const PathPart& p = parts[i];
    const FT_Vector to = At(p.x, p.y, scale);
    if (p.verb == PathVerb::kClose) return Close();
    if (p.verb == PathVerb::kMove || !open_) {
      End();
      open_ = true;
      closes_ = skipped_ = false;
      for (size_t j = i + 1; j < parts.size() && parts[j].verb != PathVerb::kMove && !closes_; ++j)
        closes_ = parts[j].verb == PathVerb::kClose;
      at_ = now_ = to;
      return;
    }
    ended_ = true;
    FT_Vector a = At(p.x1, p.y1, scale), b = At(p.x2, p.y2, scale), end = to;
    if (p.verb == PathVerb::kQuad && !(Near(a, now_) && Near(to, now_))) {
      LineToSkipped();
      Begin();
      FT_Stroker_ConicTo(stroker_, &a, &end);
      at_ = now_ = to;
    } else if (p.verb == PathVerb::kCubic && !(Near(a, now_) && Near(b, now_) && Near(to, now_))) {
      LineToSkipped();
      Begin();
      FT_Stroker_CubicTo(stroker_, &a, &b, &end);
      at_ = now_ = to;
    } else {
      Step(to);
    }
  }
  // Short steps have the directions that the grid of the points allows, and edges that cross each
  // other again and again, which the rasteriser adds up. So they are taken together.
  void Step(FT_Vector to) {
    if (!Near(to, now_)) LineToSkipped();
    skipped_ = Near(to, at_);
    if (!skipped_) LineTo(to);
    now_ = to;
  }
  bool Near(FT_Vector a, FT_Vector b) const {
    return std::abs(a.x - b.x) < short_ && std::abs(a.y - b.y) < short_;
  }
  void LineToSkipped() {
    if (skipped_ && (now_.x != at_.x || now_.y != at_.y)) LineTo(now_);
    skipped_ = false;
  }
  void LineTo(FT_Vector to) {
    Begin();
    FT_Stroker_LineTo(stroker_, &to);
    at_ = to;
  }
  // The stroker must not get a line without length, so each line begins with its first step.
  void Begin() {
    if (!begun_) FT_Stroker_BeginSubPath(stroker_, &at_, !closes_);
    begun_ = true;
  }
  void Close() {
    ended_ = ended_ || open_;
    End();
  }
  // A line without a length is a dot.
  void End() {
    LineToSkipped();
    if (open_ && ended_ && !begun_) {
      closes_ = false;
      Begin();
      FT_Vector next{at_.x + 1, at_.y};
      FT_Stroker_LineTo(stroker_, &next);
    }
    if (begun_) FT_Stroker_EndSubPath(stroker_);
    open_ = ended_ = begun_ = false;
  }

  FT_Stroker stroker_ = nullptr;
  FT_Pos short_ = 2;        // the stroker itself passes over curves shorter than 2
  FT_Vector at_{}, now_{};  // where the stroker is, and the line
  bool skipped_ = false;    // steps between the two
  bool open_ = false;       // the line has a start
  bool ended_ = false;      // and at least one more part
  bool begun_ = false;      // the stroker has its start
  bool closes_ = false;     // it will be closed
};

}  // namespace

bool IsUsable(const PathPart& p) {
  for (float v : {p.x, p.y, p.x1, p.y1, p.x2, p.y2})
    if (!std::isfinite(v) || std::fabs(v) > kFarPath) return false;
  return p.verb <= PathVerb::kClose;
}

void Shape::Clear() {
  points.clear();
  tags.clear();
  contours.clear();
}

FT_Outline Shape::Raw(int flags) {
  FT_Outline o{};
  o.n_points = decltype(o.n_points)(points.size());
  o.n_contours = decltype(o.n_contours)(contours.size());
  o.points = points.data();
  o.tags = reinterpret_cast<decltype(o.tags)>(tags.data());
  o.contours = reinterpret_cast<decltype(o.contours)>(contours.data());
  o.flags = flags;
  return o;
}

void MakeFilled(std::span<const PathPart> parts, double scale, Shape* shape) {
  Shape& s = *shape;
  s.Clear();
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
}

bool MakeStroked(std::span<const PathPart> parts, double width, double scale, Shape* shape) {
  return Stroker(width, scale).Stroke(parts, scale, shape);
}

}  // namespace platform
