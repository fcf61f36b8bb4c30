// Child processes, and pipes to and from them.
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "os/final_path.h"
#include "os/os.h"

static_assert(sizeof(OS_Pipe) == 12 && offsetof(OS_Pipe, read_fd) == 4 &&
              offsetof(OS_Pipe, pid) == 8);

namespace {

constexpr int kProcessArguments = 32;
constexpr int kPipeArguments = 36;
constexpr int kLookAgainMs = 20;

// What belongs to a pipe beside its record: the child's ends, which stay open here too, and a
// descriptor that becomes readable when the child ends (none where the system has no such thing).
struct Extra {
  int write_fd;
  int read_fd;
  os::Handle input;
  os::Handle output;
  os::Handle child;
};

// All pipes that have not been closed. Kept until the process ends.
struct PipeTable {
  std::mutex lock;
  std::vector<Extra> pipes;
};

PipeTable& Table() {
  static auto* table = new PipeTable;
  return *table;
}

std::vector<Extra>::iterator Find(const OS_Pipe& p) {
  auto& pipes = Table().pipes;
  return std::find_if(pipes.begin(), pipes.end(), [&p](const Extra& extra) {
    return extra.write_fd == p.write_fd && extra.read_fd == p.read_fd;
  });
}

// Store the extra descriptors of a new pipe. One that still has a number of its own here was closed
// by its owner without OS_ClosePipe: what it had is no longer ours to close.
void Remember(Extra extra) {
  const std::lock_guard guard(Table().lock);
  for (Extra& old : Table().pipes) {
    if (old.write_fd != extra.write_fd && old.read_fd != extra.read_fd) continue;
    for (os::Handle* fd : {&old.input, &old.output, &old.child}) fd->Release();
    old = std::move(extra);
    return;
  }
  Table().pipes.push_back(std::move(extra));
}

Extra Forget(const OS_Pipe& p) {
  const std::lock_guard guard(Table().lock);
  const auto found = Find(p);
  if (found == Table().pipes.end()) return {};
  Extra extra = std::move(*found);
  Table().pipes.erase(found);
  return extra;
}

int ChildDescriptor(const OS_Pipe& p) {
  const std::lock_guard guard(Table().lock);
  const auto found = Find(p);
  return found == Table().pipes.end() ? -1 : found->child.get();
}

// Collect the program's name and the arguments that follow it; those past the room are left out.
template <size_t kRoom>
void Collect(const char* program, va_list more, char* (&arguments)[kRoom]) {
  size_t count = 0;
  for (const char* next = program; next && count < kRoom - 1; next = va_arg(more, const char*)) {
    arguments[count++] = const_cast<char*>(next);
  }
  arguments[count] = nullptr;
}

// A descriptor above those of the standard streams, closed on exec.
os::Handle Above(int fd) {
  os::Handle low(fd);
  return low.get() > STDERR_FILENO ? std::move(low)
                                   : os::Handle(fcntl(low.get(), F_DUPFD_CLOEXEC, 3));
}

bool MakePipe(os::Handle* read_end, os::Handle* write_end) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  *read_end = Above(ends[0]);
  *write_end = Above(ends[1]);
  return *read_end && *write_end;
}

// A fork that leaves the table unlocked on both sides, whatever other threads do.
pid_t Fork() {
  const std::lock_guard guard(Table().lock);
  return fork();
}

// Become `arguments`, fed by and feeding the pipes; returns when that fails.
void RunChild(char** arguments, const os::Handle& input, const os::Handle& output, OS_Pipe* record,
              os::Handle* parent_ends) {
  dup2(input.get(), STDIN_FILENO);
  parent_ends[0].Reset();
  dup2(output.get(), STDOUT_FILENO);
  parent_ends[1].Reset();
  execvp(arguments[0], arguments);
  free(record);
}

// Whether the child has ended. It is not reaped; one that somebody else has reaped has ended too.
bool HasEnded(pid_t pid) {
  siginfo_t info;
  int result = -1;
  do {
    info.si_pid = 0;
    result = pid < 1 ? -1 : waitid(P_PID, pid, &info, WEXITED | WNOHANG | WNOWAIT);
  } while (pid > 0 && result != 0 && errno == EINTR);
  return result != 0 || info.si_pid == pid;
}

enum class Wait { kReady, kEnded, kFailed };

// Wait until one end of the pipe is ready for `event`. What an ended child left can still be read;
// nothing is written for one. A signal ends the waiting (kFailed, EINTR), as it would end a read or
// a write.
Wait WaitForPipe(const OS_Pipe& p, int fd, short event) {
  const int child = ChildDescriptor(p);
  for (;;) {
    pollfd both[] = {{fd, event, 0}, {child, POLLIN, 0}};
    if (poll(both, 2, child >= 0 ? -1 : kLookAgainMs) < 0) return Wait::kFailed;
    const bool ended = child >= 0 ? both[1].revents != 0 : HasEnded(p.pid);
    // What the child did last may have come between the two looks.
    if (ended) return event == POLLIN && poll(both, 1, 0) > 0 ? Wait::kReady : Wait::kEnded;
    if (both[0].revents) return Wait::kReady;
  }
}

int Refuse(int error) {
  errno = error;
  return -1;
}

}  // namespace

extern "C" {

int OS_StartProcess(const char* program, ...) {
  if (!program) return Refuse(EINVAL);
  char* arguments[kProcessArguments];
  va_list more;
  va_start(more, program);
  Collect(program, more, arguments);
  va_end(more);
  const pid_t pid = Fork();
  if (pid == 0) execvp(program, arguments);
  return pid;
}

int OS_WaitProcess(int pid) {
  int status = 0;
  if (pid < 1) return 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return 0;
  }
  return status;
}

OS_Pipe* OS_StartPipe(const char* program, ...) {
  char* arguments[kPipeArguments];
  va_list more;
  va_start(more, program);
  Collect(program, more, arguments);
  va_end(more);
  os::Handle ends[2];  // ours: the write end of the child's input, the read end of its output
  os::Handle input;
  os::Handle output;
  if (!program || !MakePipe(&ends[1], &output) || !MakePipe(&input, &ends[0])) return nullptr;
  auto* p = static_cast<OS_Pipe*>(malloc(sizeof(OS_Pipe)));
  const pid_t pid = p ? Fork() : -1;
  if (pid == 0) {
    RunChild(arguments, input, output, p, ends);
    // The caller's code goes on in the child, with the child's ends.
    input.Release();
    output.Release();
    return nullptr;
  }
  if (pid < 0) {
    free(p);
    return nullptr;
  }
  const int child = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
  *p = {ends[0].Release(), ends[1].Release(), pid};
  Remember({p->write_fd, p->read_fd, std::move(input), std::move(output),
            child < 0 ? os::Handle() : Above(child)});
  return p;
}

int OS_ReadPipe(OS_Pipe* p, void* buf, int len) {
  if (!p || !buf) return 0;
  for (int got = 0; got < len;) {
    if (WaitForPipe(*p, p->read_fd, POLLIN) != Wait::kReady) return 0;
    const ssize_t n = read(p->read_fd, static_cast<char*>(buf) + got, len - got);
    if (n <= 0) return 0;
    got += static_cast<int>(n);
  }
  return std::max(len, 0);
}

int OS_WritePipe(OS_Pipe* p, const void* buf, int len) {
  if (!p || !buf || len < 0) return Refuse(EINVAL);
  int done = 0;
  while (done < len) {
    const Wait wait = WaitForPipe(*p, p->write_fd, POLLOUT);
    if (wait == Wait::kEnded) return Refuse(EPIPE);
    // A pipe with any room takes this much at once.
    const auto* from = static_cast<const char*>(buf) + done;
    const ssize_t n =
        wait == Wait::kReady ? write(p->write_fd, from, std::min(len - done, PIPE_BUF)) : -1;
    if (n <= 0) return done > 0 ? done : static_cast<int>(n);
    done += static_cast<int>(n);
  }
  return done;
}

int OS_ClosePipe(OS_Pipe* p) {
  if (!p) return Refuse(EINVAL);
  const Extra extra = Forget(*p);
  close(p->write_fd);
  const int result = close(p->read_fd);
  p->write_fd = p->read_fd = -1;
  return result;
}

}  // extern "C"
