// A set of pointers: open addressing, because it is asked at every public call.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace platform {

class PointerSet {
 public:
  bool Contains(const void* p) const { return p && slots_[Find(p)] == p; }
  // Null is not added; one that is there already stays.
  void Add(const void* p);
  // One that is not there is ignored.
  void Remove(const void* p);
  size_t size() const { return count_; }

 private:
  size_t mask() const { return slots_.size() - 1; }
  size_t Home(const void* p) const {
    return size_t((reinterpret_cast<uintptr_t>(p) >> 4) * 0x9E3779B97F4A7C15ull >> 20) & mask();
  }
  // The slot of `p`, or the free one where it would be.
  size_t Find(const void* p) const {
    size_t i = Home(p);
    while (slots_[i] && slots_[i] != p) i = (i + 1) & mask();
    return i;
  }
  void Grow();

  std::vector<const void*> slots_ = std::vector<const void*>(64, nullptr);
  size_t count_ = 0;
};

}  // namespace platform
