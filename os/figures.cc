// Disk and memory figures.
#include <errno.h>
#include <sys/vfs.h>

#include "os/os.h"

namespace {

void Store(uint64_t* to, uint64_t value) {
  if (to) *to = value;
}

}  // namespace

extern "C" {

void OS_DiskInfo(uint64_t* total, uint64_t* free) {
  struct statfs state;
  Store(total, 0);
  Store(free, 0);
  while (statfs(".", &state) != 0) {
    if (errno != EINTR) return;
  }
  const auto block = static_cast<uint64_t>(state.f_bsize);
  Store(total, block * state.f_blocks);
  Store(free, block * state.f_bfree);
}

void OS_MemInfo(uint64_t* a, uint64_t* b, uint64_t* c, uint64_t* d) {
  constexpr uint64_t kLarge = 246579200;
  constexpr uint64_t kSmall = 104857600;
  Store(a, kLarge);
  Store(b, kSmall);
  Store(c, kLarge);
  Store(d, kSmall);
}

}  // extern "C"
