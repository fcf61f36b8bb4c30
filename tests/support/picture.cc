#include "tests/support/picture.h"

#include <png.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>

namespace testkit {
namespace {

std::string FailureFolder() {
  const char* folder = getenv("QUORVIK_PICTURES");
  std::string path = folder && *folder ? folder : "pictures-failed";
  mkdir(path.c_str(), 0755);
  return path;
}

// What differs is red, what agrees a pale shade of itself.
Picture Difference(const Picture& a, const Picture& b) {
  Picture d = a;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      bool same = x < b.width && y < b.height && a.at(x, y) == b.at(x, y);
      uint32_t& p = d.pixels[size_t(y) * size_t(d.width) + size_t(x)];
      p = same ? 0xFFC0C0C0u | (p >> 2 & 0x3F3F3F) : 0xFFFF0000u;
    }
  }
  return d;
}

testing::AssertionResult Describe(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height)
    return testing::AssertionFailure() << "sizes differ: " << a.width << "x" << a.height << " and "
                                       << b.width << "x" << b.height;
  int count = 0, first = -1;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    if (a.pixels[i] == b.pixels[i]) continue;
    if (first < 0) first = int(i);
    ++count;
  }
  return testing::AssertionFailure()
         << count << " pixels differ, the first at " << first % a.width << ", " << first / a.width
         << ": " << std::hex << a.pixels[size_t(first)] << " and " << b.pixels[size_t(first)];
}

}  // namespace

bool LoadPng(const std::string& path, Picture* out) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return false;
  image.format = PNG_FORMAT_BGRA;
  out->width = int(image.width);
  out->height = int(image.height);
  out->pixels.assign(size_t(image.width) * image.height, 0);
  return png_image_finish_read(&image, nullptr, out->pixels.data(), 0, nullptr);
}

bool SavePng(const Picture& picture, const std::string& path) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = png_uint_32(picture.width);
  image.height = png_uint_32(picture.height);
  image.format = PNG_FORMAT_RGB;
  std::vector<uint8_t> rgb;
  for (uint32_t p : picture.pixels)
    for (int shift : {16, 8, 0}) rgb.push_back(uint8_t(p >> shift));
  return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr);
}

testing::AssertionResult MatchesReference(const Picture& picture, const std::string& folder,
                                          const std::string& name) {
  std::string path = folder + "/" + name + ".png";
  const char* accept = getenv("QUORVIK_ACCEPT");
  if (accept && std::strcmp(accept, "1") == 0) {
    if (!SavePng(picture, path)) return testing::AssertionFailure() << "cannot write " << path;
    printf("accepted %s\n", path.c_str());
    return testing::AssertionSuccess();
  }
  Picture reference;
  bool loaded = LoadPng(path, &reference);
  if (loaded && reference == picture) return testing::AssertionSuccess();
  std::string failed = FailureFolder() + "/" + name;
  SavePng(picture, failed + ".out.png");
  if (!loaded) return testing::AssertionFailure() << "there is no reference " << path;
  SavePng(reference, failed + ".ref.png");
  SavePng(Difference(picture, reference), failed + ".diff.png");
  return Describe(picture, reference) << "; see " << failed << ".*.png";
}

testing::AssertionResult SamePicture(const Picture& a, const Picture& b) {
  if (a == b) return testing::AssertionSuccess();
  return Describe(a, b);
}

}  // namespace testkit
