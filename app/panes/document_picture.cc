#include "app/panes/document_picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "app/format/texts.h"

namespace console {
namespace {

// Of the sheet for a kind: the room for its shadow, and its height.
constexpr int kSheetAround = 6, kLeastSheet = 60, kMostSheet = 240;
constexpr int kTextSize = 9, kTextLine = 11, kTextMargin = 10;

// Paper with a soft shadow.
void DrawPaper(const Area& a) {
  const Style& l = TheStyle();
  for (int i = 4; i > 0; --i)
    XwRoundBox(a.x - i, a.y - i + 2, a.w + 2 * i, a.h + 2 * i, i + 1,
               Mix(l.line, l.side, 36 - 8 * i), -1);
  Fill(a, l.document);
}

void DrawEdge(const Area& a) {
  XwSetColor(TheStyle().hairline);
  XwDrawRect(a.x, a.y, a.w, a.h);
}

// In the middle of the box, no larger than it. A picture as large as the room that it was made for
// is enlarged until the one for a larger room comes; a smaller one keeps its own size.
Area PlaceOf(const Preview& p, double scale, const Area& box) {
  const double width = p.width / scale, height = p.height / scale;
  const bool fills = p.width >= p.request.width - 1 || p.height >= p.request.height - 1;
  double fit = std::min(box.w / width, box.h / height);
  // A factor that is hardly above 1 comes from rounding to whole logical pixels.
  if (fit > 1 && (!fills || fit < 1.02)) fit = 1;
  const int w = std::max(1, std::min(box.w, int(std::ceil(width * fit))));
  const int h = std::max(1, std::min(box.h, int(std::ceil(height * fit))));
  return {box.x + (box.w - w) / 2, box.y + (box.h - h) / 2, w, h};
}

int DevicePixels(int from, int length, double scale) {
  return int(std::lround((from + length) * scale) - std::lround(from * scale));
}

// With its last column and row again, up to that size.
std::vector<uint8_t> Extended(const Preview& p, int width, int height) {
  std::vector<uint8_t> pixels(size_t(width) * size_t(height) * 4);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const int from = std::min(y, p.height - 1) * p.width + std::min(x, p.width - 1);
      memcpy(&pixels[size_t(y * width + x) * 4], &p.pixels[size_t(from) * 4], 4);
    }
  return pixels;
}

// A logical pixel can begin in the middle of the picture's last one: the picture is extended to
// whole logical pixels, so that each of its pixels is one of the device.
void PutPicture(const Preview& p, double scale, const Area& a) {
  const int width = DevicePixels(a.x, a.w, scale), height = DevicePixels(a.y, a.h, scale);
  const int most = int(std::ceil(scale));
  const bool fits =
      width >= p.width && height >= p.height && width < p.width + most && height < p.height + most;
  if (!fits || (width == p.width && height == p.height))
    return XwPutImageScaled(a.x, a.y, a.w, a.h, p.pixels.data(), p.width, p.height);
  XwPutImageScaled(a.x, a.y, a.w, a.h, Extended(p, width, height).data(), width, height);
}

void DrawText(const std::vector<std::string>& lines, const Area& box) {
  static XwFont* const font = LoadFont("DejaVuSansMono", kTextSize, 0);
  DrawPaper(box);
  Area page = box.Inset(kTextMargin, kTextMargin - 2);
  for (const std::string& line : lines) {
    if (page.h < kTextLine) break;
    DrawLabel(font, Align::kLeft, page.TakeTop(kTextLine), line, TheStyle().ink);
  }
  DrawEdge(box);
}

}  // namespace

void DrawKindSheet(const Area& box, const std::string& name, FileKind kind) {
  const Style& l = TheStyle();
  const int height =
      std::min({box.h - 2 * kSheetAround, (box.w - 2 * kSheetAround) * 14 / 10, kMostSheet});
  if (height < kLeastSheet) return;
  const int width = height * 10 / 14;
  const Area a = {box.x + (box.w - width) / 2, box.y + (box.h - height) / 2, width, height};
  DrawPaper(a);
  DrawEdge(a);
  const int32_t inks[] = {l.accent, l.bad, l.good, l.second, l.line};
  const int margin = std::min(18, width / 8), gap = std::min(14, height / 14);
  Area page = a.Inset(margin, margin);
  Fill(page.TakeTop(page.h / 3), Mix(inks[int(kind)], l.document, 14));
  Fill({page.x, page.y - 3, page.w, 3}, inks[int(kind)]);
  const size_t dot = name.rfind('.');
  std::string ending = dot == std::string::npos || dot == 0 ? "" : Shown(name.substr(dot + 1));
  for (char& ch : ending)
    if (ch >= 'a' && ch <= 'z') ch = char(ch - 32);
  if (ending.empty()) ending = "FILE";
  const bool fits = XwTextWidthUtf8(l.heading, ending.c_str()) <= page.w;
  page.TakeTop(gap);
  DrawLabel(fits ? l.heading : l.caption, Align::kLeft, page.TakeTop(fits ? 24 : 16), ending,
            Mix(inks[int(kind)], l.ink, 70));
  page.TakeTop(6);
  for (int i = 0; i < 4 && page.h > 6; ++i) {
    Fill({page.x, page.y, page.w * (i == 3 ? 45 : 92 - 7 * (i % 2)) / 100, 3}, l.track);
    page.TakeTop(11);
  }
}

bool DrawPreview(const Preview& preview, double scale, const Area& box) {
  if (!preview.pixels.empty()) {
    const Area a = PlaceOf(preview, scale, box);
    DrawPaper(a);
    PutPicture(preview, scale, a);
    DrawEdge(a.Inset(-1, -1));
    return true;
  }
  if (preview.lines.empty()) return false;
  DrawText(preview.lines, box);
  return true;
}

}  // namespace console
