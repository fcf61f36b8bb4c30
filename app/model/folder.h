// The folder that is shown, in the order that the header asks for. Names and paths are the bytes
// of the file system. Nothing here touches the file system: work/folder_reader.h reads.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "os/os.h"

namespace console {

enum class Order : uint8_t { kName, kSize, kTime };

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

// Of no folder: whatever is watched against it has changed.
constexpr FolderStamp kNoStamp{-1, -1};

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

class Folder {
 public:
  // The way to it is known, nothing else.
  void Begin(const std::string& path);
  void Show(FolderListing listing);
  // It cannot be read any more: shown empty, with why.
  void Lose(int error, const FolderStamp& stamp);
  void Sort(Order order, bool descending);

  const std::string& path() const { return path_; }
  const FolderStamp& stamp() const { return listing_.stamp; }
  // Whether a listing of it has been shown.
  bool known() const { return known_; }
  int count() const { return count_; }
  FolderEntry At(int i) const;
  // The entry of that name, -1 when there is none.
  int Find(const std::string& name) const;
  std::string PathOf(int i) const;
  // Numbers of what is listed.
  int files() const { return files_; }
  int64_t bytes() const { return bytes_; }
  Order order() const { return order_; }
  bool descending() const { return descending_; }
  // A few words when it cannot be read, else empty.
  const std::string& trouble() const { return trouble_; }

 private:
  void Put(FolderListing listing);
  void Arrange();

  std::string path_ = "/", trouble_;
  FolderListing listing_;
  bool known_ = false;
  int count_ = 0, files_ = 0;
  int64_t bytes_ = 0;
  Order order_ = Order::kName;
  bool descending_ = false;
};

// "/a/b" and "c" are "/a/b/c".
std::string JoinPath(const std::string& folder, const std::string& name);
// Of "/a/b" they are "/a" and "b"; of "/" they are "/" and "".
std::string ParentPath(const std::string& path);
std::string LastName(const std::string& path);

}  // namespace console
