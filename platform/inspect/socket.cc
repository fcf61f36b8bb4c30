#include "platform/inspect/socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace platform {
namespace {

constexpr int kBacklog = 8;

bool IsOwnUser(int fd) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return !getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) && peer.uid == geteuid();
}

int NewSocket() {
  return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

// Whether a program answers there. One whose queue is full answers too.
bool Answers(const sockaddr_un& address) {
  const int fd = NewSocket();
  if (fd < 0) return true;
  const int failed =
      connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) ? errno : 0;
  close(fd);
  return failed != ECONNREFUSED && failed != ENOENT;
}

// Removes a socket that an ended program has left; "" when the path is free.
std::string MakeRoom(const sockaddr_un& address) {
  struct stat there;
  if (lstat(address.sun_path, &there)) return errno == ENOENT ? "" : strerror(errno);
  if (!S_ISSOCK(there.st_mode)) return "is there, and is no socket";
  if (there.st_uid != geteuid()) return "is another user's";
  if (Answers(address)) return "another program serves it";
  return unlink(address.sun_path) && errno != ENOENT ? strerror(errno) : "";
}

}  // namespace

std::string ListeningSocket::Open(const std::string& path) {
  Close();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return "is too long for a socket";
  memcpy(address.sun_path, path.c_str(), path.size() + 1);
  if (std::string why = MakeRoom(address); !why.empty()) return why;
  const int fd = NewSocket();
  if (fd < 0) return strerror(errno);
  // The file gets the mode that the socket has.
  const bool good = !fchmod(fd, S_IRUSR | S_IWUSR) &&
                    !bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  struct stat made;
  if (!good || lstat(path.c_str(), &made) || listen(fd, kBacklog)) {
    const std::string why = strerror(errno);
    close(fd);
    if (good) unlink(path.c_str());
    return why;
  }
  fd_ = fd;
  path_ = path;
  device_ = made.st_dev;
  number_ = made.st_ino;
  return "";
}

void ListeningSocket::Close() {
  if (fd_ < 0) return;
  struct stat now;
  const bool same = !lstat(path_.c_str(), &now) && now.st_dev == device_ && now.st_ino == number_;
  if (same) unlink(path_.c_str());
  close(fd_);
  fd_ = -1;
}

int ListeningSocket::Accept(bool* more) {
  for (;;) {
    const int fd = accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    *more = fd >= 0 || errno == EAGAIN || errno == EINTR || errno == ECONNABORTED;
    if (fd < 0 && *more && errno != EAGAIN) continue;
    if (fd < 0 || IsOwnUser(fd)) return fd;
    close(fd);
  }
}

Connection::~Connection() {
  close(fd_);
}

short Connection::events() const {
  return short((reads() ? POLLIN : 0) | (idle() ? 0 : POLLOUT));
}

void Connection::Read() {
  char buffer[16384];
  while (reads()) {
    const ssize_t n = recv(fd_, buffer, sizeof buffer, 0);
    if (n > 0) {
      in_.append(buffer, size_t(n));
      continue;
    }
    if (n == 0) ended_ = true;
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno != EAGAIN) broken_ = true;
    return;
  }
}

void Connection::Write() {
  while (!idle()) {
    const ssize_t n = send(fd_, out_.data() + sent_, out_.size() - sent_, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno != EAGAIN) broken_ = true;
    if (n < 0) return;
    sent_ += size_t(n);
  }
  out_.clear();
  out_.shrink_to_fit();
  sent_ = 0;
}

// A peer that has only closed its sending side still reads.
bool Connection::PeerIsGone() const {
  pollfd p{fd_, 0, 0};
  return poll(&p, 1, 0) > 0 && p.revents & (POLLHUP | POLLERR);
}

void Connection::Move() {
  Read();
  Write();
  if (ended_ && PeerIsGone()) broken_ = true;
}

bool Connection::TakeLine(std::string_view* line) {
  in_.erase(0, taken_);
  taken_ = 0;
  const size_t end = in_.find('\n');
  if (end == std::string::npos) return false;
  *line = std::string_view(in_).substr(0, end);
  taken_ = end + 1;
  return true;
}

void Connection::Send(std::string_view line) {
  out_ += line;
  out_ += '\n';
}

}  // namespace platform
