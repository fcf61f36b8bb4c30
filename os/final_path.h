// Owned descriptors, and opening what a path finally names in folders that other users can write
// too: a link at the end of a path is followed only when the caller or the target's owner owns it.
// For use by os/ and its users inside the project.
#ifndef QUORVIK_OS_FINAL_PATH_H
#define QUORVIK_OS_FINAL_PATH_H

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <utility>

namespace os {

// A descriptor that is closed when its owner goes, errno kept.
class Handle {
 public:
  Handle() = default;
  explicit Handle(int fd) : fd_(fd) {}
  Handle(Handle&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Handle& operator=(Handle&& other) noexcept;
  ~Handle() { Reset(); }
  void Reset();
  int Release() { return std::exchange(fd_, -1); }
  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// Write all bytes, signals or not; false, with errno, when that fails.
bool WriteAll(int fd, const void* data, size_t size);

// The name through which the system reaches the file behind a descriptor.
std::string DescriptorPath(int fd);

// A handle that only names the file (O_PATH), with its state in *state; none, with errno, if it is
// not there or its link may not be followed (ELOOP).
Handle OpenFinal(const char* path, struct stat* state);

// Open a file for writing, empty, made if it is not there; never waits for a reader of a pipe.
Handle OpenForWriting(const char* path);

}  // namespace os

#endif
