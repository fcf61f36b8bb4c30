#include "os/final_path.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>

#include <vector>

namespace os {

namespace {

constexpr int kMostLinks = 40;
constexpr int kAttempts = 8;

// The end of a walk along the links: the folder, the name in it, and the file if there is one.
struct End {
  Handle folder;
  std::string name;
  Handle file;
  struct stat state = {};
  std::vector<uid_t> link_owners;
  bool names_folder = false;  // the path ends in a slash
};

bool Fail(int error) {
  errno = error;
  return false;
}

// Step from *end's folder along `path`: open the folder that holds its last part.
bool EnterFolder(const std::string& path, End* end) {
  const size_t last = path.find_last_not_of('/');
  const std::string trimmed =
      last == std::string::npos ? path.substr(0, 1) : path.substr(0, last + 1);
  end->names_folder = end->names_folder || trimmed.size() < path.size();
  if (trimmed.empty()) return Fail(ENOENT);
  const size_t slash = trimmed.rfind('/');
  std::string folder = slash == std::string::npos ? "." : trimmed.substr(0, slash + 1);
  end->name = slash == std::string::npos ? trimmed : trimmed.substr(slash + 1);
  if (end->name.empty()) end->name = ".";
  const int base = end->folder ? end->folder.get() : AT_FDCWD;
  end->folder = Handle(openat(base, folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  return static_cast<bool>(end->folder);
}

// Whether the walk may end here: every link on the way had an owner who may lead us.
bool MayEnd(const End& end) {
  for (uid_t owner : end.link_owners) {
    const bool target_owns = end.file && owner == end.state.st_uid;
    if (owner != geteuid() && !target_owns) return Fail(ELOOP);
  }
  if (end.names_folder && !(end.file && S_ISDIR(end.state.st_mode))) return Fail(ENOTDIR);
  return true;
}

// Follow `path` to its end. True also when nothing has the last name; then *end has no file.
bool Walk(const char* path, End* end) {
  std::string rest = path;
  for (int links = 0; links <= kMostLinks; ++links) {
    if (!EnterFolder(rest, end)) return false;
    end->file =
        Handle(openat(end->folder.get(), end->name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!end->file) return errno == ENOENT && MayEnd(*end);
    if (fstat(end->file.get(), &end->state) != 0) return false;
    if (!S_ISLNK(end->state.st_mode)) return MayEnd(*end);
    end->link_owners.push_back(end->state.st_uid);
    char target[PATH_MAX];
    const ssize_t length = readlinkat(end->file.get(), "", target, sizeof target);
    if (length < 0) return false;
    rest.assign(target, length);
  }
  return Fail(ELOOP);
}

}  // namespace

Handle& Handle::operator=(Handle&& other) noexcept {
  if (this != &other) {
    Reset();
    fd_ = other.Release();
  }
  return *this;
}

void Handle::Reset() {
  if (fd_ < 0) return;
  const int error = errno;
  close(Release());
  errno = error;
}

bool WriteAll(int fd, const void* data, size_t size) {
  const char* from = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t n = write(fd, from, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    from += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

std::string DescriptorPath(int fd) {
  return "/proc/self/fd/" + std::to_string(fd);
}

Handle OpenFinal(const char* path, struct stat* state) {
  End end;
  if (!Walk(path, &end)) return Handle();
  if (!end.file) {
    errno = ENOENT;
    return Handle();
  }
  *state = end.state;
  return std::move(end.file);
}

Handle OpenForWriting(const char* path) {
  constexpr int kFlags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    End end;
    if (!Walk(path, &end)) return Handle();
    if (end.file) {
      return Handle(open(DescriptorPath(end.file.get()).c_str(), kFlags | O_TRUNC));
    }
    Handle made(
        openat(end.folder.get(), end.name.c_str(), kFlags | O_CREAT | O_EXCL | O_NOFOLLOW, 0666));
    if (made || errno != EEXIST) return made;
  }
  return Handle();
}

}  // namespace os
