// Results of background tasks, on their way to the main thread. Record and replay match them here.
//
// Of each kind one waits at most: a newer one takes its place. A replay keeps them all, so that a
// state that the recording took up is still there when its line comes.
//
// A kind that begins with a dot is decoration: it is not recorded, and a replay takes it whenever
// it comes. How long a preview takes must hold up no replay, and nothing depends on it.
#pragma once
#include <atomic>

namespace platform {

// `taken` 1: the result is the main thread's now. 0: nobody will take it any more.
using TakeResult = void (*)(void* data, int taken);

// Any thread, and before the start too. `kind` is one word; results are compared by `detail`, one
// line, where both have one (null and "": none). A result that it replaces ends on this thread. No
// kind, and after DropResults: this one ends at once. Null `take`: nothing happens.
void PostResult(const char* kind, const char* detail, TakeResult take, void* data);

extern std::atomic<bool> results_wait;
inline bool ResultsWait() {
  return results_wait.load(std::memory_order_relaxed);
}
// Takes the one that is next, when no event waits before it. False when none is to be taken now.
bool TakeNextResult();
// True once after some came, so that a wait for events looks at the results again.
bool ResultsWoke();
// Ends those that wait, and from now on all that come.
void DropResults();

void InitResults();
// Also ends those that wait.
void FinishResults();

// --- For record and replay.
struct RecordLine;
// A replay begins or ends.
void KeepResults(bool all);
// The replay has waited for the result of this line for `waited` seconds; the line before it is of
// the time `before`. True when it goes on without it.
bool ShouldSkipResult(const RecordLine& line, double before, double waited);

}  // namespace platform
