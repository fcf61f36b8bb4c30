#include "toolkit/drawing/text.h"

namespace toolkit {

void PaintBackground(int x, int y, int w, int h, int32_t background) {
  if (w <= 0 || h <= 0) return;
  if (IsRealColor(background))
    XwBox(x, y, w, h, background);
  else if (background == kEraseToBackground)
    XwClear(x, y, w, h);
}

bool FillTextBox(const TextBox& box, int w, int h) {
  if (w < 0 || h < 0) return false;
  PaintBackground(box.x, box.y, w, h, box.background);
  return true;
}

void PlaceInBox(TextBox* box, int w, int h, int width) {
  const int align = box->flags & kAlignMask;
  const int dx = align == kRight ? w - 5 - width : align == kLeft ? 5 : (w - width) / 2;
  const int64_t dy = (int64_t{h} - box->font->ascent - box->font->descent) / 2;
  box->x = Saturate(int64_t{box->x} + dx);
  box->y = Saturate(box->y + dy);
  box->background = -1;
}

}  // namespace toolkit
