// A root of its own for a fuzz target's fixed paths, removed at the end.
#pragma once
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "os/system_paths.h"

inline const std::string& FuzzRoot() {
  static const std::string* root = [] {
    auto* made = new std::string(std::filesystem::temp_directory_path() / "quorvik-fuzz-XXXXXX");
    if (!mkdtemp(made->data())) abort();
    os::SetSystemRoot(made->c_str());
    atexit([] {
      std::error_code ignored;
      std::filesystem::remove_all(FuzzRoot(), ignored);
    });
    return made;
  }();
  return *root;
}
