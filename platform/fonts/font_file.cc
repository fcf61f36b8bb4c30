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

FileIdentity IdentityOf(const struct stat& info) {
  const auto nanoseconds = [](const timespec& t) {
    return int64_t(uint64_t(t.tv_sec) * 1'000'000'000 + uint64_t(t.tv_nsec));
  };
  if (!S_ISREG(info.st_mode)) return {};
  return {info.st_dev, info.st_ino, uint64_t(info.st_size), nanoseconds(info.st_mtim),
          nanoseconds(info.st_ctim)};
}

// The type is checked before opening, since opening some devices has an effect.
int OpenRegular(const std::string& file, FileIdentity* identity) {
  struct stat info;
  if (stat(file.c_str(), &info) || !S_ISREG(info.st_mode)) return -1;
  int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return -1;
  bool good = !fstat(fd, &info) && S_ISREG(info.st_mode) && info.st_size > 0 &&
              info.st_size <= kLargestFile;
  if (!good) return close(fd), -1;
  *identity = IdentityOf(info);
  return fd;
}

}  // namespace

class FontStream {
  static constexpr size_t kBlock = 4096, kBlocks = 16;

 public:
  FontStream() = default;
  FontStream(const FontStream&) = delete;
  FontStream& operator=(const FontStream&) = delete;
  ~FontStream() {
    if (fd_ >= 0) close(fd_);
  }

  bool Open(const std::string& file) {
    fd_ = OpenRegular(file, &identity_);
    record_.size = identity_.size;
    record_.descriptor.pointer = this;
    record_.read = [](FT_Stream s, unsigned long offset, unsigned char* out, unsigned long count) {
      FontStream* stream = static_cast<FontStream*>(s->descriptor.pointer);
      // A count of 0 asks whether the offset is within the file.
      if (!count) return offset > s->size ? 1ul : 0ul;
      return static_cast<unsigned long>(stream->Read(offset, out, count));
    };
    return fd_ >= 0;
  }
  FT_Stream record() { return &record_; }
  const FileIdentity& identity() const { return identity_; }

 private:
  // A font has thousands of small readings in a few places: they come from blocks of the file.
  size_t Read(size_t offset, uint8_t* out, size_t count) {
    if (count >= kBlock) return ReadFile(offset, out, count);
    size_t n = 0;
    while (n < count) {
      const size_t within = (offset + n) % kBlock;
      const Block& block = BlockAt(offset + n - within);
      if (within >= block.size) break;
      const size_t part = std::min(count - n, block.size - within);
      std::memcpy(out + n, block.bytes.get() + within, part);
      n += part;
    }
    return n;
  }

  struct Block {
    size_t at = SIZE_MAX, size = 0;
    std::unique_ptr<uint8_t[]> bytes;
  };
  const Block& BlockAt(size_t at) {
    Block& block = blocks_[at / kBlock % kBlocks];
    if (block.at == at) return block;
    if (!block.bytes) block.bytes = std::make_unique_for_overwrite<uint8_t[]>(kBlock);
    block.at = at;
    block.size = ReadFile(at, block.bytes.get(), kBlock);
    return block;
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
  FileIdentity identity_;
  Block blocks_[kBlocks];
};

FileIdentity IdentityOf(const std::string& file) {
  struct stat info;
  return stat(file.c_str(), &info) ? FileIdentity{} : IdentityOf(info);
}

FontHandle::FontHandle() = default;
FontHandle::FontHandle(FontHandle&& other) noexcept
    : face_(std::exchange(other.face_, nullptr)),
      stream_(std::move(other.stream_)),
      identity_(other.identity_) {}
FontHandle& FontHandle::operator=(FontHandle&& other) noexcept {
  std::swap(face_, other.face_);
  std::swap(stream_, other.stream_);
  std::swap(identity_, other.identity_);
  return *this;
}
FontHandle::~FontHandle() {
  if (face_) FT_Done_Face(face_);
}

bool FontHandle::OpenFile(const std::string& file) {
  if (stream_) return true;
  auto stream = std::make_unique<FontStream>();
  if (!stream->Open(file)) return false;
  identity_ = stream->identity();
  stream_ = std::move(stream);
  return true;
}

bool FontHandle::OpenFont(int index) {
  FT_Library library = FontLibrary();
  if (!library || !stream_) return false;
  FT_Open_Args arguments{};
  arguments.flags = FT_OPEN_STREAM;
  arguments.stream = stream_->record();
  if (FT_Open_Face(library, &arguments, index, &face_)) face_ = nullptr;
  if (face_ && FT_IS_SCALABLE(face_) && face_->units_per_EM) return true;
  *this = FontHandle();
  return false;
}

}  // namespace platform
