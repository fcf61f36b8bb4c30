#include "toolkit/target/colors.h"

void XwSetColor(int32_t colour) {
  uint32_t rgb = ColorToRgb(colour);
  toolkit::state.colors = {rgb, rgb, rgb};
}
