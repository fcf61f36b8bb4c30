// When a file was written last, as finely as the system tells.
#pragma once
#include <sys/stat.h>

#include <cstdint>

namespace console {

// Nanoseconds since 1970.
inline int64_t ModifiedNs(const struct stat& s) {
  return int64_t{s.st_mtim.tv_sec} * 1000000000 + s.st_mtim.tv_nsec;
}

}  // namespace console
