// Font handles.
#pragma once

// Frees every XwFont. For the session's end in tests.
void DropFonts();
