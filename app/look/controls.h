// Controls by the area that they show in: a record's own bounds differ from that for each kind.
#pragma once
#include "app/look/area.h"
#include "toolkit/xw.h"

namespace console {

// Nothing changes, and nothing is drawn, where it is so already.
void EnableControl(XwWindow* control, bool on);
// In an empty area it is hidden.
void PlaceControl(XwWindow* control, const Area& a);

// The number from 1 to `most` that is typed in an edit box, with nothing but spaces beside it; 0
// when it holds none.
int NumberIn(XwWindow* box, int most);

// Whether it can have the keyboard now.
inline bool CanFocus(const XwWindow* control) {
  return control && control->enabled && control->flags & XW_SHOWN;
}

}  // namespace console
