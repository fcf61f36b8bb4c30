#include "toolkit/events/cursor_art.h"

#include <cstring>
#include <iterator>

namespace {

constexpr const char* kEmpty[] = {"", "", "", "", "", "", "", "", "", "", "", "", "", "", "", ""};

constexpr CursorArt kArt[] = {
    {"NullCursor", 1, 16, 0, 0, 0x000000, 0xFFFFFF, kEmpty},
};

void PutColor(uint8_t* out, uint32_t rgb) {
  out[0] = uint8_t(rgb >> 16);
  out[1] = uint8_t(rgb >> 8);
  out[2] = uint8_t(rgb);
}

}  // namespace

const CursorArt* AllCursorArt(int* count) {
  *count = int(std::size(kArt));
  return kArt;
}

const CursorArt* FindCursorArt(int index) {
  for (const CursorArt& art : kArt)
    if (art.index == index) return &art;
  return nullptr;
}

CursorRecord MakeCursorRecord(const CursorArt& art) {
  CursorRecord record{};
  uint8_t* b = record.bytes;
  PutColor(b, art.color);
  PutColor(b + 3, art.outline);
  b[6] = b[7] = uint8_t(art.side);
  b[8] = uint8_t(art.hot_x);
  b[9] = uint8_t(art.hot_y);
  int row_bytes = art.side / 8;
  uint8_t* plane_a = b + kCursorHeader;
  uint8_t* plane_b = plane_a + art.side * row_bytes;
  for (int y = 0; y < art.side; ++y) {
    const char* row = art.rows[y];
    for (int x = 0; x < art.side && row[x]; ++x) {
      uint8_t bit = uint8_t(1u << (x % 8));
      if (row[x] == '#') plane_a[y * row_bytes + x / 8] |= bit;
      if (row[x] == 'o') plane_b[y * row_bytes + x / 8] |= bit;
    }
  }
  return record;
}
