// A font file opened through FreeType. Only regular files are opened, and nothing that waits: what
// a folder holds comes from outside. A file that is cut short while it is open gives reading
// errors.
#pragma once
#include <memory>
#include <string>

#include "platform/graphics/font_library.h"

namespace platform {

class FontStream;

class FontHandle {
 public:
  FontHandle();
  FontHandle(FontHandle&&) noexcept;
  FontHandle& operator=(FontHandle&&) noexcept;
  ~FontHandle();

  // False when it is no outline font that can be read. `index` counts the fonts of a collection.
  bool Open(const std::string& file, int index);
  // Null before Open and after one that failed.
  FT_Face face() const { return face_; }

 private:
  FT_Face face_ = nullptr;
  std::unique_ptr<FontStream> stream_;
};

}  // namespace platform
