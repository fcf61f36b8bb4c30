#include "platform/graphics/png.h"

#include <png.h>

#include <vector>

namespace platform {

std::string EncodePng(const uint32_t* pixels, int width, int height, int64_t stride) {
  if (!pixels || width < 1 || height < 1) return {};
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = png_uint_32(width);
  image.height = png_uint_32(height);
  image.format = PNG_FORMAT_RGB;
  image.flags = PNG_IMAGE_FLAG_FAST;
  std::vector<uint8_t> rgb;
  rgb.reserve(size_t(width) * size_t(height) * 3);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (int shift : {16, 8, 0}) rgb.push_back(uint8_t(pixels[y * stride + x] >> shift));
  png_alloc_size_t size = 0;
  if (!png_image_write_to_memory(&image, nullptr, &size, 0, rgb.data(), 0, nullptr)) return {};
  std::string file(size, 0);
  if (!png_image_write_to_memory(&image, file.data(), &size, 0, rgb.data(), 0, nullptr)) return {};
  file.resize(size);
  return file;
}

}  // namespace platform
