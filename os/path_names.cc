// The standard folders and the user's name, each found once and kept in a buffer of its own.
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <string>

#include "os/os.h"
#include "os/system_paths.h"

namespace {

constexpr int kFolders = 9;
constexpr char kBundle[] = ".app/Contents/MacOS";

char folder_slots[kFolders][256];
char user_slot[64];

template <size_t kSize>
void Store(char (&slot)[kSize], const std::string& text) {
  const size_t length = text.copy(slot, kSize - 1);
  slot[length] = 0;
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
  return std::string(OS_GetPathName(OS_FOLDER_HOME)) + "/Documents";
}

std::string DesktopFolder() {
  return std::string(OS_GetPathName(OS_FOLDER_HOME)) + "/Desktop";
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

}  // namespace

std::string os::TemporaryFolder() {
  const std::string path = os::SystemPath("/var/tmp/Quorvik");
  mkdir(path.c_str(), 0777);
  OS_SetFileShared(path.c_str());
  return path;
}

void os::ForgetPathNames() {
  memset(folder_slots, 0, sizeof folder_slots);
  memset(user_slot, 0, sizeof user_slot);
}

extern "C" {

char* OS_GetPathName(int folder) {
  if (folder < 0 || folder >= kFolders) folder = OS_FOLDER_NONE;
  auto& slot = folder_slots[folder];
  if (!slot[0]) Store(slot, kFinders[folder]());
  return slot;
}

char* OS_GetUserName(void) {
  if (!user_slot[0]) {
    const char* user = getenv("USER");
    Store(user_slot, user ? user : "nobody");
  }
  return user_slot;
}

}  // extern "C"
