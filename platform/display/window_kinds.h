// Kinds and attributes of windows, as programs name them.
#pragma once
#include "platform/base.h"

namespace platform {

// Content size limits and steps in logical pixels; maximum 0 means the screen's size, step 0 any
// size.
struct SizeLimits {
  int min_width = 0, min_height = 0, max_width = 0, max_height = 0, step_x = 0, step_y = 0;
};

enum WindowClass : int {
  kAlertWindowClass = 1,
  kModalWindowClass = 3,
  kFloatingWindowClass = 5,
  kDocumentWindowClass = 6,
  kToolbarWindowClass = 12,
  kPopUpWindowClass = 14,
  kSimpleWindowClass = 18,
};

enum WindowAttributes : uint32_t {
  kWindowCloseBoxAttribute = 1,
  kWindowFullZoomAttribute = 6,
  kWindowCollapseBoxAttribute = 8,
  kWindowResizableAttribute = 16,
  kWindowRefusesFilesAttribute = 32,  // that are dragged over it
  kWindowNoShadowAttribute = 0x200000,
  kWindowStandardHandlerAttribute = 0x2000000,
  kWindowInWindowMenuAttribute = 0x8000000,
  kWindowNoConstrainAttribute = 0x80000000u,
};

// No background colour.
constexpr uint32_t kNoColor = 0xFFFFFFFFu;

// True for a window that is alive: the one test of a handle.
bool IsValidWindow(const Window* w);

}  // namespace platform
