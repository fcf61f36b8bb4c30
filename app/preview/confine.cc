#include "app/preview/confine.h"

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace preview {
namespace {

constexpr rlim_t kSeconds = 10;
constexpr time_t kTellAfter = 9;

// Sanitizers lay out far more memory than they use, and look around in the system.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
constexpr rlim_t kMemory = kSanitized ? RLIM_INFINITY : 512 << 20;

// Numbers of system calls hold for one kind of machine. 0: none that is known here.
#if defined(__x86_64__)
constexpr uint32_t kMachine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr uint32_t kMachine = AUDIT_ARCH_AARCH64;
#else
constexpr uint32_t kMachine = 0;
#endif

constexpr int kAllowed[] = {
    SYS_read,       SYS_pread64,        SYS_write,        SYS_lseek,  SYS_fstat,
    SYS_newfstatat, SYS_close,          SYS_brk,          SYS_munmap, SYS_mremap,
    SYS_madvise,    SYS_futex,          SYS_exit,         SYS_fcntl,  SYS_getpid,
    SYS_exit_group, SYS_rt_sigprocmask, SYS_rt_sigreturn, SYS_gettid, SYS_getrandom,
};
// Allowed unless the memory could be run.
constexpr int kMapping[] = {SYS_mmap, SYS_mprotect};

using Filter = std::vector<sock_filter>;
constexpr uint16_t kLoad = BPF_LD | BPF_W | BPF_ABS;
constexpr uint16_t kReturn = BPF_RET | BPF_K;

uint32_t ArgumentAt(int i) {
  return uint32_t(offsetof(seccomp_data, args)) + uint32_t(i) * 8;
}

// What is loaded equals `value`: goes on with the next instruction, else past so many.
sock_filter IfEqual(uint32_t value, uint8_t past) {
  return {BPF_JMP | BPF_JEQ | BPF_K, 0, past, value};
}

Filter MakeFilter() {
  constexpr uint32_t kRefuse = SECCOMP_RET_ERRNO | EPERM;
  Filter filter = {{kLoad, 0, 0, offsetof(seccomp_data, arch)},
                   {BPF_JMP | BPF_JEQ | BPF_K, 1, 0, kMachine},
                   {kReturn, 0, 0, SECCOMP_RET_KILL_PROCESS},
                   {kLoad, 0, 0, offsetof(seccomp_data, nr)}};
  for (const int call : kAllowed) {
    filter.push_back(IfEqual(uint32_t(call), 1));
    filter.push_back({kReturn, 0, 0, SECCOMP_RET_ALLOW});
  }
  for (const int call : kMapping) {
    filter.push_back(IfEqual(uint32_t(call), 4));
    filter.push_back({kLoad, 0, 0, ArgumentAt(2)});
    filter.push_back({BPF_JMP | BPF_JSET | BPF_K, 1, 0, PROT_EXEC});
    filter.push_back({kReturn, 0, 0, SECCOMP_RET_ALLOW});
    filter.push_back({kReturn, 0, 0, kRefuse});
  }
  // Its end by the clock: itself and its group, nobody else.
  filter.push_back(IfEqual(SYS_kill, 3));
  filter.push_back({kLoad, 0, 0, ArgumentAt(0)});
  filter.push_back(IfEqual(0, 1));
  filter.push_back({kReturn, 0, 0, SECCOMP_RET_ALLOW});
  filter.push_back({kReturn, 0, 0, kRefuse});
  return filter;
}

bool Limit(int what, rlim_t amount) {
  const rlimit limit = {amount, amount};
  return setrlimit(what, &limit) == 0;
}

volatile sig_atomic_t ticks;
volatile pid_t timed_child;

// The first comes when the result should be told, the second when all is over.
void OnTick(int) {
  ticks = ticks + 1;
  if (ticks > 1) kill(0, SIGKILL);
  if (timed_child > 0) kill(timed_child, SIGKILL);
}

bool StartClock() {
  const itimerval times = {{1, 0}, {kTellAfter, 0}};
  return signal(SIGALRM, OnTick) != SIG_ERR && setitimer(ITIMER_REAL, &times, nullptr) == 0;
}

}  // namespace

bool Confine() {
  signal(SIGXFSZ, SIG_IGN);  // a write to a file fails
  return StartClock() && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         Limit(RLIMIT_CPU, kSeconds) && Limit(RLIMIT_AS, kMemory) && Limit(RLIMIT_FSIZE, 0) &&
         Limit(RLIMIT_CORE, 0);
}

bool OutOfTime() {
  return ticks > 0;
}

void EndInTime(pid_t pid) {
  timed_child = pid;
}

void CloseDoors() {
  if (kSanitized || kMachine == 0) return;
  Filter filter = MakeFilter();
  const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
  prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0);
}

}  // namespace preview
