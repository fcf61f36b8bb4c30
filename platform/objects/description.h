// What an object says of itself to tests, inspectors and assistive technology.
#pragma once
#include <cstdint>
#include <string>

#include "platform/base.h"

namespace platform {

enum class ObjectRole : uint8_t {
  kWindow,
  kPane,  // a part of a window
  kButton,
  kMenuButton,
  kCheckBox,
  kRadioButton,
  kColorWell,
  kColumnHeader,
  kSlider,
  kScrollBar,
  kLabel,
  kMenuBar,
  kMenu,
  kMenuItem,
  kSeparator,
  kList,
  kRow,  // of a list
  kPopUpButton,
  kTextField,
  kTable,
  kCell,
  kGroup,
  kPicture,
  kStatus,  // a line that tells how things are
  kProgress,
  kCount
};

enum ObjectState : uint32_t {
  kIsShown = 1,  // and everything that it is in
  kIsEnabled = 2,
  kIsFocusable = 4,
  kIsFocused = 8,
  kIsChecked = 16,
  kIsMixed = 32,    // neither on nor off
  kIsPressed = 64,  // held by the pointer, or its menu is open
  kIsDefault = 128,
  kIsActive = 256,  // a window that looks so
  kHasMenu = 512,   // opens one
  kIsSelected = 1024,
  kIsReadOnly = 2048,  // a text that cannot be changed
  kIsExpanded = 4096,  // what is in it shows
};

// What can be done to it; bits.
enum ObjectAction : uint32_t {
  kActionPress = 1,     // as the pointer or a key would
  kActionFocus = 2,     // gives it the keyboard
  kActionIncrease = 4,  // by a small step, as a key would
  kActionDecrease = 8,
};

struct Description {
  ObjectRole role = ObjectRole::kPane;
  std::string name, value;           // UTF-8
  uint32_t state = 0;                // bits of ObjectState
  uint32_t actions = 0;              // bits of ObjectAction
  Rect bounds;                       // global, logical pixels
  int32_t minimum = 0, maximum = 0;  // of a slider or scroll bar; `value` is the number
};

}  // namespace platform
