// Opening and closing the session.
#pragma once

// Starts the platform, and fills the cursor table. Ends the process when no display opens.
void XwCocoaInit();
// Reads the figures of the main screen.
void TakeScreenSize();
