#include "app/look/side_marks.h"

#include <iterator>

#include "toolkit/xw.h"

namespace console {

void DrawDisclosure(int x, int y, bool open, int32_t colour) {
  // The corners of the closed one; the other one is that turned by a quarter.
  constexpr float kCorners[3][2] = {{4, 2.5f}, {9, 6}, {4, 9.5f}};
  XwPathPart parts[4] = {};
  for (int i = 0; i < 3; ++i) {
    const float across = kCorners[i][0], down = kCorners[i][1];
    parts[i].verb = i == 0 ? XWP_MOVE : XWP_LINE;
    parts[i].x = float(x) + (open ? 12 - down : across);
    parts[i].y = float(y) + (open ? across : down);
  }
  parts[3].verb = XWP_CLOSE;
  XwFillPath(parts, int(std::size(parts)), colour);
}

void DrawVolumeIcon(int x, int y, int32_t edge, int32_t face) {
  XwRoundBox(x + 1, y + 4, 14, 9, 2, face, edge);
  XwBox(x + 2, y + 9, 12, 1, edge);
  XwBox(x + 11, y + 10, 2, 2, edge);
}

}  // namespace console
