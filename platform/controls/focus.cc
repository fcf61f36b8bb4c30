// The keyboard: which control has it, and what Tab, the default buttons and letters do.
#include "platform/access/access.h"
#include "platform/controls/control.h"
#include "platform/text/utf8.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

// `marked`: the area of the ring is also marked as lost content.
void RedrawRing(Control* c, bool marked) {
  if (!IsControlVisible(c)) return;
  RedrawArea(OwnerOf(c), c->pane, RingArea(c));
  if (!marked) return;
  Region area = PaneArea(c->pane);
  area.Intersect(RingArea(c));
  area.Subtract(ControlArea(c));
  if (!area.empty()) InvalidateWindow(OwnerOf(c).window, area.extents(), false);
}

// `part` tells the control where the focus goes: 0, or to the next or the previous one by Tab.
void TakeFrom(WindowControls& all, int part = 0) {
  Control* before = all.focus;
  if (!before) return;
  all.focus = nullptr;
  all.tab_from = before;
  NoticeChange(before->object.serial, Change::kState);
  DispatchScope scope;
  if (before->kind->focused) before->kind->focused(before, false);
  SendControlEvent(before, kEventControlSetFocusPart, part);
  if (IsValidControl(before)) RedrawRing(before, true);
}

// The next after `from` (null: the first) that Tab reaches; null when there is none.
Control* NextByTab(const WindowControls& all, const Control* from, bool back) {
  auto step = [&](const Control* c) -> Control* {
    if (!c) return back ? all.last : all.first;
    return back ? c->previous : c->next;
  };
  // Once around, and past the end.
  Control* c = step(from);
  for (int ends = 0; ends < 2;) {
    if (!c) {
      ++ends;
      c = step(nullptr);
      if (!c) return nullptr;
      continue;
    }
    if (CanTakeKeys(c, kKeysByTab)) return c;
    c = step(c);
  }
  return nullptr;
}

}  // namespace

bool CanTakeKeys(const Control* c, uint8_t how) {
  return (c->keys & how) && c->active && IsControlVisible(const_cast<Control*>(c));
}

static void GiveTo(WindowControls& all, Control* c, int part, int left_by) {
  DispatchScope scope;
  TakeFrom(all, left_by);
  // A handler may have ended the window, or given the keyboard to another.
  if (!IsValidControl(c) || !CanTakeKeys(c, kKeysByTab | kKeysByRequest) || OwnerOf(c).focus)
    return;
  OwnerOf(c).focus = c;
  NoticeChange(c->object.serial, Change::kState);
  if (c->kind->focused) c->kind->focused(c, true);
  SendControlEvent(c, kEventControlSetFocusPart, part);
  if (IsValidControl(c) && OwnerOf(c).focus == c) RedrawRing(c, false);
}

void SetKeyboardFocus(WindowRef w, ControlRef c, int part) {
  WindowControls* all = ControlsOf(w);
  if (!all || !IsValidControl(c) || &OwnerOf(c) != all) return;
  if (part == 0) {
    if (all->focus == c) TakeFrom(*all);
  } else if (all->focus != c && CanTakeKeys(c, kKeysByTab | kKeysByRequest)) {
    GiveTo(*all, c, part, 0);
  }
}

void ClearKeyboardFocus(WindowRef w) {
  if (WindowControls* all = ControlsOf(w)) TakeFrom(*all);
}

ControlRef GetKeyboardFocus(WindowRef w) {
  WindowControls* all = ControlsOf(w);
  return all ? all->focus : nullptr;
}

void LoseFocus(Control* c) {
  if (OwnerOf(c).focus == c) TakeFrom(OwnerOf(c));
}

void SetDefaultButtons(WindowRef w, ControlRef ok, ControlRef cancel) {
  PaneRef root = RootPane(w);
  if (!root) return;
  auto own = [&](ControlRef c) {
    return IsValidControl(c) && &OwnerOf(c) == root->owner ? c : nullptr;
  };
  Control* before = root->owner->ok;
  root->owner->ok = own(ok);
  root->owner->cancel = own(cancel);
  if (before == root->owner->ok) return;
  Draw1Control(before);
  Draw1Control(root->owner->ok);
}

void SetTabMoves(WindowRef w, bool moves) {
  if (PaneRef root = RootPane(w)) root->owner->tab_moves = moves;
}

bool MoveFocusByTab(WindowControls& all, bool back) {
  Control* next = NextByTab(all, all.focus ? all.focus : all.tab_from, back);
  if (next) GiveTo(all, next, kWholeControl, back ? kControlFocusPrevPart : kControlFocusNextPart);
  return next != nullptr;
}

OSStatus HandleActivation(HandlerCall*, Event* event, void*) {
  WindowControls* all = ControlsOf(event->window);
  if (!all) return eventNotHandledErr;
  if (event->kind == kEventWindowDeactivated) ShowLetters(*all, false);
  if (all->focus && all->focus->kind->focused)
    all->focus->kind->focused(all->focus, event->kind == kEventWindowActivated);
  if (all->focus) RedrawRing(all->focus, false);
  Draw1Control(all->ok);
  for (Control* c = all->first; c; c = c->next)
    if (c->kind->front_looks && c->shown) Draw1Control(c);
  return eventNotHandledErr;
}

}  // namespace platform
