// Taking the next event: raw input, timers, redraw requests and the screen are looked after on the
// way. The clock is read when the queue is empty, else once in a batch of events.
#include <poll.h>
#include <sys/time.h>

#include <algorithm>
#include <ctime>

#include "platform/display/display.h"
#include "platform/display/window.h"
#include "platform/events/queue.h"
#include "platform/input/record.h"
#include "platform/input/translate.h"

namespace platform {

InputHints input_hints;

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

double MonotonicSeconds() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// The front window that has asked longest comes first; null when none has.
WindowRef NextToDraw(double asked_before) {
  WindowRef found = nullptr;
  for (WindowRef w : WindowList())
    if (w->needs_draw && w->visible && w->draw_since <= asked_before &&
        (!found || w->draw_since < found->draw_since))
      found = w;
  return found;
}

bool TakeDrawEvent(double asked_before, Event* out) {
  WindowRef w = NextToDraw(asked_before);
  if (!w) return false;
  w->needs_draw = false;
  *out = Event(kEventClassWindow, kEventWindowDrawContent, w);
  out->time = w->draw_since;
  return true;
}

void Wait(double seconds) {
  const Display* d = CurrentDisplay();
  if (d->wait) {
    d->wait(seconds);
    return;
  }
  PollList fds;
  if (d->descriptors) d->descriptors(&fds);
  pollfd others[3];
  const int count = DesktopDescriptors(others, 3);
  fds.insert(fds.end(), others, others + count);
  timespec t{time_t(seconds), long((seconds - double(time_t(seconds))) * 1e9)};
  ppoll(fds.data(), nfds_t(fds.size()), seconds < 0 ? nullptr : &t, nullptr);
}

// A look at the coarse clock. True when the batch is over: because it is long enough, or because a
// slow handler has let a tick pass. Then the next look comes after one event, and each that finds
// no tick doubles the distance to the one after it.
bool BatchIsOver() {
  if (input_hints.waiting || input_hints.stepped) return true;
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
  if (idle || input_hints.waiting || input_hints.stepped ||
      now - receiver.last_intake >= kIntakePeriod || now < receiver.last_intake) {
    input_hints.waiting = false;
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

double GetCurrentEventTime() {
  const Display* d = CurrentDisplay();
  return d && d->now ? d->now() : MonotonicSeconds();
}

int64_t GetTimeOfDayMicroseconds() {
  const Display* d = CurrentDisplay();
  if (d && d->now) return int64_t(d->now() * 1e6 + 0.5);
  timeval t;
  gettimeofday(&t, nullptr);
  return int64_t{t.tv_sec} * 1000000 + t.tv_usec;
}

void AlertSoundPlay() {
  const Display* d = CurrentDisplay();
  if (d && d->beep) d->beep();
}

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
    // Answers that were waited for may have brought reports along, which the descriptor then no
    // longer shows.
    TakeRawEvents();
    if (!queue.empty() || NextToDraw(GetCurrentEventTime())) continue;
    double wait = NextTimer(now);
    if (double replay = NextReplay(now); replay >= 0 && (wait < 0 || replay < wait)) wait = replay;
    if (timeout > 0 && (wait < 0 || deadline - now < wait)) wait = deadline - now;
    Wait(wait);
  }
}

}  // namespace platform
