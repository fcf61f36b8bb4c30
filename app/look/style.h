// What the console's drawing shares: backgrounds, inks and fonts of the desktop, and the small
// things that are drawn again and again. Everything draws into the selected window.
#pragma once
#include <cstdint>
#include <string>

#include "app/look/area.h"
#include "toolkit/xw.h"

namespace console {

struct Style {
  int32_t document, row, tool_bar, side, status;
  int32_t ink, second, hairline, line, face, pressed, pressed_line;
  int32_t accent, dark_accent, inactive_selection, on_accent;
  int32_t track, progress_line, scroll_ground;
  int32_t good, warning, bad;
  XwFont *normal, *bold;                   // 13: controls and headings
  XwFont *view, *view_bold;                // 12: tables
  XwFont *small_text, *caption, *heading;  // 11: secondary lines, captions; 17: a page's name
};
// Made on the first call, which needs the session.
const Style& TheStyle();

// The colour value of 0xRRGGBB, as jobs have it.
inline int32_t FromRgb(int32_t rgb) {
  return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | (rgb >> 16 & 0xFF);
}
// `percent` of `a` over `b`.
int32_t Mix(int32_t a, int32_t b, int percent);
// The ink of what is disabled, on that background: paler, but on the darker one of a selection.
int32_t Dimmed(int32_t ink, int32_t background);

enum class Align : uint8_t { kLeft, kCenter, kRight };
// One line in the middle of the area's height, cut at the border of a letter where it is too wide.
void DrawLabel(XwFont* font, Align align, const Area& a, const char* text, int32_t ink);
inline void DrawLabel(XwFont* font, Align align, const Area& a, const std::string& text,
                      int32_t ink) {
  DrawLabel(font, align, a, text.c_str(), ink);
}
// The text, cut in the middle where it is wider than that many pixels: a name keeps its ending.
std::string CutToWidth(XwFont* font, const std::string& text, int width);
// Of a part of a pane.
void DrawCaption(const Area& a, const char* text);
void Fill(const Area& a, int32_t colour);
// Hairlines, of the same thickness at every place, also where the scale is a fraction.
void LineAcross(int x, int y, int w);
void LineDown(int x, int y, int h);
// Along one side, inside the area.
void LineAtTop(const Area& a);
void LineAtBottom(const Area& a);
void LineAtRight(const Area& a);
void LineAtLeft(const Area& a);

// What a bar lies on: a list's ground, the same while it is muted, or the accent of a selection.
enum class BarGround : uint8_t { kPlain, kMuted, kAccent };
// A bar that is `part` of `whole` full.
void DrawProgress(const Area& a, int64_t part, int64_t whole, BarGround ground);
// The warm ground of a strip over the status line, with a dot. The rest of it, for its words.
Area DrawStrip(Area a, int32_t dot);
constexpr int kFrameWidth = 2;
// Around what documents or jobs would go to that are dragged over the window.
void DrawDropFrame(const Area& a);
// Two pixels wide along the inner edge of the area, on that ground: it has the keyboard, and
// nothing in it shows that.
void DrawFocusRing(const Area& a, int32_t ground);
// Below something round that lies over the rest.
void DrawShadow(const Area& a, int radius);
void DrawDot(int x, int y, int32_t colour);
// Around the dot that is drawn there.
void DrawRing(int x, int y, int32_t colour);

enum class ToolIcon : uint8_t { kRefresh, kOptions, kPrint, kCross, kNoColour };
// 16 x 16, for buttons; kept for the life of the process.
XwIcon* ButtonIcon(ToolIcon icon);

// Kinds of files, by the ending of their names.
enum class FileKind : uint8_t { kFolder, kPages, kPicture, kText, kOther };
FileKind KindOf(const std::string& name);
const char* KindText(FileKind kind);
// In a field of 16 x 16; `background` shows through, `percent` of its colours.
void DrawFileIcon(FileKind kind, int x, int y, int32_t background, int percent);
// A funnel, 14 x 14.
void DrawFilterIcon(int x, int y, int32_t ink);
// A large folder in pale lines, for one that is empty.
constexpr int kLargeFolderWidth = 44, kLargeFolderHeight = 32;
void DrawLargeFolder(int x, int y);

}  // namespace console
