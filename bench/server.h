// An X server of the bench's own, in memory.
#pragma once
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

// Starts it on a free display, which DISPLAY then names; -1 when it cannot be started. The caller
// ends it by its id.
inline pid_t StartServer() {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  fcntl(ends[0], F_SETFD, FD_CLOEXEC);
  const std::string fd = std::to_string(ends[1]);
  const char* const command[] = {"Xvfb", "-displayfd", fd.c_str(), "-noreset",     "-nolisten",
                                 "tcp",  "-screen",    "0",        "1280x1024x24", nullptr};
  pid_t pid = -1;
  if (posix_spawnp(&pid, command[0], nullptr, nullptr, const_cast<char* const*>(command),
                   environ) != 0) {
    return -1;
  }
  close(ends[1]);
  char number[16] = {};
  size_t size = 0;
  while (size < sizeof number - 1 && memchr(number, '\n', size) == nullptr) {
    const ssize_t n = read(ends[0], number + size, sizeof number - 1 - size);
    if (n <= 0) break;
    size += size_t(n);
  }
  close(ends[0]);
  if (size == 0) return -1;
  setenv("DISPLAY", (":" + std::string(number, strcspn(number, "\n"))).c_str(), 1);
  return pid;
}
