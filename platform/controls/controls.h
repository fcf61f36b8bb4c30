// Native controls: state machines in a window that track the pointer and the keyboard by
// themselves. A control sends its events to its own target.
//
// Rectangles are in the content of the window. Null and stale controls are ignored everywhere; a
// question about one gives 0, false, "" or null. Texts are UTF-8, copied.
#pragma once
#include <cstdint>

#include "platform/events/targets.h"
#include "platform/graphics/context.h"
#include "platform/menus/menus.h"
#include "platform/theme/text.h"

namespace platform {

// --- Panes: the window's content, and the parts of it that come, go and move with what is in them.

struct Pane;
using PaneRef = Pane*;
// The whole content. Null for a stale window.
PaneRef RootPane(WindowRef w);
// Hidden. Of the panes of one parent that overlap, the one with the greater order lies above.
// Lives until DisposePane or the end of the window.
PaneRef CreatePane(PaneRef parent, const Rect& bounds, int order);
// Those in it go with it. Null is ignored.
void DisposePane(PaneRef p);
// Its controls move along, and show where they are then.
void SetPaneBounds(PaneRef p, const Rect& bounds);
void ShowPane(PaneRef p, bool shown);
// The background of its controls: a theme brush, else a colour (kNoColor: none), else that of the
// pane above it.
void SetPaneBackground(PaneRef p, int brush, uint32_t rgb);
// Erases a rectangle of the content, as far as the pane shows there, and draws the controls that
// meet it.
void RedrawPane(PaneRef p, const Rect& area);

// --- Making controls. Hidden and inactive; the latest lies above the others and is the last that
// --- Tab reaches. `bounds` are relative to the pane.

ControlRef CreatePushButtonControl(PaneRef pane, const Rect& bounds);
// `value` other than 0 draws it pressed.
ControlRef CreateBevelButtonControl(PaneRef pane, const Rect& bounds, int value);
ControlRef CreateCheckBoxControl(PaneRef pane, const Rect& bounds, const char* title, int value);
ControlRef CreateRadioButtonControl(PaneRef pane, const Rect& bounds, const char* title, int value);
ControlRef CreateStaticTextControl(PaneRef pane, const Rect& bounds, TextJustification just,
                                   bool bold);
// Shows the item that is its value, counted from 1 (0: none); a press, Down and Space open its
// menu.
ControlRef CreatePopUpButtonControl(PaneRef pane, const Rect& bounds, const char* title);
// Its range becomes 0 to the number of items. The menu stays the caller's, and must not end before
// it has got another or ended. Null: none; only an arrow shows then, and a press opens nothing.
void SetPopUpButtonMenu(ControlRef c, MenuRef menu);
// Drawn by `draw`, pressed where `hit_test` gives another part than 0.
using PaneDraw = void (*)(ControlRef control);
using PaneHitTest = int (*)(ControlRef control, Point where);
ControlRef CreateUserPaneControl(PaneRef pane, const Rect& bounds, PaneDraw draw,
                                 PaneHitTest hit_test);
// Parts of a scroll bar, in the action and in kEventControlHit.
enum ControlPart : int {
  kControlUpButtonPart = 20,  // a line back: an arrow key, the wheel
  kControlDownButtonPart = 21,
  kControlPageUpPart = 22,  // beside the thumb: a press, a page key
  kControlPageDownPart = 23,
  kControlIndicatorPart = 129,  // the thumb, also of a slider
};
// Called while the control is tracked, and for keys and the wheel before their hit. The thumb has
// moved the value already; for the other parts the callback gives the bar another. It may end the
// control.
using ControlAction = void (*)(ControlRef control, int part);
// The value moves with the thumb, with arrow keys and the wheel by 1, with page keys by a tenth of
// the range. One that is not horizontal has its maximum at the top. A new place makes it horizontal
// when that is wider than high.
ControlRef CreateSliderControl(PaneRef pane, const Rect& bounds, bool horizontal, int32_t value,
                               int32_t minimum, int32_t maximum, ControlAction action);
// Horizontal when it is wider than high. `view` is what shows of the document beyond `value`; it
// sizes the thumb. One whose maximum is not above its minimum has no thumb and does nothing. Not
// `live`: the action is never called; the hit names the part, once a press beside the thumb is let
// go in the bar, and else 0.
ControlRef CreateScrollBarControl(PaneRef pane, const Rect& bounds, int32_t value, int32_t minimum,
                                  int32_t maximum, int32_t view, bool live, ControlAction action);
// One that has no frame has a line at its left or upper side. It shows with the next drawing.
void SetScrollBarFramed(ControlRef c, bool framed);
// `part` (made after `whole`, in its pane) belongs to `whole`: it is shown, hidden, activated,
// deactivated and disposed of with it; a scroll bar then has no frame. Placing it is up to the kind
// of `whole`.
void AttachControl(ControlRef whole, ControlRef part);
// The value is cut to it. A maximum below the minimum counts as the minimum.
void SetControlRange(ControlRef c, int32_t minimum, int32_t maximum);
void SetControlViewSize(ControlRef c, int32_t view);
// Its area is erased and lost. Legal inside its own events.
void DisposeControl(ControlRef c);

// --- What a control is

bool IsValidControl(ControlRef c);
EventTargetRef GetControlEventTarget(ControlRef c);
void SetControlReference(ControlRef c, void* reference);
void* GetControlReference(ControlRef c);
WindowRef GetControlOwner(ControlRef c);
// In the content of the window.
Rect GetControlBounds(ControlRef c);
// Relative to its pane. What it uncovers is erased and lost; one that shows is drawn.
void SetControlBounds(ControlRef c, const Rect& bounds);
// What is erased with it: more than its bounds, relative to its pane.
void SetControlArea(ControlRef c, const Rect& area);
// The same in the content of the window.
Rect GetControlArea(ControlRef c);
// The smallest rectangle that shows all of a check box or radio button, at its place.
Rect GetBestControlRect(ControlRef c);
void SetControlTitle(ControlRef c, const char* utf8);
// Static text and user panes have none: the empty string. Valid until the next change.
const char* GetControlTitle(ControlRef c);
// The text of a static text.
void SetStaticText(ControlRef c, const char* utf8);
// What a user pane is called, for the letter that presses it and for those who cannot see it.
void SetPaneName(ControlRef c, const char* utf8);
// How it describes itself. The role is that of its kind, a button for a user pane, until it is set.
// `utf8` comes before its own text; "" and null take it away.
void SetControlRole(ControlRef c, ObjectRole role);
void SetControlDescription(ControlRef c, const char* utf8);
// How round the ring around it is at its corners; that of a button until it is set.
void SetControlCorner(ControlRef c, int corner);
bool DescribeControl(ControlRef c, uint64_t* serial, Description* out);
// Cut to its range; that of its kind until it is set: push button 0 and 1, check box and radio
// button 0 to 2, static text and user pane 0; a bevel button takes any.
void SetControl32BitValue(ControlRef c, int32_t value);
int32_t GetControl32BitValue(ControlRef c);
int32_t GetControl32BitMaximum(ControlRef c);

// How it takes the keyboard; bits.
enum ControlKeys : uint8_t {
  kKeysByTab = 1,      // Tab reaches it
  kKeysByRequest = 2,  // SetKeyboardFocus does
  kKeysClick = 4,      // a key sends kEventControlClick first, as a press does; else only the hit
  kKeysLetter = 8,     // Alt with the first letter of its text presses it
};
void SetControlKeys(ControlRef c, uint8_t keys);

// --- Showing

void ActivateControl(ControlRef c);
void DeactivateControl(ControlRef c);
bool IsControlActive(ControlRef c);
void ShowControl(ControlRef c);
void HideControl(ControlRef c);
// Whether it shows, and every pane that it is in.
bool IsControlVisible(ControlRef c);
// A press on it is held inside it, or its menu is open.
bool IsControlHilited(ControlRef c);
// Whether the letter that presses it is underlined now, because Alt is held.
bool IsControlLetterShown(ControlRef c);
// Alt+Down presses the opener while `c`, of the same window, has the keyboard. Null: none.
void SetControlOpener(ControlRef c, ControlRef opener);
// Draws it pressed while something that it has opened is open.
void HoldControl(ControlRef c, bool held);
void Draw1Control(ControlRef c);
// Those that meet `lost`, in the order in which they were made.
void DrawControls(WindowRef w, const Rect& lost);
// In a draw function of a user pane: its context, whose clip is what must be drawn. The background
// is painted already.
ContextRef GetControlContext(ControlRef c);

// --- Pointer and keyboard

// The one under a point of the content. None where a shown pane covers it.
ControlRef FindControlUnderMouse(Point where, WindowRef w);
// The pointer's shape over what lies under a point of the content; null: the window's own.
CursorRef FindControlCursor(Point where, WindowRef w);
// Presses the control as a key does, also when it does not have the keyboard. An inactive one is
// ignored.
void PressControl(ControlRef c);
// One small step up or down, as an arrow key does, of an active control that has steps.
void StepControl(ControlRef c, bool up);
// Whether the wheel over it turns it, active or not.
bool ControlTakesWheel(ControlRef c);
// The part of the event of a control that loses the focus, when Tab moves the focus to the next or
// to the previous control.
constexpr int kControlFocusNextPart = -1, kControlFocusPrevPart = -2;
// Part 0 takes the keyboard away from it; any other gives it to a control that shows, is active and
// can take it.
void SetKeyboardFocus(WindowRef w, ControlRef c, int part);
void ClearKeyboardFocus(WindowRef w);
ControlRef GetKeyboardFocus(WindowRef w);
// The width of the focus ring's area around the control with the keyboard.
constexpr int kFocusRingSpace = 3;
// Return presses the one, Escape the other, when the control with the keyboard does not take the
// key. Null: none.
void SetDefaultButtons(WindowRef w, ControlRef ok, ControlRef cancel);
// Whether Tab goes from control to control; it does in a new window.
void SetTabMoves(WindowRef w, bool moves);
// The letters that press are underlined no longer; Alt, pressed again, shows them again.
void HideControlLetters();

void InitControls();
void FinishControls();

}  // namespace platform
