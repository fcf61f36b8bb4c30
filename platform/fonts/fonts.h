// Fonts: finding them by exact name, measuring and drawing text in Mac Roman.
//
// A face is a font file; a sized font is a face at a size in logical pixels. Both live until
// FinishFonts. Advances are unhinted and summed in font units, exactly; measuring and drawing use
// the same sum. There is no kerning.
#pragma once
#include <cstdint>
#include <string>

#include "platform/base.h"

namespace platform {

struct FontFace;
struct SizedFont;

// Per unit of size; the descent is negative.
struct FontMetrics {
  float ascent, descent, max_advance;
};

// An exact PostScript name, full name, or family name (giving its regular face), in UTF-8; then the
// families that stand in for Helvetica, Times, Courier, Lucida Grande, Geneva and Monaco, with the
// style that the name asks for. Null when there is none: nothing "near" is ever given.
const FontFace* FindFont(const char* name);
// What draws when a name is not found: the desktop's sans-serif, else any font. Null when there is
// no font at all, which is said once on standard error.
const FontFace* FallbackFont();
FontMetrics GetFontMetrics(const FontFace* face);

// Theme fonts by number: 5 application, 2 small emphasised, 105 push button, 3 views, 6 label,
// -1 big system, -4 view system; any other is the application's.
struct ThemeFont {
  std::string family;  // UTF-8
  int size, style;     // style: 1 bold
};
ThemeFont GetThemeFont(int id);

// Null for a null face, which measures 0 and draws nothing.
SizedFont* OpenFont(const FontFace* face, int size);

// The sum of the advances of `n` characters, in units of the font, and what one pixel has of them:
// width in pixels = sum * size / units_per_em.
struct TextScale {
  int64_t size, units_per_em;
  // The width in whole pixels, truncated.
  int Pixels(int64_t sum) const { return int(sum * size / units_per_em); }
  // Whether the untruncated width is less than `width` pixels.
  bool Narrower(int64_t sum, int64_t width) const { return sum * size < width * units_per_em; }
};
TextScale GetTextScale(const SizedFont* font);
// Font units of each of the 256 characters.
const int32_t* GetAdvances(const SizedFont* font);
int64_t MeasureText(const SizedFont* font, const char* text, size_t n);

// Draws with the pen starting at x and the baseline on the edge y (logical, of the context).
void DrawGlyphs(ContextRef c, SizedFont* font, int x, int y, const char* text, size_t n,
                uint32_t rgb);

// Frees faces, sized fonts, masks and the finder's answers. What was given out is then dead; fonts
// can be found again at once.
void FinishFonts();

}  // namespace platform
