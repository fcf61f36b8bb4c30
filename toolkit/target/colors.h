// Colour values, and the current colours.
#pragma once
#include <cstdint>

#include "toolkit/core/state.h"

constexpr int32_t kEraseToBackground = -2;

// -1 to -10 are markers.
inline bool IsRealColor(int32_t colour) {
  return uint32_t(colour) <= 0xFFFFFFF5u;
}
inline uint32_t ColorToRgb(int32_t colour) {
  uint32_t c = uint32_t(colour);
  return (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF);
}
