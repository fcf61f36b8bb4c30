// Controls by the area that they show in: a record's own bounds differ from that for each kind.
#pragma once
#include "app/look/area.h"
#include "toolkit/xw.h"

namespace console {

// Nothing changes, and nothing is drawn, where it is so already.
void EnableControl(XwWindow* control, bool on);
// In an empty area it is hidden.
void PlaceControl(XwWindow* control, const Area& a);

// Whether it can have the keyboard now.
inline bool CanFocus(const XwWindow* control) {
  return control && control->enabled && control->flags & XW_SHOWN;
}

}  // namespace console
