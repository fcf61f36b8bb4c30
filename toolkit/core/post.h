// The toolkit's own events: copies of a whole record that wait in the platform's queue.
#pragma once
#include <functional>

#include "platform/events/event.h"
#include "toolkit/xw.h"

// Their class in the queue; the payload is one XwEvent from malloc, freed by those who take the
// event out of the queue.
constexpr uint32_t kToolkitEventClass = platform::FourCC("KRV ");

// A copy of a record, queued. The window must be alive.
void PostEvent(const XwEvent& event);
// The rectangle of the current event.
void SetEventRect(int x, int y, int width, int height);
// Asks for a redraw of all of a window. Overwrites the current event's rectangle.
void PostExpose(XwWindow* w);
// True for a toolkit event that names `window`, or one that has ended with it.
bool EVclose_find_func(const platform::Event& event, const XwWindow* window);
// Removes the queued events for which `drop` is true, and frees their records. It is true for
// toolkit events only.
void RemoveRecords(const std::function<bool(const platform::Event&)>& drop);
// `window`, and everything below it, has ended: its events go, and no event has it as focus.
void PurgeEvents(const XwWindow* window);
// Keys go to the top-level window `w` from now on: waiting events whose focus lies elsewhere have
// it as focus, so that none of them turns the keys away again.
void MoveWaitingFocus(XwWindow* w);

// Milliseconds as events carry them.
inline uint32_t EventMilliseconds(double seconds) {
  return uint32_t(uint64_t(seconds > 0 ? seconds * 1000 : 0));
}
