#include "app/work/places_reader.h"

#include <sys/statvfs.h>

#include <cerrno>

namespace console {
namespace {

// The first places of the system's list have names for programs.
struct Word {
  const char* name;
  const char* word;
};
constexpr Word kWords[] = {
    {"ROOT", "Computer"}, {"LOCAL", "Home"}, {"DOCUMENTS", "Documents"}, {"DESKTOP", "Desktop"}};

std::string WordFor(const std::string& name, bool fixed) {
  if (fixed)
    for (const Word& w : kWords)
      if (name == w.name) return w.word;
  return name;
}

// A folder of the tree whose own folders are known: those of an open one are looked into as well,
// so that each row knows whether there is something to open.
void ExpandBelow(OS_TreeNodeN* node, PlacesListing* listing) {
  for (int i = 0; i < node->child_count; ++i) {
    OS_TreeNodeN* child = &node->children[i];
    const std::string path = PathOfNode(*child);
    if (!listing->request.open.contains(path)) continue;
    if (OS_TreeExpandN(child) != 0) {
      listing->unreadable.insert(path);
      continue;
    }
    child->open = 1;
    for (int j = 0; j < child->child_count; ++j) OS_TreeExpandN(&child->children[j]);
    ExpandBelow(child, listing);
  }
}

void ReadPlaces(PlacesListing* listing) {
  listing->volumes = ListVolumes();
  const std::string& root = listing->request.root;
  errno = 0;
  listing->tree.reset(OS_TreeCreateN(root.c_str()));
  // A root that cannot be read has no folders, and is told by the error alone.
  const bool empty = !listing->tree || listing->tree->child_count == 0;
  if (empty && listing->tree && OS_TreeExpandN(listing->tree.get()) != 0) listing->error = errno;
  if (!listing->tree) listing->error = ENOMEM;
  if (listing->tree) ExpandBelow(listing->tree.get(), listing);
  struct statvfs s {};
  if (statvfs(root.c_str(), &s) != 0) return;
  listing->free = int64_t(s.f_bavail) * int64_t(s.f_frsize);
  listing->room = int64_t(s.f_blocks) * int64_t(s.f_frsize);
}

}  // namespace

PlacesReader::Read PlacesReader::read = ReadPlaces;

std::vector<Volume> ListVolumes() {
  int count = 0;
  OS_DeviceN* list = OS_ListDevN(&count);
  std::vector<Volume> volumes;
  for (int i = 0; i < count; ++i) {
    const bool fixed = i < int(std::size(kWords));
    volumes.push_back({WordFor(list[i].name, fixed), list[i].path, list[i].host});
  }
  OS_ListDevFreeN(list);
  return volumes;
}

void PlacesReader::Ask(PlacesRequest request) {
  Drop();
  listing_ = std::make_shared<PlacesListing>();
  listing_->request = std::move(request);
  listing_->error = EAGAIN;  // where no thread can be had
  task_ = BackgroundTask([listing = listing_, how = read] {
    listing->error = 0;
    how(listing.get());
  });
}

void PlacesReader::Drop() {
  task_.Drop();
  listing_.reset();
}

PlacesListing PlacesReader::Take() {
  PlacesListing listing;
  if (listing_ && task_.Done()) listing = std::move(*listing_);
  Drop();
  return listing;
}

}  // namespace console
