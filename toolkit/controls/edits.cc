#include "toolkit/controls/edits.h"

#include <cstdlib>

#include "platform/controls/edit_text.h"
#include "platform/events/key_characters.h"
#include "toolkit/controls/dropped.h"
#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/control_bounds.h"
#include "toolkit/windows/item_texts.h"

using namespace platform;

namespace {

constexpr int kInset = 4, kInsetAbove = 5;  // of a new box; a moved one has 4 on all sides
constexpr int kLowestField = 22;
constexpr uint32_t kKeypadDecimal = 0x41;

void Post(const XwWindow* box, int type, int32_t value) {
  XwSendEvent(box->parent, type, std::abs(box->id), value, 0);
}

// Turns the current key event into another event of the box.
void Become(const XwWindow* box, int type) {
  Inp.window = box->parent;
  Inp.type = type;
  Inp.item = std::abs(box->id);
  Inp.value = 0;
}

void FocusPart(XwWindow* box, int part) {
  const bool had = box->flags & XW_EDITING;
  if (part == 0 || part == kControlFocusNextPart) {
    box->flags &= uint8_t(~XW_EDITING);
    if (had && part) Post(box, XWE_EDIT_DONE, 0);
    if (had) Post(box, XWE_EDIT_SELECT, 0);
  } else if (!had) {
    Post(box, XWE_EDIT_SELECT, 1);
    box->flags |= XW_EDITING;
  }
}

bool IsWritableBox(const XwWindow* w) {
  return w && w->kind == XWK_EDIT && w->flags & XW_SHOWN && w->enabled && !(w->style & XWC_VARIANT);
}

// The next among the parent's children, from its first again after its last; may be the box itself.
XwWindow* NextBox(const XwWindow* box) {
  const XwWindow* parent = box->parent;
  for (int step = 1; step <= parent->child_count; ++step) {
    XwWindow* w = parent->children[(box->slot + step) % parent->child_count];
    if (IsWritableBox(w)) return w;
  }
  return nullptr;
}

// Takes the keyboard away, and gives it to `next` (null: to none).
void LeaveBox(XwWindow* box, XwWindow* next) {
  if (next)
    XwSetFocus(next);
  else
    SetKeyboardFocus(NativeWindow(box), NativeControl(box), 0);
}

// An edit field waits for event types from here on; the others are dropped.
constexpr int kDropsField = XWE_PRESS + 1;

}  // namespace

OSStatus Editbox_func(HandlerCall*, Event* event, void* data) {
  auto* box = static_cast<XwWindow*>(data);
  if (!box->id) return eventNotHandledErr;
  switch (event->kind) {
    case kEventControlSetFocusPart:
      FocusPart(box, event->control.part);
      break;
    case kEventControlTextChanged:
      Post(box, XWE_EDIT_CHANGED, 0);
      break;
    case kEventControlClick:
      if (!(box->style & XWC_VARIANT)) break;
      if (box->style & XWC_ENABLED) XwSendEvent(box->parent, XWE_CONTROL, box->id, 0, 0);
      return noErr;
    default:
      break;
  }
  return eventNotHandledErr;
}

bool Editbox_filter(ControlRef control, Event* key) {
  auto* box = static_cast<XwWindow*>(GetControlReference(control));
  const uint8_t character = key->key.character;
  if (character == ',' && key->key.key_code == kKeypadDecimal) {
    key->key.character = '.';
    key->key.text[0] = '.';
    key->key.text[1] = 0;
  } else if (character == kEscapeKey) {
    Become(box, XWE_EDIT_SELECT);
    LeaveBox(box, nullptr);
    return false;
  } else if (character == kReturnKey || character == kEnterKey) {
    Become(box, XWE_EDIT_DONE);
    LeaveBox(box, box->style & XWC_DROPS_FOCUS ? nullptr : NextBox(box));
    return false;
  }
  Become(box, XWE_EDIT_CHANGED);
  return true;
}

XwWindow* XwEditBox(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                    uint32_t style) {
  Rect r = ControlRect(XWK_EDIT, style, x, y, w, h);
  r.top += kInsetAbove - kInset;
  r.bottom -= kInsetAbove - kInset;
  ControlRef control = CreateEditTextControl(PaneForControl(parent), r);
  SetEditKeyFilter(control, Editbox_filter);
  XwWindow* box = CreateWindowControl(parent, id, XWK_EDIT, x, y, w, h, style, text, 0, control);
  if (!box) return nullptr;
  ActivateWindowControl(box, text);
  if (style & XWC_VARIANT) {
    DeactivateControl(control);
    SetEditReadOnly(control, style & XWC_ENABLED);
  }
  InstallControlHandler(box, Editbox_func,
                        {kEventControlSetFocusPart, kEventControlTextChanged, kEventControlClick});
  return box;
}

// The native box of an edit box or an editable combo box; null.
static ControlRef NativeBox(XwWindow* box) {
  if (!CheckWindow(box) || !IsControl(box)) return nullptr;
  if (IsEditableCombo(box)) box = box->linked;
  return box && box->kind == XWK_EDIT ? NativeControl(box) : nullptr;
}
static bool IsEditAction(int action) {
  return action >= XWU_UNDO && action <= XWU_SELECT_ALL;
}

int XwCanEdit(XwWindow* box, int action) {
  return IsEditAction(action) && CanEditText(NativeBox(box), EditCommand(action));
}

void XwEdit(XwWindow* box, int action) {
  TargetScope scope;
  if (IsEditAction(action)) EditTextBy(NativeBox(box), EditCommand(action));
}

int32_t XwEditField(XwWindow* parent, int x, int y, int w, int h, char* text) {
  if (!CheckWindow(parent) || IsControl(parent) || !text) return 0;
  XwPush(nullptr);
  if (h < kLowestField) {
    y -= (kLowestField - h) / 2;
    h = kLowestField;
  }
  XwWindow* box = XwEditBox(parent, text, 0, x, y, w, h, XWC_ENABLED | XWC_VISIBLE);
  const uint64_t serial = box ? box->serial : 0;
  auto lives = [&] { return box && IsLive(box) && box->serial == serial; };
  if (box) XwSetFocus(box);
  Dropped dropped;
  int confirmed = 0;
  while (lives()) {
    const int type = XwGrabEvent();
    if (type == kDropsField) break;
    if (type == XWE_EDIT_DONE && lives()) {
      XwGetText(box, text);
      confirmed = 1;
      break;
    }
    dropped.Add(Inp);
  }
  if (lives()) XwDestroy(box);
  XwPop();
  dropped.PostAgain();
  return confirmed;
}
