// The commands: one table makes the menus, what the buttons and the keys do, and what is greyed.
#pragma once
#include "app/panes/ids.h"

namespace console {

struct Console;

// Gives the first window its menu bar.
void SetUpCommands(Console* c);
bool CanRun(const Console* c, int command);
// A menu is about to show: what cannot be done now is greyed.
void ShowCommands(const Console* c);
// Runs the command that a menu or a button has reported; numbers that are none, and commands that
// cannot be run now, are ignored.
void RunCommand(Console* c, int command);
// Whether that key, with Control, is one of the menu bar's.
bool IsMenuKey(int key);
// That of a key without Control, where the keyboard is: 0 when it has none there.
int CommandOfKey(const Console* c, int type);
// The menu of what lies under the pointer, a row of the files or of the queue.
void OpenFileMenu(Console* c);
void OpenJobMenu(Console* c);

// --- What commands do besides the panes' own (console.cc)
void RefreshAll(Console* c);
void StopSending(Console* c);
// Leaves, or asks first while something is being sent.
void Leave(Console* c);

}  // namespace console
