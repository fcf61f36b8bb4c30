#include "platform/input/results.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/sources.h"
#include "platform/input/record.h"
#include "platform/input/record_line.h"

namespace platform {

std::atomic<bool> results_wait;

namespace {

// Seconds that a replay waits for a result while none of its kind has come.
constexpr double kPatience = 20;
// The same beyond the time in the recording, where the result probably never comes.
constexpr double kShortPatience = 3;
// Seconds of the clock that results wait while there are events.
constexpr double kEventsFirst = 0.050;
// Results that a replay keeps.
constexpr size_t kMostKept = 4096;

struct Result {
  std::string kind, detail;
  TakeResult take = nullptr;
  void* data = nullptr;
};

struct Results {
  std::mutex lock;  // of what follows
  std::vector<Result> waiting;
  bool keep_all = false, dropped = false;
  int wake = -1;
  std::atomic<bool> signalled = false;  // the descriptor is readable
};
Results& State() {
  static auto* state = new Results;
  return *state;
}

// The main thread's.
bool woke = false;
double waiting_since = -1;
struct ReplayState {
  std::map<std::string, std::string> taken;  // the newest of each kind
  std::set<std::string> missed;              // kinds of which one did not come
  const RecordLine* there = nullptr;         // the line whose result was seen to be there
};
ReplayState replay;

using Guard = std::lock_guard<std::mutex>;

// No blank and no control character ends the word (the line) that a recording shows.
std::string Cleaned(const char* text, char least, char instead) {
  std::string out = text ? text : "";
  for (char& c : out)
    if ((c >= 0 && c < least) || c == 0x7F) c = instead;
  const size_t begin = out.find_first_not_of(' ');
  return begin == std::string::npos ? "" : out.substr(begin);
}

void End(const std::vector<Result>& results) {
  for (const Result& r : results) r.take(r.data, 0);
}

// Takes those out for whose place `out` is true. With the lock.
template <typename Out>
std::vector<Result> Extract(Out out) {
  std::vector<Result> extracted, kept;
  auto& waiting = State().waiting;
  for (size_t i = 0; i < waiting.size(); ++i) {
    const bool goes = out(i);
    (goes ? extracted : kept).push_back(waiting[i]);
  }
  waiting.swap(kept);
  results_wait = !waiting.empty();
  return extracted;
}

// With the lock.
void Wake() {
  Results& s = State();
  if (s.wake < 0 || s.signalled) return;
  s.signalled = eventfd_write(s.wake, 1) == 0;
}

void Descriptors(PollList* list) {
  list->push_back({State().wake, POLLIN, 0});
}

void Take() {
  Results& s = State();
  if (!s.signalled) return;
  const Guard guard(s.lock);
  eventfd_t count;
  eventfd_read(s.wake, &count);
  s.signalled = false;
  woke = true;
}

constexpr WaitSource kSource{Descriptors, Take};

// Whether the result is the one that the line took up.
bool Matches(const Result& r, const RecordLine& line) {
  return r.kind == line.what &&
         (r.detail.empty() || line.detail.empty() || r.detail == line.detail);
}

bool IsDecoration(const Result& r) {
  return r.kind[0] == '.';
}

// Whether it can be taken now; `line` is what a replay waits for, null when it waits for nothing.
bool IsNext(const Result& r, const RecordLine* line) {
  return !Replaying() || IsDecoration(r) || (line && Matches(r, *line));
}

// Events that wait come first, but not for ever.
bool EventsComeFirst() {
  if (main_event_queue.deferred) return true;
  const double now = GetCurrentEventTime();
  if (waiting_since < 0) waiting_since = now;
  return !main_event_queue.empty() && (Replaying() || now - waiting_since < kEventsFirst);
}

}  // namespace

void PostResult(const char* kind, const char* detail, TakeResult take, void* data) {
  if (!take) return;
  Result result{Cleaned(kind, '!', '_'), Cleaned(detail, ' ', ' '), take, data};
  std::vector<Result> ended;
  Results& s = State();
  {
    const Guard guard(s.lock);
    if (s.dropped || result.kind.empty()) {
      ended.push_back(std::move(result));
    } else {
      if (!s.keep_all || IsDecoration(result))
        ended = Extract([&](size_t i) { return s.waiting[i].kind == result.kind; });
      else if (s.waiting.size() >= kMostKept)
        ended = Extract([](size_t i) { return i == 0; });
      s.waiting.push_back(std::move(result));
      results_wait = true;
      Wake();
    }
  }
  End(ended);
}

bool TakeNextResult() {
  const RecordLine* line = Replaying() ? AwaitedResult() : nullptr;
  if (EventsComeFirst()) return false;
  Result next;
  std::vector<Result> older;
  {
    const Guard guard(State().lock);
    const auto& waiting = State().waiting;
    size_t at = 0;
    while (at < waiting.size() && !IsNext(waiting[at], line)) ++at;
    if (at == waiting.size()) return false;
    next = waiting[at];
    older = Extract([&](size_t i) { return i <= at && waiting[i].kind == next.kind; });
    older.pop_back();
  }
  waiting_since = -1;
  if (line && !IsDecoration(next)) {
    replay.taken[next.kind] = next.detail;
    ResultTaken();
  }
  if (record_mode == RecordMode::kRecording && !IsDecoration(next))
    RecordResult(next.kind, next.detail);
  End(older);
  next.take(next.data, 1);
  return true;
}

bool ResultsWoke() {
  const bool came = woke;
  woke = false;
  return came;
}

void DropResults() {
  std::vector<Result> ended;
  {
    const Guard guard(State().lock);
    State().dropped = true;
    ended = Extract([](size_t) { return true; });
  }
  End(ended);
}

void KeepResults(bool all) {
  std::vector<Result> older;
  {
    const Guard guard(State().lock);
    State().keep_all = all;
    const auto& waiting = State().waiting;
    if (!all)
      older = Extract([&](size_t i) {
        return std::any_of(waiting.begin() + ptrdiff_t(i) + 1, waiting.end(),
                           [&](const Result& r) { return r.kind == waiting[i].kind; });
      });
    if (!waiting.empty()) Wake();
  }
  waiting_since = -1;
  replay = ReplayState();
  End(older);
}

// A task may have replaced the result before it was seen: the one that is there now comes later in
// the recording, or is the same as before.
bool ShouldSkipResult(const RecordLine& line, double before, double waited) {
  double patience = replay.missed.count(line.what) ? kShortPatience : kPatience;
  const auto taken = replay.taken.find(line.what);
  bool came_round = taken != replay.taken.end() && !taken->second.empty();
  {
    const Guard guard(State().lock);
    std::string state = came_round ? taken->second : "";
    for (const Result& r : State().waiting) {
      if (r.kind != line.what) continue;
      if (Matches(r, line)) {
        // The loop is woken once for this result; after each wait it looks at the results anyway.
        woke = woke || replay.there != &line;
        replay.there = &line;
        return waited >= kPatience;
      }
      if (r.detail == state) continue;
      state = r.detail;
      came_round = false;
      if (LaterResult(r.kind, r.detail) >= 0) return true;
    }
  }
  const double again = !came_round                    ? -1
                       : taken->second == line.detail ? line.time
                                                      : LaterResult(line.what, taken->second);
  if (again >= 0) patience = std::min(patience, again - before + kShortPatience);
  if (waited < patience) return false;
  if (again >= 0) return true;
  replay.missed.insert(line.what);
  fprintf(stderr, "replay: no result came for %s %s\n", line.what.c_str(), line.detail.c_str());
  return true;
}

void InitResults() {
  Results& s = State();
  if (s.wake >= 0) return;
  {
    const Guard guard(s.lock);
    s.wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    s.dropped = s.signalled = false;
    if (!s.waiting.empty()) Wake();
  }
  if (s.wake >= 0) AddWaitSource(kSource);
}

void FinishResults() {
  DropResults();
  Results& s = State();
  if (s.wake >= 0) RemoveWaitSource(kSource);
  const Guard guard(s.lock);
  if (s.wake >= 0) close(s.wake);
  s.wake = -1;
  s.dropped = s.signalled = s.keep_all = false;
  woke = false;
  waiting_since = -1;
  replay = ReplayState();
}

}  // namespace platform
