// From damage to the screen: the platform's way beside bare shared-memory puts of the same
// rectangles, on a server of its own, answered by the server each time.
//   present [rounds]
#include <fcntl.h>
#include <spawn.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "bench/on_x.h"
#include "platform/display/window.h"
#include "platform/graphics/surface.h"
#include "platform/windows/windows.h"

extern char** environ;

namespace {

using platform::DeviceRect;

constexpr int kWidth = 800, kHeight = 600;

struct Case {
  const char* name;
  DeviceRect rect;  // within the content
};
constexpr Case kCases[] = {
    {"caret", {100, 100, 102, 118}},
    {"row", {0, 200, 800, 220}},
    {"list", {20, 20, 420, 420}},
    {"all", {0, 0, 800, 600}},
};

double Microseconds() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) * 1e6 + double(t.tv_nsec) * 1e-3;
}

// A connection, a window and a segment, and nothing else.
struct Bare {
  xcb_connection_t* c = nullptr;
  xcb_window_t window = 0;
  xcb_gcontext_t gc = 0;
  xcb_shm_seg_t segment = 0;
  uint32_t* pixels = nullptr;

  void Open() {
    c = xcb_connect(nullptr, nullptr);
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, kWidth, kHeight, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, window, 0, nullptr);
    const int id = shmget(IPC_PRIVATE, size_t(kWidth) * kHeight * 4, IPC_CREAT | 0600);
    pixels = static_cast<uint32_t*>(shmat(id, nullptr, 0));
    segment = xcb_generate_id(c);
    xcb_shm_attach(c, segment, uint32_t(id), 1);
    xcb_map_window(c, window);
    Wait();
    shmctl(id, IPC_RMID, nullptr);
  }
  void Wait() { free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); }
  void Put(const DeviceRect& r) {
    xcb_shm_put_image(c, window, gc, kWidth, kHeight, uint16_t(r.left), uint16_t(r.top),
                      uint16_t(r.width()), uint16_t(r.height()), int16_t(r.left), int16_t(r.top),
                      24, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment, 0);
    Wait();
  }
  void Raise() {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(c, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    Wait();
  }
};

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

// The ratio of one case, both ways in turn. Each window is on top when it is measured: what is
// covered costs nothing to put.
double Measure(const Case& one, platform::WindowRef w, Bare* bare, int rounds) {
  std::vector<double> ours, floor;
  const int bar = w->menu_bar_height;
  for (int block = 0; block < 10; ++block) {
    bare->Raise();
    for (int i = 0; i < rounds / 10; ++i) {
      const double start = Microseconds();
      bare->Put(one.rect);
      floor.push_back(Microseconds() - start);
    }
    platform::SelectWindow(w);
    platform::FlushWindow(w);
    for (int i = 0; i < rounds / 10; ++i) {
      const double start = Microseconds();
      w->surface.damage.Mark(one.rect.left, one.rect.top + bar, one.rect.right,
                             one.rect.bottom + bar);
      platform::FlushWindow(w);
      ours.push_back(Microseconds() - start);
    }
  }
  printf("%-6s %8.1f us  floor %8.1f us  %.2f\n", one.name, Median(ours), Median(floor),
         Median(ours) / Median(floor));
  return Median(ours) / Median(floor);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(10, atoi(argv[1])) : 2000;
  pid_t server;
  if (!StartOnX("present", &server)) return 1;
  platform::WindowRef w =
      platform::CreateNewWindow(platform::kDocumentWindowClass, 0, {0, 24, kWidth, 24 + kHeight});
  platform::ShowWindow(w);
  platform::FlushWindow(w);
  Bare bare;
  bare.Open();
  double sum = 0;
  for (const Case& one : kCases) sum += Measure(one, w, &bare, rounds);
  printf("present ratio=%.2f\n", sum / double(std::size(kCases)));
  xcb_disconnect(bare.c);
  FinishOnX(server);
  return 0;
}
