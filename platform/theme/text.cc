#include "platform/theme/text.h"

#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/theme/metrics.h"

namespace platform {
namespace {

constexpr int kBigSystemFont = -1, kViewsFont = 3;
constexpr const char* kEllipsis = "…";

enum Which { kPlain, kBold, kView, kFonts };
ThemeTextFont fonts[kFonts];

ThemeTextFont Open(Which which) {
  const ThemeFont theme = GetThemeFont(which == kView ? kViewsFont : kBigSystemFont);
  const FontFace* face = which == kBold ? FindFont((theme.family + " Bold").c_str()) : nullptr;
  if (!face) face = FindFont(theme.family.c_str());
  if (!face) face = FallbackFont();
  if (!face) return {};
  const FontMetrics m = GetFontMetrics(face);
  return {OpenFont(face, theme.size), int(m.ascent * float(theme.size) + 0.5f),
          int(0.5f - m.descent * float(theme.size))};
}

// Lays the text out so that it is no wider than `width`, with an ellipsis at the end of one that is
// cut. The logical width of the result.
int LayOutCut(const ThemeTextFont& font, const std::string& text, int width, TextLine* line) {
  const TextScale scale = GetTextScale(font.font);
  // No further than what shows and one cluster more.
  LayOutText(font.font, text, line,
             (int64_t{width} + 1) * scale.units_per_em / std::max<int64_t>(scale.size, 1) + 1);
  if (scale.Pixels(line->width()) <= width) return scale.Pixels(line->width());
  TextLine dots;
  LayOutText(font.font, kEllipsis, &dots);
  size_t n = line->count();
  while (n > 0 && scale.Pixels(line->clusters[n].pen + dots.width()) > width) --n;
  const std::string cut = text.substr(0, line->clusters[n].start) + kEllipsis;
  LayOutText(font.font, cut, line);
  return scale.Pixels(line->width());
}

// Printable ASCII needs no layout: its glyphs stand one behind the other.
bool IsPlain(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

int PlainWidth(const ThemeTextFont& font, const std::string& text) {
  const int32_t* advances = GetAdvances(font.font, text);
  int64_t sum = 0;
  for (const char c : text) sum += advances[uint8_t(c)];
  return GetTextScale(font.font).Pixels(sum);
}

const ThemeTextFont& FontOf(Which which) {
  ThemeTextFont& f = fonts[which];
  if (!f.font) f = Open(which);
  return f;
}

}  // namespace

ThemeTextFont GetViewTextFont() {
  return FontOf(kView);
}

void FinishThemeText() {
  for (ThemeTextFont& f : fonts) f = ThemeTextFont();
}

int ThemeTextWidth(const std::string& text, bool bold) {
  const ThemeTextFont& font = FontOf(bold ? kBold : kPlain);
  if (!font.font) return 0;
  if (IsPlain(text)) return PlainWidth(font, text) + 1;
  static TextLine line;  // keeps its memory
  LayOutText(font.font, text, &line);
  return GetTextScale(font.font).Pixels(line.width()) + 1;
}

void DrawThemeText(ContextRef c, const Rect& r, const std::string& text,
                   const ThemeTextStyle& style) {
  const ThemeTextFont& font = FontOf(style.view ? kView : style.bold ? kBold : kPlain);
  if (!font.font || text.empty() || r.empty()) return;
  static TextLine line;
  bool plain = style.alpha == kOpaqueAlpha && !style.underline_first && IsPlain(text);
  int width = plain ? PlainWidth(font, text) : 0;
  plain = plain && width <= r.width();
  if (!plain) width = LayOutCut(font, text, r.width(), &line);
  int x = r.left;
  if (style.justification == TextJustification::kCenter) x += (r.width() - width) / 2;
  if (style.justification == TextJustification::kRight) x = r.right - width;
  const int baseline = r.top + (r.height() - font.ascent - font.descent) / 2 + font.ascent;
  if (plain) return DrawGlyphs(c, font.font, x, baseline, text.data(), text.size(), style.rgb);
  DrawLine(c, font.font, x, baseline, line, style.rgb, style.alpha);
  if (!style.underline_first || line.count() == 0) return;
  const int under = GetTextScale(font.font).Pixels(line.clusters[1].pen);
  SetContextColor(c, style.rgb);
  StrokeLineSolid(c, x, baseline + 1, x + std::max(1, under) - 1, baseline + 1);
}

}  // namespace platform
