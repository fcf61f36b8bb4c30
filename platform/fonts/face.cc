#include "platform/fonts/face.h"

#include FT_ADVANCES_H

#include "platform/fonts/state.h"
#include "platform/text/mac_roman.h"

namespace platform {
namespace {

bool LoadHandle(FontFace* f) {
  if (f->tried) return f->face;
  f->tried = true;
  FT_Library library = FontLibrary();
  if (!library || FT_New_Face(library, f->file.c_str(), f->index, &f->face)) f->face = nullptr;
  if (f->face && (!FT_IS_SCALABLE(f->face) || f->face->units_per_EM == 0)) {
    FT_Done_Face(f->face);
    f->face = nullptr;
  }
  return f->face;
}

int32_t AdvanceUnits(FT_Face face, FT_UInt glyph) {
  FT_Fixed advance = 0;
  if (FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance)) return 0;
  return int32_t(advance < 0 ? 0 : advance > 1 << 20 ? 1 << 20 : advance);
}

// Control characters neither show nor advance.
bool IsShown(char32_t c) {
  return c >= 32 && c != 127;
}

// The apple-shaped slot of the set has no glyph outside one maker's fonts: a lozenge stands there.
char32_t StandIn(char32_t c) {
  return c == 0xF8FF ? 0x25CA : c;
}

void TakeGlyph(FontFace* f, int character, const FontFace* from, FT_UInt glyph) {
  f->glyphs[character] = glyph;
  f->sources[character] = from;
  int64_t units = AdvanceUnits(from->face, glyph);
  if (int em = from->units.per_em; em != f->units.per_em)
    units = (units * f->units.per_em + em / 2) / em;
  f->advances[character] = int32_t(units);
}

// From another font; then the replacement sign, a question mark, and the font's own empty box.
void TakeFallback(FontFace* f, int character, char32_t c) {
  if (const FontFace* other = FindFontWithCharacter(c); other && other != f) {
    FontFace* source = const_cast<FontFace*>(other);
    FT_UInt glyph = LoadHandle(source) ? FT_Get_Char_Index(source->face, c) : 0;
    if (glyph) return TakeGlyph(f, character, source, glyph);
  }
  for (char32_t stand_in : {char32_t{0xFFFD}, char32_t{'?'}}) {
    if (FT_UInt glyph = FT_Get_Char_Index(f->face, stand_in))
      return TakeGlyph(f, character, f, glyph);
  }
  TakeGlyph(f, character, f, 0);
}

}  // namespace

FontFace::~FontFace() {
  if (face) FT_Done_Face(face);
}

bool OpenFace(const FontFace* face) {
  FontFace* f = const_cast<FontFace*>(face);
  if (f->sources[0]) return true;
  if (!LoadHandle(f)) return false;
  f->units.per_em = f->face->units_per_EM;
  for (int i = 0; i < 256; ++i) {
    f->sources[i] = f;
    f->glyphs[i] = kNoGlyph;
    char32_t c = StandIn(MacRomanToUnicode(uint8_t(i)));
    if (!IsShown(c)) continue;
    if (FT_UInt glyph = FT_Get_Char_Index(f->face, c))
      TakeGlyph(f, i, f, glyph);
    else
      TakeFallback(f, i, c);
  }
  return true;
}

const FontFace* FaceOfFile(const std::string& file, int index, const FontUnits* known) {
  auto& faces = Fonts().faces;
  for (const auto& f : faces)
    if (f->index == index && f->file == file) return f.get();
  auto f = std::make_unique<FontFace>();
  f->file = file;
  f->index = index;
  if (known) {
    f->units = *known;
  } else {
    if (!LoadHandle(f.get())) return nullptr;
    f->units = {f->face->units_per_EM, f->face->ascender, f->face->descender,
                f->face->max_advance_width};
  }
  faces.push_back(std::move(f));
  return faces.back().get();
}

FontMetrics GetFontMetrics(const FontFace* f) {
  if (!f) return {1, 1, 1};
  float em = float(f->units.per_em);
  return {float(f->units.ascender) / em, float(f->units.descender) / em,
          float(f->units.max_advance) / em};
}

}  // namespace platform
