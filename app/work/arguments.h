// What the program was started with: `quorvik [FILE...]`.
#pragma once
#include <string>
#include <vector>

namespace console {

struct Arguments {
  enum { kRun, kHelp, kVersion, kWrong } what = kRun;
  std::string error;               // of kWrong: why, for a person
  std::vector<std::string> files;  // as they were given
};

// `words` are main's.
Arguments ReadArguments(int count, const char* const* words);

// Files by their absolute paths, bytes.
struct FilesToOpen {
  std::vector<std::string> found, missing;
  std::vector<std::string> devices = {};  // of those that were found: neither a file nor a folder
};

// Looks for the files below the current folder. A file system that does not answer within `ms`
// milliseconds holds nothing up: then the files count as found.
FilesToOpen LookForFiles(const std::vector<std::string>& files, int ms = 1000);

}  // namespace console
