// FreeType's library handle, which fonts and soft shapes share.
#pragma once
#include <ft2build.h>
#include FT_FREETYPE_H

namespace platform {

// Null when FreeType cannot start.
FT_Library FontLibrary();
// Closes it, and with it every face that is still open; the next FontLibrary() starts it again.
void FinishFontLibrary();

}  // namespace platform
