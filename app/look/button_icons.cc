// What stands on buttons in place of words: outlines, smooth at every scale.
#include <cmath>
#include <initializer_list>
#include <vector>

#include "app/look/outline.h"
#include "app/look/style.h"

namespace console {
namespace {

constexpr int kSize = 16;

using Parts = std::vector<XwPathPart>;

void MoveOrLine(Parts* parts, bool first, float x, float y) {
  parts->push_back({uint8_t(first ? XWP_MOVE : XWP_LINE), x, y, 0, 0, 0, 0});
}

void Polygon(Parts* parts, std::initializer_list<Point> points) {
  for (const Point& p : points) MoveOrLine(parts, &p == points.begin(), p.x, p.y);
  parts->push_back({XWP_CLOSE, 0, 0, 0, 0, 0, 0});
}

constexpr float kMiddle = 8, kDegree = 3.14159265f / 180;

Point OnCircle(float radius, float degrees) {
  return {kMiddle + radius * std::cos(degrees * kDegree),
          kMiddle + radius * std::sin(degrees * kDegree)};
}

// A part of a circle as curves, from where the outline is.
void Arc(Parts* parts, float radius, float from, float to) {
  constexpr int kCurves = 4;
  const float step = (to - from) / kCurves, arm = radius * 4 / 3 * std::tan(step * kDegree / 4);
  for (int i = 0; i < kCurves; ++i) {
    const float a = from + float(i) * step, b = a + step;
    const Point p = OnCircle(radius, a), q = OnCircle(radius, b);
    parts->push_back({XWP_CUBIC, q.x, q.y, p.x - arm * std::sin(a * kDegree),
                      p.y + arm * std::cos(a * kDegree), q.x + arm * std::sin(b * kDegree),
                      q.y - arm * std::cos(b * kDegree)});
  }
}

// An open ring, clockwise, that ends in an arrow.
void Refresh(Parts* parts) {
  constexpr float kOuter = 6, kInner = 4.4f, kFrom = 20, kTo = 300;
  const Point begin = OnCircle(kOuter, kFrom), turn = OnCircle(kInner, kTo);
  MoveOrLine(parts, true, begin.x, begin.y);
  Arc(parts, kOuter, kFrom, kTo);
  MoveOrLine(parts, false, turn.x, turn.y);
  Arc(parts, kInner, kTo, kFrom);
  parts->push_back({XWP_CLOSE, 0, 0, 0, 0, 0, 0});
  const Point a = OnCircle(8.2f, kTo), b = OnCircle(2.2f, kTo), tip = OnCircle(6.4f, kTo + 48);
  Polygon(parts, {a, tip, b});
}

// Two sheets and what is between them, as frames.
void Printer(Parts* parts) {
  Polygon(parts, {{4, 1.5f},
                  {12, 1.5f},
                  {12, 5.2f},
                  {10.6f, 5.2f},
                  {10.6f, 2.9f},
                  {5.4f, 2.9f},
                  {5.4f, 5.2f},
                  {4, 5.2f}});
  Polygon(parts, {{1.5f, 5.2f},
                  {14.5f, 5.2f},
                  {14.5f, 11.8f},
                  {12, 11.8f},
                  {12, 10.4f},
                  {13.1f, 10.4f},
                  {13.1f, 6.6f},
                  {2.9f, 6.6f},
                  {2.9f, 10.4f},
                  {4, 10.4f},
                  {4, 11.8f},
                  {1.5f, 11.8f}});
  Polygon(parts, {{4, 9}, {12, 9}, {12, 14.6f}, {4, 14.6f}});
  Polygon(parts, {{5.4f, 10.4f}, {10.6f, 10.4f}, {10.6f, 13.2f}, {5.4f, 13.2f}});
}

Parts PartsOf(ToolIcon icon) {
  Parts parts;
  switch (icon) {
    case ToolIcon::kRefresh:
      Refresh(&parts);
      break;
    case ToolIcon::kOptions:
      Polygon(&parts, {{4.2f, 6.2f}, {11.8f, 6.2f}, {8, 10.4f}});
      break;
    case ToolIcon::kPrint:
      Printer(&parts);
      break;
    case ToolIcon::kCross:
      Polygon(&parts, {{5, 3.8f},
                       {8, 6.8f},
                       {11, 3.8f},
                       {12.2f, 5},
                       {9.2f, 8},
                       {12.2f, 11},
                       {11, 12.2f},
                       {8, 9.2f},
                       {5, 12.2f},
                       {3.8f, 11},
                       {6.8f, 8},
                       {3.8f, 5}});
      break;
    case ToolIcon::kNoColour:  // an empty field that is struck out
      Polygon(&parts, {{2, 2}, {14, 2}, {14, 14}, {2, 14}});
      Polygon(&parts, {{3, 3}, {13, 3}, {13, 13}, {3, 13}});
      Polygon(&parts, {{12, 3}, {13, 3}, {13, 4}, {4, 13}, {3, 13}, {3, 12}});
      break;
  }
  return parts;
}

}  // namespace

XwIcon* ButtonIcon(ToolIcon icon) {
  static XwIcon icons[int(ToolIcon::kNoColour) + 1];
  XwIcon* made = &icons[int(icon)];
  if (made->width) return made;
  *made = {kSize, kSize, nullptr, nullptr};
  const Parts parts = PartsOf(icon);
  XwSetIconOutline(made, parts.data(), int(parts.size()));
  return made;
}

}  // namespace console
