#include "quorvik-print/document.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "quorvik-print/cli.h"

namespace cli {

namespace {

constexpr size_t kPiece = 256 * 1024;

std::string TemporaryFolder() {
  const char* folder = getenv("TMPDIR");
  return folder && folder[0] ? folder : "/tmp";
}

// A file without a name.
os::Handle OpenPrivate() {
  const std::string folder = TemporaryFolder();
  os::Handle file(open(folder.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, 0600));
  if (file) return file;
  // Not every file system has those.
  std::string name = folder + "/quorvik-print-XXXXXX";
  file = os::Handle(mkostemp(name.data(), O_CLOEXEC));
  if (file) unlink(name.c_str());
  return file;
}

int Unreadable(const std::string& name) {
  return Fail(kNoFile, name + ": cannot be read: " + strerror(errno));
}

}  // namespace

int Document::Open(const std::string& path) {
  if (path == "-") {
    const int code = Copy(STDIN_FILENO, "standard input");
    if (code == kGood && size_ == 0) return Fail(kNoFile, "standard input is empty");
    return code;
  }
  // Waits for the writer of a pipe.
  os::Handle file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  struct stat info;
  if (!file || fstat(file.get(), &info) != 0) return Fail(kNoFile, path + ": " + strerror(errno));
  if (S_ISDIR(info.st_mode)) return Fail(kNoFile, path + ": a folder cannot be printed");
  if (!S_ISREG(info.st_mode) || info.st_size == 0) return Copy(file.get(), path);
  file_ = std::move(file);
  size_ = info.st_size;
  return kGood;
}

int Document::Copy(int from, const std::string& name) {
  file_ = OpenPrivate();
  copied_ = true;
  if (!file_) return Fail(kNoFile, TemporaryFolder() + ": no file can be made: " + strerror(errno));
  std::vector<char> piece(kPiece);
  for (;;) {
    const ssize_t got = read(from, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return Unreadable(name);
    if (got == 0) break;
    size_ += got;
    if (size_ > INT32_MAX) return Fail(kNoFile, name + ": too large to be printed");
    if (!os::WriteAll(file_.get(), piece.data(), static_cast<size_t>(got))) {
      return Fail(kNoFile,
                  name + ": cannot be kept in " + TemporaryFolder() + ": " + strerror(errno));
    }
  }
  return lseek(file_.get(), 0, SEEK_SET) == 0 ? kGood : Unreadable(name);
}

}  // namespace cli
