// What the room of fonts keeps: made with the first font, freed by FinishFonts.
#pragma once
#include <memory>
#include <vector>

#include "platform/fonts/face.h"
#include "platform/fonts/finder.h"
#include "platform/fonts/glyph_cache.h"
#include "platform/fonts/glyphs.h"

namespace platform {

struct FontState {
  std::unique_ptr<GlyphCache> glyph_cache;  // read with the first face
  bool keep_glyphs = false;                 // there is something to add to it
  size_t glyph_room = kGlyphCacheRoom;      // left in it by what this process draws
  std::vector<std::unique_ptr<FontFace>> faces;
  std::vector<std::unique_ptr<SizedFont>> sized;
  std::unique_ptr<FontFinder> finder;
  bool fallback_sought = false;
  const FontFace* fallback = nullptr;
};
FontState& Fonts();
// Saves what the program has made, as far as there is a state.
void SaveFonts();

}  // namespace platform
