// The pictures of the toolkit's own pointer shapes.
#pragma once
#include <cstdint>

constexpr int kCursorHeader = 10;

// A bitmap record: two colours, size, hot spot, two planes of bits (least significant bit first).
struct CursorRecord {
  uint8_t bytes[266];
};

// A picture as rows of text: '#' the colour, 'o' the outline, anything else transparent.
struct CursorArt {
  const char* name;
  int index;  // in XWcursors; -1 for those that are not in the table
  int side;
  int hot_x, hot_y;
  uint32_t color, outline;  // 0xRRGGBB
  const char* const* rows;
};

// Null for an index without a picture.
const CursorArt* FindCursorArt(int index);
const CursorArt* AllCursorArt(int* count);
CursorRecord MakeCursorRecord(const CursorArt& art);
