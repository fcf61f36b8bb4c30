// The tool bar: printing what is selected, moving about, and how the next file is printed.
#pragma once
#include "app/model/print_choice.h"
#include "app/model/printers.h"
#include "app/panes/layout.h"
#include "app/panes/name_choice.h"
#include "app/server/server.h"

namespace console {

// The printer that the next file goes to; null when the server's list has none such.
const NC_Printer* ChosenPrinter(const PrintChoice& choice, const ServerState& state);

class ToolsPane {
 public:
  // Changes the choice, as long as it lives.
  explicit ToolsPane(PrintChoice* choice) : choice_(choice) {}
  // They report to the window: what Chosen() and Edited() do not know are commands.
  void MakeControls(XwWindow* window);
  void Place(const Layout& layout);
  // What can be chosen now. `enabled`: whether anything can.
  void Update(const ServerState& state, std::vector<std::string> printers, bool enabled);
  // How many the button would print.
  void ShowDocuments(int n);
  void Draw(const Layout& layout) const;

  // A report of one of its controls: false when the id is another's.
  bool Chosen(int id, int value);
  // 788 to 790 of the box of the copies.
  void Edited(int type);
  // The box of the copies gets the keyboard.
  void BeginCopies() {
    if (!choice_->no_copies) copies_before_ = choice_->copies;
  }
  // The number from before the box had the keyboard counts again.
  void PutBackCopies();
  void ChangeCopies(int by);
  void ChangePriority(int by);
  // The controls show what the choice is, after it was changed from elsewhere.
  void ShowChoice();
  // The media that the chosen printer has; another one that was chosen is so no longer.
  void FitMedia(const ServerState& state);

  XwWindow *print = nullptr, *refresh = nullptr, *options = nullptr;  // commands
  XwWindow *colour = nullptr, *no_colour = nullptr;                   // the same; one of them shows
  XwWindow *copies = nullptr, *priority = nullptr, *hold = nullptr;
  XwWindow* ShownColour() const { return choice_->colour < 0 ? no_colour : colour; }
  XwWindow* printer() const { return printer_.control(); }
  XwWindow* profile() const { return profile_.control(); }
  XwWindow* media() const { return media_.control(); }

 private:
  void PlaceColour();

  PrintChoice* choice_;
  NameChoice printer_, profile_, media_;
  Area colour_area_;
  int copies_before_ = 1;  // of what is typed
  int documents_ = 1;      // that the button tells of
};

}  // namespace console
