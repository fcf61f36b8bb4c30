// Scroll bars and sliders: a thumb on a track. Where the thumb lies for a value, and how both look.
#pragma once
#include "platform/base.h"

namespace platform {

struct ThemeThumbInfo {
  Rect bounds;
  bool slider = false;  // else a scroll bar
  bool horizontal = false;
  int32_t minimum = 0, maximum = 0;
  int32_t value = 0;  // outside of the range: its nearest end
  int32_t view = 0;   // of a scroll bar: how much shows beyond `value`, which sizes the thumb
  bool active = true;
  bool held = false;
  bool front = true;   // its window looks active
  bool framed = true;  // a scroll bar that is no part of a framed control
};

// There is more than one place for the thumb.
inline bool ThumbMoves(const ThemeThumbInfo& info) {
  return info.maximum > info.minimum;
}
// What is drawn of the thumb. Empty for a scroll bar with nothing to scroll, or without room.
Rect ThemeThumb(const ThemeThumbInfo& info);
// The value whose thumb begins nearest to `place`, a column (of a vertical one a row).
int32_t ThemeThumbValue(const ThemeThumbInfo& info, int place);
// Null contexts and empty bounds paint nothing.
void DrawThemeScrollBar(ContextRef c, const ThemeThumbInfo& info);
void DrawThemeSlider(ContextRef c, const ThemeThumbInfo& info);

}  // namespace platform
