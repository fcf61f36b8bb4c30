#include "printserverd/disk.h"

#include <signal.h>
#include <sys/eventfd.h>

#include <chrono>
#include <system_error>

namespace printserverd {

Disk::~Disk() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

bool Disk::Finish(int64_t ms) {
  if (!thread_.joinable()) return true;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    ending_ = true;
    wake_.notify_one();
    if (!end_.wait_for(lock, std::chrono::milliseconds(ms), [this] { return ended_; })) {
      return false;
    }
  }
  thread_.join();
  return true;
}

size_t Disk::Pending() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return wanted_.size() + (busy_ ? 1 : 0) + done_.size();
}

bool Disk::Start() {
  ready_ = Fd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
  if (!ready_) return false;
  // Signals are the main thread's.
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  int error = 0;
  try {
    thread_ = std::thread([this] { Serve(); });
  } catch (const std::system_error& failure) {
    error = failure.code().value();
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  return error == 0;
}

void Disk::Do(Call work, Call done) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    wanted_.push_back({std::move(work), std::move(done)});
  }
  wake_.notify_one();
}

void Disk::Serve() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return ending_ || !wanted_.empty(); });
    if (wanted_.empty()) break;
    Piece piece = std::move(wanted_.front());
    wanted_.pop_front();
    busy_ = true;
    lock.unlock();
    piece.work();
    piece.work = nullptr;  // what it holds goes here, not on the other thread
    lock.lock();
    busy_ = false;
    if (!piece.done) continue;
    done_.push_back(std::move(piece.done));
    if (done_.size() == 1) eventfd_write(ready_.get(), 1);
  }
  ended_ = true;
  end_.notify_all();
}

void Disk::RunDone() {
  eventfd_t count;
  eventfd_read(ready_.get(), &count);
  std::vector<Call> done;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    done.swap(done_);
  }
  for (const Call& call : done) call();
}

}  // namespace printserverd
