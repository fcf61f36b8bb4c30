// Files that other programs drag over windows.
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/windows/state.h"

namespace platform {
namespace {

// Of places that wait the newest counts.
void Post(WindowRef w, const DragFields& drag) {
  Event e(kEventClassWindow, kEventWindowDrag, w);
  e.time = GetCurrentEventTime();
  e.drag = drag;
  EventQueue& q = main_event_queue;
  Event* last = q.Last();
  const bool merges = drag.step == DragFields::kOver && last && last->cls == e.cls &&
                      last->kind == e.kind && last->window == w &&
                      last->drag.step == DragFields::kOver;
  if (merges)
    *last = e;
  else
    q.Push(e);
}

// False when the window has heard the end already.
bool EndsDrag(WindowRef w) {
  WindowRef& over = Windows().dragged_over;
  if (over != w) return false;
  over = nullptr;
  return true;
}

// False when the window refuses them.
bool BeginsOrGoesOn(WindowRef w) {
  if (w->attributes & kWindowRefusesFilesAttribute) return false;
  WindowRef& over = Windows().dragged_over;
  if (over && over != w) Post(over, {{}, DragFields::kLeft});
  over = w;
  return true;
}

}  // namespace

void HandleDrag(WindowRef w, const DragFields& drag) {
  const bool end = drag.step == DragFields::kLeft || drag.step == DragFields::kDropped;
  if (end && !EndsDrag(w)) return;
  if (drag.step == DragFields::kOver && !BeginsOrGoesOn(w)) return;
  Post(w, drag);
}

}  // namespace platform
