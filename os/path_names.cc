// The standard folders and the user's name, each found once and kept in a buffer of its own.
#include <stdlib.h>
#include <sys/stat.h>

#include <mutex>
#include <string>

#include "os/os.h"
#include "os/system_paths.h"

namespace {

constexpr int kFolders = 9;
constexpr char kBundle[] = ".app/Contents/MacOS";

// One name: whole, and cut to the size that the plain call gives.
template <size_t kSize>
struct Kept {
  bool found = false;
  std::string whole;
  char cut[kSize] = {};

  void Keep(std::string text) {
    whole = std::move(text);
    cut[whole.copy(cut, kSize - 1)] = 0;
    found = true;
  }
};

// Kept until the process ends. The lock is recursive because some folders are found from others.
struct Names {
  std::recursive_mutex lock;
  Kept<256> folders[kFolders];
  Kept<64> user;
};

Names& TheNames() {
  static auto* names = new Names;
  return *names;
}

std::string FolderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(0, slash);
}

std::string ApplicationFolder() {
  const std::string path = os::ExecutablePath();
  return FolderOf(path.substr(0, path.find(kBundle)));
}

std::string HomeFolder() {
  const char* home = getenv("HOME");
  return home ? home : "/";
}

std::string SharedFolder() {
  return os::SystemPath("/Users/Shared");
}

std::string DocumentsFolder() {
  return os::FolderPath(OS_FOLDER_HOME) + "/Documents";
}

std::string DesktopFolder() {
  return os::FolderPath(OS_FOLDER_HOME) + "/Desktop";
}

std::string NoFolder() {
  return {};
}

std::string ExecutableFolder() {
  return FolderOf(os::ExecutablePath());
}

std::string ResourcesFolder() {
  return ExecutableFolder() + "/../Resources";
}

using FolderFinder = std::string (*)();

// In the order of the folders' numbers.
constexpr FolderFinder kFinders[kFolders] = {
    ApplicationFolder, HomeFolder, os::TemporaryFolder, SharedFolder,    DocumentsFolder,
    DesktopFolder,     NoFolder,   ExecutableFolder,    ResourcesFolder,
};

Kept<256>& Folder(int folder) {
  if (folder < 0 || folder >= kFolders) folder = OS_FOLDER_NONE;
  Kept<256>& kept = TheNames().folders[folder];
  const std::lock_guard guard(TheNames().lock);
  if (!kept.found) kept.Keep(kFinders[folder]());
  return kept;
}

Kept<64>& User() {
  Kept<64>& kept = TheNames().user;
  const std::lock_guard guard(TheNames().lock);
  const char* user = kept.found ? nullptr : getenv("USER");
  if (!kept.found) kept.Keep(user ? user : "nobody");
  return kept;
}

}  // namespace

namespace os {

std::string TemporaryFolder() {
  const std::string path = SystemPath("/var/tmp/Quorvik");
  mkdir(path.c_str(), 0777);
  OS_SetFileShared(path.c_str());
  return path;
}

std::string FolderPath(int folder) {
  return Folder(folder).whole;
}

std::string UserName() {
  return User().whole;
}

void ForgetPathNames() {
  const std::lock_guard guard(TheNames().lock);
  for (auto& folder : TheNames().folders) folder = {};
  TheNames().user = {};
}

}  // namespace os

extern "C" {

char* OS_GetPathName(int folder) {
  return Folder(folder).cut;
}

char* OS_GetUserName(void) {
  return User().cut;
}

}  // extern "C"
