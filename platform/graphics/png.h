// Pictures as PNG files.
#pragma once
#include <cstdint>
#include <string>

namespace platform {

// The bytes of a file with `width` x `height` pixels, 0xFFRRGGBB, rows `stride` pixels apart. Empty
// for an empty picture and when it is too large for the format.
std::string EncodePng(const uint32_t* pixels, int width, int height, int64_t stride);

}  // namespace platform
