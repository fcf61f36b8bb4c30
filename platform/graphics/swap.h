// Copies pixels from memory order (ignored, red, green, blue) to the surface's 0xFFRRGGBB. One file
// a processor family; the build chooses.
#pragma once
#include <cstdint>

namespace platform {

void SwapRow(uint32_t* out, const uint8_t* in, int n);

}  // namespace platform
