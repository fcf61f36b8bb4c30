// Font handles. They live for the process, while the platform's fonts end with it.
#pragma once

// The platform's fonts are about to end: handles measure 0 and draw nothing.
void CloseFonts();
// Opens every handle that there is again, by its name.
void ReopenFonts();
