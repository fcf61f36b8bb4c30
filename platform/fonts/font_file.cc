#include "platform/fonts/font_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace platform {
namespace {

constexpr off_t kLargestFile = off_t{1} << 30;

// A device is not even opened: for some that has an effect.
int OpenRegular(const std::string& file, size_t* size) {
  struct stat info;
  if (stat(file.c_str(), &info) || !S_ISREG(info.st_mode)) return -1;
  int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return -1;
  bool good = !fstat(fd, &info) && S_ISREG(info.st_mode) && info.st_size > 0 &&
              info.st_size <= kLargestFile;
  if (!good) return close(fd), -1;
  *size = size_t(info.st_size);
  return fd;
}

}  // namespace

class FontStream {
 public:
  FontStream() = default;
  FontStream(const FontStream&) = delete;
  FontStream& operator=(const FontStream&) = delete;
  ~FontStream() {
    if (fd_ >= 0) close(fd_);
  }

  bool Open(const std::string& file) {
    size_t size = 0;
    fd_ = OpenRegular(file, &size);
    record_.size = size;
    record_.descriptor.pointer = this;
    record_.read = [](FT_Stream s, unsigned long offset, unsigned char* out, unsigned long count) {
      FontStream* stream = static_cast<FontStream*>(s->descriptor.pointer);
      // A count of 0 asks whether the place exists.
      if (!count) return offset > s->size ? 1ul : 0ul;
      return static_cast<unsigned long>(stream->Read(offset, out, count));
    };
    return fd_ >= 0;
  }
  FT_Stream record() { return &record_; }

 private:
  // Small readings, of which a font has many, come from one piece of the file.
  size_t Read(size_t offset, uint8_t* out, size_t count) {
    if (count >= sizeof piece_) return ReadFile(offset, out, count);
    if (offset < piece_at_ || offset + count > piece_at_ + piece_size_) {
      piece_at_ = offset;
      piece_size_ = ReadFile(offset, piece_, sizeof piece_);
    }
    count = std::min(count, piece_size_ - (offset - piece_at_));
    std::memcpy(out, piece_ + (offset - piece_at_), count);
    return count;
  }

  size_t ReadFile(size_t offset, uint8_t* out, size_t count) const {
    size_t n = 0;
    while (n < count) {
      ssize_t got = pread(fd_, out + n, count - n, off_t(offset + n));
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) break;
      n += size_t(got);
    }
    return n;
  }

  FT_StreamRec record_{};
  int fd_ = -1;
  size_t piece_at_ = 0, piece_size_ = 0;
  uint8_t piece_[4096];
};

FontHandle::FontHandle() = default;
FontHandle::FontHandle(FontHandle&& other) noexcept
    : face_(std::exchange(other.face_, nullptr)), stream_(std::move(other.stream_)) {}
FontHandle& FontHandle::operator=(FontHandle&& other) noexcept {
  std::swap(face_, other.face_);
  std::swap(stream_, other.stream_);
  return *this;
}
FontHandle::~FontHandle() {
  if (face_) FT_Done_Face(face_);
}

bool FontHandle::Open(const std::string& file, int index) {
  *this = FontHandle();
  FT_Library library = FontLibrary();
  auto stream = std::make_unique<FontStream>();
  if (!library || !stream->Open(file)) return false;
  FT_Open_Args arguments{};
  arguments.flags = FT_OPEN_STREAM;
  arguments.stream = stream->record();
  FT_Face face = nullptr;
  if (FT_Open_Face(library, &arguments, index, &face)) return false;
  stream_ = std::move(stream);
  face_ = face;
  if (FT_IS_SCALABLE(face) && face->units_per_EM) return true;
  *this = FontHandle();
  return false;
}

}  // namespace platform
