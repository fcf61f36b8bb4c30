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

const Places::Tree& Places::Of(const std::string& volume) const {
  static const Tree kNone;
  const auto found = trees_.find(volume);
  return found == trees_.end() ? kNone : found->second;
}

// Sets the marks of the nodes by path, and makes the rows of what is shown.
void Places::Mark() {
  for (auto& [volume, tree] : trees_) {
    tree.rows.clear();
    if (tree.folders.nodes)
      MarkBelow(volume == used_ ? selected_ : "", tree.folders.nodes.get(), &tree);
  }
}

void Places::MarkBelow(const std::string& selected, OS_TreeNodeN* node, Tree* tree) {
  for (int i = 0; i < node->child_count; ++i) {
    OS_TreeNodeN* child = &node->children[i];
    std::string path = PathOfNode(*child);
    const bool has_folders = child->child_count > 0;
    const bool unreadable = tree->folders.unreadable.contains(path);
    child->open = has_folders && tree->open.contains(path);
    child->selected = path == selected;
    tree->rows.push_back({std::move(path), child->name, child->depth, child->open != 0, has_folders,
                          child->selected != 0, unreadable});
    if (child->open) MarkBelow(selected, child, tree);
  }
}

bool Places::Use(const std::string& volume) {
  used_ = Plain(volume);
  const bool needs_reading = !Of(used_).expanded && Expand(used_, true);
  Mark();
  return needs_reading;
}

bool Places::Expand(const std::string& volume, bool open) {
  trees_[volume].expanded = open;
  return open;
}

bool Places::SetOpen(const std::string& volume, const std::string& path, bool open) {
  if (!IsShown(Of(volume).rows, path)) return false;
  Tree& tree = trees_[volume];
  const bool changed = open ? tree.open.insert(path).second : tree.open.erase(path) > 0;
  if (changed) Mark();
  return changed && open;
}

bool Places::Select(const std::string& path) {
  selected_ = Plain(path);
  if (!Of(used_).expanded || !LiesIn(selected_, used_)) {
    const int volume = VolumeOf(selected_);
    used_ = volume < 0 ? "/" : volumes_[size_t(volume)].path;
  }
  Tree& tree = trees_[used_];
  bool needs_reading = !tree.expanded || !tree.known;
  tree.expanded = true;
  const size_t below = used_ == "/" ? 1 : used_.size() + 1;
  for (size_t end = below; (end = selected_.find('/', end)) != std::string::npos; ++end)
    needs_reading |= tree.open.insert(selected_.substr(0, end)).second;
  Mark();
  return needs_reading;
}

PlacesRequest Places::Request() const {
  PlacesRequest request;
  for (const auto& [volume, tree] : trees_)
    if (tree.expanded) request.open[volume] = tree.open;
  return request;
}

bool Places::Show(PlacesListing listing) {
  volumes_ = std::move(listing.volumes);
  for (auto& [volume, folders] : listing.trees) {
    const auto tree = trees_.find(volume);
    if (tree == trees_.end()) continue;
    tree->second.folders = std::move(folders);
    tree->second.known = true;
  }
  Mark();
  for (const auto& [volume, open] : Request().open) {
    const auto read = listing.request.open.find(volume);
    if (read == listing.request.open.end()) return false;
    for (const std::string& path : open)
      if (!read->second.contains(path)) return false;
  }
  return true;
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
