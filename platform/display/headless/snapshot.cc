// Pictures of headless windows.
#include <cstdio>

#include "platform/display/headless/state.h"
#include "platform/graphics/png.h"

namespace platform::headless {

Picture TakePicture(const Window* w) {
  if (!IsValidWindow(w) || !w->native) return {};
  NativeWindow* n = Native(w);
  Picture p{n->shown_width, n->shown_height, n->shown};
  for (const DeviceRect& row : PopUpOutline(*w, p.width, p.height)) {
    if (row.left == 0) continue;
    uint32_t* pixels = p.pixels.data() + size_t(row.top) * size_t(p.width);
    std::fill(pixels, pixels + row.left, 0);
    std::fill(pixels + row.right, pixels + p.width, 0);
  }
  return p;
}

bool WritePng(const Picture& picture, const std::string& path) {
  const std::string bytes =
      EncodePng(picture.pixels.data(), picture.width, picture.height, picture.width);
  FILE* file = bytes.empty() ? nullptr : fopen(path.c_str(), "we");
  if (!file) return false;
  const bool whole = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return fclose(file) == 0 && whole;
}

}  // namespace platform::headless
