// What drawing costs at the least: bare loops over the same kind of buffer, without clip, damage or
// target, and bare pixman for text and pictures.
#pragma once
#include <stddef.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/fonts/fonts.h"

namespace floors {

struct Buffer {
  uint32_t* pixels;
  int width, height, stride;
};

void Fill(const Buffer& b, int x, int y, int w, int h, uint32_t color);
void Bresenham(const Buffer& b, int x1, int y1, int x2, int y2, uint32_t color);
// Dashes of `dash` pixels, alternating between two colours.
void DashedBresenham(const Buffer& b, int x1, int y1, int x2, int y2, int dash, uint32_t one,
                     uint32_t two);
// Even-odd, inside the buffer.
void Polygon(const Buffer& b, const int16_t* points, int n, uint32_t color);
int64_t Sum(const int32_t* advances, const char* text);

// Strings through pixman's glyph compositing, from a warm cache of the same masks.
class Glyphs {
 public:
  // `characters`: what the bytes of a text stand for, from 1 on; empty: the toolkit's set.
  Glyphs(const Buffer& b, const platform::FontFace* face, int size,
         const std::u32string& characters = {});
  ~Glyphs();
  void Draw(int x, int baseline, const std::string& text);
  Glyphs(const Glyphs&) = delete;
  Glyphs& operator=(const Glyphs&) = delete;

 private:
  struct Impl;
  Impl* impl_;
};

// A picture that already has the target's byte order, which the toolkit's have not: pixman's plain
// copy, a good deal faster than its conversion.
class Copy {
 public:
  Copy(const Buffer& b, int w, int h, uint8_t* pixels);
  ~Copy();
  void Draw(int x, int y);
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;

 private:
  struct Impl;
  Impl* impl_;
};

// A one-bit mask in one colour.
class Mask {
 public:
  Mask(const Buffer& b, int w, int h, const uint8_t* bits);
  ~Mask();
  void Draw(int x, int y);
  Mask(const Mask&) = delete;
  Mask& operator=(const Mask&) = delete;

 private:
  struct Impl;
  Impl* impl_;
};

// A circle through FreeType's rasteriser: one outline, moved, and its spans blended into the
// pixels.
class Circle {
 public:
  Circle(const Buffer& b, int diameter);
  ~Circle();
  void Draw(int x, int y, uint32_t color);
  Circle(const Circle&) = delete;
  Circle& operator=(const Circle&) = delete;

 private:
  struct Impl;
  Impl* impl_;
};

}  // namespace floors
