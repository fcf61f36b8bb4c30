// What controls cost, 10 to 10,000 of them in one window that has room for all: making them,
// showing the window, drawing it again, giving each another value, ending them. Buttons and check
// boxes take turns.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "toolkit/xw.h"

namespace {

constexpr int kCounts[] = {10, 100, 1000, 10000};
constexpr int kRounds = 11;
constexpr int kColumns = 80, kCellWidth = 80, kCellHeight = 26;
constexpr uint32_t kStyle = XWC_ENABLED | XWC_VISIBLE;
constexpr int kComplete = 9999;  // the type that says that a window is drawn

int Handle(int type) {
  if (type == XWE_EXPOSE) XwSendEvent(Inp.window, kComplete, 0, 0, 0);
  return type == kComplete ? type : 0;
}

enum Step { kMade, kShown, kDrawn, kChanged, kEnded, kAll, kSteps };
constexpr const char* kNames[] = {"made", "shown", "shown again", "changed", "ended", "all"};
struct Times {
  double seconds[kSteps];
};

double Now() {
  using Clock = std::chrono::steady_clock;
  return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

std::vector<XwWindow*> Make(XwWindow* window, int count) {
  std::vector<XwWindow*> all;
  for (int i = 0; i < count; ++i) {
    const int x = i % kColumns * kCellWidth, y = i / kColumns * kCellHeight;
    all.push_back(i % 2 ? XwCheckBox(window, "Print", i + 1, x + 4, y + 2, kStyle, 0)
                        : XwButton(window, "Print", i + 1, x, y, kCellWidth, kCellHeight,
                                   kStyle | XWC_VARIANT, 0));
  }
  return all;
}

void Show(XwWindow* window) {
  XwShow(window, 1);
  while (XwWaitEvent(nullptr) != kComplete) {
  }
  XwSync();
}

Times Round(int count) {
  Times t;
  const int columns = std::min(count, kColumns), rows = (count + kColumns - 1) / kColumns;
  XwWindow* window = XwCreate(-255, 0, 0, columns * kCellWidth, rows * kCellHeight, Handle);
  double last = Now();
  const double start = last;
  auto lap = [&] {
    const double now = Now();
    return now - std::exchange(last, now);
  };
  const std::vector<XwWindow*> controls = Make(window, count);
  t.seconds[kMade] = lap();
  Show(window);
  t.seconds[kShown] = lap();
  XwShow(window, 0);
  Show(window);
  t.seconds[kDrawn] = lap();
  for (XwWindow* c : controls) XwSetValue(c, 1);
  XwSync();
  t.seconds[kChanged] = lap();
  XwDestroy(window);
  t.seconds[kEnded] = lap();
  t.seconds[kAll] = last - start;
  return t;
}

// Runs in a new process, since memory costs most when it is first touched.
Times RoundApart(int count) {
  Times t{};
  int ends[2];
  if (pipe(ends) != 0) exit(1);
  const pid_t child = fork();
  if (child == 0) {
    t = Round(count);
    _exit(write(ends[1], &t, sizeof t) == sizeof t ? 0 : 1);
  }
  close(ends[1]);
  if (read(ends[0], &t, sizeof t) != sizeof t) exit(1);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return t;
}

Times Medians(const std::vector<Times>& rounds) {
  Times m{};
  for (int step = 0; step < kSteps; ++step) {
    std::vector<double> values;
    for (const Times& t : rounds) values.push_back(t.seconds[step]);
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    m.seconds[step] = values[values.size() / 2];
  }
  return m;
}

}  // namespace

int main() {
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_SCREEN", "8192x4096", 1);
  XwSession("controls", "Controls", 7);
  XwCreate(-255, 100, 100, 300, 200, Handle);
  Round(10);  // opens the fonts
  std::vector<Times> rounds[std::size(kCounts)];
  for (int round = 0; round < kRounds; ++round)
    for (size_t i = 0; i < std::size(kCounts); ++i) rounds[i].push_back(RoundApart(kCounts[i]));
  Times medians[std::size(kCounts)];
  printf("milliseconds");
  for (const char* name : kNames) printf("%14s", name);
  for (size_t i = 0; i < std::size(kCounts); ++i) {
    medians[i] = Medians(rounds[i]);
    printf("\n%12d", kCounts[i]);
    for (double s : medians[i].seconds) printf("%14.3f", s * 1e3);
  }
  const Times &few = medians[2], &many = medians[3];
  printf("\ncontrols growth_ratio=%.2f ms=%.1f\n", many.seconds[kAll] / few.seconds[kAll],
         many.seconds[kAll] * 1e3);
  return 0;
}
