// Measuring, shortening and drawing one line of text in the toolkit's set. Widths are exact sums of
// advances; they are truncated only where a whole number of pixels is asked for.
#include <algorithm>
#include <cstring>

#include "platform/fonts/fonts.h"
#include "toolkit/core/trace.h"
#include "toolkit/drawing/text.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using namespace toolkit;

namespace {

constexpr size_t kResultSize = 200;  // of the static results, with the ending zero
constexpr size_t kFitSize = 212;     // longer texts are cut before they are shortened

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
  return GetTextScale(sized).Pixels(MeasureText(sized, text, std::strlen(text)));
}

char* XwTextTrim(XwFont* font, const char* text, int width) {
  SizedFont* sized = Sized(font);
  if (!text) text = "";
  const int32_t* advances = GetAdvances(sized, {text, strnlen(text, kResultSize)});
  TextScale scale = GetTextScale(sized);
  size_t n = 0;
  int64_t sum = 0;
  while (text[n] && n < kResultSize - 1) {
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
  const int32_t* advances = GetAdvances(sized, text);
  TextScale scale = GetTextScale(sized);
  int64_t limit = int64_t{width} - kFitMargin;
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

void XwDrawText(XwFont* font, int flags, int x, int y, int w, int h, const char* text,
                int32_t colour, int32_t background) {
  TraceDrawing("XwDrawText", flags, x, y, w, h, colour, background);
  if (!text || !*text || !XW) return;
  TextBox box{font ? font : XWF_NORMAL, flags, x, y, colour, background};
  if (!box.font) return;
  if (w && h) {
    if (!FillTextBox(box, w, h)) return;
    text = XwTextTrim(box.font, text, w - kFitMargin);
    if (!*text) return;
    PlaceInBox(&box, w, h, XwTextWidth(box.font, text));
  }
  DrawTextLine(
      box, [&] { return XwTextWidth(box.font, text); },
      [&](int left, int baseline) {
        DrawGlyphs(TargetContext(), Sized(box.font), left, baseline, text, std::strlen(text),
                   state.colors.fill);
      });
}
