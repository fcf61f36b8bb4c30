// What the Help menu shows.
#pragma once

namespace console {

struct Console;

// A window with the keys of all commands.
void ShowKeys(Console* c);
void ShowAbout(Console* c);
// The console ends: its window of keys goes.
void CloseKeys();

}  // namespace console
