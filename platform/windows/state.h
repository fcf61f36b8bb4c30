// The state of this room, and what its files share.
#pragma once
#include <string>
#include <vector>

#include "platform/windows/internal.h"

namespace platform {

struct WindowsState {
  std::vector<WindowRef> list;  // front first
  std::vector<WindowGroup*> groups;
  WindowRef menu_bar = nullptr;
  bool menu_bar_given = false;
  bool held = false;                 // shown windows are kept from the screen
  WindowRef dragged_over = nullptr;  // knows of files over it; the end of their drag is to come
  unsigned made = 0;                 // windows
  std::vector<DeviceRect> rects;     // memory of the last present
  struct {
    WindowRef focused = nullptr;
    bool known = false;         // the display has said where the focus is
    bool posted = false;        // what the handlers have been told
    WindowRef asked = nullptr;  // the program has asked for the focus of this window
    double asked_at = 0;
  } activation;
};

WindowsState& Windows();

// Makes the native window of a new record. Null, and the record is gone, when the display refuses.
WindowRef EnterWindow(Window* w);
// The pop-ups of a window; null: all.
std::vector<WindowRef> PopUpsOf(const Window* parent);
// Their parent, or the screen, has changed.
void PlacePopUps(const Window* parent);
// The display reports other bounds.
OSStatus TakeReportedBounds(HandlerCall* call, Event* event, void* user_data);
// The window under a pointer that moves freely chooses its cursor.
OSStatus ChooseCursor(HandlerCall* call, Event* event, void* user_data);
// Notes that the program asks for the input focus, so that getting it does not count as an action
// of the desktop.
void NoteFocusRequest(WindowRef w);
// Tells the display the colour of the window's background, where that has changed.
void ShowBackdrop(WindowRef w);
// Asks the handlers to draw what surrounds the content.
void DrawFrame(WindowRef w);

}  // namespace platform
