#include "app/work/places_reader.h"

#include <sys/stat.h>

#include <cerrno>
#include <mutex>

namespace console {
namespace {

// The first places of the system's list have names for programs.
struct Word {
  const char* name;
  const char* word;
};
constexpr Word kWords[] = {
    {"ROOT", "Root"}, {"LOCAL", "Home"}, {"DOCUMENTS", "Documents"}, {"DESKTOP", "Desktop"}};

bool IsFolder(const char* path) {
  struct stat s {};
  return stat(path, &s) == 0 && S_ISDIR(s.st_mode);
}

std::string WordFor(const std::string& name, bool fixed) {
  if (fixed)
    for (const Word& w : kWords)
      if (name == w.name) return w.word;
  return name;
}

// A folder of the tree whose own folders are known: those of an open one are looked into as well,
// so that each row knows whether there is something to open.
void ExpandBelow(OS_TreeNodeN* node, const std::set<std::string>& open, FolderTree* tree) {
  for (int i = 0; i < node->child_count; ++i) {
    OS_TreeNodeN* child = &node->children[i];
    const std::string path = PathOfNode(*child);
    if (!open.contains(path)) continue;
    if (OS_TreeExpandN(child) != 0) {
      tree->unreadable.insert(path);
      continue;
    }
    child->open = 1;
    for (int j = 0; j < child->child_count; ++j) OS_TreeExpandN(&child->children[j]);
    ExpandBelow(child, open, tree);
  }
}

FolderTree ReadTree(const std::string& root, const std::set<std::string>& open) {
  FolderTree tree;
  errno = 0;
  tree.nodes.reset(OS_TreeCreateN(root.c_str()));
  OS_TreeNodeN* nodes = tree.nodes.get();
  // A root that cannot be read has no folders, and is told by the error alone.
  if (nodes && nodes->child_count == 0 && OS_TreeExpandN(nodes) != 0) tree.error = errno;
  if (!nodes) tree.error = ENOMEM;
  if (nodes) ExpandBelow(nodes, open, &tree);
  return tree;
}

void ReadPlaces(PlacesListing* listing) {
  listing->volumes = ListVolumes();
  for (const auto& [root, open] : listing->request.open)
    listing->trees[root] = ReadTree(root, open);
}

}  // namespace

PlacesReader::Read PlacesReader::read = ReadPlaces;

std::vector<Volume> ListVolumes() {
  int count = 0;
  OS_DeviceN* list = OS_ListDevN(&count);
  std::vector<Volume> volumes;
  for (int i = 0; i < count; ++i) {
    const bool fixed = i < int(std::size(kWords));
    // Those of the user are listed whether they are there or not.
    if (fixed && !IsFolder(list[i].path)) continue;
    volumes.push_back({WordFor(list[i].name, fixed), list[i].path, list[i].host});
  }
  OS_ListDevFreeN(list);
  return volumes;
}

// One that is being read. The task and the reader share it.
struct PlacesReader::Reading {
  PlacesListing listing;
  std::mutex lock;  // of what follows
  std::function<void()> told;
  bool wanted = true, done = false;

  // Under the lock, so that nothing is told of one that has been dropped.
  void End() {
    const std::lock_guard<std::mutex> guard(lock);
    done = true;
    if (wanted && told) told();
  }
};

void PlacesReader::Ask(PlacesRequest request, std::function<void()> told) {
  Drop();
  reading_ = std::make_shared<Reading>();
  reading_->listing.request = std::move(request);
  reading_->told = std::move(told);
  task_ = BackgroundTask([reading = reading_, how = read] {
    how(&reading->listing);
    reading->End();
  });
  if (!task_.failed()) return;
  for (const auto& [root, open] : reading_->listing.request.open)
    reading_->listing.trees[root].error = EAGAIN;
  reading_->End();
}

void PlacesReader::Drop() {
  if (reading_) {
    const std::lock_guard<std::mutex> guard(reading_->lock);
    reading_->wanted = false;
  }
  task_.Drop();
  reading_.reset();
}

bool PlacesReader::WaitFor(int ms) const {
  return task_.WaitFor(ms);
}

const PlacesRequest* PlacesReader::request() const {
  return reading_ ? &reading_->listing.request : nullptr;
}

PlacesListing PlacesReader::Take() {
  PlacesListing listing;
  bool done = false;
  if (reading_) {
    const std::lock_guard<std::mutex> guard(reading_->lock);
    done = reading_->done;
  }
  if (done) {
    listing = std::move(reading_->listing);
    Drop();
  }
  return listing;
}

}  // namespace console
