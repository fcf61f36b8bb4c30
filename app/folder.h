// The folder that is shown: a listing of the real one, in the order that the header asks for. Names
// and paths are the bytes of the file system.
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

class Folder {
 public:
  // Reads it. False when it cannot be read; the folder shown stays then, and errno tells why.
  bool Enter(const std::string& path);
  // The same folder again. When it cannot be read any more it is shown empty, with a trouble.
  void Read();
  // Reads it again when it has changed since; true when it had.
  bool Refresh();
  void Sort(Order order, bool descending);

  const std::string& path() const { return path_; }
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
  struct FreeList {
    void operator()(OS_ListEntryN* list) const { OS_ListFreeN(list); }
  };
  using List = std::unique_ptr<OS_ListEntryN, FreeList>;
  struct Stamp {
    int64_t seconds = 0;
    long nanoseconds = 0;
    bool operator==(const Stamp&) const = default;
  };
  static Stamp StampOf(const std::string& path);
  bool TakeList(const std::string& path);

  std::string path_ = "/", trouble_;
  List list_;
  int count_ = 0, files_ = 0;
  int64_t bytes_ = 0;
  Stamp stamp_;
  Order order_ = Order::kName;
  bool descending_ = false;
};

// "/a/b" and "c" are "/a/b/c".
std::string JoinPath(const std::string& folder, const std::string& name);
// Of "/a/b" they are "/a" and "b"; of "/" they are "/" and "".
std::string ParentPath(const std::string& path);
std::string LastName(const std::string& path);

}  // namespace console
