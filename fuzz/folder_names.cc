// Folders that hold files and folders of any names, listed in all ways: the input is the sorts and
// types, then names, each after a byte that says what it is of and ended by a zero or a slash.
#include <fcntl.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <vector>

#include "fuzz/root.h"
#include "os/os.h"

namespace {

struct Input {
  int types = 0;
  int sort = 0;
  std::map<std::string, bool> names;  // whether it is a folder
};

Input Parse(const uint8_t* data, size_t size) {
  Input input;
  input.types =
      (data[0] & 3) << 14 | (data[0] & 4 ? OS_LIST_SELF : 0) | (data[0] & 8 ? OS_LIST_HIDDEN : 0);
  input.sort = data[1] & 63;
  for (size_t at = 2; at + 1 < size && input.names.size() < 16;) {
    const bool folder = data[at++] & 1;
    std::string name;
    for (; at < size && data[at] != 0 && data[at] != '/'; ++at) name += static_cast<char>(data[at]);
    ++at;
    if (!name.empty() && name.size() < 256 && name != "." && name != "..") {
      input.names.insert({name, folder});
    }
  }
  return input;
}

// Every name of the list is that of a file, each is there once, and no order is broken.
void CheckWhole(const std::string& path, const Input& input) {
  int count = 0;
  OS_ListEntryN* list = OS_ListDirN(path.c_str(), "*", &count, input.types, input.sort);
  std::map<std::string, int> seen;
  for (int i = 0; i < count; ++i) ++seen[list[i].name];
  size_t expected = 0;
  for (const auto& [name, folder] : input.names) {
    const bool listed = input.types & (folder ? OS_LIST_FOLDERS : OS_LIST_FILES) &&
                        (name[0] != '.' || input.types & OS_LIST_HIDDEN);
    if (seen[name] != listed) abort();
    expected += listed;
  }
  const bool folders = input.types & OS_LIST_FOLDERS;
  const int parents = !folders ? 0 : input.types & OS_LIST_SELF ? 2 : 1;
  if (count != static_cast<int>(expected) + parents) abort();
  for (int i = parents + 1; i < count && input.sort == OS_SORT_NAME; ++i) {
    if (strcasecmp(list[i - 1].name, list[i].name) > 0) abort();
  }
  OS_ListFreeN(list);
}

void CheckPlain(const std::string& path, const Input& input) {
  int count = 0;
  OS_ListEntry* list = OS_ListDir(path.c_str(), "*", &count, input.types, input.sort);
  if (count < 0 || (list == nullptr) != (count == 0)) abort();
  for (int i = 0; i < count; ++i) {
    const std::string name(list[i].name, strnlen(list[i].name, sizeof list[i].name));
    const auto from = input.names.lower_bound(name);
    const bool known = from != input.names.end() && from->first.substr(0, 39) == name;
    if (name.size() > 39 || (!known && name != "." && name != "..")) abort();
  }
  OS_ListFree(list);
}

void CheckTrees(const std::string& path, const Input& input) {
  int folders = 0;
  for (const auto& [name, folder] : input.names) folders += folder && name[0] != '.';
  OS_TreeNodeN* whole = OS_TreeCreateN(path.c_str());
  if (whole->child_count != folders || OS_TreeScanN(whole, nullptr) != folders) abort();
  for (int i = 0; i < folders; ++i) {
    if (whole->children[i].path != path + "/" + whole->children[i].name) abort();
    if (whole->children[i].child_count != 0 || whole->children[i].depth != 1) abort();
  }
  OS_TreeDestroyN(whole);
  OS_TreeNode* plain = OS_TreeCreate(path.c_str());
  for (int i = 0; i < plain->child_count; ++i) {
    const OS_TreeNode& child = plain->children[i];
    if (child.path + path.size() + 1 != child.name || strlen(child.name) > 39) abort();
  }
  OS_TreeDestroy(plain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3 || size > 4096) return 0;
  const Input input = Parse(data, size);
  const std::string path = FuzzRoot() + "/folder";
  mkdir(path.c_str(), 0700);
  for (const auto& [name, folder] : input.names) {
    const std::string file = path + "/" + name;
    if (folder ? mkdir(file.c_str(), 0700) != 0 : mknod(file.c_str(), S_IFREG | 0600, 0) != 0)
      abort();
  }
  CheckWhole(path, input);
  CheckPlain(path, input);
  CheckTrees(path, input);
  for (const auto& [name, folder] : input.names) {
    const std::string file = path + "/" + name;
    if ((folder ? rmdir(file.c_str()) : unlink(file.c_str())) != 0) abort();
  }
  return 0;
}
