// The display in use and its screens.
#pragma once
#include "platform/display/display.h"

namespace platform {

// The display in use; null when the platform has not started.
const Display* CurrentDisplay();
// `session_name` is copied.
void SetCurrentDisplay(const Display* display, const char* session_name);
const char* PlatformSessionName();
const Screen& MainScreen();
// Asks the display; true when the main screen has changed.
bool UpdateScreens();
// Main screen, logical pixels.
int ScreenWidth();
int ScreenHeight();

}  // namespace platform
