// What lists and combo boxes show: arrays of texts that end with a null pointer. A null array is
// empty.
#pragma once
#include "platform/controls/controls.h"
#include "toolkit/xw.h"

// `utf8` false: the toolkit's characters.
// The menu of a combo box, which the record owns; it takes the place of the one before. An empty
// text is a separator.
void SetComboMenu(XwWindow* combo, const char* const* texts, bool utf8);
// All rows of a list; none is selected then.
void SetListRows(XwWindow* list, const char* const* texts, bool utf8);

inline bool IsEditableCombo(const XwWindow* w) {
  return w->kind == XWK_COMBO && w->style & XWC_EDITABLE;
}
