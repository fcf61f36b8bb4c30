// The one table of colour roles and metrics. Everything that the theme draws, and the backgrounds
// and inks of programs, come from here, so that a dark table can stand beside it.
#pragma once
#include <cstdint>

#include "platform/base.h"

namespace platform {

enum class Role : uint8_t {
  kDocument,
  kRow,
  kDialog,
  kAlert,
  kUtility,
  kToolBar,
  kSide,
  kStatus,
  kInk,
  kSecondInk,
  kHairline,
  kLine,
  kFace,
  kPressed,
  kPressedLine,
  kAccent,
  kDarkAccent,
  kInactiveSelection,
  kTrack,
  kProgressLine,
  kThumb,
  kHeldThumb,
  kScrollBackground,
  kGood,
  kWarning,
  kBad,
  kCount
};

// 0xRRGGBB.
uint32_t RoleColor(Role role);

// Theme brushes by number: 1 dialog, 3 alert, 7 utility, 15 document, 52 tool bar, -1 black,
// -2 white, any other the dialog's. `active` false gives the lighter background of inactive
// windows.
uint32_t ThemeBrushColor(int brush, bool active);

}  // namespace platform
