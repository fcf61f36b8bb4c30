// Shortening of texts against slow searches written from their description; conversion there and
// back; names of fonts.
#include <cstdlib>

#include "fuzz/input.h"
#include "platform/fonts/fonts.h"
#include "platform/text/mac_roman.h"
#include "platform/text/utf8.h"
#include "tests/support/canvas.h"

namespace {

void Require(bool holds) {
  if (!holds) __builtin_trap();
}

// Narrower than `width`, by the sum alone.
bool Narrower(XwFont* font, const std::string& text, int64_t width) {
  auto* sized = static_cast<platform::SizedFont*>(font->platform);
  platform::TextScale scale = platform::GetTextScale(sized);
  return scale.Narrower(platform::MeasureText(sized, text.data(), text.size()), width);
}

std::string SlowTrim(XwFont* font, std::string text, int width) {
  if (text.size() > 199) text.resize(199);
  while (!text.empty() && !Narrower(font, text, width)) text.pop_back();
  return text;
}

std::string SlowFit(XwFont* font, std::string text, int width) {
  int64_t limit = int64_t{width} - 6;
  auto cut = [](std::string s) { return s.substr(0, 199); };
  if (Narrower(font, text, limit)) return cut(text);
  if (text.size() > 211) text.resize(211);
  size_t length = text.size();
  if (length <= 4) return "";
  size_t half = length / 2, tail = half + 2;
  for (;;) {
    size_t k = half > 1 ? half - 1 : half;
    for (size_t from : {tail - 1, tail}) {
      if (from > length) continue;
      std::string shortened = text.substr(0, k) + "..." + text.substr(from);
      if (Narrower(font, shortened, limit)) return cut(shortened);
    }
    if (tail >= length) return "";
    ++tail;
    half = k;
  }
}

// A line's clusters cover the text in order, each is laid out by itself as it is in the line, and
// the results of the UTF-8 calls are valid and narrow enough.
void CheckUtf8(XwFont* font, const std::string& text, int width) {
  auto* sized = static_cast<platform::SizedFont*>(font->platform);
  const platform::TextScale scale = platform::GetTextScale(sized);
  platform::TextLine line, part;
  platform::LayOutText(sized, text, &line);
  Require(line.clusters[0].start == 0 && line.clusters.back().start == text.size());
  size_t fitting = 0;
  for (size_t i = 0; i < line.count(); ++i) {
    const platform::TextCluster &a = line.clusters[i], &b = line.clusters[i + 1];
    Require(a.start < b.start && a.glyph <= b.glyph && a.pen <= b.pen);
    platform::LayOutText(sized, text.substr(0, b.start), &part);
    Require(part.width() == b.pen && part.glyphs.size() == b.glyph);
    if (scale.Narrower(b.pen, width)) fitting = b.start;
  }
  std::vector<char> out(3 * text.size() + 4);
  const int n = XwTextTrimUtf8(font, text.c_str(), width, out.data(), int(out.size()));
  Require(out.data() == platform::ValidUtf8(text.substr(0, fitting)) &&
          n == int(std::strlen(out.data())));
  Require(XwTextFitUtf8(font, text.c_str(), width, out.data(), int(out.size())) ==
          int(std::strlen(out.data())));
  Require(!out[0] || XwTextWidthUtf8(font, out.data()) < int64_t{width} - 6);
  Require(platform::ValidUtf8(out.data()) == out.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static XwFont* const fonts[] = {LoadFont("DejaVu Sans", 13, 0), LoadFont("DejaVu Sans", 11, 1),
                                  LoadFont("No Such Font", 20, 0)};
  Input in(data, size);
  XwFont* font = fonts[in.Byte() % 3];
  int width = in.Take<int16_t>();
  if (width > 3000) width = in.Take<int32_t>();
  int x = in.Number(), y = in.Number(), w = in.Number(), h = in.Number(),
      flags = in.Take<int16_t>();
  std::string text = in.Text(600);
  text = text.c_str();  // up to the first zero
  Require(XwTextTrim(font, text.c_str(), width) == SlowTrim(font, text, width));
  Require(XwTextFit(font, text.c_str(), width) == SlowFit(font, text, width));
  Require(platform::Utf8ToMacRoman(platform::MacRomanToUtf8(text.c_str()).c_str()) == text);
  std::string mac = platform::Utf8ToMacRoman(text.c_str());
  Require(mac.size() <= text.size());
  CheckUtf8(font, text.substr(0, 120), width);
  char small[8];
  Require(platform::Utf8ToMacRoman(text.c_str(), small, sizeof small) < sizeof small);
  Require(mac.starts_with(small));
  char field[200];
  std::string first = text.substr(0, text.find('-')).substr(0, 199);
  Require(GetFontParm(text.c_str(), 0, field) == first);
  GetFontParm(text.c_str(), x, field);
  testkit::Canvas canvas(40, 30, 1.0, 4, 4);
  XwDrawText(font, flags, x, y, w, h, text.c_str(), 0, -1);
  XwDrawTextUtf8(font, flags, x, y, w, h, text.c_str(), 0, -1);
  for (int row = 0; row < 38; ++row)
    for (int column = 0; column < 48; ++column)
      if (column < 4 || column >= 44 || row < 4 || row >= 34)
        Require(canvas.at(column, row) == testkit::Canvas::kBlank);
  return 0;
}
