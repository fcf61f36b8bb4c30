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

bool Open(const SizedFont* font) {
  if (!font || !font->face) return false;
  if (font->opened) return true;
  SizedFont* f = const_cast<SizedFont*>(font);
  // The desktop's font draws in place of a file that can be read no longer.
  if (!OpenFace(f->face)) f->face = FallbackFont();
  f->opened = f->face && OpenFace(f->face);
  return f->opened;
}

GlyphSet* SetFor(SizedFont* font, double scale) {
  int device_size = int(std::min(font->size * scale * 64 + 0.5, 1e9));
  for (auto& s : font->sets)
    if (s->device_size == device_size) return s.get();
  font->sets.push_back(std::make_unique<GlyphSet>());
  font->sets.back()->device_size = device_size;
  return font->sets.back().get();
}

void StoreMask(GlyphSet* set, Glyph* g, const FT_GlyphSlot slot) {
  const FT_Bitmap& b = slot->bitmap;
  if (b.pixel_mode != FT_PIXEL_MODE_GRAY || b.width > 4096 || b.rows > 4096) return;
  g->left = int16_t(slot->bitmap_left);
  g->top = int16_t(slot->bitmap_top);
  g->width = uint16_t(b.width);
  g->rows = uint16_t(b.rows);
  g->stride = uint16_t((b.width + 3) & ~3u);
  g->offset = set->masks.size();
  set->masks.resize(g->offset + size_t(g->stride) * g->rows);
  for (unsigned y = 0; y < b.rows; ++y)
    std::memcpy(&set->masks[g->offset + size_t(y) * g->stride], b.buffer + int(y) * b.pitch,
                b.width);
  set->ascent = std::max(set->ascent, int(g->top));
  set->descent = std::max(set->descent, int(g->rows) - g->top);
}

void MakeGlyph(const SizedFont* font, GlyphSet* set, uint8_t character) {
  Glyph* g = &set->glyphs[character];
  g->made = true;
  FontFace* f = const_cast<FontFace*>(font->face->sources[character]);
  uint32_t glyph = font->face->glyphs[character];
  if (glyph == kNoGlyph || set->device_size <= 0 || set->device_size > kMaxDeviceSize) return;
  if (f->ft_size != set->device_size) {
    if (FT_Set_Char_Size(f->face, 0, set->device_size, 72, 72)) return;
    f->ft_size = set->device_size;
  }
  // Light: the shapes are fitted to the rows, never moved sideways.
  if (FT_Load_Glyph(f->face, glyph, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP)) return;
  if (FT_Render_Glyph(f->face->glyph, FT_RENDER_MODE_NORMAL)) return;
  StoreMask(set, g, f->face->glyph);
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

// Paints all of a mask, in whole groups of four: the row behind it is padded with nothing, and so
// many pixels must exist in the surface. What has no coverage keeps its value.
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

void PaintGlyph(const Context* c, const GlyphSet& set, const Glyph& g, int x, int y,
                const pixman_box32_t* whole, uint32_t color) {
  DeviceRect r{x, y, x + g.width, y + g.rows};
  const uint8_t* mask = set.masks.data() + g.offset;
  if (whole && r.left >= whole->x1 && r.left + g.stride <= whole->x2 && r.top >= whole->y1 &&
      r.bottom <= whole->y2)
    return PaintWhole(c, mask, g, x, y, color);
  ForEachPart(c, r,
              [&](const DeviceRect& part) { PaintMask(c, mask, g.stride, x, y, part, color); });
}

}  // namespace

SizedFont* OpenFont(const FontFace* face, int size) {
  if (!face) return nullptr;
  auto& fonts = Fonts().sized;
  for (const auto& f : fonts)
    if (f->face == face && f->size == size) return f.get();
  fonts.push_back(std::make_unique<SizedFont>(SizedFont{face, size, false, {}}));
  return fonts.back().get();
}

TextScale GetTextScale(const SizedFont* font) {
  if (!Open(font)) return {0, 1};
  return {std::clamp(font->size, 0, 1 << 24), font->face->units.per_em};
}

const int32_t* GetAdvances(const SizedFont* font) {
  static const int32_t kNone[256] = {};
  return Open(font) ? font->face->advances : kNone;
}

int64_t MeasureText(const SizedFont* font, const char* text, size_t n) {
  const int32_t* advances = GetAdvances(font);
  int64_t sum = 0;
  for (size_t i = 0; i < n; ++i) sum += advances[uint8_t(text[i])];
  return sum;
}

void DrawGlyphs(ContextRef c, SizedFont* font, int x, int y, const char* text, size_t n,
                uint32_t rgb) {
  if (!Ready(c) || !text || !Open(font)) return;
  int baseline = EdgeY(c, y);
  GlyphSet* set = SetFor(font, c->scale);
  const FontFace* face = font->face;
  const pixman_box32_t* whole = c->box_count == 1 ? c->boxes : nullptr;
  uint32_t color = 0xFF000000u | rgb;
  // Device position of the pen = (origin * em + sum * size) * scale / em, rounded.
  double unit = double(std::clamp(font->size, 0, 1 << 24)) * c->scale / face->units.per_em;
  double pen = double(int64_t{x} + c->origin_x) * c->scale + 0.5;
  int margin = set->device_size >> 5;  // two ems: no glyph reaches further from its pen
  int64_t sum = 0;
  DeviceRect box{c->extents.right, baseline, c->extents.left, baseline};
  for (size_t i = 0; i < n; ++i) {
    uint8_t character = uint8_t(text[i]);
    double exact = pen + double(sum) * unit;
    sum += face->advances[character];
    if (exact > c->extents.right + margin) break;
    if (exact < c->extents.left - margin) continue;
    int at = int(exact + kBias) - kBias;  // the floor
    Glyph& g = set->glyphs[character];
    if (!g.made) MakeGlyph(font, set, character);
    if (!g.width) continue;
    int left = at + g.left;
    PaintGlyph(c, *set, g, left, baseline - g.top, whole, color);
    box.left = std::min(box.left, left);
    box.right = std::max(box.right, left + g.width);
  }
  box.top = baseline - set->ascent;
  box.bottom = baseline + set->descent;
  MarkClipped(c, box);
}

}  // namespace platform
