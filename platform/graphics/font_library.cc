#include "platform/graphics/font_library.h"

namespace platform {
namespace {

struct {
  bool tried = false;
  FT_Library handle = nullptr;
} library;

}  // namespace

FT_Library FontLibrary() {
  if (!library.tried && FT_Init_FreeType(&library.handle)) library.handle = nullptr;
  library.tried = true;
  return library.handle;
}

void FinishFontLibrary() {
  if (library.handle) FT_Done_FreeType(library.handle);
  library = {};
}

}  // namespace platform
