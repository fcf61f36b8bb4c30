#include "platform/events/queue.h"

#include <cstdlib>

namespace platform {

void EventQueue::Grow() {
  std::vector<Event> bigger(ring.size() * 2);
  size_t n = size();
  for (size_t i = 0; i < n; ++i) bigger[i] = at(i);
  ring.swap(bigger);
  head = 0;
  tail = n;
}

EventQueue* main_event_queue = nullptr;

EventQueue& MakeMainEventQueue() {
  main_event_queue = new EventQueue;
  return *main_event_queue;
}

EventQueueRef GetMainEventQueue() {
  return &MainEventQueue();
}

void ReleaseEvent(Event* e) {
  if (e->cls != kEventClassAppleEvent) return;
  free(e->payload);
  e->payload = nullptr;
}

void PostEventToQueue(EventQueueRef queue, const Event& event) {
  if (queue) queue->Push(event);
}

void PostUserEvent(EventQueueRef queue, uint32_t cls, void* payload) {
  if (!queue) return;
  Event& e = queue->PushSlot();
  e.cls = cls;
  e.kind = 0;
  e.time = 0;
  e.window = nullptr;
  e.payload = payload;
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
