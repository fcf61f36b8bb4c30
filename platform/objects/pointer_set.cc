#include "platform/objects/pointer_set.h"

namespace platform {

void PointerSet::Add(const void* p) {
  if (!p || Contains(p)) return;
  if ((count_ + 1) * 2 > slots_.size()) Grow();
  slots_[Find(p)] = p;
  ++count_;
}

void PointerSet::Grow() {
  std::vector<const void*> old(slots_.size() * 2, nullptr);
  old.swap(slots_);
  for (const void* p : old)
    if (p) slots_[Find(p)] = p;
}

// Moves later pointers into the gap, so that no markers for removed ones are needed.
void PointerSet::Remove(const void* p) {
  if (!Contains(p)) return;
  --count_;
  size_t gap = Find(p);
  for (size_t i = (gap + 1) & mask(); slots_[i]; i = (i + 1) & mask()) {
    size_t home = Home(slots_[i]);
    if (((i - home) & mask()) < ((i - gap) & mask())) continue;
    slots_[gap] = slots_[i];
    gap = i;
  }
  slots_[gap] = nullptr;
}

}  // namespace platform
