#include "toolkit/core/alive.h"

#include "platform/objects/pointer_set.h"

using toolkit::state;

bool FindLive(const XwWindow* w) {
  if (!state.live || !state.live->Contains(w)) return false;
  state.last_found = w;
  return true;
}

// Never freed by itself: windows may be ended on the way out.
void EnterLive(XwWindow* w) {
  if (!state.live) state.live = new platform::PointerSet;
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
