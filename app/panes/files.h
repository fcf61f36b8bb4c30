// The folder: the way to it as crumbs, the filter, and the table of its entries.
#pragma once
#include <string>

#include "app/model/shown_folder.h"
#include "app/model/type_ahead.h"
#include "app/panes/layout.h"
#include "app/table/table.h"

namespace console {

// What is selected of what is shown.
struct ChosenFiles {
  int files = 0, folders = 0;
  int64_t bytes = 0;
};

struct FilesPane {
  // Looked at for as long as the pane lives.
  explicit FilesPane(const Layout& layout_of_all);

  void MakeControls(XwWindow* window);
  void Place();
  void Enable(bool on);
  // What stands below the rows follows them. `silent`: the folder does not answer.
  void Update();
  void Draw(const Hit& hover, bool focused, bool silent);
  void AddHits(Hits* hits) const;
  // Where a crumb leads; "" for none.
  std::string CrumbPath(int index) const;

  // What verbs act on.
  const ChosenFiles& Chosen() const;
  // The same in words; "" when nothing is selected.
  std::string SelectionText() const;
  // What the filter box holds.
  std::string FilterText() const;
  // The folder's rows are others, or stand in another order.
  void Arranged();
  // Selects the next name that begins with what has been typed.
  void Find(int character, uint32_t now_ms);

  const Layout& layout;
  ShownFolder folder;
  SelectionOf<FolderRows, std::string> selection{folder.rows()};  // names
  Table table;
  XwWindow* filter = nullptr;    // the box
  XwWindow* show_all = nullptr;  // of a command
  std::string reading_text;      // what is said of a reading that takes long
  TypeAhead typed;

 private:
  // Counted once after each change.
  mutable ChosenFiles chosen_;
  mutable int counted_ = -1;
};

}  // namespace console
