// Streams of a display's reports, with windows that come and go between them. After each stream no
// pointer of the toolkit may name a window that has ended, and everything that waits is handled.
#include <cstdlib>
#include <cstring>

#include "platform/display/headless/headless.h"
#include "platform/events/raw_event.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/state.h"
#include "toolkit/xw.h"

namespace {

namespace input = platform::headless;
using platform::RawEvent;

struct Bytes {
  const uint8_t* at;
  size_t left;
  uint8_t Next() {
    if (!left) return 0;
    --left;
    return *at++;
  }
  template <typename T>
  T Take() {
    T value{};
    uint8_t raw[sizeof(T)];
    for (uint8_t& b : raw) b = Next();
    memcpy(&value, raw, sizeof value);
    return value;
  }
};

constexpr int kWindows = 8;
XwWindow* windows[kWindows];
bool ended;

int Handle(int type) {
  // A redraw registers boxes, a close is obeyed, some presses start a grab.
  if (type == XWE_EXPOSE) {
    XwSet(Inp.window);
    XwBoxList(3, 0, 0, 0, 0);
    XwBoxList(9, 2, 2, 40, 40);
    XwSet(nullptr);
  } else if (type == XWE_CLOSE) {
    XwDestroy(Inp.window);
  } else if (type == XWE_PRESS + 1) {
    XwGrabPointer(Inp.window, 7);
  } else if (type == XWE_PRESS + 2) {
    XwUngrabPointer();
  }
  return 0;
}

bool Idle() {
  ended = true;
  XwEvent end = Inp;
  end.window = nullptr;
  end.type = 9999;
  PostEvent(end);
  return true;
}

void Replace(int i) {
  if (IsLive(windows[i])) XwDestroy(windows[i]);
  XwWindow* parent = windows[i / 2];
  if (i > 1 && IsLive(parent))
    windows[i] = i % 2 ? XwCreate(parent, 5, 5, 60, 60, Handle)
                       : XwCreateDocked(parent, 300, 50, 60, 60, Handle);
  else
    windows[i] = XwCreate(0, 50 + i * 100, 50, 120, 100, Handle);
  XwShow(windows[i], 1);
}

RawEvent Report(Bytes* in) {
  RawEvent raw;
  raw.type = RawEvent::Type(in->Next() % RawEvent::kDisplayLost);
  if (raw.type == RawEvent::kQuit) raw.type = RawEvent::kLost;
  XwWindow* w = windows[in->Next() % kWindows];
  raw.window = IsLive(w) ? NativeWindow(w) : nullptr;
  raw.button = in->Next();
  raw.tablet_type = in->Next() & 1;
  raw.tablet = in->Take<platform::TabletPoint>();
  for (float* f : {&raw.x, &raw.y, &raw.root_x, &raw.root_y, &raw.dx, &raw.dy})
    *f = in->Next() & 1 ? in->Take<float>() : float(in->Take<int16_t>() % 600);
  raw.width = in->Take<int16_t>() % 700;
  raw.height = in->Take<int16_t>() % 700;
  raw.modifiers = in->Take<uint16_t>();
  raw.keysym = in->Take<uint16_t>();
  raw.base_keysym = in->Next();
  raw.unicode = in->Take<uint16_t>();
  if (raw.type == RawEvent::kOpenFile) raw.text = "/a";
  return raw;
}

void Require(bool holds) {
  if (!holds) abort();
}

void Check() {
  for (XwWindow* w : {Inp.window, Inp.focus, GrabWindow, XW}) Require(!w || IsLive(w));
  Require(XStackCount == 0);
  for (XwWindow* w = W_Start; w; w = w->next) Require(w == W_Start || IsLive(w));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static bool open = false;
  if (!open) {
    open = true;
    setenv("XW_DISPLAY", "headless", 1);
    input::UseSteppedClock(1000);
    input::SetIdleHandler(Idle);
    XwSession("fuzz", "Fuzz", 7);
  }
  Bytes in{data, size};
  for (int i = 0; i < kWindows; ++i) Replace(i);
  while (in.left) {
    const uint8_t what = in.Next();
    if (what % 8 == 0) Replace(what / 8 % kWindows);
    if (what % 8 == 1) input::Step(in.Next() / 1000.0);
    input::Inject(Report(&in));
    if (what & 64) {
      ended = false;
      while (!ended) XwWaitEvent(nullptr);
    }
  }
  ended = false;
  while (!ended) XwWaitEvent(nullptr);
  Check();
  XwUngrabPointer();
  input::Focus(nullptr);
  return 0;
}
