// The commands: one table (command_table.h) makes the menus, what buttons and keys do, and what is
// greyed.
#pragma once
#include <cstdint>
#include <string>

#include "app/panes/ids.h"

namespace console {

struct Console;

// What context menus are about, as bits.
enum ContextMenu : unsigned { kOnFiles = 1, kOnJobs = 2, kOnPrinters = 4, kOnOptions = 8 };
constexpr int kContexts = 4;

// Gives the first window a menu bar of titles alone: its menus take longer than the first picture.
void ShowMenuTitles(Console* c);
// Gives it the menus, where it has none yet.
void SetUpMenus(Console* c);
bool CanRun(const Console* c, int command);
// A menu is about to show: what cannot be done now is greyed.
void ShowCommands(const Console* c);
// The buttons of commands follow: whether they can be used, and their tips.
void ShowButtons(Console* c);
// Runs the command that a menu or a button has reported; numbers that are none, and commands that
// cannot be run now, are ignored.
void RunCommand(Console* c, int command);
// That of the menu bar's item with this key and these modifiers: 0 when there is none.
int CommandOfMenuKey(int key, uint32_t modifiers);
// An edit box reports every key as one that edits: runs the command whose function key is held.
void RunFunctionKey(Console* c);
// That of a key without Control, where the keyboard is: 0 when it has none there.
int CommandOfKey(const Console* c, int type);
// "Ctrl+Shift+H"; "" for no key.
std::string KeyText(int key, uint32_t modifiers);
// Whether it is one of those for the selected jobs.
bool ConcernsJobs(int command);
// A key of a command that cannot be run: the status line says why, where there is a reason. What
// the command has done itself may be the reason while its key is held, so that one that repeats
// says nothing.
void TellWhyNot(Console* c, int command, int key);
// At the place that Inp has (XwPopupLocation), of what is selected there; runs what is chosen.
void OpenContextMenu(Console* c, ContextMenu context);
// The same below what is selected where the keyboard is; nothing elsewhere.
void OpenContextMenuByKey(Console* c);

// --- What commands do besides the panes' own
void RefreshAll(Console* c);
// The keyboard goes to the next of places, printers, files, details and queue; with Shift to the
// one before.
void GoToNextPane(Console* c);
// Leaves, or asks first while something is being sent.
void Leave(Console* c);
// The same where the console's own window has the keyboard; else the window that has it closes.
void CloseFrontWindow(Console* c);

}  // namespace console
