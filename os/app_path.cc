// Application-path files: where the programs of one family are installed.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "os/final_path.h"
#include "os/os.h"

namespace {

constexpr char kRegistry[] = "Quorvik";
constexpr int kAttempts = 8;

// A key names one file of the registry: nothing that leads elsewhere.
bool IsPlainName(const char* key) {
  return key[0] && !strchr(key, '/') && strcmp(key, ".") != 0 && strcmp(key, "..") != 0;
}

os::Handle OpenRegistry() {
  const std::string path = std::string(OS_GetPathName(OS_FOLDER_SHARED)) + "/" + kRegistry;
  return os::Handle(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Files with a second name are links too: their other name may be anybody's file.
bool IsPlainFile(int fd) {
  struct stat state;
  return fstat(fd, &state) == 0 && S_ISREG(state.st_mode) && state.st_nlink == 1;
}

os::Handle OpenEntry(int registry, const char* key, int flags) {
  os::Handle file(openat(registry, key, flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (file && !IsPlainFile(file.get())) {
    errno = ELOOP;
    file.Reset();
  }
  return file;
}

// Open the entry for writing, made if it is not there. Never empties what it only finds: the caller
// does, once it knows that it is a plain file.
os::Handle OpenOrMakeEntry(int registry, const char* key) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    os::Handle file = OpenEntry(registry, key, O_WRONLY);
    if (file || errno != ENOENT) return file;
    file = os::Handle(
        openat(registry, key, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (file || errno != EEXIST) return file;
  }
  return os::Handle();
}

bool WriteAll(int fd, const char* text, size_t length) {
  while (length > 0) {
    const ssize_t n = write(fd, text, length);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    text += n;
    length -= n;
  }
  return true;
}

// Read at most 255 bytes of the first line into `text`.
void ReadFirstLine(int fd, char (&text)[256]) {
  size_t length = 0;
  while (length < sizeof text - 1) {
    const ssize_t n = read(fd, text + length, sizeof text - 1 - length);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    length += n;
  }
  text[length] = 0;
  if (auto* end = static_cast<char*>(memchr(text, '\n', length))) end[1] = 0;
}

void CutAtLast(char* text, char c) {
  if (char* found = strrchr(text, c)) *found = 0;
}

}  // namespace

extern "C" {

char* OS_GetAppPath(const char* key) {
  static char result[256];
  if (!key) return OS_GetPathName(OS_FOLDER_APPLICATION);
  const int length =
      snprintf(result, sizeof result, "%s/%s/%s", OS_GetPathName(OS_FOLDER_SHARED), kRegistry, key);
  const bool fits = length >= 0 && static_cast<size_t>(length) < sizeof result;
  if (fits && IsPlainName(key)) {
    const os::Handle registry = OpenRegistry();
    const os::Handle file = registry ? OpenEntry(registry.get(), key, O_RDONLY) : os::Handle();
    if (file) ReadFirstLine(file.get(), result);
  }
  CutAtLast(result, '\n');
  CutAtLast(result, '\r');
  return result;
}

int OS_SetAppPath(const char* key) {
  if (!key || !IsPlainName(key)) {
    errno = EINVAL;
    return -1;
  }
  const std::string folder = std::string(OS_GetPathName(OS_FOLDER_SHARED)) + "/" + kRegistry;
  OS_CreateDirectory(folder.c_str());
  const os::Handle registry = OpenRegistry();
  if (!registry) return -1;
  fchmod(registry.get(), 0777);
  const os::Handle file = OpenOrMakeEntry(registry.get(), key);
  if (!file) return -1;
  const char* path = OS_GetPathName(OS_FOLDER_APPLICATION);
  const bool written = ftruncate(file.get(), 0) == 0 && WriteAll(file.get(), path, strlen(path));
  return written ? fchmod(file.get(), 0666) : -1;
}

}  // extern "C"
