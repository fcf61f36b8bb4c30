#include "bench/draw_floors.h"

#include <ft2build.h>
#include <pixman.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "platform/fonts/face.h"

namespace floors {

void Fill(const Buffer& b, int x, int y, int w, int h, uint32_t color) {
  uint32_t* row = b.pixels + size_t(y) * size_t(b.stride) + x;
  for (int j = 0; j < h; ++j, row += b.stride)
    for (int i = 0; i < w; ++i) row[i] = color;
}

namespace {

struct Steps {
  uint32_t* p;
  intptr_t step_x, step_y;
  int dx, dy, error, count;
  Steps(const Buffer& b, int x1, int y1, int x2, int y2)
      : p(b.pixels + size_t(y1) * size_t(b.stride) + x1),
        step_x(x1 < x2 ? 1 : -1),
        step_y(y1 < y2 ? b.stride : -b.stride),
        dx(std::abs(x2 - x1)),
        dy(-std::abs(y2 - y1)),
        error(dx + dy),
        count(std::max(dx, -dy)) {}
  void Next() {
    int twice = 2 * error;
    if (twice >= dy) {
      error += dy;
      p += step_x;
    }
    if (twice <= dx) {
      error += dx;
      p += step_y;
    }
  }
};

}  // namespace

void Bresenham(const Buffer& b, int x1, int y1, int x2, int y2, uint32_t color) {
  Steps s(b, x1, y1, x2, y2);
  for (int i = 0;; ++i) {
    *s.p = color;
    if (i == s.count) break;
    s.Next();
  }
}

void DashedBresenham(const Buffer& b, int x1, int y1, int x2, int y2, int dash, uint32_t one,
                     uint32_t two) {
  Steps s(b, x1, y1, x2, y2);
  int left = dash;
  for (int i = 0;; ++i) {
    *s.p = one;
    if (i == s.count) break;
    s.Next();
    if (--left == 0) {
      std::swap(one, two);
      left = dash;
    }
  }
}

void Polygon(const Buffer& b, const int16_t* points, int n, uint32_t color) {
  int top = 32767, bottom = -32768;
  for (int i = 0; i < n; ++i) {
    top = std::min<int>(top, points[2 * i + 1]);
    bottom = std::max<int>(bottom, points[2 * i + 1]);
  }
  for (int y = top; y < bottom; ++y) {
    int crossings[64], count = 0;
    for (int i = 0, j = n - 1; i < n; j = i++) {
      int x1 = points[2 * j], y1 = points[2 * j + 1], x2 = points[2 * i], y2 = points[2 * i + 1];
      if ((y1 <= y) == (y2 <= y)) continue;
      float at = float(x1) + (float(y) + 0.5f - float(y1)) * float(x2 - x1) / float(y2 - y1);
      int x = int(std::ceil(at - 0.5f)), k = count++;
      for (; k > 0 && crossings[k - 1] > x; --k) crossings[k] = crossings[k - 1];
      crossings[k] = x;
    }
    uint32_t* row = b.pixels + size_t(y) * size_t(b.stride);
    for (int k = 0; k + 1 < count; k += 2)
      for (int x = crossings[k]; x < crossings[k + 1]; ++x) row[x] = color;
  }
}

int64_t Sum(const int32_t* advances, const char* text) {
  int64_t sum = 0;
  for (; *text; ++text) sum += advances[uint8_t(*text)];
  return sum;
}

namespace {

pixman_image_t* Target(const Buffer& b) {
  return pixman_image_create_bits_no_clear(PIXMAN_x8r8g8b8, b.width, b.height, b.pixels,
                                           b.stride * 4);
}

pixman_image_t* Black() {
  pixman_color_t black = {0x1000, 0x1000, 0x1000, 0xFFFF};
  return pixman_image_create_solid_fill(&black);
}

}  // namespace

struct Glyphs::Impl {
  pixman_image_t *target, *ink;
  pixman_glyph_cache_t* cache;
  const void* glyphs[256];
  double advances[256];

  void Insert(size_t i, FT_GlyphSlot slot) {
    if (!slot->bitmap.width) return;
    pixman_image_t* mask = pixman_image_create_bits(PIXMAN_a8, int(slot->bitmap.width),
                                                    int(slot->bitmap.rows), nullptr, 0);
    uint8_t* out = reinterpret_cast<uint8_t*>(pixman_image_get_data(mask));
    for (unsigned y = 0; y < slot->bitmap.rows; ++y)
      std::memcpy(out + int(y) * pixman_image_get_stride(mask),
                  slot->bitmap.buffer + int(y) * slot->bitmap.pitch, slot->bitmap.width);
    glyphs[i] = pixman_glyph_cache_insert(cache, this, reinterpret_cast<void*>(i + 1),
                                          -slot->bitmap_left, slot->bitmap_top, mask);
    pixman_image_unref(mask);
  }
};

Glyphs::Glyphs(const Buffer& b, const platform::FontFace* face, int size,
               const std::u32string& characters)
    : impl_(new Impl) {
  platform::OpenFace(face);
  impl_->target = Target(b);
  impl_->ink = Black();
  impl_->cache = pixman_glyph_cache_create();
  pixman_glyph_cache_freeze(impl_->cache);
  for (size_t i = 0; i < 256; ++i) {
    impl_->glyphs[i] = nullptr;
    const bool other = i >= 1 && i <= characters.size();
    if (!characters.empty() && !other) continue;
    const uint32_t slot = other ? platform::SlotOf(characters[i - 1]) : uint32_t(i);
    const platform::CharacterPage& page = platform::PageOfSlot(face, slot);
    const uint32_t glyph = page.glyphs[slot & 0xFF];
    impl_->advances[i] = double(page.advances[slot & 0xFF]) * size / face->units.per_em;
    if (glyph >= platform::kBoxGlyph) continue;
    auto* source = const_cast<platform::FontFace*>(page.sources[slot & 0xFF]);
    FT_Set_Char_Size(source->handle.face(), 0, size * 64, 72, 72);
    source->ft_size = 0;
    FT_Load_Glyph(source->handle.face(), glyph, FT_LOAD_TARGET_LIGHT | FT_LOAD_RENDER);
    impl_->Insert(i, source->handle.face()->glyph);
  }
}

Glyphs::~Glyphs() {
  pixman_glyph_cache_thaw(impl_->cache);
  pixman_glyph_cache_destroy(impl_->cache);
  pixman_image_unref(impl_->target);
  pixman_image_unref(impl_->ink);
  delete impl_;
}

void Glyphs::Draw(int x, int baseline, const std::string& text) {
  pixman_glyph_t list[256];
  int n = 0;
  double pen = 0.5;
  for (char c : text) {
    uint8_t k = uint8_t(c);
    if (impl_->glyphs[k]) list[n++] = {int(pen), 0, impl_->glyphs[k]};
    pen += impl_->advances[k];
  }
  pixman_composite_glyphs_no_mask(PIXMAN_OP_OVER, impl_->ink, impl_->target, 0, 0, x, baseline,
                                  impl_->cache, n, list);
}

struct Copy::Impl {
  pixman_image_t *target, *source;
  int w, h;
};

Copy::Copy(const Buffer& b, int w, int h, uint8_t* pixels) : impl_(new Impl) {
  impl_->target = Target(b);
  impl_->source = pixman_image_create_bits_no_clear(PIXMAN_x8r8g8b8, w, h,
                                                    reinterpret_cast<uint32_t*>(pixels), 4 * w);
  impl_->w = w;
  impl_->h = h;
}

Copy::~Copy() {
  pixman_image_unref(impl_->target);
  pixman_image_unref(impl_->source);
  delete impl_;
}

void Copy::Draw(int x, int y) {
  pixman_image_composite32(PIXMAN_OP_SRC, impl_->source, nullptr, impl_->target, 0, 0, 0, 0, x, y,
                           impl_->w, impl_->h);
}

struct Mask::Impl {
  pixman_image_t *target, *ink, *mask;
  int w, h;
};

Mask::Mask(const Buffer& b, int w, int h, const uint8_t* bits) : impl_(new Impl) {
  impl_->target = Target(b);
  impl_->ink = Black();
  impl_->mask = pixman_image_create_bits(PIXMAN_a1, w, h, nullptr, 0);
  uint8_t* out = reinterpret_cast<uint8_t*>(pixman_image_get_data(impl_->mask));
  for (int y = 0; y < h; ++y)
    std::memcpy(out + y * pixman_image_get_stride(impl_->mask), bits + y * ((w + 7) / 8),
                size_t(w + 7) / 8);
  impl_->w = w;
  impl_->h = h;
}

Mask::~Mask() {
  pixman_image_unref(impl_->target);
  pixman_image_unref(impl_->ink);
  pixman_image_unref(impl_->mask);
  delete impl_;
}

void Mask::Draw(int x, int y) {
  pixman_image_composite32(PIXMAN_OP_OVER, impl_->ink, impl_->mask, impl_->target, 0, 0, 0, 0, x, y,
                           impl_->w, impl_->h);
}

}  // namespace floors
