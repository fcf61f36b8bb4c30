// A job that another thread does ahead, until somebody needs what it makes.
#pragma once
#include <pthread.h>
#include <sched.h>

#include <atomic>

namespace platform {

// One for the life of the process. Only one thread calls it; what the job works with is left alone
// from Begin to Finish or Drop.
class AheadJob {
 public:
  constexpr explicit AheadJob(void (*work)()) : work_(work) {}
  AheadJob(const AheadJob&) = delete;
  AheadJob& operator=(const AheadJob&) = delete;

  // False where there is no thread for it, or no second processor.
  bool Begin() {
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) != 0 || CPU_COUNT(&processors) < 2)
      return false;
    pthread_attr_t detached;
    pthread_attr_init(&detached);
    pthread_attr_setdetachstate(&detached, PTHREAD_CREATE_DETACHED);
    state_ = kBegun;
    pthread_t thread;
    const bool created = pthread_create(&thread, &detached, Run, this) == 0;
    pthread_attr_destroy(&detached);
    if (!created) state_ = kNone;
    return created;
  }
  bool begun() const { return state_ != kNone; }
  // Waits until a job that has begun is done. On a busy machine the thread may not have come to it:
  // then the caller does the job, and the thread ends when its turn comes.
  void Finish() {
    if (Take())
      work_();
    else
      state_.wait(kRuns);
    state_ = kNone;
  }
  // The job need not be done any more; waits only where the thread is at it.
  void Drop() {
    if (!Take()) state_.wait(kRuns);
    state_ = kNone;
  }

 private:
  enum State { kNone, kBegun, kRuns, kDone };

  bool Take() {
    State begun = kBegun;
    return state_.compare_exchange_strong(begun, kRuns);
  }
  static void* Run(void* job) {
    AheadJob* const j = static_cast<AheadJob*>(job);
    if (!j->Take()) return nullptr;
    j->work_();
    j->state_ = kDone;
    j->state_.notify_one();
    return nullptr;
  }

  void (*const work_)();
  std::atomic<State> state_ = kNone;
};

}  // namespace platform
