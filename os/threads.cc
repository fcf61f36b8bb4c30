// Threads by number, recursive mutexes, sleep.
#include <errno.h>
#include <time.h>

#include <mutex>
#include <vector>

#include "os/os.h"

namespace {

enum class State { kFree, kStarting, kRunning, kWaitedFor };

struct Slot {
  State state = State::kFree;
  pthread_t thread = {};
};

// All threads that have not been given back. Slot i is handle i + 1. Kept until the process ends.
struct ThreadTable {
  std::mutex lock;
  std::vector<Slot> slots;
};

ThreadTable& Table() {
  static auto* table = new ThreadTable;
  return *table;
}

size_t TakeSlot() {
  ThreadTable& table = Table();
  const std::lock_guard<std::mutex> guard(table.lock);
  size_t i = 0;
  while (i < table.slots.size() && table.slots[i].state != State::kFree) ++i;
  if (i == table.slots.size()) table.slots.emplace_back();
  table.slots[i].state = State::kStarting;
  return i;
}

void SetSlot(size_t i, Slot slot) {
  ThreadTable& table = Table();
  const std::lock_guard<std::mutex> guard(table.lock);
  table.slots[i] = slot;
}

// Claim the thread for waiting; false if the number is no running thread's or the caller's own.
bool ClaimForWait(int handle, pthread_t* thread) {
  ThreadTable& table = Table();
  const std::lock_guard<std::mutex> guard(table.lock);
  if (handle < 1 || static_cast<size_t>(handle) > table.slots.size()) return false;
  Slot& slot = table.slots[handle - 1];
  if (slot.state != State::kRunning || pthread_equal(slot.thread, pthread_self())) return false;
  slot.state = State::kWaitedFor;
  *thread = slot.thread;
  return true;
}

}  // namespace

extern "C" {

int OS_StartThread(void* (*func)(void*), void* arg) {
  if (!func) return -1;
  const size_t slot = TakeSlot();
  pthread_t thread;
  if (pthread_create(&thread, nullptr, func, arg) != 0) {
    SetSlot(slot, {});
    return -1;
  }
  SetSlot(slot, {State::kRunning, thread});
  return static_cast<int>(slot) + 1;
}

void OS_EndThread(int value) {
  static_cast<void>(value);
  pthread_exit(nullptr);
}

int OS_WaitThread(int thread) {
  pthread_t id;
  if (!ClaimForWait(thread, &id)) return 0;
  pthread_join(id, nullptr);
  SetSlot(thread - 1, {});
  return 0;
}

int OS_CreateMutex(pthread_mutex_t* m) {
  pthread_mutexattr_t attributes;
  if (!m || pthread_mutexattr_init(&attributes) != 0) return 0;
  const bool made = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                    pthread_mutex_init(m, &attributes) == 0;
  pthread_mutexattr_destroy(&attributes);
  return made;
}

int OS_ReserveMutex(pthread_mutex_t* m) {
  return m ? pthread_mutex_lock(m) : EINVAL;
}

int OS_ReleaseMutex(pthread_mutex_t* m) {
  return m ? pthread_mutex_unlock(m) : EINVAL;
}

int OS_DestroyMutex(pthread_mutex_t* m) {
  return m ? pthread_mutex_destroy(m) : EINVAL;
}

void OS_Sleep(int ms) {
  if (ms <= 0) return;
  timespec left = {ms / 1000, (ms % 1000) * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

}  // extern "C"
