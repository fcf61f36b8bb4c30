// How a camera was held.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

namespace preview {

// The orientation (1 to 8) that a block of camera data tells; 0 when it tells none.
int ExifOrientation(std::span<const uint8_t> block);

}  // namespace preview
