#include "app/preview/exif.h"

#include <cstring>

namespace preview {
namespace {

constexpr char kName[] = "Exif\0";  // six bytes with the zero behind it
constexpr size_t kEntrySize = 12;
constexpr uint32_t kOrientationTag = 0x112;

// Numbers of either byte order; 0 past the end.
struct Numbers {
  std::span<const uint8_t> bytes;
  bool little = false;

  uint32_t At(size_t offset, size_t size) const {
    if (offset > bytes.size() || bytes.size() - offset < size) return 0;
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i)
      number = number << 8 | bytes[offset + (little ? size - 1 - i : i)];
    return number;
  }
};

}  // namespace

int ExifOrientation(std::span<const uint8_t> block) {
  if (block.size() < sizeof kName + 8 || memcmp(block.data(), kName, sizeof kName) != 0) return 0;
  Numbers numbers{block.subspan(sizeof kName)};
  numbers.little = numbers.bytes[0] == 'I';
  const size_t folder = numbers.At(4, 4);
  const size_t count = numbers.At(folder, 2);
  for (size_t i = 0; i < count; ++i) {
    const size_t entry = folder + 2 + i * kEntrySize;
    if (numbers.At(entry, 2) != kOrientationTag) continue;
    const uint32_t value = numbers.At(entry + 8, 2);
    return value >= 1 && value <= 8 ? int(value) : 0;
  }
  return 0;
}

}  // namespace preview
