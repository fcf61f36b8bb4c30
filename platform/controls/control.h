// The records of this room, and what its files share.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/controls/controls.h"
#include "platform/display/window.h"
#include "platform/theme/metrics.h"
#include "platform/theme/text.h"
#include "platform/theme/theme.h"
#include "platform/theme/thumbs.h"

namespace platform {

struct Pane {
  WindowControls* owner = nullptr;
  Pane* parent = nullptr;
  Rect bounds;  // in the content; the root's is not used
  int order = 0;
  bool shown = false;
  int brush = 0;
  uint32_t color = kNoColor;
  std::vector<Pane*> children;
  std::vector<std::vector<Control*>> bands;  // its controls, by their place; see bands.cc
};

// What a kind of control does. Functions that a kind does not need are null.
struct KindRow {
  // In its context, on the background.
  void (*draw)(Control* c, ContextRef context);
  // The primary button went down in it: false when it is not tracked.
  bool (*press)(Control* c, Point where);
  // The pointer moved while it is held.
  void (*drag)(Control* c, Point where);
  // It was let go, inside or outside: true when it has done its work.
  bool (*release)(Control* c, bool inside);
  // A key came to it: true when it has taken it.
  bool (*key)(Control* c, const Event& e);
  // Adds what is special to it: value, checked or mixed.
  void (*describe)(const Control* c, Description* out);
  // Changes the bounds to the rectangle that the focus ring surrounds, and sets its corner radius.
  void (*border)(const Control* c, Rect* border, int* corner);
  // Sets the value after a press or a key, before the event is sent.
  void (*act)(Control* c);
  int32_t minimum, maximum;  // of the value of a new control
  bool has_title;
  ObjectRole role;
  // The wheel turned over it; logical pixels. Null: the wheel is the window's.
  void (*wheel)(Control* c, float dx, float dy) = nullptr;
  // A small step up or down, by assistive technology. A control with steps has no press action.
  void (*step)(Control* c, bool up) = nullptr;
  // The bounds have changed: its parts are moved before it is drawn.
  void (*placed)(Control* c) = nullptr;
  bool front_looks = false;  // looks different in an inactive window
  // Called in place of `press`: opens its menu and waits. A choice sends the hit.
  void (*open)(Control* c, bool by_key) = nullptr;
  // The pointer was taken away from it while it was held.
  void (*lost)(Control* c) = nullptr;
  // Frees its `data`, with the record.
  void (*end)(Control* c) = nullptr;
  bool focus_by_press = false;  // the pointer gives it the keyboard
  bool whole_area = false;      // the pointer finds it in all of its area
  // Another button than the primary one went down in it, and its target has not taken that.
  void (*press_other)(Control* c, Point where, int button) = nullptr;
  // Text can be selected in it, which the pointer's shape says.
  bool text_cursor = false;
  // The keyboard came or went, or its window became the active one.
  void (*focused)(Control* c, bool gained) = nullptr;
};

struct Control {
  Object object;
  const KindRow* kind = nullptr;
  Pane* pane = nullptr;
  Rect bounds;  // relative to the pane
  Rect area;    // what it is erased with, relative to the pane; not less than the bounds
  int32_t value = 0;
  int32_t minimum = 0, maximum = 0;  // of the value
  int32_t view = 0;                  // of a scroll bar
  bool horizontal = false;           // of a slider or scroll bar
  bool live = true, framed = true;   // of a scroll bar
  ControlAction action = nullptr;
  Control* part = nullptr;   // belongs to it: shown, active and alive with it
  Control* whole = nullptr;  // what it is the part of
  bool shown = false, active = false;
  bool inside = false;  // the pointer that holds it is inside
  bool held = false;    // what it has opened is open
  bool bold = false;
  TextJustification justification = TextJustification::kCenter;
  int corner = kCorner;  // of the ring
  uint8_t keys = 0;
  bool underlined = false;  // its letter, while Alt is held
  ObjectRole role = ObjectRole::kPane;
  std::string text;
  std::string described;  // its name for assistive technology, set by the program
  void* reference = nullptr;
  void* data = nullptr;                             // owned by its kind
  Control *opener = nullptr, *opens_for = nullptr;  // each points to the other
  PaneDraw draw = nullptr;
  PaneHitTest hit_test = nullptr;
  Control *next = nullptr, *previous = nullptr;  // in the order of creation
};

// Of one window.
struct WindowControls {
  WindowRef window = nullptr;
  Pane root;
  Control *first = nullptr, *last = nullptr;
  Control* focus = nullptr;
  Control* tab_from = nullptr;  // had the keyboard last
  Control *ok = nullptr, *cancel = nullptr;
  bool tab_moves = true;
  bool alt = false;  // is held
  bool shift = false;
  ContextRef context = nullptr;
  uint32_t generation = 0;  // of the pixels that it is for
};

// What all kinds of buttons do with a press: they look pressed while the pointer is inside.
bool PressButton(Control* c, Point where);
void DragButton(Control* c, Point where);
bool ReleaseButton(Control* c, bool inside);
// Space and Return press.
bool ButtonKey(Control* c, const Event& e);
// A face and the control's text in the middle of it, `margin` pixels from its sides.
void DrawButtonWithText(const Control* c, ContextRef context, ThemeButtonKind kind,
                        const ThemeButtonDrawInfo& info, bool bold, int margin);

extern const KindRow kPushButtonKind, kBevelButtonKind, kCheckBoxKind, kRadioButtonKind,
    kStaticTextKind, kUserPaneKind, kPopUpButtonKind, kSliderKind, kScrollBarKind, kEditTextKind;
// Held with a key, they make it a command that no control takes.
constexpr uint32_t kShortcut = cmdKey | optionKey | controlKey | rightOptionKey | rightControlKey;

Control* NewControl(PaneRef pane, const KindRow& kind, const Rect& bounds);
inline WindowControls& OwnerOf(const Control* c) {
  return *c->pane->owner;
}
// Null where the window has none.
WindowControls* ControlsOf(WindowRef w);

// --- bands.cc
// The bands find a control by its area between these two calls; its area must not change there.
void EnterBands(Control* c);
void LeaveBands(Control* c);
// Those of the pane that meet `area` (relative to it) and were not made before the one with serial
// `from`, in the order of creation.
std::vector<Control*> FindInBands(const Pane* pane, const Rect& area, uint64_t from);

// --- drawing.cc
// The pane's area less the panes over it.
Region PaneArea(const Pane* p);
bool PaneShows(const Pane* p);
// Erases a part of the window and draws the controls that meet it.
void RedrawArea(WindowControls& all, const Pane* pane, const Rect& area);
// Erases an area that a control no longer covers, and marks it as lost content of the window.
void Uncover(const Control* c, const Rect& area);
// Draws it, and the ring around it.
void RedrawWithRing(Control* c);
// In the content.
Rect ControlArea(const Control* c);
// The same with the space of the ring around it.
Rect RingArea(const Control* c);
void ReleaseControlContext(WindowControls& all);

// --- tracking.cc
// Sends an event to the control's target.
OSStatus SendControlEvent(Control* c, uint32_t kind, int part = 0, bool by_key = false);
// Completes a press: changes the value and sends the event.
void HitControl(Control* c, bool by_key, int part = 0);
// The pointer holds it.
bool IsControlHeld(const Control* c);
// Does by a key what a press and a release of the pointer do.
void PressByKey(Control* c);
// The area in which the pointer presses it, in the content.
Rect PressArea(const Control* c);
// The time of the press that is being handled, in seconds.
double PressTime();
// Whether a point of the content presses it.
bool IsControlUnder(const Control* c, Point at);
OSStatus HandlePress(HandlerCall* call, Event* event, void* user_data);
void ForgetTracking(const Control* c);

OSStatus HandleWheel(HandlerCall* call, Event* event, void* user_data);

// --- thumb.cc: what sliders and scroll bars have in common
ThemeThumbInfo ThumbInfo(const Control* c);
// Starts a drag of the thumb. A press beside the thumb moves its middle to the pointer.
void HoldThumb(Control* c, Point where);
// The value for the pointer's place. Where the drag began it is exactly the value of that moment.
int32_t HeldThumbValue(const Control* c, Point where);
// Calls the action. False when the control has ended in it.
bool ActOnPart(Control* c, int part);
// Sets the value as a drag of the thumb does, and calls the action.
bool MoveThumb(Control* c, int32_t value);
// The whole steps, each of `pixels`, that the wheel has turned along it; fractions are kept for the
// next turn of the same control.
int TakeWheelSteps(const Control* c, float dx, float dy, float pixels);
void DescribeThumb(const Control* c, Description* out);

// --- pop_up_button.cc
// Shows a menu below a rectangle of the window's content with this item selected, and waits: the
// item that was chosen, or 0. The loop sets it at the start.
extern int (*select_below)(MenuRef menu, WindowRef w, const Rect& anchor, int item);

// --- focus.cc and keys.cc
constexpr int kWholeControl = 1;  // the part of a control that has no others
bool CanTakeKeys(const Control* c, uint8_t how);
// Takes the focus away from a control that is hidden, deactivated or destroyed.
void LoseFocus(Control* c);
// Gives the keyboard to the next (or the one before) that Tab reaches; false when there is none.
bool MoveFocusByTab(WindowControls& all, bool back);
// While Alt is held, the letters that press are underlined.
void ShowLetters(WindowControls& all, bool shown);
OSStatus HandleKey(HandlerCall* call, Event* event, void* user_data);
OSStatus HandleActivation(HandlerCall* call, Event* event, void* user_data);

}  // namespace platform
