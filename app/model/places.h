// The places on the left: volumes, and the tree of folders of the chosen one. Nothing here touches
// the file system: work/places_reader.h reads.
#pragma once
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

// What is to be read: the tree below `root` with these folders open.
struct PlacesRequest {
  std::string root;
  std::set<std::string> open;
  bool operator==(const PlacesRequest&) const = default;
};

// What was read. A tree is built whole by the reader, and belongs to one side at a time.
struct PlacesListing {
  PlacesRequest request;
  std::vector<Volume> volumes;
  std::unique_ptr<OS_TreeNodeN, DestroyFolderTree> tree;
  std::set<std::string> unreadable;  // open folders that could not be read
  int error = 0;                     // of the system, for the root
};

class Places {
 public:
  // A line of the tree.
  struct Row {
    std::string path;  // bytes
    std::string name;
    int depth;  // 1 for what lies in the root
    bool open, has_folders, selected, unreadable;
  };

  // Another tree: nothing is open. Shows an empty one until it has been read.
  void Choose(const std::string& root);
  // Shows or hides what lies in a folder. Whether a new reading is needed: what lies in the folders
  // of an open one is not known yet. Nothing happens to a folder that is not shown.
  bool SetOpen(const std::string& path, bool open);
  // Marks a folder. Whether a new reading is needed to show it: the folders around it are opened.
  // A path outside the root is marked nowhere.
  bool Select(const std::string& path);
  // What a reader has to read now.
  PlacesRequest Request() const { return {root_, open_}; }
  // Takes a listing over, and sets open and selected again by path. What was opened in between
  // stays open; false when that needs another reading. One of another root is not shown: false.
  bool Show(PlacesListing listing);

  const std::string& root() const { return root_; }
  const std::string& selected() const { return selected_; }
  const std::vector<Volume>& volumes() const { return volumes_; }
  const std::vector<Row>& rows() const { return rows_; }
  // The volume that the selected path lies in, the innermost one; -1 when there is none.
  int VolumeOf(const std::string& path) const;
  bool known() const { return known_; }
  int error() const { return error_; }

 private:
  void Mark();
  void MarkBelow(OS_TreeNodeN* node);

  std::string root_ = "/", selected_;
  std::set<std::string> open_, unreadable_;
  std::vector<Volume> volumes_;
  std::unique_ptr<OS_TreeNodeN, DestroyFolderTree> tree_;
  std::vector<Row> rows_;
  bool known_ = false;
  int error_ = 0;
};

// The path of a node: a tree that begins at "/" has two slashes at the beginning of its paths.
std::string PathOfNode(const OS_TreeNodeN& node);
// Whether `path` is `folder` or lies below it.
bool LiesIn(const std::string& path, const std::string& folder);

}  // namespace console
