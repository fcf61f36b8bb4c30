// Ticks and arrows: outlines around the middle of a box.
#include <iterator>

#include "platform/graphics/outline.h"
#include "platform/theme/text.h"
#include "platform/theme/theme.h"

namespace platform {
namespace {

using enum PathVerb;

constexpr float kPen = 1.8f;

struct MarkShape {
  ThemeMark mark;
  float stroke;  // 0: filled
  int count;
  PathPart parts[8];
};
constexpr MarkShape kShapes[] = {
    {ThemeMark::kTick, kPen, 3, {{kMove, -3.5f, 0.3f}, {kLine, -1, 2.8f}, {kLine, 3.6f, -2.7f}}},
    {ThemeMark::kDash, kPen, 2, {{kMove, -3, 0}, {kLine, 3, 0}}},
    {ThemeMark::kPopUpArrow, 0, 4, {{kMove, -4, -2}, {kLine, 4, -2}, {kLine, 0, 2.5f}, {kClose}}},
    {ThemeMark::kSubMenuArrow, 0, 4, {{kMove, -2, -4}, {kLine, 2.5f, 0}, {kLine, -2, 4}, {kClose}}},
    {ThemeMark::kMore,
     kPen,
     6,
     {{kMove, -3.5f, -3},
      {kLine, -0.5f, 0},
      {kLine, -3.5f, 3},
      {kMove, 0.5f, -3},
      {kLine, 3.5f, 0},
      {kLine, 0.5f, 3}}},
    {ThemeMark::kScrollUp, 0, 4, {{kMove, -4, 2}, {kLine, 4, 2}, {kLine, 0, -2.5f}, {kClose}}},
    {ThemeMark::kScrollDown, 0, 4, {{kMove, -4, -2}, {kLine, 4, -2}, {kLine, 0, 2.5f}, {kClose}}},
    {ThemeMark::kSortUp, 0, 4, {{kMove, -4, 2}, {kLine, 4, 2}, {kLine, 0, -2}, {kClose}}},
    {ThemeMark::kSortDown, 0, 4, {{kMove, -4, -2}, {kLine, 4, -2}, {kLine, 0, 2}, {kClose}}},
};

Outline* outlines[std::size(kShapes)];

}  // namespace

void DrawThemeMark(ContextRef c, ThemeMark mark, const Rect& box, uint32_t rgb, int alpha) {
  for (size_t i = 0; i < std::size(kShapes); ++i) {
    const MarkShape& s = kShapes[i];
    if (s.mark != mark) continue;
    if (!outlines[i]) outlines[i] = CreateOutline(s.parts, s.count, s.stroke);
    DrawOutline(c, outlines[i], box.left + box.width() / 2, box.top + box.height() / 2, rgb, alpha);
  }
}

void FinishTheme() {
  FinishThemeText();
  for (Outline*& o : outlines) {
    ReleaseOutline(o);
    o = nullptr;
  }
}

}  // namespace platform
