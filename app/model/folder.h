// What is read of a folder. Names and paths are the bytes of the file system.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "os/os.h"

namespace console {

struct FolderEntry {
  const char* name;
  bool folder;
  int64_t size, time;
};

// A time of change, told apart to the nanosecond; 0 of what cannot be looked at.
struct FolderStamp {
  int64_t seconds = 0;
  long nanoseconds = 0;
  bool operator==(const FolderStamp&) const = default;
};

struct FreeFolderList {
  void operator()(OS_ListEntryN* list) const { OS_ListFreeN(list); }
};

// A listing as it was read, in any order.
struct FolderListing {
  std::string path;
  std::unique_ptr<OS_ListEntryN, FreeFolderList> entries;
  int count = 0;
  FolderStamp stamp;
};

// "/a/b" and "c" are "/a/b/c".
std::string JoinPath(const std::string& folder, const std::string& name);
// Of "/a/b" they are "/a" and "b"; of "/" they are "/" and "".
std::string ParentPath(const std::string& path);
std::string LastName(const std::string& path);

}  // namespace console
