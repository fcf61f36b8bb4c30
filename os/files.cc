// Temporary files, folders, modes and times.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "os/final_path.h"
#include "os/os.h"
#include "os/system_paths.h"

namespace {

constexpr int kAttempts = 100;

// Build "<folder>/.<time><random>.<ext>"; false if all but the extension does not fit.
bool BuildTempName(char* name, size_t size, const char* folder, unsigned random, const char* ext) {
  const auto now = static_cast<unsigned>(time(nullptr));
  const int length = snprintf(name, size, "%s/.%X%X.", folder, now, random);
  if (length < 0 || static_cast<size_t>(length) >= size) return false;
  const size_t taken = std::min(ext ? strlen(ext) : 0, size - 1 - length);
  memcpy(name + length, ext ? ext : "", taken);
  name[length + taken] = 0;
  return true;
}

}  // namespace

extern "C" {

char* OS_TempFile(const char* ext) {
  static char name[256];
  do {
    if (!BuildTempName(name, sizeof name, OS_GetPathName(OS_FOLDER_TEMPORARY),
                       static_cast<unsigned>(rand()), ext)) {
      name[0] = 0;
      break;
    }
  } while (access(name, F_OK) == 0);
  return name;
}

int OS_TempFileN(const char* ext, char* path, size_t size) {
  if (!path || size == 0) {
    errno = EINVAL;
    return -1;
  }
  const std::string parent = os::TemporaryFolder();
  struct stat state;
  const os::Handle folder = os::OpenFinal(parent.c_str(), &state);
  for (int attempt = 0; folder && attempt < kAttempts; ++attempt) {
    unsigned random = 0;
    if (getrandom(&random, sizeof random, 0) != static_cast<ssize_t>(sizeof random)) break;
    if (!BuildTempName(path, std::min<size_t>(size, 256), parent.c_str(), random, ext)) {
      errno = ENAMETOOLONG;
      break;
    }
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const int fd = openat(folder.get(), path + parent.size() + 1, kFlags, 0600);
    if (fd >= 0) return fd;
    if (errno != EEXIST) break;
  }
  path[0] = 0;
  return -1;
}

int OS_CreateDirectory(const char* path) {
  return path && mkdir(path, 0777) == 0;
}

int OS_SetFileShared(const char* path) {
  struct stat state;
  const os::Handle file = path ? os::OpenFinal(path, &state) : os::Handle();
  if (!file) return -1;
  return chmod(os::DescriptorPath(file.get()).c_str(), S_ISDIR(state.st_mode) ? 0777 : 0666);
}

int OS_SetFileTime(const char* path, unsigned atime, unsigned mtime) {
  struct stat state;
  const os::Handle file = path ? os::OpenFinal(path, &state) : os::Handle();
  if (!file) return 0;
  const timespec times[2] = {{static_cast<time_t>(atime), 0}, {static_cast<time_t>(mtime), 0}};
  utimensat(AT_FDCWD, os::DescriptorPath(file.get()).c_str(), times, 0);
  return 0;
}

void OS_Sync(void) {
  sync();
}

}  // extern "C"
