// What an edit box keeps, and what its files share.
#pragma once
#include "platform/clipboard/clipboard.h"
#include "platform/controls/control.h"
#include "platform/controls/edit_state.h"
#include "platform/controls/edit_text.h"
#include "platform/events/timers.h"

namespace platform {

// A text that the box has asked for.
struct EditPaste {
  Control* box;
  size_t at;  // where it goes; kAtSelection: in place of what is selected then
  int request;
};
constexpr size_t kAtSelection = SIZE_MAX;

struct Edit {
  EditState state;
  EditKeyFilter filter = nullptr;
  bool read_only = false, looks_enabled = false;
  // The layout of what shows: the text with what is being composed.
  TextLine line;
  bool laid_out = false;
  int scroll = 0;  // pixels of the line that are left of the view
  // What was drawn last: only the part of the line that a key has changed is drawn again.
  struct {
    std::string text;
    int caret = 0, width = 0, scroll = 0;  // pixels
    bool whole = true;                     // a selection or a text that is being composed showed
  } drawn;
  // The caret blinks by a timer.
  EventLoopTimerRef blink = nullptr;
  bool caret_off = false;
  double last_input = 0;  // seconds: a key or a press
  // While the pointer holds it: what was pressed on, and by how much it selects.
  enum Unit : uint8_t { kCharacter, kWord, kAll } unit = kCharacter;
  size_t held_first = 0, held_last = 0;
  bool pointer_selects = false;  // the pointer has made the present selection
  // A box that gets the focus selects its text. kFresh: it has not done so yet; kPointerFirst: the
  // pointer has made a selection before that.
  enum Arrival : uint8_t { kSettled, kFresh, kPointerFirst } arrival = kSettled;
  Point pointer;
  EventLoopTimerRef scroll_timer = nullptr;
  double pressed_at = 0;  // the press before
  Point pressed;
  int presses = 0;
  std::vector<std::unique_ptr<EditPaste>> pastes;
};

inline Edit& EditOf(const Control* c) {
  return *static_cast<Edit*>(c->data);
}

// --- edit_text.cc
// A live edit box.
bool IsEditText(ControlRef c);
// The text, the caret or the selection has changed: scrolls to the caret and draws the box.
void ShowEdit(Control* c);
// The user has done something: the caret is on, and blinks for another while.
void WakeCaret(Control* c);
// Where the caret stands, in the content of the window.
Rect CaretRect(const Control* c);
// The nearest place for a caret to a column of the content.
size_t EditPlaceAt(const Control* c, int x);
Rect EditTextArea(const Control* c);

// --- edit_pointer.cc
bool PressEdit(Control* c, Point at);
void DragEdit(Control* c, Point at);
bool ReleaseEdit(Control* c, bool inside);
void LoseEdit(Control* c);
void PressEditWithOther(Control* c, Point at, int button);
void StopEditScrolling(Edit* e);

// --- edit_keys.cc
bool EditKey(Control* c, const Event& e);
// The user has selected something: it becomes the primary selection.
void OfferSelection(const Control* c);
void Paste(Control* c, Selection from, size_t at = kAtSelection);
void ForgetPastes(Edit* e);
void OpenEditMenu(Control* c, Point at);

}  // namespace platform
