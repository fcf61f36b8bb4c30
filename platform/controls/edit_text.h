// Edit boxes: controls that hold one line of text. What is typed and pasted is kept whole, in
// UTF-8.
//
// Null and stale controls, and those that are no edit boxes, are ignored.
#pragma once
#include <string>

#include "platform/controls/controls.h"

namespace platform {

// The part with which it takes the keyboard.
constexpr int kControlEditTextPart = 5;

// Empty, hidden and inactive. The frame and the pointer's area are those of SetControlArea. It
// sends kEventControlTextChanged when the user has changed the text otherwise than by a key that
// its filter passed.
ControlRef CreateEditTextControl(PaneRef pane, const Rect& bounds);
// Gets each key and its repeats that come to the box without Control, Alt or Super, other than Tab,
// and may change it. False: the box ignores the key.
using EditKeyFilter = bool (*)(ControlRef c, Event* key);
void SetEditKeyFilter(ControlRef c, EditKeyFilter filter);
// One that is not writable takes no keyboard, whether it is active or not; `looks_enabled` draws it
// as one that can be read.
void SetEditReadOnly(ControlRef c, bool looks_enabled);
// All of it; the caret goes to the end, and nothing can be undone. Line ends become spaces, other
// control characters go.
void SetEditText(ControlRef c, const char* utf8);
std::string GetEditText(ControlRef c);
// From the one to the other character, cut to the text. The caret stands at the end. A selection
// that the pointer has made while the box was getting the focus stays.
void SelectEditText(ControlRef c, int first, int last);
// What its context menu has, too.
enum class EditCommand : uint8_t { kUndo, kRedo, kCut, kCopy, kPaste, kDelete, kAll };
bool CanEditText(ControlRef c, EditCommand command);
// As by its menu; what cannot be done does nothing.
void EditTextBy(ControlRef c, EditCommand command);
// What an input method is composing, at the caret; it is shown, and no part of the text.
void SetEditPreedit(ControlRef c, const char* utf8);
// In the content of the window; empty while the box has not the keyboard.
Rect GetEditCaret(ControlRef c);

}  // namespace platform
