// The commands of the menu bar.
#pragma once

namespace console {

struct Console;

// Gives the first window its menu bar.
void SetUpCommands(Console* c);
// A menu is about to show: what cannot be done now is greyed.
void ShowCommands(const Console* c);
// Runs the command that a menu has reported; numbers that are none are ignored.
void RunCommand(Console* c, int command);

// --- What commands do besides the panes' own (console.cc)
void RefreshAll(Console* c);
void StopSending(Console* c);
// Leaves, or asks first while something is being sent.
void Leave(Console* c);

}  // namespace console
