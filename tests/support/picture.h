// Comparing pictures, exactly. A reference is a PNG in the repository; one that is missing is a
// failure, as is any pixel that differs. A failure leaves NAME.out.png, NAME.ref.png and
// NAME.diff.png in the folder named by QUORVIK_PICTURES (default: pictures-failed in the working
// directory). With QUORVIK_ACCEPT=1 in the environment the picture becomes the reference, and the
// test says so.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace testkit {

struct Picture {
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;  // 0xFFRRGGBB, row by row
  uint32_t at(int x, int y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
  bool operator==(const Picture&) const = default;
};

// False when the file is missing or is not a picture.
bool LoadPng(const std::string& path, Picture* out);
bool SavePng(const Picture& picture, const std::string& path);

// `reference` is the PNG's path, in `folder`; `name` the picture's, without an ending.
testing::AssertionResult MatchesReference(const Picture& picture, const std::string& folder,
                                          const std::string& name);
// Two pictures that were drawn in two ways.
testing::AssertionResult SamePicture(const Picture& a, const Picture& b);

}  // namespace testkit
