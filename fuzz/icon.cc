// Icons of any size over exactly as many bytes as they may read; the painted pixels are those of
// the bits.
#include <vector>

#include "fuzz/input.h"
#include "tests/support/canvas.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  int width = in.Byte() % 70, height = in.Byte() % 40;
  int x = in.Number(), y = in.Number(), w = in.Number(), h = in.Number();
  size_t row_bytes = size_t(width + 7) / 8;
  std::vector<uint8_t> bits(row_bytes * size_t(height));
  for (uint8_t& b : bits) b = in.Byte();
  platform::Bitmap* bitmap = platform::CreateBitmap(width, height, bits.data());
  if (!bitmap) {
    if (width > 0 && height > 0) __builtin_trap();
    return 0;
  }
  testkit::Canvas canvas(48, 48);
  XwIcon icon = {width, height, bitmap, bits.data()};
  XwDrawIcon(&icon, x, y, w, h, 0x000001, 0x000002);
  int64_t full_w = w ? w : width, full_h = h ? h : height;
  for (int py = 0; py < 48; ++py) {
    for (int px = 0; px < 48; ++px) {
      int64_t dx = int64_t{px} - x, up = int64_t{y} + full_h - 1 - py;
      uint32_t want = testkit::Canvas::kBlank;
      if (dx >= 0 && up >= 0 && dx < full_w && up < full_h) {
        size_t column = size_t(dx % width), row = size_t(height - 1 - up % height);
        want = bits[row * row_bytes + column / 8] >> (column % 8) & 1 ? 0xFF010000u : 0xFF020000u;
      }
      if (canvas.at(px, py) != want) __builtin_trap();
    }
  }
  platform::ReleaseBitmap(bitmap);
  return 0;
}
