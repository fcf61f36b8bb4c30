#include "toolkit/drawing/fonts.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/fonts/fonts.h"
#include "platform/text/mac_roman.h"
#include "toolkit/xw.h"

using namespace platform;

namespace {

enum : int32_t { kBold = 1, kItalic = 2, kNarrow = 32 };

std::vector<std::unique_ptr<XwFont>>& Fonts() {
  static auto* fonts = new std::vector<std::unique_ptr<XwFont>>;
  return *fonts;
}

const FontFace* Find(const std::string& name) {
  return FindFont(MacRomanToUtf8(name.c_str()).c_str());
}

// The name of one attempt: each drops one more style.
std::string AttemptName(std::string name, int style, int attempt) {
  std::erase(name, ' ');
  if (style & kNarrow && attempt <= 1) name += "-Narrow";
  if (style & kBold && attempt <= 2) name += "-Bold";
  if (style & kItalic && attempt == 0) name += "-Italic";
  return name;
}

int Truncate(double v) {
  return v >= INT_MAX ? INT_MAX : v <= INT_MIN ? INT_MIN : int(v);
}

// Null for the face: a name that was not found.
void Open(XwFont* font, const FontFace* face) {
  FontMetrics m = GetFontMetrics(face);
  float points = float(font->size);
  font->ascent = Truncate(double(points * m.ascent) + 0.5);
  font->descent = Truncate(0.5 - double(points * m.descent));
  font->max_advance = Truncate(double(points * m.max_advance));
  font->platform = OpenFont(face ? face : FallbackFont(), font->size);
}

}  // namespace

void CloseFonts() {
  for (const auto& font : Fonts()) font->platform = nullptr;
}

void ReopenFonts() {
  for (const auto& font : Fonts()) Open(font.get(), Find(font->name));
}

XwFont* LoadFont(const char* family, int size, int style) {
  XwFont* font = Fonts().emplace_back(std::make_unique<XwFont>()).get();
  std::string plain = std::string(family ? family : "").substr(0, 255), name;
  const FontFace* face = nullptr;
  for (int attempt = 0; attempt < 4 && !face; ++attempt) {
    name = AttemptName(plain, style, attempt);
    face = Find(name);
  }
  if (!face) {
    name = plain;
    face = Find(name);
  }
  size_t length = std::min(name.size(), sizeof font->name - 1);
  std::memcpy(font->name, name.data(), length);
  font->style = style;
  font->size = size;
  Open(font, face);
  return font;
}

char* GetFontParm(const char* xname, int field, char* dst) {
  if (!dst) return dst;
  const char* at = xname ? xname : "";
  for (; field > 0; --field) {
    const char* dash = std::strchr(at, '-');
    at = dash ? dash + 1 : "";
    if (!*at) break;
  }
  size_t n = std::min(std::strcspn(at, "-"), size_t{199});
  std::memmove(dst, at, n);
  dst[n] = 0;
  return dst;
}

XwFont* XwLoadFont(const char* xname) {
  char family[200], part[200];
  GetFontParm(xname, 2, family);
  if (family[0] >= 'a' && family[0] <= 'z') family[0] = char(family[0] - 'a' + 'A');
  int style = std::strcmp(GetFontParm(xname, 5, part), "narrow") == 0 ? kNarrow : 0;
  if (std::strcmp(GetFontParm(xname, 3, part), "bold") == 0) style = kBold;
  if (std::strcmp(GetFontParm(xname, 4, part), "i") == 0) style += kItalic;
  long size = std::strtol(GetFontParm(xname, 7, part), nullptr, 10);
  return LoadFont(family, int(std::clamp(size, long{INT_MIN}, long{INT_MAX})), style);
}
