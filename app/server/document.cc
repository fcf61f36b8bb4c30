#include "app/server/document.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "app/format/words.h"
#include "app/work/file_time.h"

namespace console {
namespace {

constexpr size_t kPiece = 256 * 1024;

// Not waiting: a pipe would wait for its writer.
int OpenFile(const char* path) {
  return open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

bool SendAll(int fd, const char* from, size_t n) {
  while (n > 0) {
    const ssize_t sent = send(fd, from, n, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    from += sent;
    n -= size_t(sent);
  }
  return true;
}

}  // namespace

int (*Document::open_file)(const char*) = OpenFile;
ssize_t (*Document::read_file)(int, void*, size_t) = read;

// What the thread and the document share.
struct Document::Reading {
  std::string path;
  os::Handle in;  // the thread's alone
  std::mutex lock;
  std::condition_variable changed;
  bool opened = false, done = false;
  int64_t size = 0, modified_ns = 0;
  std::string trouble;

  void Run();

 private:
  void Tell(bool Reading::*what, int64_t bytes, const std::string& why) {
    const std::lock_guard<std::mutex> guard(lock);
    this->*what = true;
    size = bytes;
    trouble = why;
    changed.notify_all();
  }
  void Read(int file, const struct stat& s);
};

void Document::Reading::Run() {
  const os::Handle file(open_file(path.c_str()));
  struct stat s {};
  if (!file || fstat(file.get(), &s) != 0)
    Tell(&Reading::opened, 0, TroubleText(errno));
  else if (!S_ISREG(s.st_mode))
    Tell(&Reading::opened, 0, "not a file");
  else
    Read(file.get(), s);
  in.Reset();
}

void Document::Reading::Read(int file, const struct stat& s) {
  const int64_t bytes = s.st_size;
  {
    const std::lock_guard<std::mutex> guard(lock);
    modified_ns = ModifiedNs(s);
  }
  Tell(&Reading::opened, bytes, "");
  std::vector<char> piece(size_t(std::min<int64_t>(bytes, kPiece)));
  std::string why;
  for (int64_t left = bytes; left > 0;) {
    const ssize_t got = read_file(file, piece.data(), std::min(size_t(left), piece.size()));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) why = got < 0 ? TroubleText(errno) : "the file ended early";
    if (got <= 0 || !SendAll(in.get(), piece.data(), size_t(got))) break;
    left -= got;
  }
  Tell(&Reading::done, bytes, why);
}

Document::Document(const std::string& path) : reading_(std::make_shared<Reading>()) {
  reading_->path = path;
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0) {
    reading_->in = os::Handle(ends[0]);
    out_ = os::Handle(ends[1]);
    task_ = BackgroundTask([reading = reading_] { reading->Run(); });
  }
  if (out_ && !task_.failed()) return;
  reading_->opened = true;
  reading_->trouble = out_ ? "no thread is left to read it" : TroubleText(errno);
}

bool Document::Opened(int ms) const {
  std::unique_lock<std::mutex> guard(reading_->lock);
  return reading_->changed.wait_for(guard, std::chrono::milliseconds(ms),
                                    [this] { return reading_->opened; });
}

std::string Document::Trouble() const {
  const std::lock_guard<std::mutex> guard(reading_->lock);
  return reading_->trouble;
}

int64_t Document::size() const {
  const std::lock_guard<std::mutex> guard(reading_->lock);
  return reading_->size;
}

int64_t Document::modified_ns() const {
  const std::lock_guard<std::mutex> guard(reading_->lock);
  return reading_->modified_ns;
}

bool Document::Silent() const {
  const std::lock_guard<std::mutex> guard(reading_->lock);
  int ready = 0;
  return !reading_->done && ioctl(out_.get(), FIONREAD, &ready) == 0 && ready == 0;
}

}  // namespace console
