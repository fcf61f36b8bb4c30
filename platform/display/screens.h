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
// The scale that a text gives, all of it a number from 0.5 to 8 with a point; 0 for any other, and
// for null.
double ScaleInText(const char* text);
// Asks the display; true when the main screen has changed.
bool UpdateScreens();
// Main screen, logical pixels.
int ScreenWidth();
int ScreenHeight();

}  // namespace platform
