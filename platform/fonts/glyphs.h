// A face at a size: the grey masks of its glyphs, made on first use, one set a device size.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/fonts/fonts.h"
#include "platform/fonts/glyph_cache.h"

namespace platform {

// A mask: `rows` rows of `stride` bytes at `offset`; its corner lies at (left, -top) of the pen.
struct Glyph {
  bool made = false, drawable = false;  // that is false of what the font could not give
  bool kept = false;                    // goes to the file of glyphs
  int16_t left = 0, top = 0;
  uint16_t width = 0, rows = 0, stride = 0;
  size_t offset = 0;
};

struct GlyphPage {
  Glyph glyphs[256];
};

// Masks for one size in device pixels (26.6), in pages as a face has its characters.
struct GlyphSet {
  int device_size = 0;
  const StoredSet* stored = nullptr;              // its masks of earlier programs; null: none
  std::vector<std::unique_ptr<GlyphPage>> pages;  // by slot / 256
  std::vector<uint8_t> masks;
  int ascent = 0, descent = 0;  // of the masks made so far
  size_t kept_bytes = 0;        // of those that go to the file of glyphs, with their records
};

struct SizedFont {
  const FontFace* face;
  int size;
  bool opened = false;
  std::vector<std::unique_ptr<GlyphSet>> sets;
};
// Opens its face, or the desktop's font in its place; false when there is none.
bool OpenSized(const SizedFont* font);

}  // namespace platform
