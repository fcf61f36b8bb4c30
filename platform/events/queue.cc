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

// Outermost wait first.
static void ForEachDeferred(DeferredEvents* innermost,
                            const std::function<void(std::vector<Event>*)>& f) {
  if (!innermost) return;
  ForEachDeferred(innermost->outer, f);
  f(&innermost->events);
}

void EventQueue::Prepend(const std::vector<Event>& events) {
  std::vector<Event> all = events;
  for (size_t i = 0; i < size(); ++i) all.push_back(at(i));
  head = tail = 0;
  for (const Event& e : all) Push(e);
}

Event* EventQueue::Last() {
  if (!empty()) return &back();
  for (DeferredEvents* l = deferred; l; l = l->outer)
    if (!l->events.empty()) return &l->events.back();
  return nullptr;
}

void ForEachEvent(EventQueueRef queue, const std::function<void(Event*)>& visit) {
  if (!queue) return;
  ForEachDeferred(queue->deferred, [&](std::vector<Event>* events) {
    for (Event& e : *events) visit(&e);
  });
  for (size_t i = 0; i < queue->size(); ++i) visit(&queue->at(i));
}

void ForEachUserEvent(EventQueueRef queue, uint32_t cls, const std::function<void(void*)>& visit) {
  ForEachEvent(queue, [&](Event* e) {
    if (e->cls == cls) visit(e->payload);
  });
}

void RemoveEventsFromQueue(EventQueueRef queue, const std::function<bool(const Event&)>& drop) {
  if (!queue) return;
  auto gone = [&drop](Event& e) {
    const bool dropped = drop(e);
    if (dropped) ReleaseEvent(&e);
    return dropped;
  };
  ForEachDeferred(queue->deferred,
                  [&](std::vector<Event>* events) { std::erase_if(*events, gone); });
  size_t kept = 0, n = queue->size();
  for (size_t i = 0; i < n; ++i) {
    Event& e = queue->at(i);
    if (gone(e)) continue;
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
