// A pointer shape: one of the desktop theme's, or a picture of the program's own.
#pragma once
#include <cstdint>
#include <vector>

#include "platform/base.h"

namespace platform {

// Made and owned by the code that shows it. Before it is freed, Display::destroy_cursor is called.
struct Cursor {
  enum Shape : uint8_t { kPicture, kArrow, kCrosshair, kOpenHand, kText };
  Shape shape = kPicture;
  // Of pictures only, in logical pixels. Pixels are 0xAARRGGBB, colours not multiplied by alpha.
  int width = 0, height = 0, hot_x = 0, hot_y = 0;
  std::vector<uint32_t> pixels;
  // In place of pixels: fills width * height of them from `source` whenever they are needed.
  void (*draw)(const void* source, uint32_t* argb) = nullptr;
  const void* source = nullptr;
};

// A cursor's picture at device size: each logical pixel fills its rectangle, nothing is blurred.
struct CursorPicture {
  int width = 0, height = 0, hot_x = 0, hot_y = 0;
  std::vector<uint32_t> pixels;  // colours multiplied by alpha
};
// Empty for the desktop's own shapes.
CursorPicture PictureOf(const Cursor& cursor, double scale);

}  // namespace platform
