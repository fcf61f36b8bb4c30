// Showing, enabling, focus, title and the other attributes of a window.
#include <cstring>

#include "platform/text/mac_roman.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/clip.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;

namespace {

constexpr int kTitleLimit = 255;
// Bytes of UTF-8: more than any title bar shows, and less than a display would refuse.
constexpr size_t kLongestTitle = 4096;

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
  ResetClipMask(w->parent);
  ResetClipsFrom(w);
  PostExpose(show ? w : w->parent);
}

}  // namespace

void XwShow(XwWindow* w, int show) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  if (IsTopLevel(w))
    ShowTopLevel(w, show != 0);
  else if (IsSub(w))
    ShowSub(w, show != 0);
}

void XwEnable(XwWindow* w, int enable) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  w->enabled = enable != 0;
  if (IsTopLevel(w)) ActivateWindow(NativeWindow(w), enable != 0);
}

void XwSetFocus(XwWindow* w) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  XwWindow* top = TopLevel(w);
  SetUserFocusWindow(NativeWindow(top));
  ClearKeyboardFocus(NativeWindow(top));
  Inp.focus = top;
}

void XwSetText(XwWindow* w, const char* text) {
  if (!CheckWindow(w) || !IsTopLevel(w)) return;
  const unsigned char* title = C2PSTR(text);
  char cut[kTitleLimit + 1];
  memcpy(cut, title + 1, title[0]);
  cut[title[0]] = 0;
  char utf8[kTitleLimit * 3 + 1];
  MacRomanToUtf8(cut, utf8, sizeof utf8);
  SetWindowTitle(NativeWindow(w), utf8);
}

void XwSetTextUtf8(XwWindow* w, const char* utf8) {
  if (!CheckWindow(w) || !IsTopLevel(w)) return;
  const std::string title = ValidUtf8(utf8 ? utf8 : "");
  SetWindowTitle(NativeWindow(w), title.substr(0, CutUtf8(title, kLongestTitle)).c_str());
}

void XwSetValue(XwWindow* w, XwValue value) {
  if (CheckWindow(w) && IsTopLevel(w)) SetWindowModified(NativeWindow(w), (value & 255) != 0);
}

char* XwGetText(XwWindow* w, char* dst) {
  if (!dst) return dst;
  *dst = 0;
  if (CheckWindow(w) && IsTopLevel(w))
    Utf8ToMacRoman(GetWindowTitle(NativeWindow(w)), dst, kTitleLimit + 1);
  return dst;
}

void XwSetScrollHandler(XwWindow* w, XwScrollHandler handler) {
  if (CheckWindow(w)) w->scroll_handler = handler;
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
  if (!IsTopLevel(window)) return;
  WindowRef native = NativeWindow(window);
  SetWindowBackgroundColor(native,
                           IsRealColor(window->color) ? ColorToRgb(window->color) : kNoColor);
  SetThemeWindowBackground(native, window->brush, true);
}
