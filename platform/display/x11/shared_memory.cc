// Memory that the program and the server both map.
//
// The system gives it page by page as it is first touched, which for a large window takes longer
// than drawing its first picture. Written through the descriptor, many pages come with one call;
// a touch of a page that is there maps its neighbours with it, sixteen at a time. (A call that maps
// them all holds up the other threads' use of the address space, and takes longer.)
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

// As much as a touch maps: what lies between two multiples of this.
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
    char* const pixels = reinterpret_cast<char*>(memory.pixels);
    const size_t skew = reinterpret_cast<uintptr_t>(pixels) % kPiece;
    for (size_t at; (at = next++ * kPiece) < skew + bytes;) {
      const size_t begin = std::max(at, skew) - skew, end = std::min(at + kPiece - skew, bytes);
      const auto size = ssize_t(end - begin);
      if (pwrite(memory.descriptor, piece.data(), end - begin, off_t(begin)) != size)
        refused = true;
      *const_cast<const volatile char*>(pixels + begin);
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
