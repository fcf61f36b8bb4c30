// Stores into narrower fields: what does not fit becomes the nearest value that does.
#pragma once
#include <cstdint>

#include "platform/base.h"

inline int16_t Sat16(int v) {
  return int16_t(v < -32768 ? -32768 : v > 32767 ? 32767 : v);
}
inline uint16_t SatU16(int v) {
  return uint16_t(v < 0 ? 0 : v > 65535 ? 65535 : v);
}
inline int Saturate(int64_t v) {
  return int(v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : v);
}
inline platform::Rect SaturatedRect(int64_t x, int64_t y, int64_t w, int64_t h) {
  return {Saturate(x), Saturate(y), Saturate(x + w), Saturate(y + h)};
}
