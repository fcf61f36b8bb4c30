// The cursor's record, shared by the rooms of the platform.
#pragma once
#include <cstdint>

#include "platform/windows/windows.h"

namespace platform {

constexpr int kCursorSide = 32;

struct Cursor {
  DesktopCursor desktop = DesktopCursor::kNone;  // else the picture counts
  int width = 0, height = 0;                     // logical pixels
  int hot_x = 0, hot_y = 0;
  uint32_t argb[kCursorSide * kCursorSide] = {};  // rows of `width`, not premultiplied
  void* native = nullptr;                         // the display's own, made on first use
};

}  // namespace platform
