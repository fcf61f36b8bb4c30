// What the commands of the side panes do: of the printer at which the keyboard is (printers.cc),
// and which panes show (panes.cc).
#pragma once
#include "app/window/command_table.h"

namespace console {

// Greyed for `WhyNot`, and absent things are never done.
bool CanDoToPrinter(const Console* c, PrinterVerb verb);
std::string WhyNotToPrinter(const Console* c, PrinterVerb verb);
void DoToPrinter(Console* c, PrinterVerb verb);
// The printers to which all its jobs can be moved.
std::vector<CommandChoice> MoveChoices(const Console* c);
void MoveAllJobs(Console* c, int choice);
// Of the printer that the strip below the tools tells of.
std::string WhyNotLoadPaper(const Console* c);
void LoadPaper(Console* c);

bool ShowsPlaces(const Console* c);
bool ShowsPrinters(const Console* c);
bool ShowsDetails(const Console* c);
void TogglePlaces(Console* c);
void TogglePrinters(Console* c);
void ToggleDetails(Console* c);
void GoToPrinters(Console* c);
// Of the pane with the keyboard.
std::vector<CommandChoice> PaneSizeChoices(const Console* c);
void ChangePaneSize(Console* c, int choice);

}  // namespace console
