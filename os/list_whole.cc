// Folder listings with whole names and 64-bit figures.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "os/match.h"
#include "os/os.h"

namespace {

// While a list is being built, `name` holds an offset into `names`.
struct WholeListing {
  std::vector<OS_ListEntryN> entries;
  std::vector<char> names;
  uint64_t total = 0;  // bytes of the regular files that matched
};

bool IsParent(const char* name) {
  return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

void Add(WholeListing* list, const char* name, const OS_ListEntryN& figures) {
  OS_ListEntryN entry = figures;
  entry.name = reinterpret_cast<const char*>(list->names.size());
  list->names.insert(list->names.end(), name, name + strlen(name) + 1);
  list->entries.push_back(entry);
}

bool Describe(int folder, const char* name, OS_ListEntryN* entry) {
  struct stat state;
  if (fstatat(folder, name, &state, AT_SYMLINK_NOFOLLOW) != 0) return false;
  entry->mode = entry->target = state.st_mode;
  if (S_ISLNK(state.st_mode)) {
    struct stat target;
    const bool leads = fstatat(folder, name, &target, 0) == 0;
    if (leads) state = target;
    entry->target = leads ? target.st_mode : 0;
  }
  entry->size = static_cast<uint64_t>(state.st_size);
  entry->time = state.st_mtime;
  return true;
}

bool IsWanted(const OS_ListEntryN& entry, int types) {
  if (S_ISDIR(entry.target)) return types & OS_LIST_FOLDERS;
  if (S_ISREG(entry.target)) return types & OS_LIST_FILES;
  return types & OS_LIST_OTHERS;
}

// What the folder alone tells: only folders are wanted and no total, and this is neither one nor a
// link that may lead to one.
bool IsNeverListed(const dirent* file, int types) {
  constexpr int kKinds = OS_LIST_FOLDERS | OS_LIST_FILES | OS_LIST_OTHERS | OS_LIST_SELF;
  if ((types & kKinds) != OS_LIST_FOLDERS) return false;
  return file->d_type != DT_DIR && file->d_type != DT_LNK && file->d_type != DT_UNKNOWN;
}

void AddFile(int folder, const dirent* file, bool matched, int types, WholeListing* list) {
  if (IsNeverListed(file, types)) return;
  OS_ListEntryN entry = {};
  const char* name = file->d_name;
  const bool may_be_folder = file->d_type != DT_REG && types & OS_LIST_ALL_FOLDERS;
  if ((!matched && !may_be_folder) || !Describe(folder, name, &entry)) return;
  if (!matched && !S_ISDIR(entry.target)) return;
  if (S_ISREG(entry.target)) list->total += entry.size;
  if (name[0] == '.' && !(types & OS_LIST_HIDDEN)) return;
  if (IsWanted(entry, types)) Add(list, name, entry);
}

bool ReadFolder(const char* path, const char* patterns, int types, WholeListing* list) {
  const std::vector<std::string> split = os::SplitPatterns(patterns);
  DIR* folder = opendir(path);
  if (!folder) return false;
  // At the folder's end, and only there, errno stays 0.
  const dirent* file = nullptr;
  while (errno = 0, file = readdir(folder)) {
    const char* name = file->d_name;
    if (IsParent(name)) continue;
    const bool matched = std::any_of(split.begin(), split.end(), [name](const std::string& p) {
      return match_name(p.c_str(), name) != 0;
    });
    AddFile(dirfd(folder), file, matched, types, list);
  }
  const int error = errno;
  closedir(folder);
  errno = error;
  return error == 0;
}

template <typename T>
int Compare(T a, T b) {
  return a < b ? -1 : a > b;
}

int CompareNames(const OS_ListEntryN& a, const OS_ListEntryN& b) {
  const int result = strcasecmp(a.name, b.name);
  return result != 0 ? result : strcmp(a.name, b.name);
}

bool ComesBefore(const OS_ListEntryN& a, const OS_ListEntryN& b, int sort) {
  if (sort & OS_SORT_FOLDERS_FIRST && S_ISDIR(a.target) != S_ISDIR(b.target)) {
    return S_ISDIR(a.target);
  }
  int result = 0;
  if (sort & OS_SORT_NAME) {
    result = CompareNames(a, b);
  } else if (sort & OS_SORT_TIME) {
    result = Compare(a.time, b.time);
  } else if (sort & OS_SORT_SIZE) {
    result = Compare(a.size, b.size);
  }
  if (sort & OS_SORT_DESCENDING) result = -result;
  return result != 0 ? result < 0 : CompareNames(a, b) < 0;
}

// One block of memory that holds the entries and, behind them, their names.
OS_ListEntryN* Pack(const WholeListing& list) {
  const size_t records = list.entries.size() * sizeof(OS_ListEntryN);
  auto* block = static_cast<char*>(malloc(records + list.names.size()));
  if (!block) return nullptr;
  auto* entries = reinterpret_cast<OS_ListEntryN*>(block);
  memcpy(block, list.entries.data(), records);
  memcpy(block + records, list.names.data(), list.names.size());
  for (size_t i = 0; i < list.entries.size(); ++i) {
    entries[i].name = block + records + reinterpret_cast<size_t>(entries[i].name);
  }
  return entries;
}

}  // namespace

extern "C" {

OS_ListEntryN* OS_ListDirN(const char* path, const char* patterns, int* count, int types,
                           int sort) {
  WholeListing list;
  const OS_ListEntryN parent = {nullptr, 0, 0, S_IFDIR, S_IFDIR};
  const bool folders = types & OS_LIST_FOLDERS;
  const size_t parents = !folders ? 0 : types & OS_LIST_SELF ? 2 : 1;
  if (parents == 2) Add(&list, ".", parent);
  if (parents != 0) Add(&list, "..", parent);
  const bool read = ReadFolder(path && path[0] ? path : ".", patterns, types, &list) &&
                    list.entries.size() <= INT_MAX;
  if (count) *count = read ? static_cast<int>(list.entries.size()) : -1;
  if (!read || list.entries.empty()) return nullptr;
  if (parents == 2) list.entries[0].size = list.total;
  OS_ListEntryN* result = Pack(list);
  if (!result && count) *count = -1;
  OS_ListSortN(result, static_cast<int>(list.entries.size()), sort);
  return result;
}

void OS_ListSortN(OS_ListEntryN* list, int count, int sort) {
  if (!list || count < 1 || !(sort & ~OS_SORT_WHOLE)) return;
  // No file has the name of one of these.
  int fixed = 0;
  while (fixed < count && IsParent(list[fixed].name)) ++fixed;
  std::sort(list + fixed, list + count,
            [sort](const auto& a, const auto& b) { return ComesBefore(a, b, sort); });
}

void OS_ListFreeN(OS_ListEntryN* list) {
  free(list);
}

}  // extern "C"
