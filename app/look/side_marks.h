// Small pictures of the side panes.
#pragma once
#include <cstdint>

namespace console {

// A triangle in a field of 12 x 12 that says whether what lies in a row shows.
void DrawDisclosure(int x, int y, bool open, int32_t colour);
// The closed one, or its mirror image: to the next thing, or back.
void DrawStep(int x, int y, bool back, int32_t colour);
// A drive in a field of 16 x 16.
void DrawVolumeIcon(int x, int y, int32_t edge, int32_t face);

}  // namespace console
