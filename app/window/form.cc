#include "app/window/form.h"

#include "app/look/controls.h"

namespace console {

FormEvent FormEventOf(int type, int accept, int cancel) {
  switch (type) {
    case XWE_EXPOSE:
      return FormEvent::kDraw;
    case XWE_CONTROL:
      return Inp.item == accept   ? FormEvent::kAccept
             : Inp.item == cancel ? FormEvent::kCancel
                                  : FormEvent::kOther;
    case XWE_EDIT_CHANGED:
      return FormEvent::kEdited;
    case XWE_EDIT_DONE:  // Tab ends it, too
      return XwGetKeyState(XWE_RETURN) ? FormEvent::kAccept : FormEvent::kOther;
    case XWE_EDIT_SELECT:
      return !Inp.value && XwGetKeyState(XWE_ESCAPE) ? FormEvent::kCancel : FormEvent::kOther;
    case XWE_CLOSE:
      return FormEvent::kCancel;
    default:
      return FormEvent::kOther;
  }
}

void GoToBox(XwWindow* box) {
  XwFocusControl(box);
  XwEdit(box, XWU_SELECT_ALL);
}

FormButtons MakeFormButtons(XwWindow* window, const char* text, int accept, int cancel, int right,
                            int top) {
  constexpr uint32_t kShown = XWC_ENABLED | XWC_VISIBLE;
  constexpr int kWidth = 88, kHeight = 26, kGap = 10;
  // Cancel comes first with Tab, too.
  XwWindow* second = XwButton(window, "Cancel", cancel, 0, 0, 9, 9, kShown, 0);
  XwWindow* first = XwButton(window, text, accept, 0, 0, 9, 9, kShown, 0);
  PlaceControl(first, {right - kWidth, top, kWidth, kHeight});
  PlaceControl(second, {right - 2 * kWidth - kGap, top, kWidth, kHeight});
  XwSetDefaultButtons(window, first, second);
  return {first, second};
}

}  // namespace console
