// The native-looking elements: bevel, well, border, separator, table.
#include <algorithm>

#include "platform/theme/theme.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/background.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;

void XwDrawBevel(int x, int y, int w, int h, int state) {
  TraceDrawing("XwDrawBevel", x, y, w, h, state);
  ThemeButtonDrawInfo info;
  info.state = state == 2   ? kThemeStatePressed
               : state == 1 ? kThemeStateActive
                            : kThemeStateInactive;
  info.value = state == 2 ? kThemeButtonOn : kThemeButtonOff;
  if (w > 0 && h > 0)
    DrawThemeButton(TargetContext(), SaturatedRect(x, y, w, h), kThemeBevelButton, info);
}

void XwDrawHole(int x, int y, int w, int h, int32_t fill) {
  TraceDrawing("XwDrawHole", x, y, w, h, fill);
  if (w <= 0 || h <= 0) return;
  DrawThemeGenericWell(TargetContext(), SaturatedRect(x, y, w, h), kThemeStateActive, false);
  if (fill ==
      kEraseToBackground)  // two pixels from the left and top, four from the right and bottom
    EraseToBackground(
        SaturatedRect(int64_t{x} + 2, int64_t{y} + 2, int64_t{w} - 6, int64_t{h} - 6));
  else if (IsRealColor(fill))
    XwBox(Saturate(int64_t{x} + 2), Saturate(int64_t{y} + 2), w - 4, h - 4, fill);
}

void XwDrawBorder() {
  TraceDrawing("XwDrawBorder");
  if (!XW) return;
  XwSetColor(0x808080);
  XwDrawLine(0, 0, XW->width, 0);
  XwDrawLine(XW->width - 1, 0, XW->width - 1, XW->height);
}

// The two pixels of a separator: the line itself and the one before it.
static Rect SeparatorRect(int64_t x, int64_t y, int64_t w, int64_t h) {
  return w > h ? SaturatedRect(x, y - 1, w, 2) : SaturatedRect(x - 1, y, 2, h);
}

void XwDrawSeparator(int x, int y, int w, int h) {
  TraceDrawing("XwDrawSeparator", x, y, w, h);
  Rect r = SeparatorRect(x, y, w, h);
  EraseToBackground(r);
  DrawThemeSeparator(TargetContext(), r, kThemeStateActive);
}

// Calls visit(rect) for each separator of a table, without those that lie outside XW.
template <typename Visit>
static void ForEachTableLine(int x, int y, int rows, int row_height, const int* widths,
                             Visit visit) {
  int64_t total = 0;
  for (const int* w = widths; *w; ++w) total += *w;
  int64_t first = 0, last = rows;
  if (row_height > 0) {
    first = std::max<int64_t>(0, (-int64_t{y} - 2) / row_height);
    last = std::min(last, (int64_t{XW->height} - y + 2) / row_height);
  } else if (row_height < 0) {
    first = std::max<int64_t>(0, (int64_t{y} - XW->height - 2) / -int64_t{row_height});
    last = std::min(last, (int64_t{y} + 2) / -int64_t{row_height});
  } else {
    last = std::min<int64_t>(last, 0);
  }
  for (int64_t i = first; i <= last; ++i) visit(SeparatorRect(x, y + i * row_height, total, 0));
  int64_t height = int64_t{rows} * row_height, at = x;
  visit(SeparatorRect(at, y, 0, height));
  for (const int* w = widths; *w; ++w) visit(SeparatorRect(at += *w, y, 0, height));
}

void XwDrawTable(int x, int y, int rows, int rowHeight, const int* colWidths) {
  TraceDrawing("XwDrawTable", x, y, rows, rowHeight);
  if (!XW || !colWidths) return;
  ForEachTableLine(x, y, rows, rowHeight, colWidths, EraseToBackground);
  ContextRef c = TargetContext();
  ForEachTableLine(x, y, rows, rowHeight, colWidths,
                   [c](const Rect& r) { DrawThemeSeparator(c, r, kThemeStateActive); });
}
