#include "app/model/places.h"

#include <string_view>

namespace console {
namespace {

// Without a slash at its end, and with one at its beginning.
std::string Plain(std::string_view path) {
  while (path.size() > 1 && path[0] == '/' && path[1] == '/') path.remove_prefix(1);
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return std::string(path);
}

bool IsShown(const std::vector<Places::Row>& rows, const std::string& path) {
  for (const Places::Row& row : rows)
    if (row.path == path) return true;
  return false;
}

}  // namespace

std::string PathOfNode(const OS_TreeNodeN& node) {
  return Plain(node.path);
}

bool LiesIn(const std::string& path, const std::string& folder) {
  if (folder == "/") return !path.empty() && path[0] == '/';
  return path.compare(0, folder.size(), folder) == 0 &&
         (path.size() == folder.size() || path[folder.size()] == '/');
}

void Places::Choose(const std::string& root) {
  root_ = Plain(root);
  open_.clear();
  unreadable_.clear();
  tree_.reset();
  known_ = false;
  error_ = 0;
  Mark();
}

// Sets the marks of the nodes by path, and makes the rows of what is shown.
void Places::Mark() {
  rows_.clear();
  if (tree_) MarkBelow(tree_.get());
}

void Places::MarkBelow(OS_TreeNodeN* node) {
  for (int i = 0; i < node->child_count; ++i) {
    OS_TreeNodeN* child = &node->children[i];
    std::string path = PathOfNode(*child);
    const bool has_folders = child->child_count > 0, unreadable = unreadable_.contains(path);
    child->open = has_folders && open_.contains(path);
    child->selected = path == selected_;
    rows_.push_back({std::move(path), child->name, child->depth, child->open != 0, has_folders,
                     child->selected != 0, unreadable});
    if (child->open) MarkBelow(child);
  }
}

bool Places::SetOpen(const std::string& path, bool open) {
  if (!IsShown(rows_, path)) return false;
  const bool changed = open ? open_.insert(path).second : open_.erase(path) > 0;
  if (changed) Mark();
  return changed && open;
}

bool Places::Select(const std::string& path) {
  selected_ = Plain(path);
  bool needs_reading = false;
  if (LiesIn(selected_, root_)) {
    const size_t below = root_ == "/" ? 1 : root_.size() + 1;
    for (size_t end = below; (end = selected_.find('/', end)) != std::string::npos; ++end)
      needs_reading |= open_.insert(selected_.substr(0, end)).second;
  }
  Mark();
  return needs_reading;
}

bool Places::Show(PlacesListing listing) {
  volumes_ = std::move(listing.volumes);
  if (listing.request.root != root_) return false;
  tree_ = std::move(listing.tree);
  unreadable_ = std::move(listing.unreadable);
  error_ = listing.error;
  known_ = true;
  Mark();
  bool whole = true;
  for (const std::string& path : open_) whole &= listing.request.open.contains(path);
  return whole;
}

int Places::VolumeOf(const std::string& path) const {
  int found = -1;
  for (int i = 0; i < int(volumes_.size()); ++i) {
    const std::string& here = volumes_[size_t(i)].path;
    if (!LiesIn(path, here)) continue;
    if (found < 0 || here.size() > volumes_[size_t(found)].path.size()) found = i;
  }
  return found;
}

}  // namespace console
