// Fonts: finding them by exact name, measuring and drawing text: UTF-8, and the toolkit's 8-bit
// set.
//
// A face is a font file; a sized font is a face at a size in logical pixels. Both live until
// FinishFonts. Advances are unhinted and summed in font units, exactly; measuring and drawing use
// the same sum. There is no kerning.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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
// Font units of each of the 256 characters of the toolkit's set, as far as `text` has them.
const int32_t* GetAdvances(const SizedFont* font, std::string_view text);
int64_t MeasureText(const SizedFont* font, const char* text, size_t n);

// --- The toolkit's set: one byte a character

// Draws with the pen starting at x and the baseline on the edge y (logical, of the context).
void DrawGlyphs(ContextRef c, SizedFont* font, int x, int y, const char* text, size_t n,
                uint32_t rgb);

// --- UTF-8. A line is laid out once; measuring, cutting, drawing and carets go by that layout, and
// --- a shaper would fill it in another way. Characters stand from left to right in stored order.
// --- What the font lacks comes from another font, at last as a box with its number; the line's
// --- height stays the font's.

struct LineGlyph {
  uint32_t slot;    // the place in the font's pages
  int32_t advance;  // font units
  int64_t pen;      // font units from the beginning of the line
};
// A unit that a caret cannot enter: a letter with its marks, a syllable, a joined emoji.
struct TextCluster {
  size_t start;  // bytes from the beginning
  size_t glyph;  // its first
  int64_t pen;
};
struct TextLine {
  std::vector<LineGlyph> glyphs;
  std::vector<TextCluster> clusters;  // one more than there are: the end
  size_t count() const { return clusters.size() - 1; }
  int64_t width() const { return clusters.back().pen; }
};
// Fills `line`, which keeps its memory from text to text. It ends behind the first cluster that
// brings the width to `enough` font units or more. A null font has no glyphs and no width, but all
// clusters.
void LayOutText(const SizedFont* font, std::string_view utf8, TextLine* line,
                int64_t enough = INT64_MAX);
// Keeps the first `n` clusters.
void CutLine(TextLine* line, size_t n);
// As DrawGlyphs, with `alpha` 0..255. The line must have been laid out with this font.
void DrawLine(ContextRef c, SizedFont* font, int x, int y, const TextLine& line, uint32_t rgb,
              int alpha = 255);
// Lays out and draws.
void DrawUtf8(ContextRef c, SizedFont* font, int x, int y, std::string_view utf8, uint32_t rgb,
              int alpha = 255);

// Frees faces, sized fonts, masks and the finder's answers. What was given out is then dead; fonts
// can be found again at once.
void FinishFonts();

}  // namespace platform
