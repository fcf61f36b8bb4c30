// What the rooms of the platform know of windows beyond their record.
#pragma once
#include <vector>

#include "platform/display/window.h"
#include "platform/windows/windows.h"

namespace platform {

// All live windows, front first.
std::vector<WindowRef>& WindowList();
// Gives the surface the size of the content, keeps the old pixels, erases what is new.
void ResizeSurface(WindowRef w);
// Reads the display's screens and scale again, and adjusts the windows.
void ReadScreens();
// The display reports the window's scale, the widths of its frame in device pixels, and the bits of
// WindowState that the desktop decides.
void HandleScale(WindowRef w, double scale);
void HandleFrame(WindowRef w, const DeviceRect& widths);
void HandleState(WindowRef w, uint32_t state);
// The display reports focus: activation of windows and of the application follows.
void HandleFocus(WindowRef w, bool focused);
// Called after a batch of reports: if no window has got the focus by then, it is lost.
void UpdateActivation();
// The display reports files over the window, where they go from there, or that a drop failed. Of
// each drag the window hears one end, also when it begins to refuse files in the middle.
void HandleDrag(WindowRef w, const DragFields& drag);
// While they are held, windows that are shown do not come onto the screen.
void HoldWindows(bool held);
// The window that carries the menu bar; null when it is gone.
WindowRef MenuBarWindow();
// Shows all damage; called when the loop is about to wait and now and then before.
void PresentWindows();
// The redraw request that has waited longest, of those asked for before `asked_before`.
bool TakeDrawEvent(double asked_before, Event* out);
bool DrawEventWaits();

void InitWindows();
// Ends all windows.
void FinishWindows();

}  // namespace platform
