// Work that may hang, such as on a folder of a mount that does not answer, on a thread of its own.
//
// Any thread may start one. Waiting is bounded by the caller. A task that is dropped while it runs
// goes on by itself, and its thread is joined after it has ended; so the work owns what it touches.
#pragma once
#include <functional>
#include <memory>

namespace console {

class BackgroundTask {
 public:
  // None: neither running nor done.
  BackgroundTask() = default;
  // Starts it. Where no thread can be had, or too many hang already, it has failed at once.
  explicit BackgroundTask(std::function<void()> work);
  ~BackgroundTask() { Drop(); }
  BackgroundTask(BackgroundTask&& other) noexcept = default;
  BackgroundTask& operator=(BackgroundTask&& other) noexcept;

  bool started() const { return state_ != nullptr; }
  bool failed() const;
  // It has ended, or failed: what it did can be read.
  bool Done() const;
  // The same after at most that many milliseconds.
  bool WaitFor(int ms) const;
  // Leaves it alone: afterwards there is none.
  void Drop();

  // Gives those that were dropped so many milliseconds to end, all together. How many still run.
  static int WaitForAll(int ms);

 private:
  struct State;
  struct Dropped;
  static Dropped& TheDropped();
  static void* Run(void* state);
  std::shared_ptr<State> state_;
};

}  // namespace console
