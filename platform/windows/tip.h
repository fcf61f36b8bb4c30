// A tip: a line of words beside a part of a window, in a window of its own that takes no input.
#pragma once
#include <string>

#include "platform/base.h"

namespace platform {

// Shows it 4 pixels below `anchor` (of the parent's content, logical pixels), or above where there
// is no room, in place of the one that shows. Nothing for an empty text, UTF-8.
void ShowTip(WindowRef parent, const Rect& anchor, const std::string& text);
void HideTip();

}  // namespace platform
