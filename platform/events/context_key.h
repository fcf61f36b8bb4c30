// The keys that open a context menu.
#pragma once
#include "platform/events/event.h"

namespace platform {

// The Menu key, and F10 with Shift alone.
inline bool OpensContextMenu(const Event& e) {
  constexpr uint32_t kMenuKeysym = 0xFF67, kF10Keysym = 0xFFC7;
  constexpr uint32_t kShift = shiftKey | rightShiftKey;
  constexpr uint32_t kOthers = controlKey | rightControlKey | cmdKey | optionKey | rightOptionKey;
  if (e.key.keysym == kMenuKeysym) return true;
  return e.key.keysym == kF10Keysym && (e.key.modifiers & kShift) && !(e.key.modifiers & kOthers);
}

}  // namespace platform
