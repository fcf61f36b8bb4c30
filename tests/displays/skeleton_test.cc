// The model of a display carries a program, and what the table allows to be null may be.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/display/display.h"
#include "platform/display/window.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"
#include "toolkit/core/record.h"
#include "toolkit/xw.h"

namespace platform {

extern const Display kSkeletonDisplay;
// In place of the list of the library: the skeleton is the only display here.
const Display* const kDisplays[] = {&kSkeletonDisplay, nullptr};

}  // namespace platform

namespace {

int exposed;

int Handle(int type) {
  if (type != XWE_EXPOSE) return type == XWE_TIMER ? type : 0;
  ++exposed;
  XwSet(Inp.window);
  XwBox(0, 0, Inp.window->width, Inp.window->height, 0x0000FF);
  return 0;
}

TEST(Skeleton, CarriesAProgram) {
  unsetenv("XW_DISPLAY");
  setenv("HOME", "/", 1);
  XwSession("skeleton", "Skeleton", 7);
  EXPECT_EQ(XW_SCREENX, 1024);
  XwWindow* w = XwCreate(0, 100, 100, 200, 100, Handle);
  ASSERT_NE(w, nullptr);
  XwShow(w, 1);
  XwSetFocus(w);
  XwGrabPointer(w, 2);
  XwUngrabPointer();
  XwSetCursor(w, 16);
  XwBeep();
  XwTimer(w, 1, 20);
  EXPECT_EQ(XwWaitEvent(nullptr), XWE_TIMER);
  EXPECT_EQ(exposed, 1);
  XwMove(w, 50, 60, 250, 150);
  EXPECT_EQ(XwWaitEvent(nullptr), XWE_TIMER);
  EXPECT_EQ(exposed, 2);
  const platform::Surface& surface = NativeWindow(w)->surface;
  ASSERT_EQ(surface.width, 250);
  EXPECT_EQ(surface.pixels[size_t(surface.height - 1) * size_t(surface.stride) + 249] & 0xFFFFFF,
            0xFF0000u);
  XwDestroy(w);
  XwEndSession();
  platform::FinishPlatform();
}

}  // namespace
