// A program as a user starts it, ended as a session ends it.
#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "tests/support/x_server.h"

class Program {
 public:
  // With one argument or none; what it says on standard error goes to the file.
  explicit Program(const std::string& path, const char* argument = nullptr,
                   const char* error_file = nullptr) {
    pid_ = fork();
    if (pid_ != 0) return;
    if (error_file) dup2(open(error_file, O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
    execl(path.c_str(), path.c_str(), argument, nullptr);
    _exit(127);
  }
  ~Program() {
    if (pid_ > 0) End();
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  // The exit status; -1 when it did not exit by itself.
  int End(int signal = SIGTERM) {
    kill(pid_, signal);
    return Wait();
  }
  void Signal(int signal) const { kill(pid_, signal); }
  int Wait() {
    int status = 0;
    const bool ended = support::Eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; });
    EXPECT_TRUE(ended) << "the program does not end";
    if (!ended) kill(pid_, SIGKILL), waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_;
};
