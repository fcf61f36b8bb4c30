#include "printserverd/folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <thread>

namespace printserverd {

namespace {
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Creates the missing parents of `path`, which may hold links: they are the operator's own.
bool MakeParents(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1)) {
    if (mkdir(path.substr(0, slash).c_str(), 0700) != 0 && errno != EEXIST) return false;
  }
  return true;
}

// The type bits of an entry itself; 0 when there is none.
mode_t TypeIn(int folder, const std::string& name) {
  struct stat info;
  return fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 ? info.st_mode & S_IFMT : 0;
}

int sync_delay_ms = 0;
int64_t sync_to_fail = 0;
std::atomic<int64_t> syncs{0};

// What comes before a sync; false when it is to fail.
bool BeforeSync() {
  if (sync_delay_ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(sync_delay_ms));
  if (sync_to_fail == 0 || ++syncs != sync_to_fail) return true;
  errno = EIO;
  return false;
}
}  // namespace

bool IsPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

Fd OpenOwnFolder(const std::string& path) {
  std::string trimmed = path;
  while (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
  if (!MakeParents(trimmed)) return {};
  if (mkdir(trimmed.c_str(), 0700) != 0 && errno != EEXIST) return {};
  Fd fd(open(trimmed.c_str(), kFolderFlags));
  if (!fd) return {};
  struct stat info;
  if (fstat(fd.get(), &info) != 0) return {};
  if (info.st_uid != geteuid()) {
    errno = EPERM;
    return {};
  }
  return fd;
}

Fd OpenSubfolder(int parent, const std::string& name, bool create) {
  if (!IsPlainName(name)) {
    errno = EINVAL;
    return {};
  }
  if (create && mkdirat(parent, name.c_str(), 0700) != 0 && errno != EEXIST) return {};
  return Fd(openat(parent, name.c_str(), kFolderFlags));
}

Fd OpenFileIn(int parent, const std::string& name) {
  if (!IsPlainName(name)) {
    errno = EINVAL;
    return {};
  }
  // Without O_NONBLOCK a pipe of that name would hold the daemon up.
  Fd fd(openat(parent, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat info;
  if (!fd || fstat(fd.get(), &info) != 0) return {};
  if (!S_ISREG(info.st_mode)) {
    errno = EINVAL;
    return {};
  }
  return fd;
}

Fd CreateFileIn(int parent, const std::string& name) {
  if (!IsPlainName(name)) {
    errno = EINVAL;
    return {};
  }
  return Fd(openat(parent, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
}

bool SyncFile(int fd) {
  return BeforeSync() && fdatasync(fd) == 0;
}

bool SyncFolder(int fd) {
  return BeforeSync() && fsync(fd) == 0;
}

void SimulateSyncs(int ms, int64_t fail) {
  sync_delay_ms = ms;
  sync_to_fail = fail;
}

bool ReplaceFileIn(int parent, const std::string& name, std::string_view content, bool sync) {
  const std::string draft = name + ".new";
  unlinkat(parent, draft.c_str(), 0);
  Fd fd = CreateFileIn(parent, draft);
  if (!fd) return false;
  if (WriteAll(fd.get(), content.data(), content.size()) && (!sync || SyncFile(fd.get())) &&
      renameat(parent, draft.c_str(), parent, name.c_str()) == 0) {
    return true;
  }
  const int error = errno;
  unlinkat(parent, draft.c_str(), 0);
  errno = error;
  return false;
}

std::string MoveAside(int from, const std::string& name, int to) {
  constexpr int kTries = 1000;
  std::string as = name;
  for (int i = 1; i <= kTries; ++i) {
    if (renameat2(from, name.c_str(), to, as.c_str(), RENAME_NOREPLACE) == 0) return as;
    // Not every file system knows how to leave what is there.
    if (errno == EINVAL && TypeIn(to, as) == 0) {
      if (renameat(from, name.c_str(), to, as.c_str()) == 0) return as;
      break;
    }
    if (errno != EEXIST && errno != EINVAL) break;
    as = name + "." + std::to_string(i);
  }
  return "";
}

bool ReadAll(int fd, size_t max, std::string* content) {
  content->clear();
  char buffer[8192];
  while (content->size() <= max) {
    const ssize_t n = read(fd, buffer, std::min(sizeof buffer, max + 1 - content->size()));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) return true;
    content->append(buffer, static_cast<size_t>(n));
  }
  errno = EFBIG;
  return false;
}

bool ReadFileIn(int parent, const std::string& name, size_t max, std::string* content) {
  const Fd fd = OpenFileIn(parent, name);
  return fd && ReadAll(fd.get(), max, content);
}

bool IsForeign(int error) {
  return error == EFBIG || error == ELOOP || error == EINVAL || error == ENXIO;
}

std::vector<std::string> NamesIn(int folder) {
  std::vector<std::string> names;
  const int fd = openat(folder, ".", kFolderFlags);
  if (fd < 0) return names;
  std::unique_ptr<DIR, int (*)(DIR*)> dir(fdopendir(fd), closedir);
  if (!dir) {
    const int error = errno;
    close(fd);
    errno = error;
    return names;
  }
  const dirent* entry = nullptr;
  while (errno = 0, entry = readdir(dir.get())) {
    if (IsPlainName(entry->d_name)) names.emplace_back(entry->d_name);
  }
  const int error = errno;
  dir.reset();
  errno = error;
  return names;
}

RemoveResult RemoveBeneath(int folder, std::string_view path) {
  Fd here;  // empty while the part is directly in `folder`
  const auto parent = [&] { return here ? here.get() : folder; };
  for (size_t slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
    const std::string part(path.substr(0, slash));
    if (!IsPlainName(part)) return RemoveResult::kBadPath;
    Fd next = OpenSubfolder(parent(), part, false);
    if (!next) {
      return TypeIn(parent(), part) == S_IFLNK ? RemoveResult::kBadPath : RemoveResult::kNotThere;
    }
    here = std::move(next);
    path.remove_prefix(slash + 1);
  }
  const std::string name(path);
  if (!IsPlainName(name)) return RemoveResult::kBadPath;
  switch (TypeIn(parent(), name)) {
    case 0:
      return RemoveResult::kNotThere;
    case S_IFLNK:
      return RemoveResult::kBadPath;
    case S_IFREG:
      return unlinkat(parent(), name.c_str(), 0) == 0 ? RemoveResult::kRemoved
                                                      : RemoveResult::kFailed;
    default:
      return RemoveResult::kNotAFile;
  }
}

std::string PlainNameOf(std::string_view name, size_t max) {
  if (name.size() > max) {
    size_t cut = max;
    while (cut > 0 && (static_cast<uint8_t>(name[cut]) & 0xc0) == 0x80) --cut;
    name = name.substr(0, cut > 0 ? cut : max);
  }
  std::string out(name);
  for (char& c : out) {
    if (static_cast<uint8_t>(c) < 0x20 || c == 0x7f || c == '/') c = '_';
  }
  if (out.empty()) return "_";
  if (out[0] == '.') out[0] = '_';
  return out;
}

}  // namespace printserverd
