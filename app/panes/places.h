// Places to go: the volumes, below each expanded one the tree of its folders, and the room that is
// left where one is.
#pragma once
#include <string>
#include <vector>

#include "app/model/places.h"
#include "app/panes/ids.h"
#include "app/panes/layout.h"
#include "app/panes/side_list.h"

namespace console {

struct PlacesPane {
  // A row: a volume, or a folder of the tree.
  struct Row {
    std::string volume;  // the path of the volume that it lies in
    std::string path;    // bytes
    std::string name;    // as it is shown
    int depth = 0;       // 0: a volume
    bool opens = false, open = false, unreadable = false;
  };

  // Looked at for as long as the pane lives.
  explicit PlacesPane(const Layout& layout_of_all) : layout(layout_of_all) {}
  void MakeControls(XwWindow* window);
  void Place();
  // `active`: the window is.
  void Draw(const Hit& hover, bool active, bool focused) const;
  void AddHits(Hits* hits, bool focused) const;

  // Until the first reading has come: what everyone has. `folder` is the one that will be shown.
  void Begin(const std::string& folder);
  // Another folder is shown: it is marked, with the folders around it opened. Whether the tree has
  // to be read.
  bool Follow(const std::string& folder);
  // Hands over a reading. False: it did not have all.
  bool Take(PlacesListing listing);
  // Shows or hides what lies in a row. Whether the tree has to be read.
  bool SetOpen(int row, bool open);
  // Somebody goes to a row: its volume is used, and shows its tree. Whether it has to be read.
  bool Choose(int row);
  // The row that this one lies in; itself for a volume.
  int Around(int row) const;
  // Of the places of a folder the one in this volume; -1 when there is none.
  int Find(const std::string& volume, const std::string& path) const;

  const Layout& layout;
  Places tree;
  std::vector<Row> rows;
  SideList list{kPlaces, kRowHeight};
  std::string free_text;
  std::string wait_text;  // stands in its place: the tree does not come

 private:
  static constexpr int kRowHeight = 20;
  void MakeRows();
  void MarkNearest();
  Area MarkArea(int row) const;
  // How far to the right a row begins.
  int Indent(int row) const;
  void DrawRow(int row, const Area& a, const Hit& hover, bool active, bool focused) const;

  std::string folder_;  // that is shown
  int deepest_ = 0;     // of the depths of the rows
  // The row of the folder, or of the nearest one above it that is shown; of two with one path that
  // in the used volume.
  int marked_ = -1;
  bool follows_ = false;  // the keyboard goes to the folder's row as soon as there is one
};

}  // namespace console
