// Combo boxes.
#pragma once
#include "platform/events/targets.h"
#include "toolkit/xw.h"

// A press of the primary button or of the keyboard on a combo box; the part of Button_func for it.
platform::OSStatus ClickCombo(XwWindow* combo);
