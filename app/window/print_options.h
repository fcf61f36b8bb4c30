// How the next file is printed, as commands: what the tool bar has no room for stands in menus.
#pragma once
#include <string>
#include <vector>

#include "app/window/command_table.h"

namespace console {

// The names of all that the server has.
std::vector<std::string> ProfileNames(const Console* c);
// What can be chosen, and a choice by its name, "" being none of them, or its number.
std::vector<CommandChoice> NextPrinterChoices(const Console* c);
std::vector<CommandChoice> NextProfileChoices(const Console* c);
void ChooseNextProfile(Console* c, const std::string& name);
std::vector<CommandChoice> NextMediaChoices(const Console* c);
void ChooseNextMedia(Console* c, const std::string& name);
std::vector<CommandChoice> NextCopiesChoices(const Console* c);
void ChooseNextCopies(Console* c, int choice);
void SetNextCopies(Console* c, int copies);
// The same by a window with a box for any number (number_window.cc).
void AskNextCopies(Console* c);
std::vector<CommandChoice> NextPriorityChoices(const Console* c);
void ChooseNextPriority(Console* c, int choice);
// A menu of colours below the tool bar's well, or its button of options.
void ChooseColour(Console* c);
void HoldNext(Console* c);
bool HoldsNext(const Console* c);
// All of it as it is at the start, but the printer.
void UseUsualOptions(Console* c);
// The menu of them all.
void OpenOptions(Console* c);

}  // namespace console
