#include "platform/graphics/swap.h"

namespace platform {

void SwapRow(uint32_t* out, const uint8_t* in, int n) {
  for (int i = 0; i < n; ++i, in += 4)
    out[i] = 0xFF000000u | uint32_t(in[1]) << 16 | uint32_t(in[2]) << 8 | in[3];
}

}  // namespace platform
