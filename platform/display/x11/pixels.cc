// The pixels of windows: memory shared with the server, or sent through the connection where the
// server refuses to share (another machine, a sandbox).
#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr int kMaxSide = 32767;  // of a window
// Room beyond the size asked for when a window grows, so that a live resize rarely changes memory.
constexpr int kGrowth = 256;
constexpr size_t kMaxPiece = 200 * 1024;  // of a picture in one request; any server takes 256 KB
constexpr size_t kWorthAThread = size_t{1} << 20;  // bytes of a buffer that is made ahead

uint32_t* AllocatePlain(size_t bytes) {
  void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return p == MAP_FAILED ? nullptr : static_cast<uint32_t*>(p);
}

void CopyOverlap(const Native& from, uint32_t* to, int stride, int width, int height) {
  const int w = std::min(from.width, width), h = std::min(from.height, height);
  for (int y = 0; y < h; ++y) {
    memcpy(to + size_t(y) * size_t(stride), from.pixels + size_t(y) * size_t(from.stride),
           size_t(w) * 4);
  }
}

// Memory of pop-ups that have closed, for the next ones: the pages are there on both sides, and the
// server knows them.
struct Spare {
  uint32_t* pixels;
  size_t bytes;
  uint32_t segment;
  unsigned attach_sequence;
};
std::vector<Spare> spares;
constexpr size_t kMostSpares = 2, kLargestSpare = size_t{8} << 20;

bool TakeSpare(Native* n, int stride, int rows) {
  const size_t bytes = size_t(stride) * size_t(rows) * 4;
  for (size_t i = 0; i < spares.size(); ++i) {
    const Spare s = spares[i];
    if (s.bytes < bytes || !x.shm) continue;
    spares.erase(spares.begin() + ptrdiff_t(i));
    n->pixels = s.pixels;
    n->bytes = s.bytes;
    n->segment = s.segment;
    n->attach_sequence = s.attach_sequence;
    n->stride = stride;
    // The server is told the whole segment's rows of this stride.
    n->rows = int(std::min(s.bytes / 4 / size_t(stride), size_t(kMaxSide)));
    return true;
  }
  return false;
}

uint32_t FirstPixel(const Native& n) {
  return 0xFF000000u | (n.w->backdrop != kNoColor ? n.w->backdrop : 0xFFFFFFu);
}

int FirstStride(int width) {
  return std::min((width + 15) & ~15, kMaxSide + 1);
}

// New memory for at least width x height, in place of what `n` has.
bool Reallocate(Native* n, int width, int height) {
  const bool first = n->pixels == nullptr;
  const int stride = FirstStride(width + (first ? 0 : kGrowth));
  const int rows = std::min(height + (first ? 0 : kGrowth), kMaxSide);
  if (first && n->w->parent != nullptr && TakeSpare(n, stride, rows)) return true;
  const size_t bytes = size_t(stride) * size_t(rows) * 4;
  SharedMemory m;
  if (x.shm && first) m = TakeAhead(bytes, FirstPixel(*n));
  if (x.shm && m.pixels == nullptr)
    m = first ? AllocateFilled(bytes, FirstPixel(*n)) : AllocateShared(bytes);
  if (m.pixels == nullptr) m.pixels = AllocatePlain(bytes);
  if (m.pixels == nullptr) return false;
  if (!first) CopyOverlap(*n, m.pixels, stride, width, height);
  FreeBuffer(n);
  n->pixels = m.pixels;
  n->bytes = bytes;
  n->stride = stride;
  n->rows = rows;
  if (first && m.descriptor < 0) std::fill_n(n->pixels, bytes / 4, FirstPixel(*n));
  if (m.descriptor >= 0) {
    n->segment = xcb_generate_id(x.c);
    // No reply is waited for: a refusal arrives as an error and turns sharing off. The library
    // closes the descriptor once it is sent.
    n->attach_sequence = xcb_shm_attach_fd(x.c, n->segment, m.descriptor, 1).sequence;
  }
  return true;
}

void PutShared(const Native& n, const DeviceRect& r) {
  xcb_shm_put_image(x.c, n.id, x.gc, uint16_t(n.stride), uint16_t(n.rows), uint16_t(r.left),
                    uint16_t(r.top), uint16_t(r.width()), uint16_t(r.height()), int16_t(r.left),
                    int16_t(r.top), x.depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, n.segment, 0);
}

void PutPlain(const Native& n, const DeviceRect& r) {
  static std::vector<uint32_t> piece;
  const size_t row = size_t(r.width());
  const int most = std::max(1, int(kMaxPiece / (row * 4)));
  for (int top = r.top; top < r.bottom; top += most) {
    const int lines = std::min(most, r.bottom - top);
    piece.resize(row * size_t(lines));
    for (int i = 0; i < lines; ++i) {
      memcpy(piece.data() + size_t(i) * row,
             n.pixels + size_t(top + i) * size_t(n.stride) + size_t(r.left), row * 4);
    }
    xcb_put_image(x.c, XCB_IMAGE_FORMAT_Z_PIXMAP, n.id, x.gc, uint16_t(r.width()), uint16_t(lines),
                  int16_t(r.left), int16_t(top), 0, x.depth, uint32_t(piece.size() * 4),
                  reinterpret_cast<const uint8_t*>(piece.data()));
  }
}

// The connection is used in order, so a segment that the server refused has shown nothing.
void RefuseSharedMemory() {
  x.shm = false;
  for (auto& [id, n] : x.windows) {
    if (n->segment != 0) xcb_shm_detach(x.c, n->segment);
    n->segment = 0;  // the memory itself stays: it is read through our own mapping
    n->attach_sequence = 0;
    if (!n->presented) continue;
    DeviceRect all{0, 0, n->width, n->height};
    Present(n->w, &all, 1);
  }
}

}  // namespace

void PrepareBuffer(const Native& n) {
  const DeviceRect d = DeviceBounds(*n.w);
  if (!x.shm || x.shown || n.id != x.leader || n.pixels != nullptr || d.empty() ||
      d.width() > kMaxSide) {
    return;
  }
  const size_t bytes = size_t(FirstStride(d.width())) * size_t(std::min(d.height(), kMaxSide)) * 4;
  if (bytes >= kWorthAThread) AllocateAhead(bytes, FirstPixel(n));
}

uint32_t* ResizeBuffer(const Window* w, int width, int height, int* stride) {
  Native* n = NativeOf(w);
  if (n == nullptr || width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) {
    return nullptr;
  }
  if ((n->pixels == nullptr || width > n->stride || height > n->rows) &&
      !Reallocate(n, width, height)) {
    return nullptr;
  }
  n->width = width;
  n->height = height;
  *stride = n->stride;
  return n->pixels;
}

void FreeBuffer(Native* n) {
  if (n->segment != 0) xcb_shm_detach(x.c, n->segment);
  if (n->pixels != nullptr) munmap(n->pixels, n->bytes);
  n->pixels = nullptr;
  n->bytes = 0;
  n->segment = 0;
  n->attach_sequence = 0;
}

static void FreeSpare(const Spare& s) {
  xcb_shm_detach(x.c, s.segment);
  munmap(s.pixels, s.bytes);
}

void KeepBuffer(Native* n) {
  if (n->w->parent == nullptr || n->segment == 0 || !x.shm || n->bytes > kLargestSpare) return;
  if (spares.size() == kMostSpares) {
    FreeSpare(spares.front());
    spares.erase(spares.begin());
  }
  spares.push_back({n->pixels, n->bytes, n->segment, n->attach_sequence});
  n->pixels = nullptr;
  n->segment = 0;
}

void DropSpareBuffers() {
  for (const Spare& s : spares) FreeSpare(s);
  spares.clear();
}

void Present(const Window* w, const DeviceRect* rects, int count) {
  Native* n = NativeOf(w);
  if (n == nullptr || n->pixels == nullptr) return;
  n->presented = true;
  x.shown = true;
  const DeviceRect all{0, 0, n->width, n->height};
  for (int i = 0; i < count; ++i) {
    DeviceRect r = Intersect(rects[i], all);
    if (r.empty()) continue;
    if (n->segment != 0) {
      PutShared(*n, r);
    } else {
      PutPlain(*n, r);
    }
  }
  NotePresented(n);
  if (x.late_done && !n->finished) FinishWindow(n);
}

bool HandleSharedMemoryError(const xcb_generic_error_t* error) {
  for (auto& [id, n] : x.windows) {
    if (n->segment == 0 || n->attach_sequence == 0) continue;
    if (n->attach_sequence != error->full_sequence) continue;
    RefuseSharedMemory();
    DropSpareBuffers();
    return true;
  }
  for (const Spare& s : spares) {
    if (s.attach_sequence != error->full_sequence) continue;
    RefuseSharedMemory();
    DropSpareBuffers();
    return true;
  }
  return false;
}

void Flush(bool wait) {
  if (!wait) {
    x.idle = x.shown;
    xcb_flush(x.c);
    return;
  }
  // The second turn is needed when the first reply shows that memory cannot be shared.
  for (int turn = 0; turn < 2; ++turn) {
    const bool shared = x.shm;
    Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(x.c, xcb_get_input_focus(x.c), nullptr));
    Pump();
    if (x.shm == shared) return;
  }
}

}  // namespace platform::x11
