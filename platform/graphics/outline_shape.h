// Outlines as the rasteriser takes them: filled ones, and the edges of stroked lines.
#pragma once
#include <ft2build.h>

#include <span>
#include <vector>

#include "platform/graphics/outline.h"
#include FT_OUTLINE_H
#include FT_STROKER_H

namespace platform {

// Beyond this no number of a path is drawn: every scale's device pixels still fit.
constexpr float kFarPath = 16384;
// The verb is one and the numbers are finite and not beyond kFarPath.
bool IsUsable(const PathPart& p);

// Points in 26.6 of a device pixel, y upwards.
struct Shape {
  std::vector<FT_Vector> points;
  std::vector<unsigned char> tags;
  std::vector<short> contours;

  void Clear();
  void Add(FT_Vector p, unsigned char tag) {
    points.push_back(p);
    tags.push_back(tag);
  }
  // The next point is the first of its contour: no curve leads to it.
  bool Fresh() const { return int(points.size()) == (contours.empty() ? 0 : contours.back() + 1); }
  void EndContour() {
    if (!Fresh()) contours.push_back(short(points.size() - 1));
  }
  // Into this shape's memory.
  FT_Outline Raw(int flags);
};
// What an outline of the rasteriser can have.
constexpr size_t kMostPoints = 0x7FFF;

// Makes `*shape` the filled parts.
void MakeFilled(std::span<const PathPart> parts, double scale, Shape* shape);
// Makes it the edges of a line along them with round ends and joins, to be filled non-zero. False,
// and no shape, when it would have too many points.
bool MakeStroked(std::span<const PathPart> parts, double width, double scale, Shape* shape);

}  // namespace platform
