// A window record over plain memory, selected as the target: drawing without a display.
#pragma once
#include <algorithm>
#include <vector>

#include "platform/graphics/context.h"
#include "platform/graphics/surface.h"
#include "toolkit/xw.h"

namespace testkit {

class Canvas {
 public:
  // The target is `width` x `height` logical pixels with its origin at (left, top) of a surface
  // that has a margin of as much again around it.
  Canvas(int width, int height, double scale = 1.0, int left = 0, int top = 0) {
    surface_.width = platform::DeviceEdge(width + 2 * left, scale);
    surface_.height = platform::DeviceEdge(height + 2 * top, scale);
    surface_.stride = surface_.width + 3;
    surface_.scale = scale;
    surface_.damage.Reset(surface_.width, surface_.height);
    memory_.assign(size_t(surface_.stride) * size_t(surface_.height), kBlank);
    surface_.pixels = memory_.data();
    context_ = platform::CreateSurfaceContext(&surface_);
    platform::SetContextOrigin(context_, left, top);
    platform::ClipContextToRegion(context_,
                                  platform::Region({left, top, left + width, top + height}));
    window_.width = int16_t(width);
    window_.height = int16_t(height);
    window_.color = -1;
    window_.context = reinterpret_cast<XwContext*>(context_);
    XW = &window_;
  }
  ~Canvas() {
    XW = nullptr;
    platform::ReleaseContext(context_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  static constexpr uint32_t kBlank = 0xFFFFFFFFu;
  platform::ContextRef context() { return context_; }
  platform::Surface& surface() { return surface_; }
  XwWindow& window() { return window_; }
  // Device pixels.
  uint32_t at(int x, int y) const {
    return memory_[size_t(y) * size_t(surface_.stride) + size_t(x)];
  }
  int Count(uint32_t pixel) const {
    int n = 0;
    for (int y = 0; y < surface_.height; ++y)
      for (int x = 0; x < surface_.width; ++x) n += at(x, y) == pixel;
    return n;
  }
  void Wipe() { std::fill(memory_.begin(), memory_.end(), kBlank); }
  // Nothing was written between the rows.
  bool GapsUntouched() const {
    for (int y = 0; y < surface_.height; ++y)
      for (int x = surface_.width; x < surface_.stride; ++x)
        if (at(x, y) != kBlank) return false;
    return true;
  }

 private:
  platform::Surface surface_;
  std::vector<uint32_t> memory_;
  platform::ContextRef context_ = nullptr;
  XwWindow window_{};
};

}  // namespace testkit
