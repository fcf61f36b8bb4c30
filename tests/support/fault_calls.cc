// The wrappers of the calls that faults.cmake lists.
#include "tests/support/fault_calls.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdint.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <type_traits>

namespace {

using support::HalfOf;
using support::NextOutcome;
using support::Outcome;

// What a call returns when it fails.
template <typename Result>
Result Failure(int error) {
  errno = error;
  if constexpr (std::is_pointer_v<Result>) {
    return nullptr;
  } else {
    return -1;
  }
}

// A call that works or fails.
template <typename Result, typename... Parameters>
Result Call(const char* name, Result (*real)(Parameters...), Parameters... arguments) {
  const Outcome* outcome = NextOutcome(name);
  return outcome ? Failure<Result>(outcome->error) : real(arguments...);
}

// One that moves `size` bytes: `move` moves some of them.
template <typename Move>
ssize_t Transfer(const char* name, size_t size, Move move) {
  const Outcome* outcome = NextOutcome(name);
  if (!outcome) return move(size);
  return outcome->half ? move(HalfOf(size)) : Failure<ssize_t>(outcome->error);
}

}  // namespace

// A wrapper of a call of 1 to 5 parameters.
#define WRAP1(result, name, A)            \
  extern "C" result __real_##name(A);     \
  extern "C" result __wrap_##name(A a) {  \
    return Call(#name, __real_##name, a); \
  }
#define WRAP2(result, name, A, B)             \
  extern "C" result __real_##name(A, B);      \
  extern "C" result __wrap_##name(A a, B b) { \
    return Call(#name, __real_##name, a, b);  \
  }
#define WRAP3(result, name, A, B, C)               \
  extern "C" result __real_##name(A, B, C);        \
  extern "C" result __wrap_##name(A a, B b, C c) { \
    return Call(#name, __real_##name, a, b, c);    \
  }
#define WRAP4(result, name, A, B, C, D)                 \
  extern "C" result __real_##name(A, B, C, D);          \
  extern "C" result __wrap_##name(A a, B b, C c, D d) { \
    return Call(#name, __real_##name, a, b, c, d);      \
  }
#define WRAP5(result, name, A, B, C, D, E)                   \
  extern "C" result __real_##name(A, B, C, D, E);            \
  extern "C" result __wrap_##name(A a, B b, C c, D d, E e) { \
    return Call(#name, __real_##name, a, b, c, d, e);        \
  }

WRAP4(int, accept4, int, sockaddr*, socklen_t*, int)
WRAP2(int, access, const char*, int)
WRAP3(int, bind, int, const sockaddr*, socklen_t)
WRAP2(int, chmod, const char*, mode_t)
WRAP3(int, connect, int, const sockaddr*, socklen_t)
WRAP2(int, dup2, int, int)
WRAP1(int, epoll_create1, int)
WRAP4(int, epoll_ctl, int, int, int, epoll_event*)
WRAP4(int, epoll_wait, int, epoll_event*, int, int)
WRAP2(int, eventfd, unsigned, int)
WRAP2(int, fchmod, int, mode_t)
WRAP1(int, fdatasync, int)
WRAP1(DIR*, fdopendir, int)
WRAP2(int, flock, int, int)
WRAP2(int, fstat, int, struct stat*)
WRAP4(int, fstatat, int, const char*, struct stat*, int)
WRAP1(int, fsync, int)
WRAP2(int, ftruncate, int, off_t)
WRAP2(int, futimens, int, const timespec*)
WRAP3(ssize_t, getrandom, void*, size_t, unsigned)
WRAP3(int, getsockname, int, sockaddr*, socklen_t*)
WRAP5(int, getsockopt, int, int, int, void*, socklen_t*)
WRAP2(int, kill, pid_t, int)
WRAP5(int, linkat, int, const char*, int, const char*, int)
WRAP2(int, listen, int, int)
WRAP3(off_t, lseek, int, off_t, int)
WRAP2(int, mkdir, const char*, mode_t)
WRAP3(int, mkdirat, int, const char*, mode_t)
WRAP1(DIR*, opendir, const char*)
WRAP2(int, pipe2, int*, int)
WRAP3(int, poll, pollfd*, nfds_t, int)
WRAP1(dirent*, readdir, DIR*)
WRAP3(ssize_t, readlink, const char*, char*, size_t)
WRAP4(ssize_t, readlinkat, int, const char*, char*, size_t)
WRAP4(int, renameat, int, const char*, int, const char*)
WRAP5(int, renameat2, int, const char*, int, const char*, unsigned)
WRAP5(int, setsockopt, int, int, int, const void*, socklen_t)
WRAP2(int, shutdown, int, int)
WRAP3(int, signalfd, int, const sigset_t*, int)
WRAP3(int, socket, int, int, int)
WRAP2(int, statfs, const char*, struct statfs*)
WRAP3(int, unlinkat, int, const char*, int)
WRAP4(int, utimensat, int, const char*, const timespec*, int)
WRAP4(int, waitid, idtype_t, id_t, siginfo_t*, int)
WRAP3(pid_t, waitpid, pid_t, int*, int)

extern "C" {

// A wrapper of a call that moves `size` bytes: what it takes, and what it passes on to move n.
#define TRANSFER(name, parameters, passed)                                        \
  ssize_t __real_##name parameters;                                               \
  ssize_t __wrap_##name parameters {                                              \
    return Transfer(#name, size, [=](size_t n) { return __real_##name passed; }); \
  }

TRANSFER(read, (int fd, void* data, size_t size), (fd, data, n))
TRANSFER(pread, (int fd, void* data, size_t size, off_t at), (fd, data, n, at))
TRANSFER(write, (int fd, const void* data, size_t size), (fd, data, n))
TRANSFER(recv, (int fd, void* data, size_t size, int flags), (fd, data, n, flags))
TRANSFER(send, (int fd, const void* data, size_t size, int flags), (fd, data, n, flags))
TRANSFER(sendfile, (int to, int from, off_t* at, size_t size), (to, from, at, n))
TRANSFER(copy_file_range,
         (int from, off_t* from_at, int to, off_t* to_at, size_t size, unsigned flags),
         (from, from_at, to, to_at, n, flags))

// Half of a message is half of its first piece.
ssize_t __real_sendmsg(int, const msghdr*, int);
ssize_t __wrap_sendmsg(int fd, const msghdr* message, int flags) {
  const size_t first = message->msg_iovlen > 0 ? message->msg_iov[0].iov_len : 0;
  return Transfer("sendmsg", first, [=](size_t n) {
    if (n == first) return __real_sendmsg(fd, message, flags);
    msghdr half = *message;
    iovec piece = {message->msg_iov[0].iov_base, n};
    half.msg_iov = &piece;
    half.msg_iovlen = 1;
    return __real_sendmsg(fd, &half, flags);
  });
}

// A wrapper of a call with a mode behind its flags when it makes a file.
#define OPEN(name, parameters, passed)                                            \
  int __real_##name parameters;                                                   \
  int __wrap_##name parameters {                                                  \
    va_list more;                                                                 \
    va_start(more, flags);                                                        \
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(more, mode_t) : 0; \
    va_end(more);                                                                 \
    const Outcome* outcome = NextOutcome(#name);                                  \
    return outcome ? Failure<int>(outcome->error) : __real_##name passed;         \
  }

OPEN(open, (const char* path, int flags, ...), (path, flags, mode))
OPEN(openat, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))

// A descriptor is closed whatever the result is.
int __real_close(int);
int __wrap_close(int fd) {
  const Outcome* outcome = NextOutcome("close");
  const int result = __real_close(fd);
  return outcome ? Failure<int>(outcome->error) : result;
}

int __real_fcntl(int, int, ...);
int __wrap_fcntl(int fd, int command, ...) {
  va_list more;
  va_start(more, command);
  void* argument = va_arg(more, void*);
  va_end(more);
  const Outcome* outcome = NextOutcome("fcntl");
  return outcome ? Failure<int>(outcome->error) : __real_fcntl(fd, command, argument);
}

// Of the calls without a function of their own, those that make a descriptor of a process.
long __real_syscall(long, ...);
long __wrap_syscall(long number, ...) {
  long a[6];
  va_list more;
  va_start(more, number);
  for (long& argument : a) argument = va_arg(more, long);
  va_end(more);
  const Outcome* outcome = number == SYS_pidfd_open ? NextOutcome("syscall") : nullptr;
  return outcome ? Failure<long>(outcome->error)
                 : __real_syscall(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

// The child of a scenario is not a part of it.
pid_t __real_fork(void);
pid_t __wrap_fork(void) {
  const Outcome* outcome = NextOutcome("fork");
  const pid_t pid = outcome ? Failure<pid_t>(outcome->error) : __real_fork();
  if (pid == 0) support::DisarmChild();
  return pid;
}

int __real_posix_spawn(pid_t*, const char*, const posix_spawn_file_actions_t*,
                       const posix_spawnattr_t*, char* const*, char* const*);
int __wrap_posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments,
                       char* const* environment) {
  const Outcome* outcome = NextOutcome("posix_spawn");
  return outcome ? outcome->error
                 : __real_posix_spawn(pid, path, actions, attributes, arguments, environment);
}

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  const Outcome* outcome = NextOutcome("pthread_create");
  return outcome ? outcome->error : __real_pthread_create(thread, attributes, start, argument);
}

int __real_getaddrinfo(const char*, const char*, const addrinfo*, addrinfo**);
int __wrap_getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                       addrinfo** result) {
  const Outcome* outcome = NextOutcome("getaddrinfo");
  if (!outcome) return __real_getaddrinfo(node, service, hints, result);
  errno = outcome->error;
  return EAI_SYSTEM;
}

// An interrupted sleep says how much of it is left.
int __real_nanosleep(const timespec*, timespec*);
int __wrap_nanosleep(const timespec* time, timespec* left) {
  const Outcome* outcome = NextOutcome("nanosleep");
  if (!outcome) return __real_nanosleep(time, left);
  if (left) *left = *time;
  return Failure<int>(outcome->error);
}

}  // extern "C"
