#include "platform/fonts/cache_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace platform {
namespace {

std::string CacheFolder() {
  const char* cache = getenv("XDG_CACHE_HOME");
  if (cache && cache[0] == '/') return std::string(cache) + "/xw";
  const char* home = getenv("HOME");
  return home && home[0] == '/' ? std::string(home) + "/.cache/xw" : "";
}

bool MakeFolder(const std::string& folder) {
  if (mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST) return true;
  if (errno != ENOENT) return false;
  std::string parent = folder.substr(0, folder.rfind('/'));
  return !parent.empty() && mkdir(parent.c_str(), 0700) == 0 && mkdir(folder.c_str(), 0700) == 0;
}

}  // namespace

std::string ReadCacheFile(const char* name, size_t limit) {
  std::string s, folder = CacheFolder();
  if (folder.empty()) return s;
  // Without O_NONBLOCK a pipe in its place would block the start.
  int fd = open((folder + "/" + name).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (fd < 0) return s;
  struct stat info;
  if (!fstat(fd, &info) && S_ISREG(info.st_mode) && info.st_uid == geteuid() &&
      size_t(info.st_size) <= limit) {
    s.resize(size_t(info.st_size));
    size_t n = 0;
    while (n < s.size()) {
      ssize_t got = read(fd, s.data() + n, s.size() - n);
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) break;
      n += size_t(got);
    }
    s.resize(n);
  }
  close(fd);
  return s;
}

void ReplaceCacheFile(const char* name, std::string_view bytes) {
  const std::string folder = CacheFolder(), path = folder + "/" + name;
  if (folder.empty() || !MakeFolder(folder)) return;
  std::string temporary = path + ".XXXXXX";
  int fd = mkostemp(temporary.data(), O_CLOEXEC);
  if (fd < 0) return;
  size_t n = 0;
  while (n < bytes.size()) {
    ssize_t put = write(fd, bytes.data() + n, bytes.size() - n);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) break;
    n += size_t(put);
  }
  bool good = close(fd) == 0 && n == bytes.size();
  if (!good || rename(temporary.c_str(), path.c_str())) unlink(temporary.c_str());
}

}  // namespace platform
