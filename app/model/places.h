// The places on the left: volumes, and the trees of folders of those that are expanded. Nothing
// here touches the file system: work/places_reader.h reads.
#pragma once
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "os/os.h"

namespace console {

struct Volume {
  std::string name;  // as a person calls it
  std::string path;  // bytes
  std::string host;  // of a network mount, else ""
  bool operator==(const Volume&) const = default;
};

struct DestroyFolderTree {
  void operator()(OS_TreeNodeN* tree) const { OS_TreeDestroyN(tree); }
};

// What is to be read: a tree for each expanded volume, by its path, with these folders open.
struct PlacesRequest {
  std::map<std::string, std::set<std::string>> open;
  bool operator==(const PlacesRequest&) const = default;
};

// The folders of a volume. A tree is built whole by the reader, and belongs to one side at a time.
struct FolderTree {
  std::unique_ptr<OS_TreeNodeN, DestroyFolderTree> nodes;
  std::set<std::string> unreadable;  // open folders that could not be read
  int error = 0;                     // of the system, for the volume itself
};

// What was read.
struct PlacesListing {
  PlacesRequest request;
  std::vector<Volume> volumes;
  std::map<std::string, FolderTree> trees;  // by the paths of the request
};

class Places {
 public:
  // A line of a tree.
  struct Row {
    std::string path;  // bytes
    std::string name;
    int depth;  // 1 for what lies in the volume itself
    bool open, has_folders, selected, unreadable;
  };

  // Somebody uses this volume: it is expanded, and a folder that two volumes have is marked in
  // this one. Whether it has to be read.
  bool Use(const std::string& volume);
  // Shows or hides what lies in a volume, and leaves the others alone. Whether it has to be read.
  bool Expand(const std::string& volume, bool open);
  // Shows or hides what lies in a folder of a volume. Whether a new reading is needed: what lies in
  // the folders of an open one is not known yet. Nothing happens to a folder that is not shown.
  bool SetOpen(const std::string& volume, const std::string& path, bool open);
  // Marks a folder in the used volume, where that is expanded and holds it, else in the innermost
  // one that holds it, which is the used one then. Whether a new reading is needed to show it: the
  // volume is expanded, and the folders around it are opened.
  bool Select(const std::string& path);
  // What a reader has to read now.
  PlacesRequest Request() const;
  // Takes a listing over, and sets open and selected again by path. What was opened in between
  // stays open; false when that needs another reading.
  bool Show(PlacesListing listing);

  const std::string& used() const { return used_; }
  const std::vector<Volume>& volumes() const { return volumes_; }
  // Of a volume that was never expanded: no rows, not known, no error.
  const std::vector<Row>& rows(const std::string& volume) const { return Of(volume).rows; }
  bool expanded(const std::string& volume) const { return Of(volume).expanded; }
  bool known(const std::string& volume) const { return Of(volume).known; }
  int error(const std::string& volume) const { return Of(volume).folders.error; }
  // The volume that a path lies in, the innermost one; -1 when there is none.
  int VolumeOf(const std::string& path) const;

 private:
  struct Tree {
    FolderTree folders;
    std::set<std::string> open;
    std::vector<Row> rows;
    bool expanded = false, known = false;
  };
  const Tree& Of(const std::string& volume) const;
  void Mark();
  void MarkBelow(const std::string& selected, OS_TreeNodeN* node, Tree* tree);

  std::string used_ = "/", selected_;
  std::vector<Volume> volumes_;
  std::map<std::string, Tree> trees_;  // by volume
};

// The path of a node: a tree that begins at "/" has two slashes at the beginning of its paths.
std::string PathOfNode(const OS_TreeNodeN& node);
// Whether `path` is `folder` or lies below it.
bool LiesIn(const std::string& path, const std::string& folder);

}  // namespace console
