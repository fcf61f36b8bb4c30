// What the calls for the toolkit's set and those for UTF-8 share: where a line stands, what is
// painted behind it and below it.
#pragma once
#include "platform/fonts/fonts.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/colors.h"

namespace toolkit {

enum : int { kAlignMask = 0x700, kRight = 0x200, kLeft = 0x400, kUnderline = 0x800 };
// What a shortened text leaves free.
constexpr int kFitMargin = 6;

// Null means XWF_NORMAL; null when there is none.
inline platform::SizedFont* Sized(const XwFont* font) {
  if (!font) font = XWF_NORMAL;
  return font ? static_cast<platform::SizedFont*>(font->platform) : nullptr;
}

struct TextBox {
  XwFont* font;
  int flags, x, y;
  int32_t colour, background;
  int line_height() const { return Saturate(int64_t{font->ascent} + font->descent); }
};

// Paints a colour, or erases; nothing for other markers.
void PaintBackground(int x, int y, int w, int h, int32_t background);
// The background of the whole box; false when no line can stand in it.
bool FillTextBox(const TextBox& box, int w, int h);
// Moves to where a line of this width stands in the box, whose background is painted.
void PlaceInBox(TextBox* box, int w, int h, int width);

// The line with its top left corner at (x, y): background, ink, underline. Its width is asked for
// only when one of them needs it.
template <typename Width, typename Draw>
void DrawTextLine(const TextBox& box, Width measure, Draw draw) {
  const bool underline = box.flags & kUnderline;
  const int width = box.background != -1 || underline ? measure() : 0;
  PaintBackground(box.x, box.y, width, box.line_height(), box.background);
  if (!IsRealColor(box.colour)) return;
  state.colors.fill = ColorToRgb(box.colour);
  draw(box.x, Saturate(int64_t{box.y} + box.font->ascent));
  if (underline) XwBox(box.x, Saturate(int64_t{box.y} + box.line_height()), width, 1, box.colour);
}

}  // namespace toolkit
