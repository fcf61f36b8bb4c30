// Fetching a gamut file.
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "os/final_path.h"
#include "printserver/nc.h"
#include "printserver/wire.h"

namespace {

constexpr uint8_t kCopyGamutFile = 4;
constexpr uint32_t kPiece = 8192;

using nc::Deadline;

struct Announced {
  uint32_t time;
  uint32_t size;
};

bool Ask(int fd, const void* a, const void* b, Announced* file) {
  const Deadline deadline = Deadline::Of(fd);
  const nc::Field fields[] = {{a, NC_GAMUT_A}, {b, NC_GAMUT_B}};
  return nc::SendRequest(fd, kCopyGamutFile, fields, 2, deadline) &&
         nc::ReadInteger(fd, &file->time, deadline) && nc::ReadInteger(fd, &file->size, deadline);
}

struct Copied {
  bool complete;  // everything announced has come
  bool failed;    // some of it could not be written
};

// Take in `size` bytes and write them; what cannot be written is read all the same, so that the
// connection stays in step.
Copied Copy(int fd, int file, uint32_t size) {
  char piece[kPiece];
  bool failed = file < 0;
  while (size > 0) {
    const uint32_t n = std::min(size, kPiece);
    if (!nc::ReadAll(fd, piece, n, Deadline::Of(fd))) return {false, failed};
    if (!failed && !os::WriteAll(file, piece, n)) failed = true;
    size -= n;
  }
  return {true, failed};
}

int32_t CopyFile(int fd, const void* a, const void* b, const char* path, uint32_t limit,
                 int32_t when_cut) {
  Announced announced;
  if (!a || !b || !path) return nc::Refuse(EINVAL);
  if (!Ask(fd, a, b, &announced)) return -1;
  if (announced.size > limit || announced.size > INT32_MAX) return nc::Refuse(EMSGSIZE);
  if (announced.size == 0) return 0;
  os::Handle file = os::OpenForWriting(path);
  Copied copied = Copy(fd, file.get(), announced.size);
  const int error = errno;
  if (file) {
    const timespec time = {static_cast<time_t>(announced.time), 0};
    const timespec times[2] = {time, time};
    futimens(file.get(), times);
    if (close(file.Release()) != 0) copied.failed = true;
  }
  errno = error;
  return copied.complete || when_cut == 0 ? copied.failed : when_cut;
}

}  // namespace

extern "C" {

int32_t NC_CopyGamutFile(int fd, const void* a, const void* b, const char* path) {
  return CopyFile(fd, a, b, path, INT32_MAX, 0);
}

int32_t NC_CopyGamutFileN(int fd, const void* a, const void* b, const char* path, uint32_t limit) {
  return CopyFile(fd, a, b, path, limit, -1);
}

}  // extern "C"
