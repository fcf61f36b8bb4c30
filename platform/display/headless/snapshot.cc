// Pictures of headless windows.
#include <png.h>

#include "platform/display/headless/state.h"

namespace platform::headless {

Picture TakePicture(const Window* w) {
  if (!IsValidWindow(w) || !w->native) return {};
  NativeWindow* n = Native(w);
  return {n->shown_width, n->shown_height, n->shown};
}

bool WritePng(const Picture& picture, const std::string& path) {
  if (picture.pixels.empty()) return false;
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = png_uint_32(picture.width);
  image.height = png_uint_32(picture.height);
  image.format = PNG_FORMAT_RGB;
  std::vector<uint8_t> rgb;
  rgb.reserve(picture.pixels.size() * 3);
  for (uint32_t p : picture.pixels)
    for (int shift : {16, 8, 0}) rgb.push_back(uint8_t(p >> shift));
  return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

}  // namespace platform::headless
