// The folder that is shown: the way to it, its rows, and why it cannot be read. Names and paths are
// the bytes of the file system. Nothing here touches the file system: work/folder_reader.h reads.
#pragma once
#include <memory>
#include <string>

#include "app/model/folder_rows.h"

namespace console {

class ShownFolder {
 public:
  // The way to it is known, nothing else.
  void Begin(const std::string& path);
  void Show(std::shared_ptr<const FolderContent> content);
  // It cannot be read any more: shown empty, with why.
  void Lose(int error, const FolderStamp& stamp);
  void Sort(FileOrder order, bool descending) { rows_.Sort(order, descending); }
  // "": everything is shown.
  void Filter(const std::string& text) { rows_.Filter(text); }

  void ShowHidden(bool show) { rows_.ShowHidden(show); }

  const std::string& path() const { return path_; }
  const FolderStamp& stamp() const { return stamp_; }
  // Whether a listing of it has been shown.
  bool known() const { return known_; }
  const FolderRows& rows() const { return rows_; }
  int count() const { return rows_.count(); }
  FolderEntry At(int row) const { return rows_.At(row); }
  // The row of that name, -1 when none is shown.
  int Find(const std::string& name) const { return rows_.RowOf(name); }
  std::string PathOf(int row) const { return JoinPath(path_, At(row).name); }
  FileOrder order() const { return rows_.order(); }
  bool descending() const { return rows_.descending(); }
  // A few words when it cannot be read, else empty.
  const std::string& trouble() const { return trouble_; }

 private:
  std::string path_ = "/", trouble_;
  FolderStamp stamp_;
  FolderRows rows_;
  bool known_ = false;
};

}  // namespace console
