#include "platform/fonts/face.h"

#include FT_ADVANCES_H

#include <utility>

#include "platform/fonts/glyph_cache.h"
#include "platform/fonts/state.h"
#include "platform/text/mac_roman.h"

namespace platform {
namespace {

// A file that cannot be opened is tried again: there may be one, or a free descriptor, later.
bool LoadHandle(FontFace* f) {
  if (f->tried) return f->handle.face();
  if (!f->handle.OpenFile(f->file)) return false;
  f->tried = true;
  if (f->handle.OpenFont(f->index)) f->units.per_em = f->handle.face()->units_per_EM;
  return f->handle.face();
}

// False when it cannot be read; it is 0 then.
bool ReadAdvance(FT_Face face, FT_UInt glyph, int64_t* units) {
  FT_Fixed advance = 0;
  *units = 0;
  if (FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance)) return false;
  *units = advance < 0 ? 0 : advance > 1 << 20 ? 1 << 20 : advance;
  return true;
}

// 0: none.
FT_UInt GlyphIn(FontFace* f, char32_t c) {
  return LoadHandle(f) ? FT_Get_Char_Index(f->handle.face(), c) : 0;
}

// The apple-shaped slot of the set has no glyph outside one maker's fonts: a lozenge stands there.
char32_t StandIn(char32_t c) {
  return c == 0xF8FF ? 0x25CA : c;
}

// False when the font cannot say how wide it is.
bool TakeGlyph(FontFace* f, CharacterPage* page, int at, const FontFace* from, FT_UInt glyph) {
  page->glyphs[at] = glyph;
  page->sources[at] = from;
  int64_t units;
  if (!from->handle.face() || !ReadAdvance(from->handle.face(), glyph, &units)) return false;
  if (int em = from->units.per_em; em != f->units.per_em)
    units = (units * f->units.per_em + em / 2) / em;
  page->advances[at] = int32_t(units);
  return true;
}

// From the font itself.
bool TakeOwn(FontFace* f, CharacterPage* page, int at, char32_t c) {
  const FT_UInt glyph = GlyphIn(f, c);
  if (glyph && TakeGlyph(f, page, at, f, glyph) && KeepCharacter(f, page, at)) KeepGlyphs();
  return glyph != 0;
}

bool TakeStored(FontFace* f, CharacterPage* page, int at, uint32_t slot) {
  const StoredCharacter* c = FindStoredCharacter(f->stored, slot);
  if (!c) return false;
  page->glyphs[at] = kUnreadGlyph;
  page->sources[at] = f;
  page->advances[at] = c->advance;
  page->overhang[at] = c->overhang != 0;
  KeepCharacter(f, page, at);
  return true;
}

bool TakeFrom(FontFace* f, CharacterPage* page, int at, const FontFace* from, char32_t c) {
  const FT_UInt glyph = GlyphIn(const_cast<FontFace*>(from), c);
  if (glyph) TakeGlyph(f, page, at, from, glyph);
  return glyph != 0;
}

// From another font; then the replacement sign, a question mark, and the font's own empty box.
void TakeFallback(FontFace* f, CharacterPage* page, int at, char32_t c) {
  const FontFace* other = FindFontWithCharacter(c);
  if (other && other != f && TakeFrom(f, page, at, other, c)) return;
  for (char32_t stand_in : {char32_t{0xFFFD}, char32_t{'?'}})
    if (TakeFrom(f, page, at, f, stand_in)) return;
  TakeGlyph(f, page, at, f, 0);
}

void TakeToolkitCharacter(FontFace* f, CharacterPage* page, int at, char32_t c) {
  c = StandIn(c);
  if (!TakeOwn(f, page, at, c)) TakeFallback(f, page, at, c);
}

void FillToolkitPage(FontFace* f, int first, int end) {
  CharacterPage* page = f->toolkit.get();
  for (int i = first; i < end; ++i) {
    page->sources[i] = f;
    page->glyphs[i] = kNoGlyph;
    const char32_t c = MacRomanToUnicode(uint8_t(i));
    page->kinds[i] = KindOf(StandIn(c));
    if (page->kinds[i] != CharacterKind::kControl && !TakeStored(f, page, i, uint32_t(i)))
      TakeToolkitCharacter(f, page, i, c);
  }
}

// --- The other pages

int StyleOf(FontFace* f) {
  if (!LoadHandle(f)) return 0;
  return int(f->handle.face()->style_flags & (FT_STYLE_FLAG_BOLD | FT_STYLE_FLAG_ITALIC));
}

bool TakeFromAny(FontFace* f, CharacterPage* page, int at, char32_t c) {
  if (TakeOwn(f, page, at, c)) return true;
  for (const FontFace* other : FallbackFaces(c >> 8, StyleOf(f)))
    if (TakeFrom(f, page, at, other, c)) return true;
  return false;
}

void TakeBox(FontFace* f, CharacterPage* page, int at, char32_t c) {
  page->glyphs[at] = kBoxGlyph;
  page->sources[at] = f;
  page->advances[at] = (f->units.per_em * BoxColumns(c) + 12) / 13;
}

// Marks have no advance. Most are drawn to the left of their pen, over the letter. Those of some
// fonts, such as fixed-width ones, are not, and so are drawn at the letter's own pen.
void PlaceMark(CharacterPage* page, int at) {
  page->advances[at] = 0;
  FT_Face face = page->sources[at]->handle.face();
  if (FT_Load_Glyph(face, page->glyphs[at], FT_LOAD_NO_SCALE))
    page->kept[at] = false;
  else
    page->overhang[at] = face->glyph->metrics.horiBearingX < 0;
}

void LookUp(FontFace* f, CharacterPage* page, char32_t c) {
  int at = int(c & 0xFF);
  CharacterKind kind = page->kinds[at] = KindOf(c);
  page->glyphs[at] = kNoGlyph;
  page->sources[at] = f;
  if (kind == CharacterKind::kControl || kind == CharacterKind::kInvisible ||
      kind == CharacterKind::kJoiner)
    return;
  if (TakeStored(f, page, at, SlotOf(c))) return;
  if (UnicodeToMacRoman(c) >= 0) {
    // Not by way of the toolkit's page: its other characters may be in fonts yet to be opened.
    TakeToolkitCharacter(f, page, at, c);
  } else if (!TakeFromAny(f, page, at, c)) {
    if (kind == CharacterKind::kMark) page->kinds[at] = CharacterKind::kFollower;
    TakeBox(f, page, at, c);
  } else if (kind == CharacterKind::kMark) {
    PlaceMark(page, at);
  }
}

}  // namespace

bool OpenFace(const FontFace* face) {
  FontFace* f = const_cast<FontFace*>(face);
  if (f->toolkit) return true;
  // The file stays open, so that what is not stored can be read also after an update of the font.
  if ((f->tried && !f->handle.face()) || !f->handle.OpenFile(f->file)) return false;
  f->stored = FindStoredFace(f->file, f->index, f->handle.identity());
  if (f->stored)
    f->units.per_em = f->stored->per_em;
  else if (!LoadHandle(f))
    return false;
  f->toolkit = std::make_unique<CharacterPage>();
  KeepFace(f);
  FillToolkitPage(f, 0, 0x80);
  return true;
}

void ReadUpperHalf(const FontFace* face) {
  FontFace* f = const_cast<FontFace*>(face);
  if (!std::exchange(f->upper_half, true)) FillToolkitPage(f, 0x80, 0x100);
}

const CharacterPage& PageOfSlot(const FontFace* face, uint32_t slot) {
  if (slot >= 0x80 && slot < 0x100) ReadUpperHalf(face);
  if (slot < 0x100) return *face->toolkit;
  FontFace* f = const_cast<FontFace*>(face);
  char32_t c = slot - 256;
  size_t number = c >> 8;
  if (number >= f->pages.size()) f->pages.resize(number + 1);
  auto& page = f->pages[number];
  if (!page) page = std::make_unique<CharacterPage>();
  if (page->kinds[c & 0xFF] == CharacterKind::kUnknown) LookUp(f, page.get(), c);
  return *page;
}

char32_t CharacterOf(uint32_t slot) {
  return StandIn(slot < 256 ? MacRomanToUnicode(uint8_t(slot)) : char32_t(slot - 256));
}

uint32_t GlyphNumberOf(const FontFace* face, uint32_t slot) {
  CharacterPage& page = const_cast<CharacterPage&>(PageOfSlot(face, slot));
  uint32_t& glyph = page.glyphs[slot & 0xFF];
  if (glyph != kUnreadGlyph) return glyph;
  FontFace* f = const_cast<FontFace*>(face);
  if (!LoadHandle(f)) return kNoGlyph;
  return glyph = FT_Get_Char_Index(f->handle.face(), CharacterOf(slot));
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
    FT_Face face = f->handle.face();
    f->units = {face->units_per_EM, face->ascender, face->descender, face->max_advance_width};
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
