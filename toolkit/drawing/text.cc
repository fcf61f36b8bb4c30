// Measuring, shortening and drawing one line of text. Widths are exact sums of advances; they are
// truncated only where a whole number of pixels is asked for.
#include <algorithm>
#include <cstring>

#include "platform/fonts/fonts.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using toolkit::state;

namespace {

enum : int { kAlignMask = 0x700, kRight = 0x200, kLeft = 0x400, kUnderline = 0x800 };

constexpr size_t kResultSize = 200;  // of the static results, with the ending zero
constexpr size_t kFitSize = 212;     // longer texts are cut before they are shortened

SizedFont* Sized(const XwFont* font) {
  if (!font) font = XWF_NORMAL;
  return font ? static_cast<SizedFont*>(font->platform) : nullptr;
}

char g_trimmed[kResultSize];

// Widths of the first 0..n characters.
void SumPrefixes(const int32_t* advances, const char* text, size_t n, int64_t* sums) {
  sums[0] = 0;
  for (size_t i = 0; i < n; ++i) sums[i + 1] = sums[i] + advances[uint8_t(text[i])];
}

// "head...tail", cut to what the result holds.
char* Join(char* out, const char* head, size_t head_length, const char* tail) {
  size_t n = std::min(head_length, kResultSize - 1);
  std::memcpy(out, head, n);
  size_t dots = std::min(size_t{3}, kResultSize - 1 - n);
  std::memcpy(out + n, "...", dots);
  n += dots;
  size_t rest = std::min(std::strlen(tail), kResultSize - 1 - n);
  std::memcpy(out + n, tail, rest);
  out[n + rest] = 0;
  return out;
}

}  // namespace

int XwTextWidth(XwFont* font, const char* text) {
  if (!text) return 0;
  SizedFont* sized = Sized(font);
  const int32_t* advances = GetAdvances(sized);
  int64_t sum = 0;
  for (; *text; ++text) sum += advances[uint8_t(*text)];
  return GetTextScale(sized).Pixels(sum);
}

char* XwTextTrim(XwFont* font, const char* text, int width) {
  SizedFont* sized = Sized(font);
  const int32_t* advances = GetAdvances(sized);
  TextScale scale = GetTextScale(sized);
  size_t n = 0;
  int64_t sum = 0;
  while (text && text[n] && n < kResultSize - 1) {
    sum += advances[uint8_t(text[n])];
    if (!scale.Narrower(sum, width)) break;
    ++n;
  }
  if (n) std::memmove(g_trimmed, text, n);
  g_trimmed[n] = 0;
  return g_trimmed;
}

char* XwTextFit(XwFont* font, const char* text, int width) {
  static char result[kResultSize];
  if (!text) text = "";
  SizedFont* sized = Sized(font);
  const int32_t* advances = GetAdvances(sized);
  TextScale scale = GetTextScale(sized);
  int64_t limit = int64_t{width} - 6;
  if (scale.Narrower(MeasureText(sized, text, std::strlen(text)), limit)) {
    size_t n = std::min(std::strlen(text), kResultSize - 1);
    std::memmove(result, text, n);
    result[n] = 0;
    return result;
  }
  char copy[kFitSize];
  size_t length = std::min(std::strlen(text), kFitSize - 1);
  std::memcpy(copy, text, length);
  copy[length] = 0;
  result[0] = 0;
  if (length <= 4) return result;
  int64_t sums[kFitSize];
  SumPrefixes(advances, copy, length, sums);
  int64_t dots = 3 * int64_t{advances[uint8_t('.')]};
  // Each round drops a character before the dots and tries two beginnings after them.
  for (size_t half = length / 2, tail = half + 2;; ++tail) {
    size_t head = half > 1 ? half - 1 : half;
    for (size_t from : {tail - 1, tail}) {
      if (from > length) continue;
      if (scale.Narrower(sums[head] + dots + sums[length] - sums[from], limit))
        return Join(result, copy, head, copy + from);
    }
    if (tail >= length) return result;
    half = head;
  }
}

namespace {

// Fills behind the text: a colour, or the ground.
void PaintBackground(int x, int y, int w, int h, int32_t background) {
  if (w <= 0 || h <= 0) return;
  if (IsRealColor(background))
    XwBox(x, y, w, h, background);
  else if (background == kEraseToGround)
    XwClear(x, y, w, h);
}

void DrawLineOfText(const XwFont* font, int flags, int x, int y, const char* text, int32_t colour,
                    int32_t background) {
  size_t n = std::strlen(text);
  SizedFont* sized = Sized(font);
  int line_height = Saturate(int64_t{font->ascent} + font->descent);
  int width = 0;
  if (background != -1 || flags & kUnderline)
    width = GetTextScale(sized).Pixels(MeasureText(sized, text, n));
  PaintBackground(x, y, width, line_height, background);
  if (!IsRealColor(colour)) return;
  state.colors.fill = ColorToRgb(colour);
  DrawGlyphs(TargetContext(), sized, x, Saturate(int64_t{y} + font->ascent), text, n,
             state.colors.fill);
  if (flags & kUnderline) XwBox(x, Saturate(int64_t{y} + line_height), width, 1, colour);
}

}  // namespace

void XwDrawText(XwFont* font, int flags, int x, int y, int w, int h, const char* text,
                int32_t colour, int32_t background) {
  if (!text || !*text || !XW) return;
  if (!font) font = XWF_NORMAL;
  if (!font) return;
  if (!w || !h) return DrawLineOfText(font, flags, x, y, text, colour, background);
  if (w < 0 || h < 0) return;
  PaintBackground(x, y, w, h, background);
  text = XwTextTrim(font, text, w - 6);
  if (!*text) return;
  int width = XwTextWidth(font, text);
  int align = flags & kAlignMask;
  int dx = align == kRight ? w - 5 - width : align == kLeft ? 5 : (w - width) / 2;
  int64_t dy = (int64_t{h} - font->ascent - font->descent) / 2;
  DrawLineOfText(font, flags, Saturate(int64_t{x} + dx), Saturate(y + dy), text, colour, -1);
}
