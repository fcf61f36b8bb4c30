// Memory that the program and the server both map.
//
// The system gives it page by page as it is first touched, which for a large window takes longer
// than drawing its first picture. Written through the descriptor, many pages come with one call;
// a touch of a page that is there maps its neighbours with it, sixteen at a time. (A call that maps
// them all holds up the other threads' use of the address space, and takes longer. Two threads that
// write to one file take turns, so one does it alone.)
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "platform/ahead_job.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

// What is written at once is one page, again and again, which stays in the nearest cache; as many
// as a touch maps: those between two multiples of a piece.
constexpr size_t kPage = 4096, kPagesOfPiece = 16, kPiece = kPage * kPagesOfPiece;

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

// Memory that is being filled.
struct Filling {
  SharedMemory memory;
  size_t bytes = 0;  // 0: none
  uint32_t page[kPage / 4];
  std::atomic<bool> dropped = false;
  bool refused = false;

  void Begin(const SharedMemory& m, size_t size, uint32_t pixel) {
    memory = m;
    bytes = size;
    std::fill_n(page, kPage / 4, pixel);
    dropped = refused = false;
  }
  void Fill() {
    char* const pixels = reinterpret_cast<char*>(memory.pixels);
    const size_t skew = reinterpret_cast<uintptr_t>(pixels) % kPiece;
    for (size_t at = 0; at < skew + bytes && !dropped; at += kPiece) {
      const size_t begin = std::max(at, skew) - skew, end = std::min(at + kPiece - skew, bytes);
      refused = refused || !Write(begin, end - begin);
      *const_cast<const volatile char*>(pixels + begin);
    }
  }
  // A piece or less.
  bool Write(size_t at, size_t size) {
    iovec pages[kPagesOfPiece];
    int count = 0;
    for (size_t done = 0; done < size; done += kPage)
      pages[count++] = {page, std::min(kPage, size - done)};
    return pwritev(memory.descriptor, pages, count, off_t(at)) == ssize_t(size);
  }
  void End() {
    if (refused) std::fill_n(memory.pixels, bytes / 4, page[0]);
    bytes = 0;
  }
};
Filling ahead;

AheadJob filling_ahead([] { ahead.Fill(); });

}  // namespace

SharedMemory AllocateShared(size_t bytes) {
  return Map(bytes);
}

SharedMemory AllocateFilled(size_t bytes, uint32_t pixel) {
  const SharedMemory m = Map(bytes);
  if (m.pixels == nullptr) return m;
  Filling filling;
  filling.Begin(m, bytes, pixel);
  filling.Fill();
  filling.End();
  return m;
}

void AllocateAhead(size_t bytes, uint32_t pixel) {
  DropAhead();
  const SharedMemory m = Map(bytes);
  if (m.pixels == nullptr) return;
  ahead.Begin(m, bytes, pixel);
  if (filling_ahead.Begin()) return;
  Free(m, bytes);
  ahead.bytes = 0;
}

SharedMemory TakeAhead(size_t bytes, uint32_t pixel) {
  const size_t size = ahead.bytes;
  if (size == 0) return {};
  if (size == bytes && ahead.page[0] == pixel) {
    filling_ahead.Finish();
    ahead.End();
    return ahead.memory;
  }
  ahead.dropped = true;
  filling_ahead.Drop();
  ahead.bytes = 0;
  Free(ahead.memory, size);
  return {};
}

void DropAhead() {
  TakeAhead(0, 0);
}

}  // namespace platform::x11
