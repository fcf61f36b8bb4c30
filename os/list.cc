// Folder listings in fixed-size records.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>

#include <string>

#include "os/match.h"
#include "os/os.h"

namespace {

// How sort_func compares. Of the thread, so that listings may run side by side.
thread_local int sort_mode = 0;

struct Listing {
  OS_ListEntry* entries = nullptr;
  size_t count = 0;
  size_t room = 0;
  int64_t total = 0;  // bytes of the regular files that matched
};

bool Grow(Listing* list, size_t room) {
  void* grown = realloc(list->entries, room * sizeof(OS_ListEntry));
  if (!grown) return false;
  list->entries = static_cast<OS_ListEntry*>(grown);
  list->room = room;
  return true;
}

void Fill(OS_ListEntry* entry, const char* name, uint32_t size, uint32_t time) {
  memset(entry, 0, sizeof *entry);
  memcpy(entry->name, name, strnlen(name, sizeof entry->name - 1));
  entry->size = size;
  entry->time = time;
}

// Whether the state of a file cannot matter, known from the folder alone: only folders are wanted
// and no total.
bool IsNeverListed(const dirent* file, int types) {
  const bool folders_only = (types & (OS_LIST_SELF | 0xFFFF)) == OS_LIST_FOLDERS;
  return folders_only && (file->d_type == DT_REG || file->d_type == DT_LNK);
}

bool AddFile(int folder, const dirent* file, int types, Listing* list) {
  struct stat state;
  if (IsNeverListed(file, types)) return true;
  if (fstatat(folder, file->d_name, &state, AT_SYMLINK_NOFOLLOW) != 0) return true;
  if (state.st_mode < 0x4000) return true;
  if (state.st_mode & OS_LIST_FILES) list->total += state.st_size;
  if (os::IsLeftOut(file->d_name, types) || !(state.st_mode & types)) return true;
  if (list->count == list->room && !Grow(list, list->room * 2)) return false;
  Fill(&list->entries[list->count++], file->d_name, static_cast<uint32_t>(state.st_size),
       static_cast<uint32_t>(state.st_mtime));
  return true;
}

int CompareForSort(const void* a, const void* b) {
  return sort_func(static_cast<const OS_ListEntry*>(a), static_cast<const OS_ListEntry*>(b));
}

void SortFrom(const Listing& list, size_t first) {
  if (list.count - first < 2) return;
  qsort(list.entries + first, list.count - first, sizeof(OS_ListEntry), CompareForSort);
}

// Add the files that match one pattern; false if the folder cannot be read.
bool AddPattern(const char* path, const char* pattern, int types, int sort, Listing* list) {
  DIR* folder = opendir(path);
  if (!folder) return false;
  const size_t first = list->count;
  bool good = true;
  // At the folder's end, and only there, errno stays 0.
  const dirent* file = nullptr;
  while (good && (errno = 0, file = readdir(folder))) {
    if (strcmp(file->d_name, "..") == 0 || !match_name(pattern, file->d_name)) continue;
    good = AddFile(dirfd(folder), file, types, list);
  }
  good = good && errno == 0;
  if (good && sort && !(sort & OS_SORT_WHOLE)) SortFrom(*list, first);
  closedir(folder);
  return good;
}

// Put ".." in front, and "." before it where it is asked for.
bool AddParents(int types, Listing* list) {
  const size_t parents = types & OS_LIST_SELF ? 2 : 1;
  if (list->count + parents > list->room && !Grow(list, list->count + parents)) return false;
  memmove(list->entries + parents, list->entries, list->count * sizeof(OS_ListEntry));
  list->count += parents;
  if (parents == 2) Fill(list->entries, ".", static_cast<uint32_t>(list->total / 1024), 0);
  Fill(list->entries + parents - 1, "..", 0, 0);
  return true;
}

bool ListInto(const char* path, const char* patterns, int types, int sort, Listing* list) {
  if (!Grow(list, 100)) return false;
  for (const std::string& pattern : os::SplitPatterns(patterns)) {
    if (!AddPattern(path, pattern.c_str(), types, sort, list)) return false;
  }
  if (sort & OS_SORT_WHOLE) SortFrom(*list, 0);
  return !(types & OS_LIST_FOLDERS) || AddParents(types, list);
}

// Drop a volume prefix; what is left empty by it is the root.
const char* WithoutVolume(const char* path) {
  if (!path || !path[0]) return ".";
  if (const char* colon = strchr(path, ':')) path = colon + 1;
  return path[0] ? path : "/";
}

template <typename T>
int Compare(T a, T b) {
  return a < b ? -1 : a > b;
}

}  // namespace

extern "C" {

OS_ListEntry* OS_ListDir(const char* path, const char* patterns, int* count, int types, int sort) {
  Listing list;
  sort_mode = sort;
  if (count) *count = 0;
  if (!ListInto(WithoutVolume(path), patterns, types, sort, &list) || list.count == 0 ||
      list.count > INT_MAX) {
    free(list.entries);
    return nullptr;
  }
  if (count) *count = static_cast<int>(list.count);
  return list.entries;
}

void OS_ListFree(OS_ListEntry* list) {
  free(list);
}

int sort_func(const OS_ListEntry* a, const OS_ListEntry* b) {
  int result = 0;
  if (!a || !b) return 0;
  if (sort_mode & OS_SORT_NAME) {
    result = strcasecmp(a->name, b->name);
  } else if (sort_mode & OS_SORT_TIME) {
    result = Compare(a->time, b->time);
  } else if (sort_mode & OS_SORT_SIZE) {
    result = Compare(a->size, b->size);
  }
  return sort_mode & OS_SORT_DESCENDING ? -result : result;
}

}  // extern "C"
