#include "app/work/background_task.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "os/os.h"

namespace console {
namespace {

// Threads that hang at the same time: a caller that tries again and again gets a failure then.
constexpr size_t kMostDropped = 32;

}  // namespace

struct BackgroundTask::State {
  std::function<void()> work;
  int thread = -1;  // -1: it has none
  std::mutex lock;
  std::condition_variable ended;
  bool done = false;

  bool WaitFor(int ms) {
    std::unique_lock<std::mutex> guard(lock);
    return ended.wait_for(guard, std::chrono::milliseconds(ms), [this] { return done; });
  }
};

// Those that were dropped while they had a thread.
struct BackgroundTask::Dropped {
  std::mutex lock;
  std::vector<std::shared_ptr<State>> all;

  // Takes back the threads of those that have ended. How many still run.
  size_t Reap() {
    const std::lock_guard<std::mutex> guard(lock);
    std::erase_if(all, [](const std::shared_ptr<State>& s) {
      if (!s->WaitFor(0)) return false;
      OS_WaitThread(s->thread);
      return true;
    });
    return all.size();
  }
  void Add(std::shared_ptr<State> state) {
    const std::lock_guard<std::mutex> guard(lock);
    all.push_back(std::move(state));
  }
};

// Kept for the life of the process: a thread may hang beyond the session.
BackgroundTask::Dropped& BackgroundTask::TheDropped() {
  static auto* dropped = new Dropped;
  return *dropped;
}

void* BackgroundTask::Run(void* argument) {
  const std::unique_ptr<std::shared_ptr<State>> mine(
      static_cast<std::shared_ptr<State>*>(argument));
  State& state = **mine;
  state.work();
  state.work = nullptr;
  const std::lock_guard<std::mutex> guard(state.lock);
  state.done = true;
  state.ended.notify_all();
  return nullptr;
}

BackgroundTask::BackgroundTask(std::function<void()> work) : state_(std::make_shared<State>()) {
  state_->work = std::move(work);
  if (TheDropped().Reap() < kMostDropped) {
    auto* theirs = new std::shared_ptr<State>(state_);
    state_->thread = OS_StartThread(Run, theirs);
    if (state_->thread < 0) delete theirs;
  }
  if (state_->thread < 0) state_->done = true;
}

BackgroundTask& BackgroundTask::operator=(BackgroundTask&& other) noexcept {
  if (this == &other) return *this;
  Drop();
  state_ = std::move(other.state_);
  return *this;
}

bool BackgroundTask::failed() const {
  return state_ && state_->thread < 0;
}

bool BackgroundTask::Done() const {
  return WaitFor(0);
}

bool BackgroundTask::WaitFor(int ms) const {
  return state_ && state_->WaitFor(ms);
}

void BackgroundTask::Drop() {
  if (state_ && state_->thread >= 0) TheDropped().Add(std::move(state_));
  state_.reset();
  TheDropped().Reap();
}

int BackgroundTask::WaitForAll(int ms) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  std::vector<std::shared_ptr<State>> all;
  {
    const std::lock_guard<std::mutex> guard(TheDropped().lock);
    all = TheDropped().all;
  }
  for (const auto& s : all) {
    const auto left = end - std::chrono::steady_clock::now();
    s->WaitFor(
        std::max<int>(0, int(std::chrono::duration_cast<std::chrono::milliseconds>(left).count())));
  }
  return int(TheDropped().Reap());
}

}  // namespace console
