// The platform's start and end: a pair that a process can run through more than once.
#pragma once

namespace platform {

// Starts the platform on the display named by XW_DISPLAY, else on the first that opens. False, with
// one line on standard error, when none does. Called once more it starts nothing.
bool InitPlatform(const char* session_name);
// Ends all windows, closes the display and leaves every room as it was before the start. Not inside
// a dispatch.
void FinishPlatform();

}  // namespace platform
