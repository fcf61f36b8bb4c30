// Stands before the file system: who reads what "hangs" waits here until it opens.
#pragma once
#include <condition_variable>
#include <mutex>

namespace console {

struct Gate {
  std::mutex lock;
  std::condition_variable opened;
  bool open = false;
  int waiting = 0;

  void Pass() {
    std::unique_lock<std::mutex> guard(lock);
    ++waiting;
    opened.wait(guard, [this] { return open; });
    --waiting;
  }
  // Only when nobody waits.
  void Close() {
    const std::lock_guard<std::mutex> guard(lock);
    open = false;
  }
  void Open() {
    const std::lock_guard<std::mutex> guard(lock);
    open = true;
    opened.notify_all();
  }
  int Waiting() {
    const std::lock_guard<std::mutex> guard(lock);
    return waiting;
  }
};

}  // namespace console
