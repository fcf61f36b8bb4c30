#include "app/folder.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace console {
namespace {

constexpr int kTypes = OS_LIST_FOLDERS | OS_LIST_FILES | OS_LIST_ALL_FOLDERS;
constexpr int kSorts[] = {OS_SORT_NAME, OS_SORT_SIZE, OS_SORT_TIME};

}  // namespace

Folder::Stamp Folder::StampOf(const std::string& path) {
  struct stat s {};
  if (stat(path.c_str(), &s) != 0) return {};
  return {s.st_mtim.tv_sec, s.st_mtim.tv_nsec};
}

// Replaces the listing when `path` can be read.
bool Folder::TakeList(const std::string& path) {
  const int sort =
      kSorts[int(order_)] | OS_SORT_FOLDERS_FIRST | (descending_ ? OS_SORT_DESCENDING : 0);
  const Stamp stamp = StampOf(path);
  int count = 0;
  OS_ListEntryN* list = OS_ListDirN(path.c_str(), nullptr, &count, kTypes, sort);
  if (count < 0) return false;
  list_.reset(list);
  stamp_ = stamp;
  // The first entry is "..".
  count_ = count > 0 ? count - 1 : 0;
  files_ = 0;
  bytes_ = 0;
  for (int i = 0; i < count_; ++i) {
    const FolderEntry e = At(i);
    if (e.folder) continue;
    ++files_;
    bytes_ += e.size;
  }
  trouble_.clear();
  return true;
}

bool Folder::Enter(const std::string& path) {
  if (!TakeList(path)) return false;
  path_ = path;
  return true;
}

void Folder::Read() {
  if (TakeList(path_)) return;
  trouble_ = strerror(errno);
  list_.reset();
  count_ = files_ = 0;
  bytes_ = 0;
  stamp_ = {};
}

bool Folder::Refresh() {
  if (StampOf(path_) == stamp_) return false;
  Read();
  return true;
}

void Folder::Sort(Order order, bool descending) {
  order_ = order;
  descending_ = descending;
  Read();
}

FolderEntry Folder::At(int i) const {
  if (i < 0 || i >= count_) return {"", false, 0, 0};
  const OS_ListEntryN& e = list_.get()[i + 1];
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
