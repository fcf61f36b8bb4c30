#include "tests/support/leak_guard.h"

#include <dirent.h>
#include <malloc.h>

#include "platform/display/headless/headless.h"
#include "toolkit/xw.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SANITIZER_ALLOCATES 1
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZER_ALLOCATES 1
#endif
#ifdef SANITIZER_ALLOCATES
// Not every compiler brings the header that declares it.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace support {

namespace {

int CountEntries(const char* folder) {
  DIR* dir = opendir(folder);
  if (dir == nullptr) return 0;
  int count = 0;
  while (const dirent* entry = readdir(dir)) count += entry->d_name[0] != '.';
  closedir(dir);
  return count;
}

int64_t BytesInUse() {
#ifdef SANITIZER_ALLOCATES
  return int64_t(__sanitizer_get_current_allocated_bytes());
#else
  const struct mallinfo2 info = mallinfo2();
  return int64_t(info.uordblks) + int64_t(info.hblkhd);
#endif
}

int CountRecords() {
  int count = 0;
  for (const XwWindow* w = W_Start; w != nullptr; w = w->next) ++count;
  return count;
}

}  // namespace

Resources Measure() {
  Resources now;
  now.windows = platform::headless::Counts().windows + CountRecords();
  now.descriptors = CountEntries("/proc/self/fd");
  now.threads = CountEntries("/proc/self/task");
  now.memory = BytesInUse();
  return now;
}

testing::AssertionResult NothingLeft(const Resources& before, int64_t slack) {
  const Resources now = Measure();
  auto result = testing::AssertionFailure();
  bool grown = false;
  const auto compare = [&](const char* what, int64_t was, int64_t is, int64_t allowed) {
    if (is <= was + allowed) return;
    grown = true;
    result << what << " grew from " << was << " to " << is << "\n";
  };
  compare("windows", before.windows, now.windows, 0);
  compare("memory", before.memory, now.memory, slack);
  compare("descriptors", before.descriptors, now.descriptors, 0);
  compare("threads", before.threads, now.threads, 0);
  return grown ? result : testing::AssertionSuccess();
}

}  // namespace support
