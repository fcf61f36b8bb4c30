// What the files of this room share: colour values, the current colours, the selected context.
#pragma once
#include <cstdint>

#include "platform/base.h"
#include "toolkit/xw.h"

// The current colours outlive the selection. Filling, stroking and ovals keep one each: dashed
// lines change only the second, text only the first.
struct CurrentColors {
  uint32_t fill, stroke, oval;  // 0xRRGGBB
};
extern CurrentColors g_colors;

constexpr int32_t kEraseToGround = -2;

// -1 to -10 are markers.
inline bool IsRealColor(int32_t colour) {
  return uint32_t(colour) <= 0xFFFFFFF5u;
}
inline uint32_t ColorToRgb(int32_t colour) {
  uint32_t c = uint32_t(colour);
  return (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF);
}

// The context of XW; null when there is none.
inline platform::ContextRef TargetContext() {
  return XW ? reinterpret_cast<platform::ContextRef>(XW->context) : nullptr;
}

inline int Saturate(int64_t v) {
  return int(v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : v);
}

// The colour with which the platform erases in XW: the nearest ground upward, white where none.
uint32_t GroundUpward(const XwWindow* w);
// Erases a rectangle of XW with it. The current colours stay.
void EraseToGround(const platform::Rect& r);
