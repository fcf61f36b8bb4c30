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
enum ThemeButtonKind : int { kThemeBevelButton = 3 };
enum ThemeButtonValue : int { kThemeButtonOff = 0, kThemeButtonOn = 1 };

struct ThemeButtonDrawInfo {
  int state = kThemeStateActive;
  int value = kThemeButtonOff;
};
// The face without a label. Only the bevel exists; other kinds are drawn as it.
void DrawThemeButton(ContextRef c, const Rect& r, ThemeButtonKind kind,
                     const ThemeButtonDrawInfo& info);
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
