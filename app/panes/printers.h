// The server's printers: how each is, what waits for it, its paper and its supplies.
#pragma once
#include <string>

#include "app/model/printers.h"
#include "app/panes/ids.h"
#include "app/panes/layout.h"
#include "app/panes/side_list.h"

namespace console {

struct PrintersPane {
  // Both are looked at for as long as the pane lives.
  PrintersPane(const Layout& layout_of_all, const Printers& all)
      : layout(layout_of_all), printers(all) {}
  void MakeControls(XwWindow* window);
  void Place();
  void Draw(const Hit& hover, bool active, bool focused) const;
  void AddHits(Hits* hits, bool focused) const;

  // The printers have changed. The keyboard stays at its printer; at first, and when that is gone,
  // it is at the chosen one.
  void Update();
  // The keyboard goes there.
  void GoTo(const std::string& name);
  // The same after a key has moved it.
  void KeyMoved();
  // Where the keyboard is; null when there is none.
  const PrinterRow* At() const { return printers.Find(at); }
  // The name in a row, "" for none.
  std::string NameAt(int row) const;

  const Layout& layout;
  const Printers& printers;
  std::string at;          // name
  std::string mine;        // the user's own default
  std::string takes_drop;  // the name of the one on which documents are dragged
  bool away = false;       // the server is, and this is how they were
  static constexpr int kRowHeight = 38;
  SideList list{kPrinters, kRowHeight};

 private:
  Area MarkArea(int row) const;
  int SupplyLines() const;
  // `at_it`: the keyboard is.
  void DrawRow(int row, const Area& a, const Hit& hover, bool at_it) const;
  void DrawSupplies(Area a) const;
};

}  // namespace console
