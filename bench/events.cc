// From posting an event to its handler, beside a bare ring of records that are copied to the heap.
// Headless; the same with the X display when there is one.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/display/headless/headless.h"
#include "toolkit/xw.h"

namespace {

constexpr int kEvents = 100000, kBurst = 64, kRounds = 31;

volatile int64_t handled;

int Handle(int type) {
  handled = handled + Inp.value;
  return type == 1001 ? 1 : 0;
}

double Seconds(void (*work)()) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
  return values[values.size() / 2];
}

// The floor: a ring of pointers, each record copied to the heap and back.
struct Ring {
  XwEvent* slots[256];
  unsigned head = 0, tail = 0;
};
Ring ring;
int (*volatile ring_handler)(int) = Handle;

void RingPost(int value) {
  auto* e = static_cast<XwEvent*>(malloc(sizeof(XwEvent)));
  *e = Inp;
  e->value = value;
  ring.slots[ring.tail++ & 255] = e;
}

void RunRing() {
  for (int i = 0; i < kEvents; i += kBurst) {
    for (int k = 0; k < kBurst; ++k) RingPost(k);
    while (ring.head != ring.tail) {
      XwEvent* e = ring.slots[ring.head++ & 255];
      Inp = *e;
      free(e);
      ring_handler(Inp.type);
    }
  }
}

XwWindow* window;

void RunToolkit() {
  for (int i = 0; i < kEvents; i += kBurst) {
    for (int k = 0; k < kBurst; ++k) XwSendEvent(window, k == kBurst - 1 ? 1001 : 1000, 0, k, 0);
    XwWaitEvent(nullptr);
  }
}

struct Figures {
  double ratio, million_per_second;
};

Figures Measure() {
  XwSession("events", "Events", 7);
  window = XwCreate(-255, 100, 100, 300, 200, Handle);
  XwShow(window, 1);
  while (XwPeekEvents(nullptr, 1)) {
  }
  std::vector<double> bare, own;
  for (int round = 0; round <= kRounds; ++round) {
    double a = Seconds(RunRing), b = Seconds(RunToolkit);
    if (round == 0) continue;
    bare.push_back(a);
    own.push_back(b);
  }
  double seconds = Median(own);
  printf("%s: %.1f ns an event, bare ring %.1f ns\n", getenv("XW_DISPLAY"), seconds / kEvents * 1e9,
         Median(bare) / kEvents * 1e9);
  fflush(stdout);
  return {seconds / Median(bare), kEvents / seconds / 1e6};
}

// A display of its own for each: a process has one session.
bool MeasureOn(const char* display, Figures* out) {
  int ends[2];
  if (pipe(ends) != 0) return false;
  fflush(stdout);
  pid_t child = fork();
  if (child == 0) {
    setenv("XW_DISPLAY", display, 1);
    Figures f = Measure();
    _exit(write(ends[1], &f, sizeof f) == sizeof f ? 0 : 1);
  }
  close(ends[1]);
  bool complete = read(ends[0], out, sizeof *out) == sizeof *out;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return complete;
}

}  // namespace

int main() {
  Figures headless{}, x11{};
  if (!MeasureOn("headless", &headless)) return 1;
  if (getenv("DISPLAY") && MeasureOn("x11", &x11))
    printf("on X11: ring_ratio %.2f, %.1f million a second\n", x11.ratio, x11.million_per_second);
  printf("events ring_ratio=%.2f million_per_second=%.1f\n", headless.ratio,
         headless.million_per_second);
  return 0;
}
