// From the choice of a menu to its first complete frame on the screen: a menu of 30 items with two
// levels, beside a bare client that maps a window of the same size, grabs the pointer and puts the
// same number of pixels, filled by a loop. Each round is answered by the server.
//   menus [rounds]
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "bench/clock.h"
#include "bench/on_x.h"
#include "platform/display/display.h"
#include "platform/display/screens.h"
#include "platform/events/event.h"
#include "platform/loop/receive.h"
#include "platform/menus/menus.h"
#include "platform/windows/internal.h"
#include "platform/windows/windows.h"

namespace {

using namespace platform;

constexpr int kItems = 30;
xcb_connection_t* bare;  // asks the server, too, whether all before has been carried out

void Wait() {
  free(xcb_get_input_focus_reply(bare, xcb_get_input_focus(bare), nullptr));
}

MenuRef MakeMenu(int id, MenuRef sub) {
  MenuRef m = CreateNewMenu(id);
  for (int i = 1; i <= kItems; ++i) {
    AppendMenuItemText(m, ("Item number " + std::to_string(i)).c_str());
    if (i % 10 == 0) SetMenuItemHierarchicalMenu(m, i, sub);
    if (i % 7 == 0) CheckMenuItem(m, i, true);
  }
  return m;
}

// A pop-up as little as it can be.
struct Bare {
  xcb_screen_t* screen;
  xcb_gcontext_t gc;
  xcb_shm_seg_t segment;
  uint32_t* pixels;

  Bare() {
    bare = xcb_connect(nullptr, nullptr);
    screen = xcb_setup_roots_iterator(xcb_get_setup(bare)).data;
    gc = xcb_generate_id(bare);
    xcb_create_gc(bare, gc, screen->root, 0, nullptr);
    const int id = shmget(IPC_PRIVATE, size_t{1280} * 1024 * 4, IPC_CREAT | 0600);
    pixels = static_cast<uint32_t*>(shmat(id, nullptr, 0));
    segment = xcb_generate_id(bare);
    xcb_shm_attach(bare, segment, uint32_t(id), 1);
    Wait();
    shmctl(id, IPC_RMID, nullptr);
  }
  // The time of one opening.
  double Open(int width, int height) {
    const double start = Microseconds();
    const xcb_window_t w = xcb_generate_id(bare);
    const uint32_t values[] = {1, XCB_EVENT_MASK_EXPOSURE};
    xcb_create_window(bare, XCB_COPY_FROM_PARENT, w, screen->root, 40, 40, uint16_t(width),
                      uint16_t(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(bare, w);
    const auto grab = xcb_grab_pointer(bare, 0, w, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                                       XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    for (int i = 0; i < width * height; ++i) pixels[i] = 0xFFFEFEFD;
    xcb_shm_put_image(bare, w, gc, uint16_t(width), uint16_t(height), 0, 0, uint16_t(width),
                      uint16_t(height), 0, 0, 24, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment, 0);
    free(xcb_grab_pointer_reply(bare, grab, nullptr));
    Wait();
    const double time = Microseconds() - start;
    xcb_ungrab_pointer(bare, XCB_CURRENT_TIME);
    xcb_destroy_window(bare, w);
    for (xcb_generic_event_t* e; (e = xcb_poll_for_event(bare));) free(e);
    Wait();
    return time;
  }
};

// Opened, drawn, sent, and all of it carried out by the server; `bounds` becomes the menu's.
double OpenOurs(MenuRef menu, Rect* bounds) {
  const double start = Microseconds();
  if (!OpenPopUpMenu(menu, {40, 40}, 0)) return 0;
  FlushWindow(nullptr);  // which waits for the server
  const double time = Microseconds() - start;
  for (WindowRef w : WindowList())
    if (w->parent) *bounds = GetWindowBounds(w, kWindowContentRgn);
  CloseMenus();
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(10, atoi(argv[1])) : 400;
  pid_t server;
  if (!StartOnX("menus", &server)) return 1;
  WindowRef w = CreateNewWindow(kDocumentWindowClass, 0, {0, 24, 800, 900});
  ShowWindow(w);
  FlushWindow(w);
  MenuRef inner = MakeMenu(2, nullptr);
  MenuRef menu = MakeMenu(1, inner);
  Bare floor;
  Rect bounds;
  OpenOurs(menu, &bounds);  // fonts are read once
  std::vector<double> ours, bare_times;
  for (int i = 0; i < rounds; ++i) {
    Settle();
    ours.push_back(OpenOurs(menu, &bounds));
    Settle();
    bare_times.push_back(floor.Open(bounds.width(), bounds.height()));
  }
  printf("%d x %d: %.1f us  floor %.1f us\n", bounds.width(), bounds.height(), Median(ours),
         Median(bare_times));
  printf("menus first_frame_ratio=%.2f\n", Median(ours) / Median(bare_times));
  DisposeMenu(menu);
  DisposeMenu(inner);
  xcb_disconnect(bare);
  FinishOnX(server);
  return 0;
}
