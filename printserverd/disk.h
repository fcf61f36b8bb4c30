// The disk's own thread. What may wait for the disk is done there, one piece after another, so
// that a slow disk holds up only those who want something stored.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "printserverd/folder.h"

namespace printserverd {

// The system is set to write a large file each time that so many bytes have come, so that the sync
// at its end is short.
constexpr int64_t kFlushEach = 8 << 20;

class Disk {
 public:
  using Call = std::function<void()>;

  Disk() = default;
  // Finishes every piece of work that was asked for; calls no `done` any more.
  ~Disk();

  // As the destructor, but waits `ms` at most. False when the thread is still at work then: it
  // cannot be ended, only the process can.
  bool Finish(int64_t ms);

  // Pieces of work that are not done yet.
  size_t Pending();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  // Starts the thread. False with errno.
  bool Start();

  // Has `work` done on the disk's thread, in the order of the calls, and then `done` called by
  // RunDone. `work` may use nothing that other threads change.
  void Do(Call work, Call done = nullptr);

  // Can be read when something is done.
  int fd() const { return ready_.get(); }
  // Calls `done` of all work that is done.
  void RunDone();

 private:
  struct Piece {
    Call work, done;
  };
  void Serve();

  Fd ready_;  // an eventfd
  std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable end_;
  std::deque<Piece> wanted_;  // from here on under the mutex
  std::vector<Call> done_;
  bool busy_ = false;
  bool ending_ = false;
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace printserverd
