// What the room of fonts keeps: made with the first font, freed by FinishFonts.
#pragma once
#include <memory>
#include <vector>

#include "platform/fonts/face.h"
#include "platform/fonts/finder.h"
#include "platform/fonts/glyphs.h"

namespace platform {

struct FontState {
  std::vector<std::unique_ptr<FontFace>> faces;
  std::vector<std::unique_ptr<SizedFont>> sized;
  std::unique_ptr<FontFinder> finder;
  bool fallback_sought = false;
  const FontFace* fallback = nullptr;
  std::vector<SizedFont*> ahead;  // whose commonest glyphs are made ahead
  double ahead_scale = 1;
};
FontState& Fonts();

}  // namespace platform
