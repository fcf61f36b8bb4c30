#include "platform/fonts/state.h"

namespace platform {
namespace {

FontState* state = nullptr;

}  // namespace

FontState& Fonts() {
  if (!state) state = new FontState;
  return *state;
}

void SaveFonts() {
  if (state) SaveGlyphCache();
}

void FinishFonts() {
  SaveFonts();
  delete state;
  state = nullptr;
}

}  // namespace platform
