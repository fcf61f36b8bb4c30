// Memory that the program and the server both map.
//
// The system gives it page by page as it is first touched, which for a large window takes longer
// than drawing its first picture. Written through the descriptor, many pages come with one call,
// and pages that are there are mapped sixteen at a time.
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr size_t kPiece = 64 * 1024;

SharedMemory Map(size_t bytes) {
  SharedMemory m;
  m.descriptor = memfd_create("xw-window", MFD_CLOEXEC);
  if (m.descriptor < 0) return m;
  void* p = MAP_FAILED;
  if (ftruncate(m.descriptor, off_t(bytes)) == 0) {
    p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, m.descriptor, 0);
  }
  if (p == MAP_FAILED) {
    close(m.descriptor);
    return {};
  }
  m.pixels = static_cast<uint32_t*>(p);
  return m;
}

void Free(const SharedMemory& m, size_t bytes) {
  if (m.pixels == nullptr) return;
  munmap(m.pixels, bytes);
  close(m.descriptor);
}

// Memory that is being filled, by one thread or by two that take pieces in turn.
struct Filling {
  SharedMemory memory;
  size_t bytes = 0;  // 0: none
  std::vector<uint32_t> piece;
  std::atomic<size_t> next = 0;  // piece
  std::atomic<bool> refused = false;
  pthread_t thread{};

  void Begin(const SharedMemory& m, size_t size, uint32_t pixel) {
    memory = m;
    bytes = size;
    piece.assign(std::min(size, kPiece) / 4, pixel);
    next = 0;
    refused = false;
  }
  void FillPieces() {
    for (size_t at; (at = next++ * kPiece) < bytes;) {
      const size_t size = std::min(bytes - at, kPiece);
      if (pwrite(memory.descriptor, piece.data(), size, off_t(at)) != ssize_t(size)) refused = true;
      // Where the system does not know this, the first touch of a page maps it.
      madvise(reinterpret_cast<char*>(memory.pixels) + at, size, MADV_POPULATE_READ);
    }
  }
  // All pieces are done.
  void End() {
    if (refused) std::fill_n(memory.pixels, bytes / 4, piece[0]);
    bytes = 0;
  }
};
Filling ahead;

void* FillAhead(void*) {
  ahead.FillPieces();
  return nullptr;
}

}  // namespace

SharedMemory AllocateShared(size_t bytes) {
  return Map(bytes);
}

SharedMemory AllocateFilled(size_t bytes, uint32_t pixel) {
  const SharedMemory m = Map(bytes);
  if (m.pixels == nullptr) return m;
  Filling filling;
  filling.Begin(m, bytes, pixel);
  filling.FillPieces();
  filling.End();
  return m;
}

void AllocateAhead(size_t bytes, uint32_t pixel) {
  DropAhead();
  const SharedMemory m = Map(bytes);
  if (m.pixels == nullptr) return;
  ahead.Begin(m, bytes, pixel);
  if (pthread_create(&ahead.thread, nullptr, FillAhead, nullptr) == 0) return;
  Free(m, bytes);
  ahead.bytes = 0;
}

SharedMemory TakeAhead(size_t bytes, uint32_t pixel) {
  const size_t size = ahead.bytes;
  if (size == 0) return {};
  const bool fits = size == bytes && ahead.piece[0] == pixel;
  if (!fits) ahead.next = size;
  ahead.FillPieces();
  pthread_join(ahead.thread, nullptr);
  ahead.End();
  if (fits) return ahead.memory;
  Free(ahead.memory, size);
  return {};
}

void DropAhead() {
  TakeAhead(0, 0);
}

}  // namespace platform::x11
