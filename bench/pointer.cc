// What a motion of the pointer costs on its way to a handler: through 200 hit boxes, through
// sub-windows and grabs; and how long after the report it arrives.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "platform/display/headless/headless.h"
#include "toolkit/xw.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kMotions = 20000, kRounds = 15, kBoxes = 200;

int64_t seen;
Clock::time_point arrived;

int Handle(int type) {
  if (type != XWE_MOTION) return type == 1001;
  arrived = Clock::now();
  seen += Inp.item;
  return 1;  // ends the wait
}

XwWindow *plain, *boxed;

// Nanoseconds a motion over `w`, moving between two places.
double Cost(int x, int y) {
  std::vector<double> rounds;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = Clock::now();
    for (int i = 0; i < kMotions; ++i) {
      platform::headless::MovePointer(x + (i & 7), y);
      XwWaitEvent(nullptr);
    }
    rounds.push_back(std::chrono::duration<double>(Clock::now() - start).count());
  }
  std::nth_element(rounds.begin(), rounds.begin() + kRounds / 2, rounds.end());
  return rounds[kRounds / 2] / kMotions * 1e9;
}

struct Latency {
  double median, worst;
};
Latency Latencies(int x, int y) {
  std::vector<double> all;
  for (int i = 0; i < kMotions; ++i) {
    platform::headless::MovePointer(x + (i & 7), y);
    const auto start = Clock::now();
    XwWaitEvent(nullptr);
    all.push_back(std::chrono::duration<double>(arrived - start).count() * 1e9);
  }
  std::sort(all.begin(), all.end());
  return {all[all.size() / 2], all[all.size() * 99 / 100]};
}

void FillBoxes(XwWindow* w) {
  XwSet(w);
  XwBoxList(3, 0, 0, 0, 0);
  for (int i = 0; i < kBoxes; ++i) XwBoxList(10 + i, i % 20 * 10, 20 + i / 20 * 10, 9, 9);
  XwBoxList(4, 0, 0, 0, 0);
  XwSet(nullptr);
}

}  // namespace

int main() {
  setenv("XW_DISPLAY", "headless", 1);
  XwSession("pointer", "Pointer", 7);
  plain = XwCreate(-255, 100, 100, 600, 300, Handle);
  XwShow(plain, 1);
  boxed = XwCreate(plain, 300, 0, 250, 250, Handle);
  XwShow(boxed, 1);
  FillBoxes(boxed);
  XwSendEvent(plain, 1001, 0, 0, 0);
  XwWaitEvent(nullptr);
  double bare = Cost(120, 150);
  // Above all boxes, so that each is looked at.
  double boxes = Cost(410, 110);
  XwGrabPointer(boxed, 7);
  double grabbed = Cost(410, 110);
  XwUngrabPointer();
  Latency latency = Latencies(410, 110);
  printf("a motion: %.0f ns; through a sub-window and %d boxes %.0f ns; grabbed %.0f ns\n", bare,
         kBoxes, boxes, grabbed);
  printf("from report to handler: median %.0f ns, 99 of 100 within %.0f ns\n", latency.median,
         latency.worst);
  printf("pointer motion_ns=%.0f boxes_ns=%.0f grab_ns=%.0f latency_ns=%.0f latency_99_ns=%.0f\n",
         bare, boxes, grabbed, latency.median, latency.worst);
  return seen < 0;
}
