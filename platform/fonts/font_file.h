// A font file opened through FreeType. Only regular files are opened, and nothing that waits: what
// a folder holds comes from outside. A file that is cut short while it is open gives reading
// errors.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/graphics/font_library.h"

namespace platform {

class FontStream;

// Tells one state of a file from another; all 0 for what is no regular file.
struct FileIdentity {
  uint64_t device = 0, number = 0, size = 0;
  int64_t modified = 0, changed = 0;  // nanoseconds
  bool operator==(const FileIdentity&) const = default;
};
FileIdentity IdentityOf(const std::string& file);

class FontHandle {
 public:
  FontHandle();
  FontHandle(FontHandle&&) noexcept;
  FontHandle& operator=(FontHandle&&) noexcept;
  ~FontHandle();

  // Once a handle. False when it is no outline font that can be read. `index` counts the fonts of a
  // collection.
  bool Open(const std::string& file, int index) { return OpenFile(file) && OpenFont(index); }
  // The two halves of it. From the first on the font can be read, whatever becomes of the file's
  // name. False when there is no regular file that can be read; true when one is open already.
  bool OpenFile(const std::string& file);
  // False before OpenFile, too. The file is closed when it has no such font.
  bool OpenFont(int index);
  // Null before OpenFont and after one that failed.
  FT_Face face() const { return face_; }
  // Of the file when it was opened; all 0 before.
  const FileIdentity& identity() const { return identity_; }

 private:
  FT_Face face_ = nullptr;
  std::unique_ptr<FontStream> stream_;
  FileIdentity identity_;
};

}  // namespace platform
