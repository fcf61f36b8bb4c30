#include "app/look/side_marks.h"

#include "app/look/outline.h"

namespace console {

void DrawDisclosure(int x, int y, bool open, int32_t colour) {
  Outline mark(x, y);
  // The open one is the closed one turned by a quarter.
  if (open)
    mark.Lines({{9.5f, 4}, {6, 9}, {2.5f, 4}});
  else
    mark.Lines({{4, 2.5f}, {9, 6}, {4, 9.5f}});
  mark.Fill(colour);
}

void DrawStep(int x, int y, bool back, int32_t colour) {
  if (!back) return DrawDisclosure(x, y, false, colour);
  Outline(x, y).Lines({{8, 2.5f}, {3, 6}, {8, 9.5f}}).Fill(colour);
}

void DrawVolumeIcon(int x, int y, int32_t edge, int32_t face) {
  XwRoundBox(x + 1, y + 4, 14, 9, 2, face, edge);
  Outline(x, y).Rectangle({2, 9}, 12, 1).Fill(edge);
  Outline(x, y).Rectangle({11, 10}, 2, 2).Fill(edge);
}

}  // namespace console
