#include "platform/fonts/state.h"

#include "platform/fonts/ahead.h"

namespace platform {
namespace {

FontState* state = nullptr;

}  // namespace

FontState& Fonts() {
  if (!state) state = new FontState;
  return *state;
}

void FinishFonts() {
  StopGlyphs();
  delete state;
  state = nullptr;
}

}  // namespace platform
