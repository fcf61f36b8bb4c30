#include "toolkit/core/state.h"

#include <algorithm>
#include <iterator>

#include "toolkit/core/hooks.h"

const char* SessionName;
const char* SessionTitle;
int32_t OSversion;
int32_t XW_SCREENX, XW_SCREENY;
double XW_SCREENRES;
int32_t CL_HILIGHT, CL_HILIGHTTEXT;
void* MainQueue;
void* MainTarget;
void* XW_ColorSpace;
void* TextMeasContext;
void* Pserial;
void* XW_DockedWindowsGroup;
float TextCTM[6];
XwFont *XWF_NORMAL, *XWF_BOLD, *XWF_NARROW, *XWF_VIEW;
XwFont *FT_SMALL, *FT_BUTTON, *FT_ALERT;

XwEvent Inp;
XwTimerSlot Timers[kTimerSlots];
XwWindow* GrabWindow;
bool PassiveGrab, ActiveGrab;
XwCursor* GrabCursor;
XwCursor* XWcursors[XW_CURSORS];
bool AppActive;
uint8_t KeyState[kKeyCodes];

XwWindow* W_Root;
XwWindow* W_Start;
XwWindow* W_End;
XwWindow* W_MenuBar;
XwWindow* XW;
XwWindow* XStack[kStackDepth];
int32_t XStackCount;
int16_t blpx, blpy, bllx, blly;

void (*install_event_handlers)(XwWindow* w);

int32_t DashCount;
float DashOffset;
float DashCol1[4], DashCol2[4];
float DashArray1[128];

namespace toolkit {

constinit State state;

namespace {

template <typename... T>
void Clear(T&... globals) {
  ((globals = T{}), ...);
}
template <typename T, size_t N>
void ClearTable(T (&table)[N]) {
  std::fill(std::begin(table), std::end(table), T{});
}

}  // namespace

void ResetState() {
  state = State{};
  Clear(SessionName, SessionTitle, OSversion, XW_SCREENX, XW_SCREENY, XW_SCREENRES, CL_HILIGHT,
        CL_HILIGHTTEXT, MainQueue, MainTarget, XW_ColorSpace, TextMeasContext, Pserial,
        XW_DockedWindowsGroup);
  ClearTable(TextCTM);
  Clear(XWF_NORMAL, XWF_BOLD, XWF_NARROW, XWF_VIEW, FT_SMALL, FT_BUTTON, FT_ALERT);
  Clear(Inp, GrabWindow, PassiveGrab, ActiveGrab, GrabCursor, AppActive);
  ClearTable(Timers);
  ClearTable(XWcursors);
  ClearTable(KeyState);
  Clear(W_Root, W_Start, W_End, W_MenuBar, XW, XStackCount, blpx, blpy, bllx, blly);
  ClearTable(XStack);
  Clear(DashCount, DashOffset, install_event_handlers);
  ClearTable(DashCol1);
  ClearTable(DashCol2);
  ClearTable(DashArray1);
}

}  // namespace toolkit
