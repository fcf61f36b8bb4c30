// The strip over the status line while somebody is needed: for a printer without paper, or to
// choose another printer than one that has gone or has stopped. That of a server that is away comes
// before it.
#pragma once
#include <string>

#include "app/look/hits.h"
#include "app/model/printers.h"
#include "app/panes/layout.h"

namespace console {

struct NeedsPane {
  // Both are looked at for as long as the pane lives.
  NeedsPane(const Layout& layout_of_all, const Printers& all)
      : layout(layout_of_all), printers(all) {}
  void MakeControls(XwWindow* window);
  void Place();
  void Draw() const;
  void AddHits(Hits* hits) const;

  // What it says: one sentence, "" when there is nothing to be done.
  std::string Text() const;
  // The one where the keyboard stops; that for another printer may stand beside it.
  XwWindow* Button() const { return WithoutPaper() ? load : choose; }
  // The one that wants paper; null when none does.
  const PrinterRow* WithoutPaper() const;

  static constexpr int kHeight = 34;
  const Layout& layout;
  const Printers& printers;
  bool shown = false;
  XwWindow *load = nullptr, *choose = nullptr;  // of commands

 private:
  std::string load_text_;
  // The chosen printer prints nothing, though nobody has paused it.
  bool ChosenIsStopped() const;
};

}  // namespace console
