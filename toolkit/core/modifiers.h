// Modifier keys as events carry them.
#pragma once
#include "platform/events/event.h"
#include "toolkit/xw.h"

// From the platform's bits to XWS_ bits.
inline uint32_t ModifierBits(uint32_t modifiers) {
  using namespace platform;
  constexpr struct {
    uint32_t platform, state;
  } kRows[] = {
      {cmdKey, XWS_COMMAND},
      {alphaLock, XWS_CAPS},
      {shiftKey | rightShiftKey, XWS_SHIFT},
      {optionKey | rightOptionKey, XWS_OPTION},
      {controlKey | rightControlKey, XWS_CONTROL},
  };
  uint32_t state = 0;
  for (const auto& row : kRows)
    if (modifiers & row.platform) state |= row.state;
  return state;
}

// Inp.state gets these modifiers, and keeps its buttons.
inline void SetModifiers(uint32_t modifiers) {
  Inp.state = (Inp.state & XWS_BUTTONS) | ModifierBits(modifiers);
}
