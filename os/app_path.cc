// Application-path files: where the programs of one family are installed.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "os/final_path.h"
#include "os/os.h"

namespace {

constexpr char kRegistry[] = "Quorvik";
constexpr int kAttempts = 8;
constexpr size_t kLongest = 256;  // of a path and of what a file records, with its final zero

// A key names one file of the registry: nothing that leads elsewhere.
bool IsPlainName(const char* key) {
  return key[0] && !strchr(key, '/') && strcmp(key, ".") != 0 && strcmp(key, "..") != 0;
}

os::Handle OpenRegistry() {
  const std::string path = std::string(OS_GetPathName(OS_FOLDER_SHARED)) + "/" + kRegistry;
  return os::Handle(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// A file with a second name is a link too: it may be anybody's.
bool IsPlainFile(int fd) {
  struct stat state;
  return fstat(fd, &state) == 0 && S_ISREG(state.st_mode) && state.st_nlink == 1;
}

os::Handle OpenEntry(int registry, const char* key) {
  os::Handle file(openat(registry, key, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (file && !IsPlainFile(file.get())) file.Reset();
  return file;
}

// Make a file of a name that nobody can foresee, which is stored in `name`.
os::Handle MakeEntry(int registry, std::string* name) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    uint64_t random = 0;
    if (getrandom(&random, sizeof random, 0) != static_cast<ssize_t>(sizeof random)) break;
    name->assign(1, '.').append(std::to_string(random));
    os::Handle file(openat(registry, name->c_str(), kFlags, 0600));
    if (file || errno != EEXIST) return file;
  }
  return os::Handle();
}

// Read at most 255 bytes of the first line into `result`. A file that cannot be read to its end is
// as good as none: nothing is stored.
void ReadFirstLine(int fd, char (&result)[kLongest]) {
  char text[kLongest];
  size_t length = 0;
  while (length < sizeof text - 1) {
    const ssize_t n = read(fd, text + length, sizeof text - 1 - length);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return;
    if (n == 0) break;
    length += n;
  }
  text[length] = 0;
  if (auto* end = static_cast<char*>(memchr(text, '\n', length))) end[1] = 0;
  memcpy(result, text, sizeof text);
}

void CutAtLast(char* text, char c) {
  if (char* found = strrchr(text, c)) *found = 0;
}

// Put a new file in the entry's place, whole and shared from the first moment. What was there is
// never opened: between any check and its use it could become a second name of another file.
bool ReplaceEntry(int registry, const char* key, const char* text) {
  std::string name;
  os::Handle file = MakeEntry(registry, &name);
  if (!file) return false;
  if (os::WriteAll(file.get(), text, strlen(text)) && fchmod(file.get(), 0666) == 0 &&
      renameat(registry, name.c_str(), registry, key) == 0) {
    return true;
  }
  const int error = errno;
  unlinkat(registry, name.c_str(), 0);
  errno = error;
  return false;
}

}  // namespace

extern "C" {

char* OS_GetAppPath(const char* key) {
  static char result[kLongest];
  if (!key) return OS_GetPathName(OS_FOLDER_APPLICATION);
  const int length =
      snprintf(result, sizeof result, "%s/%s/%s", OS_GetPathName(OS_FOLDER_SHARED), kRegistry, key);
  const bool fits = length >= 0 && static_cast<size_t>(length) < sizeof result;
  if (fits && IsPlainName(key)) {
    const os::Handle registry = OpenRegistry();
    const os::Handle file = registry ? OpenEntry(registry.get(), key) : os::Handle();
    if (file) ReadFirstLine(file.get(), result);
  }
  CutAtLast(result, '\n');
  CutAtLast(result, '\r');
  return result;
}

int OS_SetAppPath(const char* key) {
  const std::string folder = std::string(OS_GetPathName(OS_FOLDER_SHARED)) + "/" + kRegistry;
  if (!key || !IsPlainName(key) || folder.size() + 1 + strlen(key) >= kLongest) {
    errno = EINVAL;
    return -1;
  }
  OS_CreateDirectory(folder.c_str());
  const os::Handle registry = OpenRegistry();
  if (!registry) return -1;
  fchmod(registry.get(), 0777);
  return ReplaceEntry(registry.get(), key, OS_GetPathName(OS_FOLDER_APPLICATION)) ? 0 : -1;
}

}  // extern "C"
