#include "tests/support/faults.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <new>
#include <vector>

#include "tests/support/fault_calls.h"

namespace support {

namespace {

constexpr Outcome kHalf = {0, true};
constexpr Outcome kHalfThenInterrupted = {EINTR, true};

struct Calls {
  std::vector<const char*> names;
  std::vector<Outcome> outcomes;
};

// The outcomes that each call can have.
const std::vector<Calls>& Table() {
  static const auto* table = new std::vector<Calls>{
      {{"open", "openat", "opendir"},
       {{EINTR}, {EMFILE}, {EACCES}, {ENOSPC}, {EIO}, {EROFS}, {ENOENT}}},
      {{"read", "pread"}, {{EINTR}, {EAGAIN}, {EIO}, kHalf, kHalfThenInterrupted, {EIO, true}}},
      {{"write"},
       {{EINTR}, {EAGAIN}, {ENOSPC}, {EIO}, kHalf, kHalfThenInterrupted, {ENOSPC, true}}},
      {{"sendfile", "copy_file_range"}, {{EINTR}, {EAGAIN}, {EIO}, {ENOSPC}, kHalf, {EIO, true}}},
      {{"send", "sendmsg"},
       {{EINTR}, {EAGAIN}, {ECONNRESET}, {EPIPE}, kHalf, kHalfThenInterrupted, {ECONNRESET, true}}},
      {{"recv"},
       {{EINTR}, {EAGAIN}, {ECONNRESET}, kHalf, kHalfThenInterrupted, {ECONNRESET, true}}},
      {{"connect"}, {{EINTR}, {ECONNREFUSED}, {ETIMEDOUT}, {ENETUNREACH}}},
      {{"accept4"}, {{EINTR}, {EMFILE}, {ECONNABORTED}}},
      {{"socket", "pipe2", "eventfd", "epoll_create1", "fdopendir", "signalfd"},
       {{EMFILE}, {ENOMEM}}},
      {{"bind", "listen"}, {{EADDRINUSE}, {EACCES}}},
      {{"setsockopt", "getsockopt", "getsockname", "shutdown"}, {{ENOBUFS}, {ENOTCONN}}},
      {{"poll", "epoll_wait"}, {{EINTR}, {ENOMEM}}},
      {{"epoll_ctl"}, {{ENOMEM}, {ENOSPC}}},
      {{"fcntl"}, {{EMFILE}, {EACCES}}},
      {{"flock", "nanosleep", "waitid", "waitpid", "getrandom"}, {{EINTR}}},
      {{"statfs", "fsync", "fdatasync", "ftruncate"}, {{EINTR}, {EIO}, {ENOSPC}, {EROFS}}},
      {{"fstat", "fstatat", "access", "readdir", "readlink", "readlinkat", "lseek"},
       {{EIO}, {EACCES}}},
      {{"mkdir", "mkdirat", "linkat", "renameat", "renameat2"},
       {{EACCES}, {ENOSPC}, {EIO}, {EROFS}, {EEXIST}}},
      {{"chmod", "fchmod", "utimensat", "futimens", "unlinkat"}, {{EACCES}, {EIO}, {EROFS}}},
      {{"close"}, {{EINTR}, {EIO}}},
      {{"fork", "posix_spawn", "pthread_create"}, {{EAGAIN}, {ENOMEM}}},
      {{"syscall"}, {{EMFILE}, {ENOSYS}}},
      {{"getaddrinfo"}, {{EIO}}},
      {{"kill"}, {{EPERM}}},
      {{"dup2"}, {}},
  };
  return *table;
}

// A call as a number that processes can share: its kind and its place among the names of that.
constexpr int kMostNames = 16;
int NumberOf(const char* call) {
  for (size_t kind = 0; kind < Table().size(); ++kind) {
    const auto& names = Table()[kind].names;
    for (size_t i = 0; i < names.size(); ++i) {
      if (strcmp(names[i], call) == 0) return static_cast<int>(kind * kMostNames + i);
    }
  }
  abort();
}
const Calls& KindOf(int number) {
  return Table()[static_cast<size_t>(number / kMostNames)];
}

constexpr int kMostCalls = 1 << 16;

// Shared with the children of this process, so that a test sees what befell them.
struct State {
  std::atomic<int> seen{0};
  std::atomic<int> target{-1};
  std::atomic<int> outcome{0};
  std::atomic<int> error{0};
  std::atomic<bool> pending{false};  // the next call of the same name is to fail
  std::atomic<int> call{-1};         // the one that was reached
  std::atomic<int16_t> calls[kMostCalls] = {};
};

// In the file that the environment names, or this process's own.
State& Shared() {
  static State* state = [] {
    const char* file = getenv(kFaultFile);
    const int fd = file ? open(file, O_RDWR | O_CREAT | O_CLOEXEC, 0600) : -1;
    struct stat info = {};
    const bool known = fd >= 0 && fstat(fd, &info) == 0 && info.st_size > 0;
    if (fd >= 0 && !known && ftruncate(fd, sizeof(State)) != 0) abort();
    void* memory = mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE,
                        fd >= 0 ? MAP_SHARED : MAP_SHARED | MAP_ANONYMOUS, fd, 0);
    if (fd >= 0) close(fd);
    return known ? static_cast<State*>(memory) : new (memory) State;
  }();
  return *state;
}

std::atomic<bool> armed{false};
thread_local int exempt = 0;

// The outcome of the call that was reached; null if its kind has none.
const Outcome* Reach(int call) {
  State& state = Shared();
  const std::vector<Outcome>& outcomes = KindOf(call).outcomes;
  state.call = call;
  if (outcomes.empty()) return nullptr;
  const Outcome& outcome = outcomes[state.outcome % outcomes.size()];
  state.error = outcome.error;
  if (outcome.half && outcome.error) state.pending = true;
  return &outcome;
}

// One run for each outcome of each call of the last run.
std::vector<std::pair<int, int>> PairsOfLastRun() {
  std::vector<std::pair<int, int>> pairs;
  const State& state = Shared();
  for (int call = 0; call < std::min<int>(state.seen, kMostCalls); ++call) {
    const int outcomes = static_cast<int>(KindOf(state.calls[call]).outcomes.size());
    for (int outcome = 0; outcome < outcomes; ++outcome) pairs.push_back({call, outcome});
  }
  return pairs;
}

}  // namespace

const Outcome* NextOutcome(const char* call) {
  if (!armed || exempt > 0) return nullptr;
  State& state = Shared();
  const int which = NumberOf(call);
  const int number = state.seen++;
  if (number < kMostCalls) state.calls[number] = static_cast<int16_t>(which);
  if (number == state.target) return Reach(which);
  if (!state.pending || state.call != which || !state.pending.exchange(false)) return nullptr;
  static thread_local Outcome second;
  second = {state.error, false};
  return &second;
}

size_t HalfOf(size_t size) {
  return std::max<size_t>(size / 2, 1);
}

void Arm() {
  Shared();
  armed = true;
}

void DisarmChild() {
  armed = false;
}

void Fault::Begin() {
  State& state = Shared();
  armed = begun_;
  if (begun_) return;
  begun_ = true;
  state.seen = state.error = 0;
  state.call = -1;
  state.pending = false;
  state.target = target_;
  state.outcome = outcome_;
  armed = true;
}

void Fault::End() {
  armed = false;
}

bool Fault::happened() const {
  return Shared().call >= 0;
}

std::string Fault::call() const {
  const int call = Shared().call;
  return call < 0 ? "" : KindOf(call).names[static_cast<size_t>(call % kMostNames)];
}

int Fault::error() const {
  return Shared().error;
}

bool Fault::In(std::initializer_list<const char*> calls) const {
  return std::find(calls.begin(), calls.end(), call()) != calls.end();
}

ExemptFromFaults::ExemptFromFaults() {
  ++exempt;
}

ExemptFromFaults::~ExemptFromFaults() {
  --exempt;
}

int OpenDescriptors() {
  int count = 0;
  DIR* folder = opendir("/proc/self/fd");
  while (folder && readdir(folder)) ++count;
  if (folder) closedir(folder);
  return count;
}

// How many are open when there are no more than `before`, or in the end: threads that a scenario
// left to themselves, and peers, close theirs in their own time.
static int SettledDescriptors(int before) {
  int count = OpenDescriptors();
  for (int i = 0; i < 300 && count > before; ++i) {
    usleep(10000);
    count = OpenDescriptors();
  }
  return count;
}

int SweepFaults(const char* name, int share, const std::function<void(Fault&)>& scenario) {
  const char* all = getenv("QUORVIK_LONG");
  if (all && *all && strcmp(all, "0") != 0) share = 1;
  Fault none(-1, 0);
  int before = OpenDescriptors();
  scenario(none);
  before = std::max(before, SettledDescriptors(before));
  const auto pairs = PairsOfLastRun();
  EXPECT_GT(pairs.size(), 0U) << name << " makes no call that is wrapped";
  int runs = 0;
  for (size_t i = 0; i < pairs.size() && !testing::Test::HasFailure(); i += share) {
    Fault fault(pairs[i].first, pairs[i].second);
    SCOPED_TRACE(std::string(name) + ": call " + std::to_string(pairs[i].first) + ", outcome " +
                 std::to_string(pairs[i].second));
    scenario(fault);
    ++runs;
    EXPECT_LE(SettledDescriptors(before), before);
    if (testing::Test::HasFailure()) {
      ADD_FAILURE() << "after " << fault.call() << ": " << strerror(fault.error());
    }
  }
  const int count = static_cast<int>(pairs.size());
  printf("faults %s: %d of %d pairs\n", name, runs, count);
  return count;
}

}  // namespace support
