// The parts of the desktop's look that programs draw themselves: faces, wells, separators, tracks.
// Rectangles are in the context's own coordinates; empty ones and a null context paint nothing. The
// context's colour may be left changed.
#pragma once
#include "platform/base.h"

namespace platform {

enum ThemeDrawState : int {
  kThemeStateInactive = 0,
  kThemeStateActive = 1,
  kThemeStatePressed = 2,
};
enum ThemeButtonKind : int {
  kThemePushButton = 0,
  kThemeCheckBox = 1,
  kThemeRadioButton = 2,
  kThemeBevelButton = 3,
  kThemeListHeaderButton = 10,
};
enum ThemeButtonValue : int { kThemeButtonOff = 0, kThemeButtonOn = 1, kThemeButtonMixed = 2 };
enum ThemeAdornment : uint32_t {
  kThemeAdornmentNone = 0,
  kThemeAdornmentDefault = 1,  // of a push button: the one that Return presses
  kThemeAdornmentHeaderButtonSortUp = 0x100,
  kThemeAdornmentHeaderButtonSortDown = 0x200,
  kThemeAdornmentHeaderButtonNoLine = 0x400,
};

struct ThemeButtonDrawInfo {
  int state = kThemeStateActive;
  int value = kThemeButtonOff;
  uint32_t adornment = kThemeAdornmentNone;
};
// The face without a label. A check box or radio button stands in the middle of the first 16
// columns and of the height. Kinds that are none are drawn as the bevel.
void DrawThemeButton(ContextRef c, const Rect& r, ThemeButtonKind kind,
                     const ThemeButtonDrawInfo& info);
// Of a label on it.
uint32_t ThemeButtonTextColor(ThemeButtonKind kind, const ThemeButtonDrawInfo& info);
// Around the border of what has the keyboard, outside of it.
void DrawThemeFocusRing(ContextRef c, const Rect& border, int corner);

// Ticks and arrows, in the middle of `box`; `alpha` 0..255.
enum class ThemeMark : uint8_t {
  kTick,
  kDash,
  kPopUpArrow,
  kSubMenuArrow,
  kMore,
  kScrollUp,
  kScrollDown,
  kSortUp,
  kSortDown,
};
void DrawThemeMark(ContextRef c, ThemeMark mark, const Rect& box, uint32_t rgb, int alpha);
// Frees the marks' masks.
void FinishTheme();

// A frame around sunken content, one pixel wide; the content begins two pixels inside.
// `fill_center` also paints the document background there.
void DrawThemeGenericWell(ContextRef c, const Rect& r, int state, bool fill_center);
// A hairline along the longer side of a rectangle two pixels thick, in its second pixel. With equal
// sides it is vertical.
void DrawThemeSeparator(ContextRef c, const Rect& r, int state);

enum ThemeTrackKind : int { kThemeLargeProgressBar = 7 };
struct ThemeTrackDrawInfo {
  ThemeTrackKind kind = kThemeLargeProgressBar;
  Rect bounds;
  int min = 0, max = 0, value = 0;  // cut to [min, max]; of a bar four pixels longer at each end
  bool active = true;
};
void DrawThemeTrack(ContextRef c, const ThemeTrackDrawInfo& info);

}  // namespace platform
