// A font file as the rooms of text see it, and FreeType's handles, opened when first needed.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/fonts/fonts.h"
#include "platform/graphics/font_library.h"

namespace platform {

// In place of a glyph: nothing is drawn.
constexpr uint32_t kNoGlyph = 0xFFFFFFFFu;

// Metrics in the font's own units.
struct FontUnits {
  int per_em = 1000, ascender = 0, descender = 0, max_advance = 0;
};

struct FontFace {
  FontFace() = default;
  FontFace(const FontFace&) = delete;
  FontFace& operator=(const FontFace&) = delete;
  ~FontFace();

  std::string file;
  int index = 0;
  FontUnits units;
  // --- Filled by OpenFace.
  FT_Face face = nullptr;
  bool tried = false;
  int ft_size = 0;  // 26.6 size that `face` is set to
  int32_t advances[256] = {};
  uint32_t glyphs[256];
  const FontFace* sources[256] = {};  // the face that has the glyph
};

// Opens the file and reads the advances; false when it cannot be read. Once a face.
bool OpenFace(const FontFace* face);
// The face for a file, made on first use. Metrics are taken from `known` or read from the file;
// null when it cannot be read.
const FontFace* FaceOfFile(const std::string& file, int index, const FontUnits* known = nullptr);

}  // namespace platform
