// Showing, enabling, focus, text and the other attributes of a window.
#include <cstdlib>
#include <cstring>

#include "platform/access/access.h"
#include "platform/controls/edit_text.h"
#include "platform/text/mac_roman.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/memory.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/clip.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/item_texts.h"
#include "toolkit/windows/panes.h"

using namespace platform;

namespace {

constexpr int kTitleLimit = 255;
// Bytes of UTF-8: more than any title bar shows, and less than a display would refuse.
constexpr size_t kLongestTitle = 4096;

ControlRef Native(const XwWindow* control) {
  return static_cast<ControlRef>(control->platform);
}

void ShowTopLevel(XwWindow* w, bool show) {
  WindowRef native = NativeWindow(w);
  if (!show) {
    HideWindow(native);
    return;
  }
  ShowWindow(native);
  Rect c = GetWindowBounds(native, kWindowContentRgn);
  w->x = Sat16(c.left);
  w->y = Sat16(c.top);
}

void ShowSub(XwWindow* w, bool show) {
  if (bool(w->flags & XW_SHOWN) == show) return;
  w->flags = uint8_t(show ? w->flags | XW_SHOWN : w->flags & ~XW_SHOWN);
  NoticeChange(w->serial, Change::kState);
  ResetClipMask(w->parent);
  ResetClipsFrom(w);
  PostExpose(show ? w : w->parent);
  if (!w->pane) return;
  // The window is hidden before its controls, so that the platform does not repaint under each.
  if (!show) UpdatePane(w);
  for (int i = 0; i < w->child_count; ++i) {
    XwWindow* c = w->children[i];
    if (!c || !IsControl(c)) continue;
    show ? ShowControl(Native(c)) : HideControl(Native(c));
  }
  if (show) UpdatePane(w);
}

void ShowControlRecord(XwWindow* w, bool show) {
  if (bool(w->flags & XW_SHOWN) == show) return;
  ResetClipMask(w->parent);
  w->flags = uint8_t(show ? w->flags | XW_SHOWN : w->flags & ~XW_SHOWN);
  if (show) RedrawInParent(w, {w->x, w->y, w->x + w->width, w->y + w->height});
  show ? ShowControl(Native(w)) : HideControl(Native(w));
  if (IsEditableCombo(w) && w->linked) ShowControlRecord(w->linked, show);
}

// The text that a control shows: its style may append to it.
std::string ShownText(const XwWindow* w, const char* text) {
  std::string shown = text ? text : "";
  if (w->style & XWC_DOTS) shown += " ...";
  if (w->style & XWC_COLON) shown += ":";
  return shown;
}

// Lists and combo boxes take an array; false for other kinds.
bool SetItems(XwWindow* w, const char* text, bool utf8) {
  const auto* texts = reinterpret_cast<const char* const*>(text);
  if (w->kind == XWK_LIST)
    SetListRows(w, texts, utf8);
  else if (w->kind == XWK_COMBO && !IsEditableCombo(w))
    SetComboMenu(w, texts, utf8);
  else
    return false;
  return true;
}

void SetControlText(XwWindow* w, const char* text, bool is_utf8) {
  if (SetItems(w, text, is_utf8)) return;
  if (IsEditableCombo(w)) {
    if (w->linked) SetControlText(w->linked, text, is_utf8);
    return;
  }
  if (w->kind == XWK_EDIT)
    return SetEditText(Native(w), is_utf8 ? text : MacRomanToUtf8(text ? text : "").c_str());
  // What the toolkit draws itself is kept in its own characters.
  const std::string given = ShownText(w, text);
  const std::string utf8 = is_utf8 ? ValidUtf8(given) : MacRomanToUtf8(given.c_str());
  const std::string shown = is_utf8 ? Utf8ToMacRoman(given.c_str()) : given;
  const bool self_drawn =
      w->kind == XWK_COLOR || (w->kind == XWK_BUTTON && w->style & (XWC_OWN_TEXT | XWC_BESIDE));
  if (self_drawn) {
    w->text = static_cast<char*>(realloc(w->text, shown.size() + 2));
    if (!w->text) OutOfMemory();
    memcpy(w->text, shown.c_str(), shown.size() + 1);
    SetPaneName(Native(w), utf8.c_str());
    Draw1Control(Native(w));
  } else if (w->kind == XWK_LABEL) {
    SetStaticText(Native(w), utf8.c_str());
  } else {
    SetControlTitle(Native(w), utf8.c_str());
  }
}

void EnableControl(XwWindow* w, bool enable) {
  if (w->kind == XWK_EDIT && w->style & XWC_VARIANT)
    SetEditReadOnly(Native(w), enable);
  else
    enable ? ActivateControl(Native(w)) : DeactivateControl(Native(w));
  if (!IsEditableCombo(w) || !w->linked) return;
  w->linked->enabled = enable;
  EnableControl(w->linked, enable);
}

}  // namespace

void XwShow(XwWindow* w, int show) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  if (IsTopLevel(w))
    ShowTopLevel(w, show != 0);
  else if (IsSub(w))
    ShowSub(w, show != 0);
  else
    ShowControlRecord(w, show != 0);
}

void XwEnable(XwWindow* w, int enable) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  w->enabled = enable != 0;
  if (IsTopLevel(w))
    ActivateWindow(NativeWindow(w), enable != 0);
  else if (IsControl(w))
    EnableControl(w, enable != 0);
}

void XwSetFocus(XwWindow* w) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  XwWindow* top = TopLevel(w);
  SetUserFocusWindow(NativeWindow(top));
  ClearKeyboardFocus(NativeWindow(top));
  Inp.focus = top;
  MoveWaitingFocus(top);
  XwWindow* box = IsEditableCombo(w) ? w->linked : w->kind == XWK_EDIT ? w : nullptr;
  if (box) SetKeyboardFocus(NativeWindow(top), Native(box), kControlEditTextPart);
}

void XwSetText(XwWindow* w, const char* text) {
  if (!CheckWindow(w) || IsSub(w)) return;
  TargetScope scope;
  if (IsControl(w)) return SetControlText(w, text, false);
  const unsigned char* title = C2PSTR(text);
  char cut[kTitleLimit + 1];
  memcpy(cut, title + 1, title[0]);
  cut[title[0]] = 0;
  char utf8[kTitleLimit * 3 + 1];
  MacRomanToUtf8(cut, utf8, sizeof utf8);
  SetWindowTitle(NativeWindow(w), utf8);
}

void XwSetTextUtf8(XwWindow* w, const char* utf8) {
  if (!CheckWindow(w) || IsSub(w)) return;
  TargetScope scope;
  if (IsControl(w)) return SetControlText(w, utf8, true);
  const std::string title = ValidUtf8(utf8 ? utf8 : "");
  SetWindowTitle(NativeWindow(w), title.substr(0, CutUtf8(title, kLongestTitle)).c_str());
}

void XwSetScrollHandler(XwWindow* w, XwScrollHandler handler) {
  if (CheckWindow(w)) w->scroll_handler = handler;
}

void XwSetActivationHandler(XwWindow* w, XwActivationHandler handler) {
  if (CheckWindow(w) && IsTopLevel(w)) w->activation_handler = handler;
}

void XwSetContextMenuHandler(XwWindow* w, XwContextMenuHandler handler) {
  if (CheckWindow(w) && IsTopLevel(w)) w->context_menu_handler = handler;
}

void XwSetDragHandler(XwWindow* w, int take, XwDragHandler handler) {
  if (!CheckWindow(w) || !IsTopLevel(w)) return;
  w->drag_handler = handler;
  const uint32_t refuses = kWindowRefusesFilesAttribute;
  ChangeWindowAttributes(NativeWindow(w), take ? 0 : refuses, take ? refuses : 0);
}

void XwSetGround(XwWindow* window, const int32_t* colour, int brush) {
  static constexpr int16_t kCodes[] = {0, 15, 1, 7, 52};
  if (!CheckWindow(window)) return;
  if (colour) {
    window->brush = 0;
    window->color = *colour;
  } else {
    window->brush = brush >= 0 && brush <= 4 ? kCodes[brush] : Sat16(brush);
  }
  if (IsSub(window)) UpdatePane(window);
  if (!IsTopLevel(window)) return;
  WindowRef native = NativeWindow(window);
  SetWindowBackgroundColor(native,
                           IsRealColor(window->color) ? ColorToRgb(window->color) : kNoColor);
  SetThemeWindowBackground(native, window->brush, true);
}
