// Timers of the main loop: a short list, searched only when its earliest deadline has come.
#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/events/clock.h"
#include "platform/events/timers.h"

namespace platform {

struct EventLoopTimer {
  double next;
  double interval;
  EventLoopTimerProc proc;
  void* user_data;
  bool removed;
};

namespace {

constexpr double kShortest = 1e-6;  // seconds

// Rounded to whole microseconds, so that equal times are equal whatever sums gave them.
double Moment(double seconds) {
  return std::round(seconds * 1e6) / 1e6;
}

struct TimerList {
  std::vector<EventLoopTimer*> timers;
  double earliest = -1;  // negative: none runs
  double fired_at = -1;
  int firing = 0;  // removed timers are freed when no call is under way
};

TimerList& List() {
  static TimerList* list = new TimerList;
  return *list;
}

void UpdateEarliest() {
  TimerList& l = List();
  l.earliest = -1;
  for (EventLoopTimer* t : l.timers)
    if (!t->removed && t->next >= 0 && (l.earliest < 0 || t->next < l.earliest))
      l.earliest = t->next;
}

bool IsListed(EventLoopTimerRef timer) {
  const auto& timers = List().timers;
  return timer && std::find(timers.begin(), timers.end(), timer) != timers.end();
}

void Sweep() {
  TimerList& l = List();
  if (l.firing) return;
  std::erase_if(l.timers, [](EventLoopTimer* t) {
    bool gone = t->removed;
    if (gone) delete t;
    return gone;
  });
}

void Advance(EventLoopTimer* t, double now) {
  if (t->interval <= 0) {
    t->next = -1;
    return;
  }
  // Missed periods are made up by one call; the phase stays.
  double missed = std::max(0.0, double(int64_t((now - t->next) / t->interval)));
  t->next = Moment(t->next + (missed + 1) * t->interval);
  // Rounding may leave the next deadline at this moment, which has been served.
  if (t->next <= now + t->interval * 1e-6) t->next += t->interval;
}

}  // namespace

EventLoopTimerRef InstallEventLoopTimer(double delay, double interval, EventLoopTimerProc proc,
                                        void* user_data) {
  if (interval > 0) interval = std::max(interval, kShortest);
  auto* t = new EventLoopTimer{Moment(GetCurrentEventTime() + std::max(0.0, delay)), interval, proc,
                               user_data, false};
  List().timers.push_back(t);
  UpdateEarliest();
  return t;
}

void RemoveEventLoopTimer(EventLoopTimerRef timer) {
  if (!IsListed(timer)) return;
  timer->removed = true;
  Sweep();
  UpdateEarliest();
}

void SetEventLoopTimerNextFireTime(EventLoopTimerRef timer, double delay) {
  if (!IsListed(timer)) return;
  timer->next = Moment(GetCurrentEventTime() + std::max(0.0, delay));
  UpdateEarliest();
}

double TimersFiredAt() {
  return List().fired_at;
}

void FireTimers(double now) {
  TimerList& l = List();
  l.fired_at = now;
  if (l.earliest < 0 || now < l.earliest) return;
  ++l.firing;
  // In order of their deadlines, each once; a callback may add and remove timers.
  std::vector<EventLoopTimer*> due;
  for (EventLoopTimer* t : l.timers)
    if (!t->removed && t->next >= 0 && t->next <= now) due.push_back(t);
  std::stable_sort(due.begin(), due.end(),
                   [](EventLoopTimer* a, EventLoopTimer* b) { return a->next < b->next; });
  for (EventLoopTimer* t : due) {
    if (t->removed || t->next < 0 || t->next > now) continue;
    Advance(t, now);
    t->proc(t, t->user_data);
  }
  --l.firing;
  Sweep();
  UpdateEarliest();
}

void FinishTimers() {
  TimerList& l = List();
  for (EventLoopTimer* t : l.timers) t->removed = true;
  Sweep();
  l.earliest = l.fired_at = -1;
}

double NextTimer(double now) {
  double earliest = List().earliest;
  return earliest < 0 ? -1 : std::max(0.0, earliest - now);
}

}  // namespace platform
