// What is selected, and the printer that it would go to.
#pragma once
#include "app/model/print_choice.h"
#include "app/model/shown_folder.h"
#include "app/panes/layout.h"
#include "app/server/server.h"

namespace console {

struct DetailsPane {
  void Draw() const;

  // All are looked at for as long as the pane lives.
  const Layout& layout;
  const ShownFolder& folder;
  const PrintChoice& choice;
  const ServerState& state;
  int selected = -1;  // the row of the folder
};

}  // namespace console
