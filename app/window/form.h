// The small windows with boxes to fill in, a button that accepts what is in them and Cancel.
#pragma once

#include "app/look/area.h"
#include "toolkit/xw.h"

namespace console {

// Of a modal dialog with a close box; these windows are not modal.
constexpr int kFormStyle = -256 + 3 + 32;
// Of a document's window with a close box alone, for what is only looked at.
constexpr int kListStyle = -256 + 1 + 32;

// What an event of the window's handler asks for, with the ids of the two buttons. Return in a box
// accepts, too; Escape in a box and the close box cancel.
enum class FormEvent { kOther, kDraw, kEdited, kAccept, kCancel };
FormEvent FormEventOf(int type, int accept, int cancel);

// Gives the box the keyboard; what is typed there replaces what it holds.
void GoToBox(XwWindow* box);

// Makes the two buttons, which Return and Escape press. `right` and `top` are where the pair ends
// and begins.
struct FormButtons {
  XwWindow *accept, *cancel;
};
FormButtons MakeFormButtons(XwWindow* window, const char* text, int accept, int cancel, int right,
                            int top);

}  // namespace console
