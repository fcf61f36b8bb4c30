#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "os/os.h"

namespace {

std::atomic<int> started{0};

void* Count(void*) {
  ++started;
  return nullptr;
}

void* CountAndEnd(void*) {
  ++started;
  OS_EndThread(42);
}

struct Own {
  std::atomic<int> handle{0};
  std::atomic<bool> tried{false}, ended{false};
};

void* WaitForItself(void* arg) {
  auto* own = static_cast<Own*>(arg);
  while (own->handle == 0) OS_Sleep(1);
  OS_WaitThread(own->handle);
  own->tried = true;
  OS_Sleep(20);
  own->ended = true;
  return nullptr;
}

TEST(Threads, HandlesCountFromOneAndAreUsedAgain) {
  const int first = OS_StartThread(Count, nullptr);
  const int second = OS_StartThread(CountAndEnd, nullptr);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 2);
  // What is no thread's, is no longer, and is the caller's own: all return at once.
  for (int handle : {first, first, -1, 0, 99, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(OS_WaitThread(handle), 0);
  }
  Own own;
  own.handle = OS_StartThread(WaitForItself, &own);
  EXPECT_EQ(own.handle, 1);
  while (!own.tried) OS_Sleep(1);
  EXPECT_EQ(OS_WaitThread(own.handle), 0);
  EXPECT_TRUE(own.ended);
  EXPECT_EQ(OS_WaitThread(second), 0);
  EXPECT_EQ(started, 2);
  EXPECT_EQ(OS_StartThread(nullptr, nullptr), -1);
}

struct Shared {
  pthread_mutex_t mutex;
  int value = 0;
};

void* AddMany(void* arg) {
  auto* shared = static_cast<Shared*>(arg);
  for (int i = 0; i < 1000; ++i) {
    OS_ReserveMutex(&shared->mutex);
    OS_ReserveMutex(&shared->mutex);
    ++shared->value;
    OS_ReleaseMutex(&shared->mutex);
    OS_ReleaseMutex(&shared->mutex);
  }
  return nullptr;
}

TEST(Threads, ManyAtOnceStartedFromManyThreads) {
  Shared shared;
  ASSERT_EQ(OS_CreateMutex(&shared.mutex), 1);
  std::vector<std::thread> starters;
  for (int s = 0; s < 4; ++s) {
    starters.emplace_back([&shared] {
      std::vector<int> handles;
      for (int i = 0; i < 8; ++i) handles.push_back(OS_StartThread(AddMany, &shared));
      for (int handle : handles) OS_WaitThread(handle);
    });
  }
  for (std::thread& starter : starters) starter.join();
  EXPECT_EQ(shared.value, 4 * 8 * 1000);
  EXPECT_EQ(OS_DestroyMutex(&shared.mutex), 0);
}

TEST(Mutex, IsReleasedAsOftenAsReserved) {
  pthread_mutex_t mutex;
  ASSERT_EQ(OS_CreateMutex(&mutex), 1);
  EXPECT_EQ(OS_ReserveMutex(&mutex) + OS_ReserveMutex(&mutex) + OS_ReleaseMutex(&mutex), 0);
  std::thread([&] { EXPECT_EQ(pthread_mutex_trylock(&mutex), EBUSY); }).join();
  EXPECT_EQ(OS_ReleaseMutex(&mutex) + OS_DestroyMutex(&mutex), 0);
  EXPECT_EQ(OS_CreateMutex(nullptr), 0);
  for (auto call : {OS_ReserveMutex, OS_ReleaseMutex, OS_DestroyMutex}) {
    EXPECT_EQ(call(nullptr), EINVAL);
  }
}

TEST(Sleep, LastsThroughSignalsAndNotForNothing) {
  signal(SIGALRM, [](int) {});
  const itimerval every = {{0, 2000}, {0, 2000}}, never = {};
  setitimer(ITIMER_REAL, &every, nullptr);
  const auto start = std::chrono::steady_clock::now();
  OS_Sleep(60);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
  setitimer(ITIMER_REAL, &never, nullptr);
  OS_Sleep(0);
  OS_Sleep(-1000000);
}

TEST(DebugLog, WritesWhatPrintfWould) {
  testing::internal::CaptureStdout();
  DBG_open();
  DBG_printf("%s=%d\n", "a", 7);
  DBG_printf("no end");
  DBG_printf(nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "a=7\nno end");
}

}  // namespace
