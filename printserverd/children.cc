#include "printserverd/children.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "printserverd/log.h"

namespace printserverd {

namespace {

bool IsHarmless(std::string_view argument) {
  const auto control = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
  return argument.substr(0, 1) != "-" && std::none_of(argument.begin(), argument.end(), control);
}

// What a program gets of the environment: the daemon's own may hold anything.
std::vector<std::string> Environment() {
  std::vector<std::string> out = {"PATH=/usr/local/bin:/usr/bin:/bin"};
  const auto add = [&out](const char* name, const char* otherwise) {
    const char* value = getenv(name);
    out.push_back(std::string(name) + "=" + (value && *value ? value : otherwise));
  };
  add("HOME", "/");
  add("LANG", "C.UTF-8");
  return out;
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> out;
  for (const std::string& text : texts) out.push_back(const_cast<char*>(text.c_str()));
  out.push_back(nullptr);
  return out;
}

// A session of its own, in the root folder, nothing on standard input, no descriptor but the
// standard ones, no blocked or ignored signals.
int Spawn(const std::vector<std::string>& arguments, pid_t* pid) {
  const std::vector<std::string> environment = Environment();
  const std::vector<char*> argv = Pointers(arguments), envp = Pointers(environment);
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t files;
  posix_spawnattr_init(&attributes);
  posix_spawn_file_actions_init(&files);
  sigset_t none, all;
  sigemptyset(&none);
  sigfillset(&all);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
  posix_spawn_file_actions_addchdir_np(&files, "/");
  const int error = posix_spawn(pid, argv[0], &files, &attributes, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&files);
  posix_spawnattr_destroy(&attributes);
  return error;
}

}  // namespace

void Child::End() {
  Reap();
  if (pid_ > 0) kill(pid_, SIGTERM);
  pid_ = 0;
}

void Child::Start(const std::vector<std::string>& command, std::string_view first,
                  std::string_view second) {
  if (command.empty() || pid_ > 0) return;
  if (!IsHarmless(first) || !IsHarmless(second)) {
    LogRarely(what_ + " not started: its arguments are refused");
    return;
  }
  std::vector<std::string> arguments = command;
  for (size_t i = 1; i < arguments.size(); ++i) {
    if (arguments[i] == "%1") {
      arguments[i] = first;
    } else if (arguments[i] == "%2") {
      arguments[i] = second;
    }
  }
  const int error = Spawn(arguments, &pid_);
  if (error != 0) {
    pid_ = 0;
    LogRarely(what_ + " not started: " + command[0] + ": " + strerror(error));
  } else {
    Log(what_ + " started: " + command[0]);
  }
}

void Child::Reap() {
  int status;
  if (pid_ <= 0 || waitpid(pid_, &status, WNOHANG) != pid_) return;
  pid_ = 0;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
  Log(what_ + (WIFEXITED(status) ? " ended with exit code " + std::to_string(WEXITSTATUS(status))
                                 : " ended by signal " + std::to_string(WTERMSIG(status))));
}

}  // namespace printserverd
