#include "os/system_paths.h"

#include <limits.h>
#include <unistd.h>

namespace os {

namespace {

std::string& Root() {
  static auto* root = new std::string;
  return *root;
}

std::string& Executable() {
  static auto* executable = new std::string;
  return *executable;
}

}  // namespace

std::string SystemPath(const char* path) {
  return Root() + path;
}

std::string ExecutablePath() {
  if (!Executable().empty()) return Executable();
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, length) : std::string();
}

void SetSystemRoot(const char* root) {
  Root() = root ? root : "";
  ForgetPathNames();
}

void SetExecutablePath(const char* path) {
  Executable() = path ? path : "";
  ForgetPathNames();
}

}  // namespace os
