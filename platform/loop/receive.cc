// Taking the next event: raw input, timers, redraw requests and the screen are looked after on the
// way. The clock is read when the queue is empty, else once in a batch of events.
#include "platform/loop/receive.h"

#include <algorithm>
#include <ctime>

#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/events/sources.h"
#include "platform/events/timers.h"
#include "platform/input/record.h"
#include "platform/input/results.h"
#include "platform/input/translate.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr int kBatch = 256;               // events between two looks at the clock
constexpr int kLongestStride = 32;        // events between two looks at the coarse clock
constexpr double kIntakePeriod = 0.001;   // raw input at most this often while events wait
constexpr double kPresentPeriod = 0.016;  // the screen at least this often
constexpr double kDrawPatience = 0.050;   // a redraw request waits at most this long

struct Receiver {
  int stride = 1, batch = 0;  // events until the next look; in this batch until then
  long tick = 0;              // of the coarse clock, nanoseconds
  double last_intake = -1, last_present = -1;
};
Receiver receiver;

void Wait(double seconds) {
  const Display* d = CurrentDisplay();
  // A replay waits for a result in real time, also where the clock is stepped.
  if (intake_hints.stepped && Replaying() && AwaitedResult()) {
    WaitForSources(NextReplay(GetCurrentEventTime()));
    return;
  }
  if (d->wait)
    d->wait(seconds);
  else
    WaitForSources(seconds);
}

// A look at the coarse clock. True when the batch is over: because it is long enough, or because a
// slow handler has let a tick pass. Then the next look comes after one event, and each that finds
// no tick doubles the distance to the one after it.
bool BatchIsOver() {
  if (intake_hints.waiting || intake_hints.stepped) return true;
  timespec t;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
  const bool slow = t.tv_nsec != receiver.tick;
  receiver.tick = t.tv_nsec;
  receiver.stride = slow ? 1 : std::min(2 * receiver.stride, kLongestStride);
  receiver.batch += receiver.stride;
  main_event_queue.quick = receiver.stride - 1;
  if (!slow && receiver.batch <= kBatch) return false;
  receiver.batch = receiver.stride;
  return true;
}

// One round of upkeep; true when a redraw request has waited long enough to go before the queue.
bool Upkeep(EventQueue& queue, Event* out) {
  bool idle = queue.empty();
  double now = GetCurrentEventTime();
  if (idle || intake_hints.waiting || intake_hints.stepped ||
      now - receiver.last_intake >= kIntakePeriod || now < receiver.last_intake) {
    intake_hints.waiting = false;
    TakeRawEvents();
    receiver.last_intake = now;
  }
  if (!ReplayHoldsTimers()) FireTimers(now);
  if (now - receiver.last_present >= kPresentPeriod) {
    receiver.last_present = now;
    PresentWindows();
  }
  return TakeDrawEvent(now - kDrawPatience, out);
}

}  // namespace

bool ReceiveWithUpkeep(double timeout, Event* out) {
  EventQueue& queue = main_event_queue;
  if (!queue.empty() && !BatchIsOver()) {
    queue.Pop(out);
    return true;
  }
  const Display* d = CurrentDisplay();
  if (!d) return false;
  const double deadline = timeout > 0 ? GetCurrentEventTime() + timeout : 0;
  for (;;) {
    if (Upkeep(queue, out)) return true;
    if (!queue.empty()) {
      queue.Pop(out);
      return true;
    }
    double now = GetCurrentEventTime();
    if (TakeDrawEvent(now, out)) return true;
    receiver.last_present = now;
    PresentWindows();
    if (timeout == kEventDurationNoWait || (timeout > 0 && now >= deadline)) {
      d->flush(false);
      return false;
    }
    d->flush(false);
    // A request that waited for its answer may have read reports; the descriptor does not show them
    // any more.
    TakeRawEvents();
    if (!queue.empty() || DrawEventWaits() || intake_hints.waiting) continue;
    if (ResultsWoke()) return false;
    double wait = NextTimer(now);
    if (double replay = NextReplay(now); replay >= 0 && (wait < 0 || replay < wait)) wait = replay;
    if (timeout > 0 && (wait < 0 || deadline - now < wait)) wait = deadline - now;
    Wait(wait);
  }
}

void FinishReceive() {
  receiver = Receiver();
  main_event_queue.quick = 0;
}

}  // namespace platform
