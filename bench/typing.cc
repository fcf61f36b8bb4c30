// From the report of a key to the picture of its character in an edit box, on the screen: beside a
// bare client that takes the key's event and puts one glyph of the same size. Keys come from the
// server (XTEST), and each round is answered by it.
//   typing [rounds]
#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "bench/clock.h"
#include "bench/on_x.h"
#include "platform/controls/edit_text.h"
#include "platform/display/display.h"
#include "platform/display/screens.h"
#include "platform/events/event.h"
#include "platform/loop/receive.h"
#include "platform/windows/internal.h"
#include "platform/windows/windows.h"

namespace {

using namespace platform;

constexpr int kBatch = 20;       // keys to one client, then to the other
constexpr uint8_t kKeyOfA = 38;  // in the server's default keymap
constexpr int kGlyph = 8, kRows = 12;

// The client that presses the keys, and a window that shows them as little as it can.
struct Bare {
  xcb_connection_t* c = xcb_connect(nullptr, nullptr);
  xcb_window_t window = xcb_generate_id(c), before = XCB_NONE;
  xcb_gcontext_t gc = xcb_generate_id(c);
  xcb_shm_seg_t segment = xcb_generate_id(c);
  uint32_t* pixels;
  int column = 0;

  Bare() {
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, 500, 40, 400, 40, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(c, window);
    xcb_create_gc(c, gc, window, 0, nullptr);
    const int id = shmget(IPC_PRIVATE, size_t{kGlyph} * kRows * 4, IPC_CREAT | 0600);
    pixels = static_cast<uint32_t*>(shmat(id, nullptr, 0));
    xcb_shm_attach(c, segment, uint32_t(id), 1);
    Wait();
    shmctl(id, IPC_RMID, nullptr);
  }
  void Wait() { free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); }
  void Key(bool press) {
    xcb_test_fake_input(c, press ? XCB_KEY_PRESS : XCB_KEY_RELEASE, kKeyOfA, XCB_CURRENT_TIME,
                        XCB_NONE, 0, 0, 0);
    xcb_flush(c);
  }
  void TakeFocus() {
    auto* focus = xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr);
    before = focus->focus;
    free(focus);
    Focus(window);
  }
  void Focus(xcb_window_t w) {
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_NONE, w, XCB_CURRENT_TIME);
    Wait();
  }
  static bool IsPress(xcb_generic_event_t* e) {
    const bool press = e && e->response_type == XCB_KEY_PRESS;
    free(e);
    return press;
  }
  double Type() {
    const double start = Microseconds();
    Key(true);
    while (!IsPress(xcb_wait_for_event(c))) {
    }
    for (int i = 0; i < kGlyph * kRows; ++i) pixels[i] = 0xFF000000u | uint32_t(i) * 0x020202;
    column = (column + kGlyph) % 392;
    xcb_shm_put_image(c, window, gc, kGlyph, kRows, 0, 0, kGlyph, kRows, int16_t(column), 10, 24,
                      XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment, 0);
    Wait();
    const double time = Microseconds() - start;
    Key(false);
    Wait();
    return time;
  }
};

double TypeOurs(Bare* keys, ControlRef box) {
  const std::string before = GetEditText(box);
  const double start = Microseconds();
  keys->Key(true);
  Event e;
  while (GetEditText(box) == before)
    if (ReceiveNextEvent(1, &e)) SendEventToEventTarget(&e, GetEventDispatcherTarget());
  FlushWindow(nullptr);  // which waits for the server
  const double time = Microseconds() - start;
  keys->Key(false);
  Settle();
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 25;
  pid_t server;
  if (!StartOnX("typing", &server)) return 1;
  WindowRef w = CreateNewWindow(kDocumentWindowClass, 0, {20, 40, 440, 240});
  ControlRef box = CreateEditTextControl(RootPane(w), {20, 20, 400, 44});
  ShowControl(box);
  ActivateControl(box);
  ShowWindow(w);
  SelectWindow(w);
  Settle();
  SetKeyboardFocus(w, box, kControlEditTextPart);
  Settle();
  Bare bare;
  std::vector<double> ours, floor;
  for (int round = -1; round < rounds; ++round) {  // the first reads fonts and keymaps
    Settle();
    SetEditText(box, "");
    for (int i = 0; i < kBatch; ++i) ours.push_back(TypeOurs(&bare, box));
    bare.TakeFocus();
    for (int i = 0; i < kBatch; ++i) floor.push_back(bare.Type());
    bare.Focus(bare.before);
    if (round < 0) ours.clear(), floor.clear();
  }
  printf("ours %.1f us  floor %.1f us\n", Median(ours), Median(floor));
  printf("typing latency_ratio=%.2f\n", Median(ours) / Median(floor));
  xcb_disconnect(bare.c);
  FinishOnX(server);
  return 0;
}
