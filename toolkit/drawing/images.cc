// Off-screen pixels that the program fills: a header, and the pixels right behind it.
#include <cstdlib>

#include "platform/graphics/context.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/selection.h"

using namespace platform;

namespace {

struct ImageHeader {
  uint32_t reserved;
  int32_t width, height;
  void* image;  // nothing is needed beside the pixels
  void* provider;
};
static_assert(sizeof(ImageHeader) % 16 == 0, "pixels stay aligned");

// Larger images are refused: a gigabyte.
constexpr int64_t kMaxPixels = int64_t{1} << 28;

ImageHeader* HeaderOf(uint8_t* image) {
  return reinterpret_cast<ImageHeader*>(image) - 1;
}

// Cuts a copy to the part of the source that exists: [0, limit) along one axis.
void CutAxis(int limit, int64_t* source, int64_t* destination, int64_t* length) {
  if (*source < 0) {
    *destination -= *source;
    *length += *source;
    *source = 0;
  }
  if (*length > limit - *source) *length = limit - *source;
}

}  // namespace

uint8_t* XwAllocImage(int width, int height) {
  if (!width && XW) width = XW->width;
  if (!height && XW) height = XW->height;
  if (width <= 0 || height <= 0 || int64_t{width} * height > kMaxPixels) return nullptr;
  void* block = calloc(1, sizeof(ImageHeader) + 4 * size_t(width) * size_t(height));
  if (!block) return nullptr;
  ImageHeader* header = static_cast<ImageHeader*>(block);
  header->width = width;
  header->height = height;
  return reinterpret_cast<uint8_t*>(header + 1);
}

void XwFreeImage(uint8_t* image) {
  if (image) free(HeaderOf(image));
}

uint8_t* XwReallocImage(uint8_t* image, int width, int height) {
  XwFreeImage(image);
  return XwAllocImage(width, height);
}

void XwPutImage(int srcX, int srcY, int dstX, int dstY, int w, int h, uint8_t* image) {
  TraceDrawing("XwPutImage", srcX, srcY, dstX, dstY, w, h);
  if (!image) return;
  const ImageHeader* header = HeaderOf(image);
  int64_t sx = srcX, sy = srcY, dx = dstX, dy = dstY, width = w, height = h;
  CutAxis(header->width, &sx, &dx, &width);
  CutAxis(header->height, &sy, &dy, &height);
  if (width < 1 || height < 1) return;
  DrawPixels(TargetContext(), Saturate(dx), Saturate(dy), int(width), int(height),
             image + 4 * (sy * header->width + sx), header->width);
}

void XwPutImageData(int x, int y, int w, int h, const uint8_t* pixels) {
  TraceDrawing("XwPutImageData", x, y, w, h);
  DrawPixels(TargetContext(), x, y, w, h, pixels, w);
}

void XwPutImageScaled(int x, int y, int w, int h, const uint8_t* pixels, int width, int height) {
  TraceDrawing("XwPutImageScaled", x, y, w, h, width, height);
  DrawPicture(TargetContext(), x, y, w, h, pixels, width, height);
}
