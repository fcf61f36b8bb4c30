#include "platform/fonts/ahead.h"

#include <utility>

#include "platform/ahead_job.h"
#include "platform/fonts/state.h"

namespace platform {
namespace {

// About in the order of their use.
constexpr std::string_view kCommonest =
    "eatoinsrldcumpfghbwyvk0123456789. SPFCMDTRENAHIOLBGVUxjzqQJKWXYZ,:-()";

void (*open_fonts)();

AheadJob opening([] {
  open_fonts();
  for (const auto& font : Fonts().sized) OpenSized(font.get());
});

struct {
  std::vector<SizedFont*> fonts;
  double scale = 1;
  std::atomic<bool> stops = false;
} glyphs;

AheadJob making_glyphs([] {
  for (const char c : kCommonest)
    for (SizedFont* font : glyphs.fonts)
      if (!glyphs.stops) MakeGlyphAhead(font, glyphs.scale, c);
});

}  // namespace

void BeginOpening(void (*open)()) {
  if (!open || opening.begun()) return;
  open_fonts = open;
  opening.Begin();
}

void FinishOpening(void (*open)()) {
  if (opening.begun())
    opening.Finish();
  else if (open)
    open();
}

void BeginGlyphs(std::vector<SizedFont*> fonts, double scale) {
  StopGlyphs();
  std::erase_if(fonts, [](const SizedFont* font) { return !font || !font->opened; });
  if (fonts.empty()) return;
  glyphs.fonts = std::move(fonts);
  glyphs.scale = scale;
  glyphs.stops = false;
  making_glyphs.Begin();
}

void StopGlyphs() {
  if (!making_glyphs.begun()) return;
  glyphs.stops = true;
  making_glyphs.Drop();
}

}  // namespace platform
