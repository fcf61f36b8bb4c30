// Top-level windows as the desktop shows them: frame, title, class and attributes, size limits,
// groups, stacking and activation. All rectangles are logical pixels; global ones are the screen's.
#pragma once
#include <cstdint>
#include <string>

#include "platform/display/pop_up.h"
#include "platform/display/window_kinds.h"
#include "platform/events/targets.h"
#include "platform/graphics/context.h"

namespace platform {

enum WindowPart : int { inDesk = 0, inMenuBar = 1, inContent = 3, inDrag = 4, inGrow = 5 };
enum WindowRegionCode : int {
  kWindowGrowRgn = 6,
  kWindowStructureRgn = 32,
  kWindowContentRgn = 33
};

// Null when the display refuses. Created hidden. The first window of the process carries the menu
// bar above its content.
WindowRef CreateNewWindow(int window_class, uint32_t attributes, const Rect& content);
// A window without a frame that lies above its parent, beside a rectangle of it, and never gets the
// focus. Created hidden; it is hidden with its parent, and cannot be shown once that has ended.
// What it is granted of its place and size comes as kEventWindowBoundsChanged. Null for a stale
// parent, or when the display refuses.
WindowRef CreatePopUpWindow(WindowRef parent, const PopUpPlace& place);
// Gives a pop-up another place or size; other windows are ignored.
void SetPopUpPlace(WindowRef w, const PopUpPlace& place);
// Null and stale handles are ignored. Queued events of the window are dropped.
void DisposeWindow(WindowRef w);
// Null for a null or stale handle. Lives as long as the window.
EventTargetRef GetWindowEventTarget(WindowRef w);

void ShowWindow(WindowRef w);
void HideWindow(WindowRef w);
bool IsWindowVisible(WindowRef w);
// Raises it and asks for the input focus; for the action that `token` stands for, when another
// program asked for it with one.
void SelectWindow(WindowRef w, const char* token = nullptr);
// Asks for (or gives up) the look of the active window; the stacking stays.
void ActivateWindow(WindowRef w, bool activate);
bool IsWindowActive(WindowRef w);
bool IsApplicationActive();
void SetFrontProcess();

// Title in UTF-8, copied. The modified mark shows before it.
void SetWindowTitle(WindowRef w, const char* utf8);
void SetWindowModified(WindowRef w, bool modified);
// The program's icon at this size, width and height in pixels: 0xAARRGGBB, colours not multiplied
// by alpha. Copied; null takes that size away. Sizes outside 1 to 256 are ignored.
void SetProgramIcon(const uint32_t* argb, int size);
void ChangeWindowAttributes(WindowRef w, uint32_t set, uint32_t clear);
void SetWindowSizeLimits(WindowRef w, const SizeLimits& limits);

// Content rectangle, global; kWindowStructureRgn adds frame and menu bar; the grow region is empty.
Rect GetWindowBounds(WindowRef w, int region);
// Content rectangle only. Handlers see kEventWindowBoundsChanged with `programmatic` at once.
void SetWindowBounds(WindowRef w, const Rect& content);
// Device pixels per logical pixel of the window; null: of the main screen.
double WindowScale(WindowRef w);
// The structure rectangle moved (never resized) so that it lies on the screen.
Rect ConstrainWindowToScreen(WindowRef w);
void MoveWindowStructure(WindowRef w, int left, int top);
// Which part of the window a global point lies in; inDesk outside it. Which window lies under the
// pointer only the display knows (MouseFields::under).
int FindWindow(Point where, WindowRef w);

// Erasing takes the brush, else the colour (0xRRGGBB; kNoColor: none), else white.
void SetThemeWindowBackground(WindowRef w, int brush, bool redraw);
void SetWindowBackgroundColor(WindowRef w, uint32_t rgb);
// Whether its background is that of an active window: as long as it waits to be painted again, the
// background is still the one from before the change.
bool PaintsActive(WindowRef w);
// The colour that erasing uses now.
uint32_t WindowBackground(WindowRef w);
// Paints a content rectangle with the background.
void EraseRect(WindowRef w, const Rect& r);
// Marks a part of the window's content as lost: one draw event in the next turn of the loop, whose
// `bounds.current` is the bounds of all that is lost. `erase` paints the background there first.
// What lies outside the content is ignored.
void InvalidateWindow(WindowRef w, const Rect& r, bool erase);
// A window that has become active or inactive, and so has another background, keeps its pixels
// while this is true. Null: none does.
void SetRecoloringWaits(bool (*waits)(const Window* w));
// All of it has been drawn: no redraw is asked for.
void ValidateWindow(WindowRef w);

// --- Groups -----------------------------------------------------------------------------------

struct WindowGroup;
using WindowGroupRef = WindowGroup*;
enum : uint32_t {
  kWindowGroupAttrMoveTogether = 2,
  kWindowGroupAttrLayerTogether = 4,
  kWindowGroupAttrSharedActivation = 8,
  kWindowGroupAttrHideOnCollapse = 16,
};
// Lives for the process.
WindowGroupRef CreateWindowGroup(uint32_t attributes);
WindowGroupRef GetWindowGroupOfClass(int window_class);
void SetWindowGroupParent(WindowGroupRef group, WindowGroupRef parent);
// Null arguments are ignored.
void SetWindowGroup(WindowRef w, WindowGroupRef group);
void SetWindowActivationScope(WindowRef w, int scope);

// --- Keyboard focus and the screen --------------------------------------------------------------

void SetUserFocusWindow(WindowRef w);
// Height of the menu bar at the top of the first window's frame: 24.
int GetMBarHeight();
enum SystemUIMode : int { kUIModeNormal = 0, kUIModeContentSuppressed = 1 };
// Of the window that carries the menu bar: suppressed content is the desktop's full-screen state.
void SetSystemUIMode(int mode, uint32_t options);
// The same for any window.
void SetWindowFullScreen(WindowRef w, bool full);
// The title as it was set; valid until the next change. Empty for a stale handle.
const char* GetWindowTitle(WindowRef w);

// How it describes itself; false for a stale handle.
bool DescribeWindow(WindowRef w, uint64_t* serial, Description* out);

// --- Pixels -------------------------------------------------------------------------------------

// Sends what was drawn to the screen now (null: every window) and waits until the display has it.
void FlushWindow(WindowRef w);
// A context over the window's content; null for a stale handle.
ContextRef CreateContext(WindowRef w);
// Changes whenever the window's pixels are replaced; contexts made before then paint nothing.
uint32_t WindowGeneration(WindowRef w);

// --- Cursors ------------------------------------------------------------------------------------

// A picture of at most 32 x 32 logical pixels, 0xAARRGGBB, or one of the desktop's own.
enum class DesktopCursor { kNone, kArrow, kCrosshair, kOpenHand, kText };
// All live until ReleaseCursor. Null for a size outside 1..32.
CursorRef CreateDesktopCursor(DesktopCursor which);
CursorRef CreatePictureCursor(int width, int height, int hot_x, int hot_y, const uint32_t* argb);
// The same, but `draw` fills the pixels when the cursor is shown first; `source` lives as long.
CursorRef CreateDrawnCursor(int width, int height, int hot_x, int hot_y,
                            void (*draw)(const void* source, uint32_t* argb), const void* source);
void ReleaseCursor(CursorRef cursor);
// Sets the pointer's shape over the window; null is ignored.
void ShowCursor(WindowRef w, CursorRef cursor);
// Who gets the events of the pointer while a window has it.
enum class Capture : uint8_t {
  kWindow,   // the window, wherever the pointer is
  kProgram,  // the program's window under the pointer; outside all of them, the window
  kMenu,     // the same, and the window gets the keyboard as well
};
// The window takes the pointer, with this cursor everywhere (null: its own), until a null window.
void CapturePointer(WindowRef w, CursorRef cursor, Capture who = Capture::kWindow);

}  // namespace platform
