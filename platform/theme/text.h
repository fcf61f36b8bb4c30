// Lines of text as controls and menus show them.
#pragma once
#include <string>

#include "platform/fonts/fonts.h"

namespace platform {

enum class TextJustification : uint8_t { kLeft, kCenter, kRight };
struct ThemeTextStyle {
  bool bold = false;
  bool view = false;  // the smaller font of lists, which has no bold
  TextJustification justification = TextJustification::kCenter;
  bool underline_first = false;  // the first letter
  uint32_t rgb = 0;
  int alpha = 255;
};
// In the middle of the height; shortened with "…" where it is too wide. `text` is UTF-8.
void DrawThemeText(ContextRef c, const Rect& r, const std::string& text,
                   const ThemeTextStyle& style);
// Rounded up.
int ThemeTextWidth(const std::string& text, bool bold);
// The smaller font, for those who lay out lines themselves. Null when there is none at all.
struct ThemeTextFont {
  SizedFont* font = nullptr;
  int ascent = 0, descent = 0;  // pixels
};
ThemeTextFont GetViewTextFont();
void FinishThemeText();

}  // namespace platform
