// A folder of the test's own, removed with everything in it.
#ifndef QUORVIK_TESTS_OS_SCRATCH_H
#define QUORVIK_TESTS_OS_SCRATCH_H

#include <stdlib.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class Scratch {
 public:
  Scratch() {
    std::string pattern = std::filesystem::temp_directory_path() / "quorvik-test-XXXXXX";
    path_ = mkdtemp(pattern.data());
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& path() const { return path_; }
  std::string At(const std::string& name) const { return path_ + "/" + name; }

  std::string Folder(const std::string& name) const {
    std::filesystem::create_directories(At(name));
    return At(name);
  }

  std::string File(const std::string& name, const std::string& content = "") const {
    std::ofstream(At(name), std::ios::binary) << content;
    return At(name);
  }

  std::string Link(const std::string& name, const std::string& target) const {
    std::filesystem::create_symlink(target, At(name));
    return At(name);
  }

 private:
  std::string path_;
};

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline mode_t ModeOf(const std::string& path) {
  struct stat state;
  return lstat(path.c_str(), &state) == 0 ? state.st_mode & 07777 : 0;
}

inline void SetTime(const std::string& path, time_t seconds) {
  const timeval times[2] = {{seconds, 0}, {seconds, 0}};
  utimes(path.c_str(), times);
}

#endif
