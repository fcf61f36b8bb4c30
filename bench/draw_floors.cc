#include "bench/draw_floors.h"

#include <ft2build.h>
#include <pixman.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "platform/fonts/face.h"
#include FT_OUTLINE_H

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

struct Circle::Impl {
  Buffer buffer;
  FT_Library library = nullptr;
  int diameter;
  FT_Vector points[12] = {};
  unsigned char tags[12] = {};
  short end = 11;
  FT_Outline outline{};
  uint32_t color = 0;

  // Two channels at a time.
  static uint32_t Mix(uint32_t over, uint32_t under, uint32_t coverage) {
    const uint32_t rest = 255 - coverage;
    const uint32_t rb = (over & 0xFF00FF) * coverage + (under & 0xFF00FF) * rest + 0x800080;
    const uint32_t g = (over >> 8 & 0xFF) * coverage + (under >> 8 & 0xFF) * rest + 0x80;
    return 0xFF000000u | (rb >> 8 & 0xFF00FF) | (g & 0xFF00);
  }
  static void Spans(int y, int count, const FT_Span* spans, void* user) {
    const auto* c = static_cast<const Impl*>(user);
    uint32_t* row = c->buffer.pixels + size_t(c->buffer.height - 1 - y) * size_t(c->buffer.stride);
    for (const FT_Span* s = spans; s != spans + count; ++s) {
      uint32_t* p = row + s->x;
      if (s->coverage == 255)
        for (int i = 0; i < s->len; ++i) p[i] = c->color;
      else
        for (int i = 0; i < s->len; ++i) p[i] = Mix(c->color, p[i], s->coverage);
    }
  }
};

Circle::Circle(const Buffer& b, int diameter) : impl_(new Impl{.buffer = b, .diameter = diameter}) {
  FT_Init_FreeType(&impl_->library);
  const double r = diameter / 2.0, k = r * 0.5522847498;
  const double at[12][2] = {{0, -r}, {k, -r}, {r, -k}, {r, 0},  {r, k},   {k, r},
                            {0, r},  {-k, r}, {-r, k}, {-r, 0}, {-r, -k}, {-k, -r}};
  for (int i = 0; i < 12; ++i) {
    impl_->points[i] = {FT_Pos(at[i][0] * 64), FT_Pos(at[i][1] * 64)};
    impl_->tags[i] = i % 3 ? FT_CURVE_TAG_CUBIC : FT_CURVE_TAG_ON;
  }
  impl_->outline.n_contours = 1;
  impl_->outline.n_points = 12;
  impl_->outline.points = impl_->points;
  impl_->outline.tags = reinterpret_cast<decltype(impl_->outline.tags)>(impl_->tags);
  impl_->outline.contours = reinterpret_cast<decltype(impl_->outline.contours)>(&impl_->end);
}

Circle::~Circle() {
  FT_Done_FreeType(impl_->library);
  delete impl_;
}

void Circle::Draw(int x, int y, uint32_t color) {
  Impl& c = *impl_;
  c.color = 0xFF000000u | color;
  const FT_Pos dx = x * 64 + c.diameter * 32, dy = (c.buffer.height - y) * 64 - c.diameter * 32;
  FT_Outline_Translate(&c.outline, dx, dy);
  FT_Raster_Params params{};
  params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
  params.gray_spans = Impl::Spans;
  params.user = &c;
  params.clip_box = {0, 0, c.buffer.width, c.buffer.height};
  FT_Outline_Render(c.library, &c.outline, &params);
  FT_Outline_Translate(&c.outline, -dx, -dy);
}

}  // namespace floors
