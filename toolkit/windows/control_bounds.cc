#include "toolkit/windows/control_bounds.h"

#include "toolkit/core/saturate.h"

using namespace platform;

namespace {

constexpr uint32_t kDrawnOrBevel = 0xF00000;  // no plain push button
constexpr uint32_t kEditable = 0x200000;

// What is added to left, top, right and bottom of the record's bounds.
struct Insets {
  int left, top, right, bottom;
};

Insets InsetsOf(int kind, uint32_t style, int width, int height) {
  switch (kind) {
    case XWK_BUTTON:
      return style & kDrawnOrBevel ? Insets{0, 0, 0, 0} : Insets{2, 1, -4, -3};
    case XWK_EDIT:
      return {4, 4, -4, -4};
    case XWK_COMBO:
      return style & kEditable ? Insets{width - 22, 0, 0, 20 - height} : Insets{1, 2, -2, 2};
    case XWK_LABEL:
      return {2, (height - 16) / 2, -7, -((height - 16) / 2)};
    case 6:
      return width <= height ? Insets{0, 0, 0, -3} : Insets{0, 0, -3, 0};
    case XWK_LIST:
      return {2, 2, -2, -2};
    default:
      return {0, 0, 0, 0};
  }
}

}  // namespace

Rect ControlRect(int kind, uint32_t style, int x, int y, int width, int height) {
  // As the record keeps them.
  x = Sat16(x);
  y = Sat16(y);
  width = Sat16(width);
  height = Sat16(height);
  const Insets in = InsetsOf(kind, style, width, height);
  return {x + in.left, y + in.top, x + width + in.right, y + height + in.bottom};
}

int RecordedHeight(int kind, uint32_t style, int height) {
  return kind == XWK_BUTTON && !(style & kDrawnOrBevel) ? Sat16(height) + 3 : height;
}
