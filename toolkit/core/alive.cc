// The set of live records: open addressing, because it is asked at every public call.
#include "toolkit/core/alive.h"

#include <vector>

using toolkit::state;

struct toolkit::PointerSet {
  std::vector<const XwWindow*> slots = std::vector<const XwWindow*>(64, nullptr);
  size_t count = 0;

  size_t mask() const { return slots.size() - 1; }
  size_t Home(const XwWindow* w) const {
    return size_t((reinterpret_cast<uintptr_t>(w) >> 4) * 0x9E3779B97F4A7C15ull >> 20) & mask();
  }
  size_t Find(const XwWindow* w) const {
    size_t i = Home(w);
    while (slots[i] && slots[i] != w) i = (i + 1) & mask();
    return i;
  }
  void Add(const XwWindow* w) {
    if ((count + 1) * 2 > slots.size()) Grow();
    size_t i = Find(w);
    if (!slots[i]) ++count;
    slots[i] = w;
  }
  void Grow() {
    std::vector<const XwWindow*> old(slots.size() * 2, nullptr);
    old.swap(slots);
    for (const XwWindow* w : old)
      if (w) slots[Find(w)] = w;
  }
  // Closes the gap, so that searches need no markers.
  void Remove(const XwWindow* w) {
    size_t gap = Find(w);
    if (!slots[gap]) return;
    --count;
    for (size_t i = (gap + 1) & mask(); slots[i]; i = (i + 1) & mask()) {
      size_t home = Home(slots[i]);
      if (((i - home) & mask()) < ((i - gap) & mask())) continue;
      slots[gap] = slots[i];
      gap = i;
    }
    slots[gap] = nullptr;
  }
};

bool FindLive(const XwWindow* w) {
  if (!state.live || state.live->slots[state.live->Find(w)] != w) return false;
  state.last_found = w;
  return true;
}

// Never freed by itself: windows may be ended on the way out.
void EnterLive(XwWindow* w) {
  if (!state.live) state.live = new toolkit::PointerSet;
  state.live->Add(w);
}

void LeaveLive(XwWindow* w) {
  if (state.live) state.live->Remove(w);
  if (state.last_found == w) state.last_found = nullptr;
}

void DropLive() {
  delete state.live;
  state.live = nullptr;
  state.last_found = nullptr;
}
