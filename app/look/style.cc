#include "app/look/style.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "app/format/cut.h"
#include "app/look/outline.h"

namespace console {
namespace {

Style MakeStyle() {
  auto c = [](int role) { return XwThemeColor(role); };
  Style l{};
  l.document = c(XWR_DOCUMENT), l.row = c(XWR_ROW), l.tool_bar = c(XWR_TOOL_BAR);
  l.side = c(XWR_SIDE), l.status = c(XWR_STATUS);
  l.ink = c(XWR_INK), l.second = c(XWR_SECOND_INK);
  l.hairline = c(XWR_HAIRLINE), l.line = c(XWR_LINE);
  l.face = c(XWR_FACE), l.pressed = c(XWR_PRESSED), l.pressed_line = c(XWR_PRESSED_LINE);
  l.accent = c(XWR_ACCENT), l.dark_accent = c(XWR_DARK_ACCENT);
  l.inactive_selection = c(XWR_INACTIVE_SELECTION), l.on_accent = CL_HILIGHTTEXT;
  l.track = c(XWR_TRACK), l.progress_line = c(XWR_PROGRESS_LINE);
  l.scroll_ground = c(XWR_SCROLL_GROUND);
  l.good = c(XWR_GOOD), l.warning = c(XWR_WARNING), l.bad = c(XWR_BAD);
  l.normal = XWF_NORMAL, l.bold = XWF_BOLD, l.view = XWF_VIEW;
  l.view_bold = LoadFont(XWF_VIEW->name, 12, 1);
  l.small_text = LoadFont(XWF_VIEW->name, 11, 0);
  l.caption = LoadFont(XWF_VIEW->name, 11, 1);
  l.heading = LoadFont(XWF_VIEW->name, 17, 1);
  return l;
}

}  // namespace

const Style& TheStyle() {
  static const Style style = MakeStyle();
  return style;
}

int32_t Mix(int32_t a, int32_t b, int percent) {
  int32_t result = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    int above = a >> shift & 0xFF, below = b >> shift & 0xFF;
    result |= ((above * percent + below * (100 - percent) + 50) / 100) << shift;
  }
  return result;
}

int32_t Dimmed(int32_t ink, int32_t background) {
  return Mix(ink, background, background == TheStyle().inactive_selection ? 70 : 40);
}

void DrawLabel(XwFont* font, Align align, const Area& a, const char* text, int32_t ink) {
  if (a.Empty()) return;
  int width = XwTextWidthUtf8(font, text);
  char cut[1024];
  if (width > a.w) {
    constexpr char kDots[] = "…";
    const int room = a.w - XwTextWidthUtf8(font, kDots);
    // Trimmed is what is narrower than the width.
    XwTextTrimUtf8(font, text, std::max(room, 0) + 1, cut, int(sizeof cut - sizeof kDots + 1));
    if (room >= 0) strcat(cut, kDots);
    text = cut;
    width = XwTextWidthUtf8(font, text);
  }
  const int spare = a.w - width;
  int dx = align == Align::kRight ? spare : align == Align::kCenter ? spare / 2 : 0;
  XwDrawTextUtf8(font, 0, a.x + dx, a.y + (a.h - font->ascent - font->descent + 1) / 2, 0, 0, text,
                 ink, -1);
}

std::string CutToWidth(XwFont* font, const std::string& text, int width) {
  return CutMiddleTo(text, [font, width](const std::string& cut) {
    return XwTextWidthUtf8(font, cut.c_str()) <= width;
  });
}

void DrawCaption(const Area& a, const char* text) {
  DrawLabel(TheStyle().caption, Align::kLeft, {a.x, a.y + 9, a.w, 16}, text, TheStyle().second);
}

void Fill(const Area& a, int32_t colour) {
  if (!a.Empty()) XwBox(a.x, a.y, a.w, a.h, colour);
}

void LineAcross(int x, int y, int w) {
  if (w <= 0) return;
  XwSetColor(TheStyle().hairline);
  XwDrawLine(x, y, x + w - 1, y);
}
void LineDown(int x, int y, int h) {
  if (h <= 0) return;
  XwSetColor(TheStyle().hairline);
  XwDrawLine(x, y, x, y + h - 1);
}
void LineAtTop(const Area& a) {
  LineAcross(a.x, a.y, a.w);
}
void LineAtBottom(const Area& a) {
  if (a.Empty()) return;
  // At the far side of its pixel, so that nothing of this area shows behind it.
  const double scale = XwGetScale(XW);
  const float thin = float(std::max(1.0, std::floor(scale)) / scale), left = AtPixel(a.x);
  Outline(0, 0)
      .Rectangle({left, AtPixel(a.bottom()) - thin}, AtPixel(a.right()) - left, thin)
      .Fill(TheStyle().hairline);
}
void LineAtRight(const Area& a) {
  LineDown(a.right() - 1, a.y, a.h);
}
void LineAtLeft(const Area& a) {
  LineDown(a.x, a.y, a.h);
}

// Without a gap between its two pixels at any scale.
static void DrawFrame(Area a, int32_t colour) {
  Fill(a.TakeTop(kFrameWidth), colour);
  Fill(a.TakeBottom(kFrameWidth), colour);
  Fill(a.TakeLeft(kFrameWidth), colour);
  Fill(a.TakeRight(kFrameWidth), colour);
}
void DrawDropFrame(const Area& a) {
  DrawFrame(a, TheStyle().accent);
}
void DrawFocusRing(const Area& a, int32_t ground) {
  DrawFrame(a, Mix(TheStyle().accent, ground, 60));
}

void DrawShadow(const Area& a, int radius) {
  const Style& l = TheStyle();
  for (int i = 3; i > 0; --i)
    XwRoundBox(a.x - i, a.y - i + 2, a.w + 2 * i, a.h + 2 * i, radius + i,
               Mix(l.line, l.document, 40 - 10 * i), -1);
}

Area DrawStrip(Area a, int32_t dot) {
  // None of the desktop's roles.
  constexpr int32_t kGround = 0xE0F1FB, kEdge = 0xAED3E7;
  Fill(a, kGround);
  XwSetColor(kEdge);
  if (!a.Empty()) XwDrawLine(a.x, a.y, a.right() - 1, a.y);
  DrawDot(a.x + 12, a.y + (a.h - 9) / 2 + 1, dot);
  a.TakeLeft(28);  // as the server in the status line
  return a;
}

void DrawProgress(const Area& a, int64_t part, int64_t whole, BarGround ground) {
  const Style& l = TheStyle();
  const bool on_accent = ground == BarGround::kAccent;
  const int32_t bar = on_accent                     ? l.on_accent
                      : ground == BarGround::kMuted ? Mix(l.accent, l.track, 40)
                                                    : l.accent;
  const int32_t track = on_accent ? l.dark_accent : l.track;
  XwRoundBox(a.x, a.y, a.w, a.h, a.h / 2, track,
             on_accent ? Mix(l.on_accent, l.accent, 60) : l.progress_line);
  if (whole <= 0 || part <= 0) return;
  if (part > whole) part = whole;
  const int w = int(double(a.w) * (double(part) / double(whole)) + 0.5);
  // Both its ends are round: less than one of them does not show, and more shows as both.
  if (w < a.h / 2) return;
  XwRoundBox(a.x, a.y, std::max(w, a.h), a.h, a.h / 2, bar, -1);
}

namespace {
constexpr float kDotRadius = 4.5f;
}  // namespace

void DrawDot(int x, int y, int32_t colour) {
  Outline(x, y).Circle({kDotRadius, kDotRadius}, kDotRadius).Fill(colour);
}

void DrawRing(int x, int y, int32_t colour) {
  Outline(x, y).Circle({kDotRadius, kDotRadius}, kDotRadius + 1.5f).Fill(colour);
}

}  // namespace console
