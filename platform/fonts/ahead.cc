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

// The fonts and the scale are in the state of fonts: it outlives the thread also where the program
// ends at once.
std::atomic<bool> stops = false;

AheadJob making_glyphs([] {
  for (const char c : kCommonest)
    for (SizedFont* font : Fonts().ahead)
      if (!stops) MakeGlyphAhead(font, Fonts().ahead_scale, c);
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

void DropOpening() {
  opening.Drop();
}

void BeginGlyphs(std::vector<SizedFont*> fonts, double scale) {
  StopGlyphs();
  std::erase_if(fonts, [](const SizedFont* font) { return !font || !font->opened; });
  if (fonts.empty()) return;
  Fonts().ahead = std::move(fonts);
  Fonts().ahead_scale = scale;
  stops = false;
  making_glyphs.Begin();
}

void StopGlyphs() {
  if (!making_glyphs.begun()) return;
  stops = true;
  making_glyphs.Drop();
}

}  // namespace platform
