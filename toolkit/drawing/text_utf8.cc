// Measuring, shortening and drawing one line of UTF-8. The rules are those of the toolkit's set,
// with clusters in place of characters and results in the caller's memory.
#include <algorithm>
#include <string>
#include <string_view>

#include "platform/fonts/fonts.h"
#include "platform/text/utf8.h"
#include "toolkit/core/trace.h"
#include "toolkit/drawing/text.h"
#include "toolkit/target/selection.h"

using namespace platform;
using namespace toolkit;

namespace {

// One line for all calls, so that its memory is used again.
TextLine& TheLine() {
  static TextLine* line = new TextLine;
  return *line;
}

// The width, in font units, from which a text is not narrower than `width` pixels.
int64_t UnitsOf(const TextScale& scale, int width) {
  if (width <= 0 || scale.size <= 0) return width <= 0 ? 0 : INT64_MAX;
  return (int64_t{width} * scale.units_per_em + scale.size - 1) / scale.size;
}

// How many clusters of the line are narrower than `width` pixels together.
size_t CountNarrower(const TextLine& line, const TextScale& scale, int width) {
  // Widths grow along the line.
  auto at =
      std::partition_point(line.clusters.begin() + 1, line.clusters.end(),
                           [&](const TextCluster& c) { return scale.Narrower(c.pen, width); });
  return size_t(at - line.clusters.begin()) - 1;
}

int Deliver(const std::string& text, char* dst, int size) {
  if (dst && size > 0) CopyUtf8(text, dst, size_t(size));
  return int(std::min(text.size(), size_t{INT32_MAX}));
}

// The text shortened around three dots: in each round the head loses a cluster and the tail one,
// until both are narrower than the limit. Empty when nothing is.
std::string Shorten(const TextLine& line, const TextScale& scale, std::string_view text,
                    int64_t limit, int64_t dots) {
  const auto& clusters = line.clusters;
  const size_t length = line.count();
  if (length <= 4) return {};
  for (size_t half = length / 2, tail = half + 2;; ++tail) {
    const size_t head = half > 1 ? half - 1 : half;
    for (size_t from : {tail - 1, tail}) {
      const int64_t sum = clusters[head].pen + dots + line.width() - clusters[from].pen;
      if (!scale.Narrower(sum, limit)) continue;
      return ValidUtf8(text.substr(0, clusters[head].start)) + "..." +
             ValidUtf8(text.substr(clusters[from].start));
    }
    if (tail >= length) return {};
    half = head;
  }
}

}  // namespace

int XwTextWidthUtf8(XwFont* font, const char* utf8) {
  if (!utf8) return 0;
  SizedFont* sized = Sized(font);
  LayOutText(sized, utf8, &TheLine());
  return GetTextScale(sized).Pixels(TheLine().width());
}

int XwTextTrimUtf8(XwFont* font, const char* utf8, int width, char* dst, int size) {
  std::string out;
  if (utf8) {
    SizedFont* sized = Sized(font);
    const TextScale scale = GetTextScale(sized);
    TextLine& line = TheLine();
    LayOutText(sized, utf8, &line, UnitsOf(scale, width));
    const size_t fitting = line.clusters[CountNarrower(line, scale, width)].start;
    out = ValidUtf8({utf8, fitting});
  }
  return Deliver(out, dst, size);
}

int XwTextFitUtf8(XwFont* font, const char* utf8, int width, char* dst, int size) {
  std::string_view text = utf8 ? utf8 : "";
  SizedFont* sized = Sized(font);
  const TextScale scale = GetTextScale(sized);
  const int64_t limit = int64_t{width} - kFitMargin;
  TextLine& line = TheLine();
  LayOutText(sized, text, &line);
  if (scale.Narrower(line.width(), limit)) return Deliver(ValidUtf8(text), dst, size);
  const int64_t dots = 3 * int64_t{GetAdvances(sized, ".")[uint8_t('.')]};
  return Deliver(Shorten(line, scale, text, limit, dots), dst, size);
}

void XwDrawTextUtf8(XwFont* font, int flags, int x, int y, int w, int h, const char* utf8,
                    int32_t colour, int32_t background) {
  TraceDrawing("XwDrawTextUtf8", flags, x, y, w, h, colour, background);
  if (!utf8 || !*utf8 || !XW) return;
  TextBox box{font ? font : XWF_NORMAL, flags, x, y, colour, background};
  if (!box.font) return;
  SizedFont* sized = Sized(box.font);
  const TextScale scale = GetTextScale(sized);
  TextLine& line = TheLine();
  if (w && h) {
    if (!FillTextBox(box, w, h)) return;
    LayOutText(sized, utf8, &line, UnitsOf(scale, w - kFitMargin));
    CutLine(&line, CountNarrower(line, scale, w - kFitMargin));
    if (!line.count()) return;
    PlaceInBox(&box, w, h, scale.Pixels(line.width()));
  } else {
    LayOutText(sized, utf8, &line);
  }
  DrawTextLine(
      box, [&] { return scale.Pixels(line.width()); },
      [&](int left, int baseline) {
        DrawLine(TargetContext(), sized, left, baseline, line, state.colors.fill);
      });
}
