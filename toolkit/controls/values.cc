// Values and texts of controls and windows.
#include <algorithm>
#include <cstring>
#include <string>

#include "platform/access/access.h"
#include "platform/controls/edit_text.h"
#include "platform/lists/lists.h"
#include "platform/text/mac_roman.h"
#include "platform/windows/windows.h"
#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/item_texts.h"

using namespace platform;

namespace {

constexpr int kLongestText = 255;

constexpr XwValue kPointer = 0x10000;  // values from here on are addresses

// Whether the record holds the value, and the toolkit draws it.
bool KeepsValue(const XwWindow* w) {
  return w->kind == XWK_COLOR || (w->kind == XWK_BUTTON && w->style & (XWC_ICON | XWC_HEADER));
}

void SetListValue(XwWindow* list, int32_t row) {
  ControlRef control = NativeControl(list);
  list->value = row;
  ListSelectRow(control, row);
  ListAutoScroll(control);
  Draw1Control(control);
}

// An editable one takes the texts of its menu.
void SetComboValue(XwWindow* combo, XwValue value) {
  if (!IsEditableCombo(combo)) {
    combo->value = int32_t(value);
    SetControl32BitValue(NativeControl(combo), std::min(combo->value, INT32_MAX - 1) + 1);
  } else if (value == 0 || value >= kPointer) {
    SetComboMenu(combo, reinterpret_cast<const char* const*>(value), false);
  }
}

}  // namespace

// As the C library's, but numbers that are too large are cut.
static int32_t Number(const char* text) {
  const long long n = strtoll(text, nullptr, 10);
  return int32_t(std::clamp<long long>(n, INT32_MIN, INT32_MAX));
}

void XwSetValue(XwWindow* w, XwValue value) {
  if (!CheckWindow(w) || IsSub(w)) return;
  TargetScope scope;
  if (IsTopLevel(w)) return SetWindowModified(NativeWindow(w), (value & 255) != 0);
  if (w->kind == XWK_LIST) return SetListValue(w, int32_t(value));
  if (w->kind == XWK_COMBO) return SetComboValue(w, value);
  if (w->kind == XWK_EDIT) return XwSetText(w, std::to_string(int32_t(value)).c_str());
  if (!KeepsValue(w)) return SetControl32BitValue(NativeControl(w), int32_t(value));
  w->value = int32_t(value);
  Draw1Control(NativeControl(w));
  uint64_t serial;
  Description described;
  if (tree_is_heard && DescribeControl(NativeControl(w), &serial, &described))
    NoticeChange(serial, Change::kValue);
}

int32_t XwGetValue(XwWindow* w) {
  if (!CheckWindow(w) || !IsControl(w)) return 0;
  if (w->kind == XWK_LIST) return w->value;
  if (w->kind == XWK_EDIT) {
    char text[kLongestText + 1];
    return Number(XwGetText(w, text));
  }
  return GetControl32BitValue(NativeControl(w)) - (w->kind == XWK_COMBO ? 1 : 0);
}

char* XwGetText(XwWindow* w, char* dst) {
  if (!dst) return dst;
  *dst = 0;
  if (!CheckWindow(w) || IsSub(w)) return dst;
  if (IsTopLevel(w)) {
    Utf8ToMacRoman(GetWindowTitle(NativeWindow(w)), dst, kLongestText + 1);
    return dst;
  }
  if (IsEditableCombo(w)) return w->linked ? XwGetText(w->linked, dst) : dst;
  if (w->kind == XWK_EDIT) {
    Utf8ToMacRoman(GetEditText(NativeControl(w)).c_str(), dst, kLongestText + 1);
    return dst;
  }
  char title[kLongestText + 1];
  Utf8ToMacRoman(GetControlTitle(NativeControl(w)), title, sizeof title);
  const size_t n = strlen(title);
  dst[0] = char(n);
  memcpy(dst + 1, title, n);
  return dst;
}

static std::string TextOf(const XwWindow* w) {
  if (IsTopLevel(w)) return GetWindowTitle(NativeWindow(w));
  if (IsEditableCombo(w)) return w->linked ? TextOf(w->linked) : std::string();
  const ControlRef control = NativeControl(w);
  if (w->kind == XWK_EDIT) return GetEditText(control);
  if (w->kind == XWK_LIST) return std::string(ListRowText(control, ListSelectedRow(control)));
  if (w->kind == XWK_COMBO)
    return GetMenuItemText(static_cast<MenuRef>(w->menu), GetControl32BitValue(control));
  return GetControlTitle(control);
}

int XwGetTextUtf8(XwWindow* w, char* dst, int size) {
  if (dst && size > 0) *dst = 0;
  if (!CheckWindow(w) || IsSub(w)) return 0;
  const std::string text = TextOf(w);
  if (dst && size > 0) CopyUtf8(text, dst, size_t(size));
  return int(std::min(text.size(), size_t{INT32_MAX}));
}
