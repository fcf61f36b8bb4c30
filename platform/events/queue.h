// The one queue of events, a FIFO. Posting and removing are allowed at any time.
#pragma once
#include <cstddef>
#include <functional>
#include <vector>

#include "platform/events/event.h"

namespace platform {

// Events that a nested wait leaves for later, in order. They go to the front of the queue when the
// wait is over; searches of the queue include them before that.
struct DeferredEvents {
  std::vector<Event> events;
  DeferredEvents* outer = nullptr;  // of the wait around this one, whose events came earlier
};

// A ring of events that grows and never shrinks. The insides stand here because every event passes
// through them: posting and taking are a few instructions of the caller's own.
struct EventQueue {
  Event& Slot(size_t n) { return ring[n & (capacity - 1)]; }
  bool empty() const { return head == tail; }
  bool full() const { return tail - head == capacity; }
  size_t size() const { return tail - head; }
  Event& at(size_t i) { return Slot(head + i); }
  Event& back() { return Slot(tail - 1); }
  void Push(const Event& e) {
    if (full()) Grow();
    Slot(tail++) = e;
  }
  // A program's own event: its class and its payload.
  void PushUser(uint32_t cls, void* payload) {
    if (full()) [[unlikely]]
      Grow();
    Event& e = Slot(tail++);
    e.cls = cls;
    e.kind = 0;
    e.time = 0;
    e.window = nullptr;
    e.payload = payload;
  }
  // Of a program's own event only the class and the payload are taken over.
  void Pop(Event* out) {
    const Event& e = Slot(head++);
    if (!e.payload || e.cls == kEventClassAppleEvent) [[unlikely]] {
      *out = e;
      return;
    }
    out->cls = e.cls;
    out->payload = e.payload;
  }
  void Grow();
  // Puts the events before all others, in their order.
  void Prepend(const std::vector<Event>& events);
  // The event that was queued last, also when it is deferred; null when there is none.
  Event* Last();

  size_t head = 0, tail = 0, capacity = 0;  // capacity: 0 or a power of two
  Event* ring = nullptr;                    // kept for the life of the process
  int quick = 0;  // events that may still be taken before the next look at clock and display
  DeferredEvents* deferred = nullptr;  // of the innermost nested wait
};
extern constinit EventQueue main_event_queue;

using EventQueueRef = EventQueue*;
inline EventQueueRef GetMainEventQueue() {
  return &main_event_queue;
}

// Appends a copy.
void PostEventToQueue(EventQueueRef queue, const Event& event);
// Appends an event of the program's own class; its receiver owns `payload`, which is not
// null. A null queue is ignored, and the payload stays the caller's.
inline void PostUserEvent(EventQueueRef queue, uint32_t cls, void* payload) {
  if (queue) queue->PushUser(cls, payload);
}
// Every queued event, oldest first. `visit` may change it, but not the queue.
void ForEachEvent(EventQueueRef queue, const std::function<void(Event*)>& visit);
// The record of every queued user event of class `cls`, oldest first.
void ForEachUserEvent(EventQueueRef queue, uint32_t cls, const std::function<void(void*)>& visit);
// Drops each queued event for which `drop` is true; `drop` frees what the event owns.
void RemoveEventsFromQueue(EventQueueRef queue, const std::function<bool(const Event&)>& drop);
// Drops everything; `dispose` is called for the payload of each user event.
void FlushEventQueue(EventQueueRef queue, void (*dispose)(void* payload));

// Frees what an event of the platform itself owns (a path), not a user event's payload.
void ReleaseEvent(Event* e);

// Hints that let a receive skip the display and the clock while events wait: a display that has its
// reports in memory says when there are some, and one whose clock is stepped by hand says so.
struct IntakeHints {
  bool waiting = false;
  bool stepped = false;

  void ReportWaits() {
    waiting = true;
    main_event_queue.quick = 0;
  }
  void ClockIsStepped() {
    stepped = true;
    main_event_queue.quick = 0;
  }
};
extern IntakeHints intake_hints;

}  // namespace platform
