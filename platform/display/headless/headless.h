// The headless display: windows are memory images, input is injected by these functions, time can
// be stepped by hand, a snapshot is a PNG. For tests, recordings and machines without a screen.
//
// XW_SCALE sets the scale (device pixels per logical pixel, default 1), XW_SCREEN the screens from
// left to right, each as WIDTHxHEIGHT in device pixels with a scale of its own behind an @ where it
// has one (default 1280x1024; 1280x1024,2560x2048@2 are two). A window has the scale of the screen
// that it lies on. XW_SNAPSHOT a PNG file that follows the
// picture of the program's first window.
//
// Coordinates are logical, at the scale of the main screen, and global unless said otherwise. What
// is injected waits, in order, until the loop takes it in. Calls before the display is open are
// ignored.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/display/display.h"

namespace platform::headless {

// --- Pointer. The window is the front one under the pointer; while a button is held, the one it
// was pressed in, as on a real display.
void MovePointer(int x, int y);
// To a place in the content of a window, whatever its scale.
void MovePointerIn(const Window* w, int x, int y);
void Press(int button);
void Release(int button);
void Click(int x, int y, int button = 1);
void Scroll(float dx, float dy);
// A pen sample at the place of the pointer.
void Pen(const TabletPoint& pen, RawEvent::Type type, int button = 0);

// --- Keyboard; goes to the focused window. A key that goes down while it is held repeats; one that
// is not held does not come up. `typed`: UTF-8 where the key types more than one character.
void KeyDown(uint32_t keysym, uint32_t unicode = 0, const char* typed = nullptr);
void KeyUp(uint32_t keysym, uint32_t unicode = 0);
void Modifiers(uint32_t modifiers);

// --- What a desktop does to windows.
// The user gives the window these content bounds.
void Configure(const Window* w, const Rect& content);
// The only screen gets this size in device pixels, and this scale.
void ChangeScreen(int width, int height, double scale);
// These are the screens from now on, main first; at least one.
void ChangeScreens(const std::vector<Screen>& screens);
void Close(const Window* w);
// Null: another program takes the focus. Held keys are released first.
void Focus(const Window* w);
void Lose(const Window* w);
// The screen loses these pixels (of the buffer); the program still has them.
void Expose(const Window* w, const DeviceRect& pixels);
// The user or a window manager raises it; the program gets no report.
void Raise(const Window* w);
// Another program takes the pointer, or gives it back: reports stop, and grabs are lost.
void StealPointer(bool stolen);
// The desktop puts a frame of these widths (device pixels) around it; makes it full screen, or ends
// that (bits of WindowState).
void Frame(const Window* w, const DeviceRect& widths);
// The frames of windows made from now on have these widths, which the desktop knows beforehand.
void Frames(const DeviceRect& widths);
void SetState(const Window* w, uint32_t state);
// Another program drags files to a place in the content of the window; takes them away again, or
// lets them go (what was dropped is OpenFiles, or FailDrop when it does not come). A window that
// refuses files hears nothing.
void DragFiles(const Window* w, int x, int y);
void EndDragOfFiles(const Window* w, bool dropped);
void FailDrop(const Window* w);
void OpenFile(const char* path);
// Several at once: dropped, or asked for by another program.
void OpenFiles(const std::vector<std::string>& paths, bool asked);
void Preferences();
void Quit();
void Inject(const RawEvent& raw);

// --- Selections: another program of the desktop.
// It offers a text from now on. It answers requests at once, or only with AnswerTextRequests.
void OfferText(Selection which, const std::string& text);
void OfferTextLater(Selection which);
// Answers the open requests with this text; null: there is none.
void AnswerTextRequests(const std::string* text);
// Requests of the program that wait for AnswerTextRequests.
int WaitingTextRequests();
// From now on it refuses other programs' offers, or allows them again.
void KeepSelections(bool kept);
// What it gets when it asks: the text that the program offers, else null.
SharedText AskForText(Selection which);
// The text that the desktop has kept at the program's end; null: none.
SharedText KeptText();

// --- Time.
// From now on the clock stands still but for Step, and waits jump to what comes next.
void UseSteppedClock(double start_seconds);
void Step(double seconds);
// Called when a wait on the stepped clock has nothing to wait for; it may inject. When there is no
// handler, or it returns false, the process ends with a line on standard error and status 3.
void SetIdleHandler(bool (*handler)());

// --- Looking.
// The picture as last presented, 0xFFRRGGBB, menu bar included; 0 outside of a pop-up's round
// corners. Empty when never shown.
struct Picture {
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;
};
Picture TakePicture(const Window* w);
// False when it cannot be written.
bool WritePng(const Picture& picture, const std::string& path);
// Counts since the display was opened.
struct Counters {
  int windows = 0;  // native windows alive
  int beeps = 0, presents = 0;
  int64_t presented_pixels = 0;
};
Counters Counts();
// What the window's frame says: the shown title, the cursor, whether it is mapped.
std::string ShownTitle(const Window* w);
CursorRef ShownCursor(const Window* w);
// The cursor's own picture at the scale of the window; empty for the desktop's shapes.
Picture ShownCursorPicture(const Window* w);
// The window that has the pointer; null: none, or the grab that it asked for is not held.
const Window* PointerGrab();

}  // namespace platform::headless
