// The main event queue: a ring of events that grows and never shrinks.
#pragma once
#include <vector>

#include "platform/events/events.h"

namespace platform {

struct EventQueue {
  bool empty() const { return head == tail; }
  size_t size() const { return tail - head; }
  Event& at(size_t i) { return ring[(head + i) & (ring.size() - 1)]; }
  Event& back() { return ring[(tail - 1) & (ring.size() - 1)]; }
  void Push(const Event& e) { PushSlot() = e; }
  // The new last one, to be filled in.
  Event& PushSlot() {
    if (size() == ring.size()) Grow();
    return ring[tail++ & (ring.size() - 1)];
  }
  void Pop(Event* out) { *out = ring[head++ & (ring.size() - 1)]; }
  void Grow();

  std::vector<Event> ring = std::vector<Event>(64);  // a power of two
  size_t head = 0, tail = 0;
};

extern EventQueue* main_event_queue;
EventQueue& MakeMainEventQueue();
inline EventQueue& MainEventQueue() {
  return main_event_queue ? *main_event_queue : MakeMainEventQueue();
}
// Frees what an event of the platform itself owns (a path), not a user event's payload.
void ReleaseEvent(Event* e);

// --- Timers, for receive.
// Calls what is due. Seconds until the next firing; negative when no timer runs.
void FireTimers(double now);
double NextTimer(double now);
// The moment for which FireTimers was last called.
double TimersFiredAt();

// --- Raw input, for receive.
// Takes in all that the display reports.
void TakeRawEvents();

// A dispatch is under way: destroyed windows stay in memory until it is over.
struct DispatchScope {
  DispatchScope();
  ~DispatchScope();
};
bool InDispatch();

}  // namespace platform
