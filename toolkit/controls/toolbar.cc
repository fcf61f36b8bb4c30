// The toolbar of a window: a sub-window across its top, filled with controls out of a list.
#include <algorithm>
#include <cstdlib>

#include "platform/input/translate.h"
#include "platform/theme/theme.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/background.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/item_texts.h"

using namespace platform;

namespace {

constexpr int kHeight = 40, kBand = 2;
constexpr int kBrushCode = 4;  // of XwSetGround
constexpr int kLeft = 7, kTop = 7, kLowTop = 9, kCheckTop = 10;
constexpr int kTall = 26, kLow = 24;
constexpr int kCloser = 3;
constexpr uint32_t kWidthBits = 0x7FF;
constexpr int kTypeShift = 24, kTypeBits = 15;
constexpr uint32_t kVisible = XWC_VISIBLE, kBoth = XWC_VISIBLE | XWC_ENABLED;

// What an item needs to become a control.
struct Place {
  XwWindow* bar;
  const XwToolbarItem& item;
  int x;
  uint32_t style;
  int width;  // as the item says; 0: by itself

  const char* text() const {
    const auto* text = reinterpret_cast<const char*>(item.data);
    return text ? text : "";
  }
  const char* const* texts() const { return reinterpret_cast<const char* const*>(item.data); }
};

// Each makes its control and returns by how much the next one is further right.
int AddButton(const Place& p) {
  const int text = XwTextWidth(FT_BUTTON, p.text());
  if (p.item.menu) {
    const int width = *p.text() ? text + 20 : 15;
    XwButton(p.bar, p.text(), p.item.id, p.x, kTop, width, kTall, p.style | XWC_MENU, p.item.menu);
    return width + 10;
  }
  const int width = std::max(text + 30, 15);
  XwButton(p.bar, p.text(), p.item.id, p.x, kLowTop, width, kLow, p.style, XwValue{0});
  return width + 5;
}

int AddComboBox(const Place& p, uint32_t style, int margin) {
  int width = p.width;
  for (const char* const* t = p.texts(); t && *t; ++t)
    width = std::max(width, Saturate(int64_t{XwTextWidth(nullptr, *t)} + margin));
  XwComboBox(p.bar, p.texts(), p.item.id, p.x, kTop, width, kTall, p.style | style, 0);
  return Saturate(int64_t{width} + 2);
}

int AddColor(const Place& p) {
  XwColor(p.bar, "", p.item.id, p.x, kTop, 50, kTall, p.style | XWC_ICON, int32_t(p.item.data));
  return 52;
}

int AddIcon(const Place& p) {
  auto* icon = XwLoadIcon(reinterpret_cast<XwIcon*>(p.item.data));
  const bool menu = p.item.menu != 0;
  const uint32_t style = p.style | XWC_ICON | (menu ? XWC_MENU : 0);
  XwButton(p.bar, reinterpret_cast<const char*>(icon), p.item.id, p.x, kTop, menu ? 34 : 26, kTall,
           style, p.item.menu);
  return menu ? 36 : 28;
}

int AddOptions(const Place& p) {
  XwButton(p.bar, XwLoadIcon(IC_OPT_DIALOG), p.item.id, p.x - 3, kTop, 15, kTall,
           p.style | XWC_ICON, 0);
  return 14;
}

int AddLabel(const Place& p) {
  const int width = p.width ? p.width : XwTextWidth(nullptr, p.text()) + 25;
  XwLabel(p.bar, p.text(), p.item.id, p.x, kTop, width, kTall, p.style | XWC_VARIANT | XWC_RIGHT);
  return width;
}

// The text is "minimum,maximum,value"; what is missing is 0.
int AddSlider(const Place& p) {
  int32_t numbers[3] = {};
  const char* at = p.text();
  for (int32_t& n : numbers) {
    char* end = nullptr;
    const long long value = strtoll(at, &end, 10);
    if (end == at) break;
    n = int32_t(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
    if (*end != ',') break;
    at = end + 1;
  }
  XwSlider(p.bar, p.item.id, p.x, kTop, p.width, kTall, p.style, numbers[0], numbers[1],
           numbers[2]);
  return p.width + 2;
}

int AddEditBox(const Place& p) {
  XwEditBox(p.bar, p.text(), p.item.id, p.x, kLowTop, p.width, kLow,
            p.style | XWC_DROPS_FOCUS | XWC_RIGHT);
  return p.width + 2;
}

int AddCheckBox(const Place& p) {
  XwCheckBox(p.bar, p.text(), p.item.id, p.x, kCheckTop, p.style, 0);
  return p.width ? p.width : XwTextWidth(XWF_NORMAL, p.text()) + 45;
}

int AddItem(const Place& p) {
  constexpr int kGap = 5;
  switch (p.item.word >> kTypeShift & kTypeBits) {
    case XWB_BUTTON >> kTypeShift:
      return AddButton(p);
    case XWB_EDIT_COMBO >> kTypeShift:
      return AddComboBox(p, XWC_VARIANT | XWC_EDITABLE | XWC_RIGHT, 55);
    case XWB_LIST >> kTypeShift:
      return AddComboBox(p, XWC_VARIANT, 45);
    case XWB_COLOR >> kTypeShift:
      return AddColor(p);
    case XWB_GAP >> kTypeShift:
      return kGap;
    case XWB_ICON >> kTypeShift:
      return AddIcon(p);
    case XWB_OPTIONS >> kTypeShift:
      return AddOptions(p);
    case XWB_LABEL >> kTypeShift:
      return AddLabel(p);
    case XWB_SLIDER >> kTypeShift:
      return AddSlider(p);
    case XWB_EDIT >> kTypeShift:
      return AddEditBox(p);
    case XWB_CHECK_BOX >> kTypeShift:
      return AddCheckBox(p);
    default:
      return 0;
  }
}

void AddItems(XwWindow* bar, const XwToolbarItem* items) {
  int64_t x = kLeft;
  for (const XwToolbarItem* i = items; i->word; ++i) {
    const uint32_t style = i->word & XWB_DISABLED ? kVisible : kBoth;
    x += AddItem({bar, *i, Saturate(x), style, int(i->word & kWidthBits)});
    if (i->word & XWB_CLOSER) x -= kCloser;
  }
}

void DrawBar(XwWindow* bar) {
  XwPush(bar);
  const Rect band{0, kHeight - kBand, XW_SCREENX, kHeight};
  EraseToBackground(band);
  DrawThemeSeparator(TargetContext(), band, kThemeStateActive);
  const XwWindow* window = bar->parent;
  if (window->flags2 & XW_DOCKED) {
    XwDrawSeparator(0, 0, window->width, 1);
    XwDrawSeparator(window->width - 1, 0, 1, bar->height);
    XwDrawSeparator(0, 0, 1, bar->height);
  }
  XwPop();
}

// Passes a control's event to the window as one event, with the place of the pointer.
void Forward(const XwWindow* bar) {
  const Point pointer = LastPointer();
  Inp.root_x = pointer.x;
  Inp.root_y = pointer.y;
  XwSendEvent(bar->parent, XWE_TOOLBAR, Inp.item, Inp.value, 0);
}

// Its events never reach the program.
int ToolBar(int type) {
  XwWindow* bar = Inp.window;
  Inp.type = XWE_NONE;
  if (type == XWE_CONTROL || type == XWE_EDIT_DONE || type == XWE_SCROLLED)
    Forward(bar);
  else if (type == XWE_EXPOSE)
    DrawBar(bar);
  return 0;
}

// False when there is none and none can be made.
bool HasEmptyBar(XwWindow* window) {
  XwWindow* bar = window->toolbar;
  if (!bar) {
    bar = XwCreate(window, 0, 0, XW_SCREENX, kHeight, ToolBar);
    if (!bar) return false;
    window->toolbar = bar;
    XwSetGround(bar, nullptr, kBrushCode);
    XwShow(bar, 1);
    return true;
  }
  for (int i = 0; i < bar->child_count; ++i) XwDestroy(bar->children[i]);
  bar->child_count = 0;
  return true;
}

// The control of a toolbar, for what is set in it.
XwWindow* ItemOf(XwWindow* window, int32_t id) {
  return CheckWindow(window) && window->toolbar ? XwFind(window->toolbar, id) : nullptr;
}

}  // namespace

XwWindow* XwSetToolbar(XwWindow* window, const XwToolbarItem* items) {
  if (!CheckWindow(window) || IsControl(window)) return nullptr;
  if (!items) {
    XwDestroy(window->toolbar);
    window->toolbar = nullptr;
    return nullptr;
  }
  TargetScope scope;
  if (!HasEmptyBar(window)) return nullptr;
  XwWindow* bar = window->toolbar;
  bar->user_data = const_cast<XwToolbarItem*>(items);
  bar->flags |= XW_DATA_NOT_OWNED;
  AddItems(bar, items);
  return bar;
}

void XwShowToolbar(XwWindow* window, int show) {
  if (CheckWindow(window) && window->toolbar) XwShow(window->toolbar, show);
}

void XwSetToolbarItem(XwWindow* window, int32_t id, int32_t state) {
  XwWindow* control = ItemOf(window, id);
  if (!control) return;
  // The value of an editable combo box is the list of its texts.
  if (!IsEditableCombo(control)) XwSetValue(control, state >> 1 & 1);
  XwEnable(control, state);
}

XwWindow* XwGetToolbarItem(XwWindow* window, int32_t id) {
  return ItemOf(window, id);
}
