// What was dropped on the window: documents to print, folders to enter, and what is neither.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace console {

struct DroppedPaths {
  struct File {
    std::string path;
    int64_t size;  // bytes
  };
  std::vector<File> files;
  std::vector<std::string> folders;
  int others = 0;              // devices, what is gone, what may not be read
  std::string other, trouble;  // the name of the first of those, and why
};

// Looks at each; may hang.
DroppedPaths LookAtDropped(const std::vector<std::string>& paths);

}  // namespace console
