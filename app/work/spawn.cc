#include "app/work/spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "os/final_path.h"
#include "os/system_paths.h"

namespace console {
namespace {

constexpr int kStandard = 3;

// The descriptors that a child gets, as a list for the system.
class Actions {
 public:
  Actions() { posix_spawn_file_actions_init(&actions_); }
  ~Actions() { posix_spawn_file_actions_destroy(&actions_); }
  Actions(const Actions&) = delete;
  Actions& operator=(const Actions&) = delete;

  // False, with errno. What goes to a standard descriptor is first copied above them, so that none
  // overwrites another.
  bool Give(const int (&wanted)[kStandard]) {
    for (int i = 0; i < kStandard; ++i) {
      const int from = wanted[i] < 0 ? open("/dev/null", O_RDWR | O_CLOEXEC) : wanted[i];
      copies_[i] = os::Handle(fcntl(from, F_DUPFD_CLOEXEC, kStandard));
      if (wanted[i] < 0) close(from);
      if (!copies_[i]) return false;
      posix_spawn_file_actions_adddup2(&actions_, copies_[i].get(), i);
    }
    posix_spawn_file_actions_addclosefrom_np(&actions_, kStandard);
    return true;
  }
  void GoToRoot() { posix_spawn_file_actions_addchdir_np(&actions_, "/"); }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
  os::Handle copies_[kStandard];
};

// A program in a new group or session has default signals. One that stays in this program's group
// ignores what this program ignores.
class Attributes {
 public:
  explicit Attributes(Program::Place place) {
    posix_spawnattr_init(&attributes_);
    sigset_t set;
    sigfillset(&set);
    posix_spawnattr_setsigdefault(&attributes_, &set);
    sigemptyset(&set);
    posix_spawnattr_setsigmask(&attributes_, &set);
    posix_spawnattr_setpgroup(&attributes_, 0);
    constexpr int kFlags[] = {POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF, 0,
                              POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF};
    posix_spawnattr_setflags(&attributes_, short(POSIX_SPAWN_SETSIGMASK | kFlags[place]));
  }
  ~Attributes() { posix_spawnattr_destroy(&attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

bool CanRun(const std::string& path) {
  struct stat s {};
  return stat(path.c_str(), &s) == 0 && S_ISREG(s.st_mode) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

bool Child::HasEnded(int* status) {
  if (pid_ <= 0) return true;
  const pid_t ended = waitpid(pid_, status, WNOHANG);
  if (ended == 0 || (ended < 0 && errno == EINTR)) return false;
  if (ended < 0) *status = -1;
  pid_ = 0;
  return true;
}

int Child::Wait() {
  int status = -1;
  while (pid_ > 0 && waitpid(pid_, &status, 0) < 0) {
    if (errno == EINTR) continue;
    status = -1;
    break;
  }
  pid_ = 0;
  return status;
}

int Child::Kill() {
  if (pid_ > 0) kill(leads_ ? -pid_ : pid_, SIGKILL);
  return Wait();
}

Child Start(const Program& program) {
  if (program.words.empty()) {
    errno = EINVAL;
    return {};
  }
  Actions actions;
  if (!actions.Give({program.input, program.output, program.error})) return {};
  if (program.place == Program::kOwnSession) actions.GoToRoot();
  const Attributes attributes(program.place);
  std::vector<char*> words;
  for (const std::string& word : program.words) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  pid_t pid = 0;
  errno = posix_spawnp(&pid, words[0], actions.get(), attributes.get(), words.data(), environ);
  return errno == 0 ? Child(pid, program.place != Program::kSameGroup) : Child();
}

std::string FindProgram(const std::string& name) {
  const std::string own = os::ExecutablePath();
  const std::string beside = own.substr(0, own.rfind('/') + 1) + name;
  if (CanRun(beside)) return beside;
  const char* path = getenv("PATH");
  const std::string folders = path ? path : "/usr/local/bin:/usr/bin:/bin";
  for (size_t begin = 0; begin <= folders.size();) {
    const size_t end = std::min(folders.find(':', begin), folders.size());
    // Only absolute folders: what lies in the current one is not meant.
    const std::string found = folders.substr(begin, end - begin) + "/" + name;
    if (found[0] == '/' && end > begin && CanRun(found)) return found;
    begin = end + 1;
  }
  return "";
}

}  // namespace console
