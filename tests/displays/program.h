// A program as a user starts it, ended as a session ends it.
#pragma once
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

class Program {
 public:
  // With one argument or none.
  explicit Program(const std::string& path, const char* argument = nullptr) {
    pid_ = fork();
    if (pid_ != 0) return;
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
  int Wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_;
};
