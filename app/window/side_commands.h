// What the commands of the side panes do: of a printer (printers.cc), and which panes show
// (panes.cc).
#pragma once
#include "app/window/command_table.h"

namespace console {

// Which printer a command is about: the one at which the keyboard is in their list, or the chosen
// one.
enum class Which : uint8_t { kAt, kChosen };
// Greyed for `WhyNot`, and absent things are never done.
bool CanDoToPrinter(const Console* c, Which which, PrinterVerb verb);
std::string WhyNotToPrinter(const Console* c, Which which, PrinterVerb verb);
void DoToPrinter(Console* c, Which which, PrinterVerb verb);
// What a menu calls it: "Pause “Office”".
std::string ChosenPrinterText(const Console* c, const char* verb);
// The printers to which all its jobs can be moved.
std::vector<CommandChoice> MoveChoices(const Console* c);
void MoveAllJobs(Console* c, const std::string& printer);
// Of the printer that wants paper, which the strip over the status line names; while none does, of
// the chosen one.
std::string LoadPaperText(const Console* c);
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
