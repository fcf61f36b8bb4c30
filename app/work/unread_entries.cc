#include "app/work/unread_entries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <unordered_set>

namespace console {
namespace {

bool LeadsUpwards(const char* name) {
  return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

// It is there and cannot be looked at, is a link that leads nowhere, or neither a file nor a
// folder. What is gone by now was only removed.
bool CannotBeRead(int folder, const char* name) {
  struct stat s {};
  if (fstatat(folder, name, &s, AT_SYMLINK_NOFOLLOW) != 0) return errno != ENOENT;
  if (S_ISLNK(s.st_mode) && fstatat(folder, name, &s, 0) != 0) return true;
  return !S_ISREG(s.st_mode) && !S_ISDIR(s.st_mode);
}

// Calls `look` with each name of the folder.
template <class Look>
void ForEachName(DIR* folder, Look&& look) {
  rewinddir(folder);
  while (const dirent* file = readdir(folder))
    if (!LeadsUpwards(file->d_name)) look(file->d_name);
}

}  // namespace

UnreadEntries CountUnreadEntries(const char* path, const OS_ListEntryN* entries, int count) {
  UnreadEntries unread;
  std::unordered_set<std::string_view> listed;
  DIR* folder = opendir(path);
  if (!folder) return unread;
  size_t named = 0;
  ForEachName(folder, [&](const char*) { ++named; });
  int known = 0;
  for (int i = 0; i < count; ++i) known += !LeadsUpwards(entries[i].name);
  // Nearly always nothing is missing.
  if (named > size_t(known)) {
    for (int i = 0; i < count; ++i) listed.insert(entries[i].name);
    ForEachName(folder, [&](const char* name) {
      if (listed.count(name) == 0 && CannotBeRead(dirfd(folder), name))
        ++(name[0] == '.' ? unread.hidden : unread.plain);
    });
  }
  closedir(folder);
  return unread;
}

}  // namespace console
