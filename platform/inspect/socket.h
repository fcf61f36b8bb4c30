// A socket in the file system that only its user can reach, and one connection of a client. Nothing
// here waits.
#pragma once
#include <sys/types.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace platform {

class ListeningSocket {
 public:
  ListeningSocket() = default;
  ~ListeningSocket() { Close(); }
  ListeningSocket(const ListeningSocket&) = delete;
  ListeningSocket& operator=(const ListeningSocket&) = delete;

  // Takes the place of a socket that nobody serves any more. "", or what went wrong.
  std::string Open(const std::string& path);
  // Removes the file, unless another one has taken its place.
  void Close();
  // The next client; -1 when none waits. Clients of other users are refused. `*more` becomes false
  // when no client can be accepted at this time.
  int Accept(bool* more);
  int descriptor() const { return fd_; }

 private:
  std::string path_;
  dev_t device_ = 0;
  ino_t number_ = 0;
  int fd_ = -1;
};

// The bytes of a connection, line by line.
class Connection {
 public:
  explicit Connection(int fd) : fd_(fd) {}
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Reads what has come, as far as one line may reach, and sends what can be sent.
  void Move();
  // The next whole line, without its end; it is valid until the next call. False: there is none.
  bool TakeLine(std::string_view* line);
  bool HasLine() const { return in_.find('\n', taken_) != std::string::npos; }
  // Queues a line; the next Move sends it.
  void Send(std::string_view line);
  // Nothing more is read; it is over when everything has been sent.
  void HangUp() { hung_up_ = true; }
  // Everything has been sent.
  bool idle() const { return sent_ == out_.size(); }
  bool over() const { return broken_ || (hung_up_ && idle()); }
  // A line is longer than it may be.
  bool too_long() const {
    return std::min(in_.find('\n', taken_), in_.size()) - taken_ > kLongestLine;
  }
  // What to poll it for.
  short events() const;
  int descriptor() const { return fd_; }
  // The other side sends no more.
  bool ended() const { return ended_; }

  static constexpr size_t kLongestLine = 64 * 1024;

 private:
  void Read();
  void Write();
  bool PeerIsGone() const;
  bool reads() const {
    return !ended_ && !hung_up_ && !HasLine() && in_.size() - taken_ <= kLongestLine;
  }

  std::string in_, out_;
  size_t taken_ = 0, sent_ = 0;
  int fd_;
  bool ended_ = false, broken_ = false, hung_up_ = false;
};

}  // namespace platform
