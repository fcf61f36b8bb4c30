#include "app/model/folder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

namespace console {

constexpr int kSorts[] = {OS_SORT_NAME, OS_SORT_SIZE, OS_SORT_TIME};

void Folder::Begin(const std::string& path) {
  path_ = path;
  known_ = false;
}

// The first entry of a listing is "..".
void Folder::Put(FolderListing listing) {
  listing_ = std::move(listing);
  count_ = std::max(0, listing_.count - 1);
  files_ = 0;
  bytes_ = 0;
  for (int i = 0; i < count_; ++i) {
    const FolderEntry e = At(i);
    if (e.folder) continue;
    ++files_;
    bytes_ += e.size;
  }
  Arrange();
}

void Folder::Show(FolderListing listing) {
  path_ = listing.path;
  known_ = true;
  trouble_.clear();
  Put(std::move(listing));
}

void Folder::Lose(int error, const FolderStamp& stamp) {
  known_ = true;
  trouble_ = strerror(error);
  FolderListing nothing;
  nothing.stamp = stamp;
  Put(std::move(nothing));
}

void Folder::Arrange() {
  OS_ListSortN(
      listing_.entries.get(), listing_.count,
      kSorts[int(order_)] | OS_SORT_FOLDERS_FIRST | (descending_ ? OS_SORT_DESCENDING : 0));
}

void Folder::Sort(Order order, bool descending) {
  order_ = order;
  descending_ = descending;
  Arrange();
}

FolderEntry Folder::At(int i) const {
  if (i < 0 || i >= count_) return {"", false, 0, 0};
  const OS_ListEntryN& e = listing_.entries.get()[i + 1];
  return {e.name, S_ISDIR(e.target), int64_t(e.size), e.time};
}

int Folder::Find(const std::string& name) const {
  for (int i = 0; i < count_; ++i)
    if (name == At(i).name) return i;
  return -1;
}

std::string Folder::PathOf(int i) const {
  return JoinPath(path_, At(i).name);
}

std::string JoinPath(const std::string& folder, const std::string& name) {
  return folder.empty() || folder.back() == '/' ? folder + name : folder + "/" + name;
}

std::string ParentPath(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

std::string LastName(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace console
