#include "platform/events/queue.h"

#include <cstdlib>

namespace platform {

constinit EventQueue main_event_queue;
IntakeHints intake_hints;

void EventQueue::Grow() {
  const size_t n = size(), room = capacity ? 2 * capacity : 64;
  auto* bigger = new Event[room];
  for (size_t i = 0; i < n; ++i) bigger[i] = at(i);
  delete[] ring;
  ring = bigger;
  capacity = room;
  head = 0;
  tail = n;
}

void ReleaseEvent(Event* e) {
  if (e->cls != kEventClassAppleEvent) return;
  free(e->payload);
  e->payload = nullptr;
}

void PostEventToQueue(EventQueueRef queue, const Event& event) {
  if (queue) queue->Push(event);
}

void ForEachUserEvent(EventQueueRef queue, uint32_t cls, const std::function<void(void*)>& visit) {
  if (!queue) return;
  for (size_t i = 0; i < queue->size(); ++i)
    if (queue->at(i).cls == cls) visit(queue->at(i).payload);
}

void RemoveEventsFromQueue(EventQueueRef queue, const std::function<bool(const Event&)>& drop) {
  if (!queue) return;
  size_t kept = 0, n = queue->size();
  for (size_t i = 0; i < n; ++i) {
    Event& e = queue->at(i);
    if (drop(e)) {
      ReleaseEvent(&e);
      continue;
    }
    if (kept != i) queue->at(kept) = e;
    ++kept;
  }
  queue->tail = queue->head + kept;
}

void FlushEventQueue(EventQueueRef queue, void (*dispose)(void* payload)) {
  RemoveEventsFromQueue(queue, [dispose](const Event& e) {
    if (e.payload && e.cls != kEventClassAppleEvent && dispose) dispose(e.payload);
    return true;
  });
}

}  // namespace platform
