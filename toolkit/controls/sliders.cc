#include "toolkit/controls/sliders.h"

#include <algorithm>
#include <cstdlib>

#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/memory.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/control_bounds.h"

using namespace platform;

namespace {

// Null for a record whose user_data the program has set to null.
ScrollBlock* BlockOf(const XwWindow* w) {
  return static_cast<ScrollBlock*>(w->user_data);
}

int64_t StepOf(const ScrollBlock& b, int part) {
  switch (part) {
    case kControlUpButtonPart:
      return -int64_t{b.line};
    case kControlDownButtonPart:
      return b.line;
    case kControlPageUpPart:
      return -int64_t{b.page};
    case kControlPageDownPart:
      return b.page;
    default:
      return 0;
  }
}

// The upper bound comes last, since it may lie below the minimum.
int32_t Bounded(const ScrollBlock& b, int64_t value) {
  value = std::max<int64_t>(value, b.minimum);
  return Saturate(std::min(value, int64_t{b.maximum} - b.minimum + 1 - b.page));
}

int LastStart(int32_t maximum, int32_t page) {
  return Saturate(int64_t{maximum} + 1 - page);
}

XwWindow* Finish(XwWindow* w, int32_t value, const ScrollBlock& block) {
  if (!w) return nullptr;
  w->value = value;
  w->user_data = malloc(sizeof(ScrollBlock));
  if (!w->user_data) OutOfMemory();
  *BlockOf(w) = block;
  InstallControlHandler(w, Scroll_func, {kEventControlHit});
  ActivateWindowControl(w, nullptr);
  return w;
}

bool IsScroll(const XwWindow* w) {
  return CheckWindow(w) && w->kind == XWK_SCROLL && BlockOf(w);
}

}  // namespace

void ScrollBarLiveTrackingFunc(ControlRef control, int part) {
  auto* w = static_cast<XwWindow*>(GetControlReference(control));
  if (!w || !BlockOf(w)) return;
  const ScrollBlock& block = *BlockOf(w);
  const int64_t step = StepOf(block, part);
  const bool thumb = part < kControlUpButtonPart || part > kControlPageDownPart;
  const int32_t value =
      Bounded(block, thumb ? GetControl32BitValue(control) : int64_t{w->value} + step);
  if (value == w->value) {
    if (thumb) SetControl32BitValue(control, value);  // it stops at its bound
    return;
  }
  w->value = value;
  SetControl32BitValue(control, value);
  DirectSendEvent(w->parent, XWE_SCROLLING, w->id, value);
  Inp.type = XWE_NONE;
}

OSStatus Scroll_func(HandlerCall*, Event* event, void* data) {
  auto* w = static_cast<XwWindow*>(data);
  // The change by the keyboard replaces the key's event.
  if (event->control.by_key) Inp.type = XWE_NONE;
  if (!w->id) return noErr;
  ControlRef control = NativeControl(w);
  int32_t value = GetControl32BitValue(control);
  if (w->style & XWC_VARIANT && BlockOf(w)) {
    value = Bounded(*BlockOf(w), value + StepOf(*BlockOf(w), event->control.part));
    SetControl32BitValue(control, value);
  }
  Inp.window = w->parent;
  Inp.type = XWE_SCROLLED;
  Inp.item = w->id;
  Inp.value = value;
  return noErr;
}

XwWindow* XwSlider(XwWindow* parent, int32_t id, int x, int y, int w, int h, uint32_t style,
                   int32_t minimum, int32_t maximum, int32_t value) {
  Rect r = ControlRect(XWK_SCROLL, style, x, y, w, h);
  const bool horizontal = r.width() > r.height();
  r = horizontal ? Rect{r.left, r.top + 1, r.right - 3, r.bottom + 1}
                 : Rect{r.left, r.top, r.right, r.bottom - 3};
  ControlRef control = CreateSliderControl(PaneForControl(parent), r, horizontal, value, minimum,
                                           maximum, ScrollBarLiveTrackingFunc);
  return Finish(CreateWindowControl(parent, id, XWK_SCROLL, x, y, w, h, style, nullptr, 0, control),
                value, {minimum, maximum, 0, 0});
}

void XwSetSliderRange(XwWindow* slider, int32_t minimum, int32_t maximum, int32_t value) {
  if (!IsScroll(slider)) return;
  TargetScope scope;
  BlockOf(slider)->minimum = minimum;
  BlockOf(slider)->maximum = maximum;
  slider->value = value;
  SetControlRange(NativeControl(slider), minimum, maximum);
  SetControl32BitValue(NativeControl(slider), value);
}

XwWindow* XwScrollBar(XwWindow* parent, int32_t id, int x, int y, int w, int h, uint32_t style,
                      int32_t minimum, int32_t maximum, int32_t line, int32_t page, int32_t value) {
  const bool live = !(style & XWC_VARIANT);
  ControlRef control = CreateScrollBarControl(
      PaneForControl(parent), ControlRect(XWK_SCROLL, style, x, y, w, h), value, minimum,
      LastStart(maximum, page), page, live, ScrollBarLiveTrackingFunc);
  SetScrollBarFramed(control, !(style & XWC_EDGE));
  return Finish(CreateWindowControl(parent, id, XWK_SCROLL, x, y, w, h, style, nullptr, 0, control),
                value, {minimum, maximum, line, page});
}

void XwSetScrollRange(XwWindow* bar, int32_t minimum, int32_t maximum, int32_t line, int32_t page,
                      int32_t value) {
  if (!IsScroll(bar)) return;
  TargetScope scope;
  *BlockOf(bar) = {minimum, maximum, line, page};
  bar->value = value;
  SetControlRange(NativeControl(bar), minimum, LastStart(maximum, page));
  SetControl32BitValue(NativeControl(bar), value);
  SetControlViewSize(NativeControl(bar), page);
}
