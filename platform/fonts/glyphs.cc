// Sized fonts: sums of advances, grey glyph masks made on first use, and the loop that paints them.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/fonts/state.h"
#include "platform/graphics/context_state.h"

namespace platform {
namespace {

// Makes any pen position that matters positive.
constexpr int kBias = 1 << 20;

// Larger characters are not drawn: a mask would cost megabytes.
constexpr int kMaxDeviceSize = 1024 * 64;

// Bytes of one set's masks: a few thousand large characters.
constexpr size_t kMaxMasks = size_t{16} << 20;

GlyphSet* SetFor(SizedFont* font, double scale) {
  int device_size = int(std::min(font->size * scale * 64 + 0.5, 1e9));
  for (auto& s : font->sets) {
    if (s->device_size != device_size) continue;
    // The masks of a size are dropped when they take too much memory, whatever is drawn.
    if (s->masks.size() > kMaxMasks) *s = {device_size, s->stored, {}, {}, s->ascent, s->descent};
    return s.get();
  }
  font->sets.push_back(std::make_unique<GlyphSet>());
  font->sets.back()->device_size = device_size;
  font->sets.back()->stored = FindStoredSet(font->face->stored, device_size);
  return font->sets.back().get();
}

// Room for a mask whose corner is at (left, -top) of the pen; null when it is too large.
uint8_t* AddMask(GlyphSet* set, Glyph* g, int left, int top, unsigned width, unsigned rows) {
  if (width > 4096 || rows > 4096) return nullptr;
  g->drawable = true;
  g->left = int16_t(left);
  g->top = int16_t(top);
  g->width = uint16_t(width);
  g->rows = uint16_t(rows);
  g->stride = uint16_t((width + 3) & ~3u);
  g->offset = set->masks.size();
  set->masks.resize(g->offset + size_t(g->stride) * g->rows);
  set->ascent = std::max(set->ascent, int(g->top));
  set->descent = std::max(set->descent, int(g->rows) - g->top);
  return set->masks.data() + g->offset;
}

void StoreMask(GlyphSet* set, Glyph* g, const FT_GlyphSlot slot) {
  const FT_Bitmap& b = slot->bitmap;
  if (b.pixel_mode != FT_PIXEL_MODE_GRAY) return;
  uint8_t* mask = AddMask(set, g, slot->bitmap_left, slot->bitmap_top, b.width, b.rows);
  for (unsigned y = 0; mask && y < b.rows; ++y)
    std::memcpy(mask + size_t(y) * g->stride, b.buffer + int(y) * b.pitch, b.width);
}

// Three columns and five rows a digit, the top row in the highest bits.
constexpr uint16_t kDigits[16] = {
    075557, 026227, 071747, 071717, 055711, 074717, 074757, 071111,
    075757, 075717, 075755, 065656, 074447, 065556, 074647, 074644,
};

// A frame around the character's number in hexadecimal digits, in two rows. All strokes have the
// same width, so that they can be read: whole pixels, the largest that the size has room for. Where
// there is no room for digits there is the frame alone.
void MakeBox(GlyphSet* set, Glyph* g, char32_t c) {
  const double unit = set->device_size / 64.0 / 13;  // of the advance: a pixel in the usual size
  const int stroke = std::max(1, int(unit)), digits = c > 0xFFFF ? 3 : 2;
  const bool readable = unit >= 0.95;
  const double side = readable ? stroke : unit;
  const int width = int((BoxColumns(c) - 2) * side + 0.5), rows = int(15 * side + 0.5);
  // In the middle of its advance, and of capital letters with what hangs below the baseline.
  const int left = int((BoxColumns(c) * unit - width) / 2 + 0.5);
  const int top = int(4.5 * unit + rows / 2.0 + 0.5);
  uint8_t* mask = AddMask(set, g, left, top, unsigned(width), unsigned(rows));
  if (!mask) return;
  auto fill = [&](int x, int y, int w, int h) {
    for (int row = std::max(y, 0); row < y + h && row < rows; ++row)
      for (int i = std::max(x, 0); i < x + w && i < width; ++i) mask[row * g->stride + i] = 255;
  };
  fill(0, 0, width, stroke);
  fill(0, rows - stroke, width, stroke);
  fill(0, 0, stroke, rows);
  fill(width - stroke, 0, stroke, rows);
  for (int i = 0; readable && i < 2 * digits; ++i) {
    const uint16_t shape = kDigits[c >> 4 * (2 * digits - 1 - i) & 15];
    const int x = 2 + i % digits * 4, y = 2 + i / digits * 6;
    for (int bit = 0; bit < 15; ++bit)
      if (shape >> (14 - bit) & 1)
        fill((x + bit % 3) * stroke, (y + bit / 3) * stroke, stroke, stroke);
  }
}

void MakeGlyph(const SizedFont* font, GlyphSet* set, Glyph* g, uint32_t slot) {
  g->made = true;
  const CharacterPage& page = PageOfSlot(font->face, slot);
  if (const StoredGlyph* stored = FindStoredGlyph(set->stored, slot)) {
    uint8_t* mask = AddMask(set, g, stored->left, stored->top, stored->width, stored->rows);
    if (mask) std::memcpy(mask, set->stored->masks.data() + stored->offset, stored->bytes());
    if (page.kept[slot & 0xFF]) KeepGlyph(set, g);
    return;
  }
  const uint32_t glyph = GlyphNumberOf(font->face, slot);
  if (glyph == kNoGlyph || set->device_size <= 0 || set->device_size > kMaxDeviceSize) return;
  if (glyph == kBoxGlyph) return MakeBox(set, g, slot - 256);
  FontFace* f = const_cast<FontFace*>(page.sources[slot & 0xFF]);
  FT_Face face = f->handle.face();
  if (f->ft_size != set->device_size) {
    if (FT_Set_Char_Size(face, 0, set->device_size, 72, 72)) return;
    f->ft_size = set->device_size;
  }
  // Light hinting fits the shapes to pixel rows and keeps their horizontal positions. Another way
  // of making masks needs another kTitle in glyph_cache.cc.
  if (FT_Load_Glyph(face, glyph, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP)) return;
  if (FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL)) return;
  StoreMask(set, g, face->glyph);
  if (page.kept[slot & 0xFF] && KeepGlyph(set, g)) KeepGlyphs();
}

const Glyph& GlyphOf(const SizedFont* font, GlyphSet* set, uint32_t slot) {
  const size_t number = slot >> 8;
  if (number >= set->pages.size()) set->pages.resize(number + 1);
  auto& page = set->pages[number];
  if (!page) page = std::make_unique<GlyphPage>();
  Glyph& g = page->glyphs[slot & 0xFF];
  if (!g.made) MakeGlyph(font, set, &g, slot);
  return g;
}

// Paints the part of a mask that lies in `part` (device pixels); its corner is at (x, y).
void PaintMask(const Context* c, const uint8_t* mask, int stride, int x, int y,
               const DeviceRect& part, uint32_t color) {
  const uint8_t* in = mask + int64_t(part.top - y) * stride + (part.left - x);
  uint32_t* out = c->row(part.top) + part.left;
  int width = part.width();
  for (int row = part.top; row < part.bottom; ++row, in += stride, out += c->surface->stride) {
    for (int i = 0; i < width; ++i)
      if (in[i]) out[i] = Blend(out[i], color, in[i]);
  }
}

// Paints all of a mask in groups of four pixels. Rows are padded without coverage, and the surface
// must have a pixel for each byte of the padded row. Pixels without coverage keep their value.
void PaintWhole(const Context* c, const uint8_t* mask, const Glyph& g, int x, int y,
                uint32_t color) {
  uint32_t* out = c->row(y) + x;
  for (int row = 0; row < g.rows; ++row, mask += g.stride, out += c->surface->stride) {
    for (int i = 0; i < g.stride; i += 4) {
      uint32_t coverages;
      std::memcpy(&coverages, mask + i, 4);
      if (coverages) BlendFour(out + i, color, coverages);
    }
  }
}

// The same with a share of the coverage.
void PaintPale(const Context* c, const uint8_t* mask, int stride, int x, int y,
               const DeviceRect& part, uint32_t color, uint32_t alpha) {
  for (int py = part.top; py < part.bottom; ++py) {
    const uint8_t* in = mask + int64_t(py - y) * stride - x;
    uint32_t* out = c->row(py);
    for (int px = part.left; px < part.right; ++px)
      if (const uint32_t coverage = (in[px] * alpha + 127) / 255)
        out[px] = Blend(out[px], color, coverage);
  }
}

struct Ink {
  uint32_t color;
  uint32_t alpha;  // 0..255
};

void PaintGlyph(const Context* c, const GlyphSet& set, const Glyph& g, int x, int y,
                const pixman_box32_t* whole, Ink ink) {
  const uint32_t color = ink.color;
  DeviceRect r{x, y, x + g.width, y + g.rows};
  const uint8_t* mask = set.masks.data() + g.offset;
  if (ink.alpha < 255)
    return ForEachPart(c, r, [&](const DeviceRect& part) {
      PaintPale(c, mask, g.stride, x, y, part, color, ink.alpha);
    });
  if (whole && r.left >= whole->x1 && r.left + g.stride <= whole->x2 && r.top >= whole->y1 &&
      r.bottom <= whole->y2)
    return PaintWhole(c, mask, g, x, y, color);
  ForEachPart(c, r,
              [&](const DeviceRect& part) { PaintMask(c, mask, g.stride, x, y, part, color); });
}

}  // namespace

bool OpenSized(const SizedFont* font) {
  if (!font || !font->face) return false;
  if (font->opened) return true;
  SizedFont* f = const_cast<SizedFont*>(font);
  // The desktop's font replaces one whose file cannot be read any more.
  if (!OpenFace(f->face)) f->face = FallbackFont();
  f->opened = f->face && OpenFace(f->face);
  return f->opened;
}

SizedFont* OpenFont(const FontFace* face, int size) {
  if (!face) return nullptr;
  auto& fonts = Fonts().sized;
  for (const auto& f : fonts)
    if (f->face == face && f->size == size) return f.get();
  fonts.push_back(std::make_unique<SizedFont>(SizedFont{face, size, false, {}}));
  return fonts.back().get();
}

// Whether a text has bytes from 0x80 on, asked eight at a time.
static bool HasUpperHalf(std::string_view text) {
  uint64_t all = 0;
  size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    uint64_t eight;
    std::memcpy(&eight, text.data() + i, 8);
    all |= eight;
  }
  for (; i < text.size(); ++i) all |= uint8_t(text[i]);
  return all & 0x8080808080808080u;
}

TextScale GetTextScale(const SizedFont* font) {
  if (!OpenSized(font)) return {0, 1};
  return {std::clamp(font->size, 0, 1 << 24), font->face->units.per_em};
}

const int32_t* GetAdvances(const SizedFont* font, std::string_view text) {
  static const int32_t kNone[256] = {};
  if (!OpenSized(font)) return kNone;
  if (!font->face->upper_half && HasUpperHalf(text)) ReadUpperHalf(font->face);
  return font->face->toolkit->advances;
}

int64_t MeasureText(const SizedFont* font, const char* text, size_t n) {
  const int32_t* advances = GetAdvances(font, {text, n});
  int64_t sum = 0;
  for (size_t i = 0; i < n; ++i) sum += advances[uint8_t(text[i])];
  return sum;
}

namespace {

// Draws glyphs. `each` calls its argument for each one, with the slot, the sum of the advances
// before it and its own advance, and stops when that returns false.
template <typename Each>
void DrawEach(ContextRef c, SizedFont* font, int x, int y, Ink ink, Each each) {
  int baseline = EdgeY(c, y);
  GlyphSet* set = SetFor(font, c->scale);
  const pixman_box32_t* whole = c->box_count == 1 ? c->boxes : nullptr;
  // Device position of the pen = (origin * em + sum * size) * scale / em, rounded.
  double unit = double(std::clamp(font->size, 0, 1 << 24)) * c->scale / font->face->units.per_em;
  double pen = double(int64_t{x} + c->origin_x) * c->scale + 0.5;
  int margin = set->device_size >> 5;  // two ems: no glyph reaches further beyond its advance
  DeviceRect box{c->extents.right, baseline, c->extents.left, baseline};
  each([&](uint32_t slot, int64_t sum, int32_t advance) {
    double exact = pen + double(sum) * unit;
    if (exact > c->extents.right + margin) return false;
    if (exact + advance * unit < c->extents.left - margin) return true;
    int at = int(exact + kBias) - kBias;  // the floor
    const Glyph& g = GlyphOf(font, set, slot);
    if (!g.width) return true;
    int left = at + g.left;
    PaintGlyph(c, *set, g, left, baseline - g.top, whole, ink);
    box.left = std::min(box.left, left);
    box.right = std::max(box.right, left + g.width);
    return true;
  });
  box.top = baseline - set->ascent;
  box.bottom = baseline + set->descent;
  MarkClipped(c, box);
}

}  // namespace

void DrawGlyphs(ContextRef c, SizedFont* font, int x, int y, const char* text, size_t n,
                uint32_t rgb) {
  if (!Ready(c) || !text || !OpenSized(font)) return;
  const int32_t* advances = GetAdvances(font, {text, n});
  DrawEach(c, font, x, y, {0xFF000000u | rgb, 255}, [=](auto draw) {
    int64_t sum = 0;
    for (size_t i = 0; i < n; ++i) {
      const uint8_t character = uint8_t(text[i]);
      if (!draw(character, sum, advances[character])) return;
      sum += advances[character];
    }
  });
}

void DrawLine(ContextRef c, SizedFont* font, int x, int y, const TextLine& line, uint32_t rgb,
              int alpha) {
  if (!Ready(c) || !OpenSized(font)) return;
  const Ink ink{0xFF000000u | rgb, uint32_t(std::clamp(alpha, 0, 255))};
  DrawEach(c, font, x, y, ink, [&line](auto draw) {
    for (const LineGlyph& g : line.glyphs)
      if (!draw(g.slot, g.pen, g.advance)) return;
  });
}

}  // namespace platform
