// Opening and closing the session.
#pragma once

// Starts the platform, and fills the cursor table. Ends the process when no display opens.
void XwCocoaInit();
// Reads the figures of the main screen.
void TakeScreenSize();
// For tests: everything that a session has made goes, and all is as before the first XwSession, the
// platform too; only the handles of fonts and the caches of icons live on. Not from inside a
// handler. Where there is no session it does nothing.
void DropSession();
