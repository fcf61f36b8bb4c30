// The buttons of the strips over the status line.
#pragma once
#include "app/look/area.h"

namespace console {

constexpr int kStripEnd = 12, kStripGap = 8;  // right of the last button, and left of each

// Where a button of that width stands at the right end of what is left of a strip; it and the gap
// are taken off.
inline Area TakeStripButton(Area* strip, int width) {
  constexpr int kTop = 6, kHeight = 23;  // as far from the line of the strip as from its lower end
  const Area piece = strip->TakeRight(width);
  strip->TakeRight(kStripGap);
  return {piece.x, piece.y + kTop, piece.w, kHeight};
}

}  // namespace console
