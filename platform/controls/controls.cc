// Making and ending controls, and what they are.
#include <algorithm>

#include "platform/access/access.h"
#include "platform/controls/control.h"
#include "platform/text/utf8.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

CursorRef text_cursor;  // made on first use

void ReleaseRecord(void* record) {
  auto* c = static_cast<Control*>(record);
  if (c->kind->end) c->kind->end(c);
  delete c;
}

void Describe(const void* record, Description* out) {
  auto* c = static_cast<const Control*>(record);
  auto* control = const_cast<Control*>(c);
  const WindowControls& all = OwnerOf(c);
  *out = {};
  out->role = c->role;
  out->name = c->described.empty() ? c->text : c->described;
  const Rect content = GetWindowBounds(all.window, kWindowContentRgn);
  out->bounds = Offset(GetControlBounds(control), content.left, content.top);
  auto is = [&](bool yes, uint32_t bit) { out->state |= yes ? bit : 0; };
  is(all.window->visible && IsControlVisible(control), kIsShown);
  is(c->active, kIsEnabled);
  is(c->keys & (kKeysByTab | kKeysByRequest), kIsFocusable);
  is(all.focus == c, kIsFocused);
  is(IsControlHilited(control), kIsPressed);
  is(all.ok == c, kIsDefault);
  if (c->active && c->kind->step)
    out->actions |= kActionIncrease | kActionDecrease;
  else if (c->active && c->kind->key)
    out->actions |= kActionPress;
  if (CanTakeKeys(c, kKeysByTab | kKeysByRequest)) out->actions |= kActionFocus;
  if (c->kind->describe) c->kind->describe(c, out);
}

constexpr ObjectType kControlType = {ObjectKind::kControl, ReleaseRecord, Describe};

void Unlink(Control* c) {
  LeaveBands(c);
  WindowControls& all = OwnerOf(c);
  (c->previous ? c->previous->next : all.first) = c->next;
  (c->next ? c->next->previous : all.last) = c->previous;
  if (all.ok == c) all.ok = nullptr;
  if (all.cancel == c) all.cancel = nullptr;
  if (all.tab_from == c) all.tab_from = c->previous;
  if (c->whole) c->whole->part = nullptr;
  SetControlOpener(c, nullptr);
  if (c->opens_for) SetControlOpener(c->opens_for, nullptr);
}

OSStatus EndOfWindow(HandlerCall*, Event* event, void*) {
  WindowControls* all = event->window->controls;
  if (!all) return eventNotHandledErr;
  for (Control* c = all->first; c;) {
    Control* next = c->next;
    ForgetTracking(c);
    EndObject(&c->object);
    c = next;
  }
  while (!all->root.children.empty()) DisposePane(all->root.children.back());
  ReleaseControlContext(*all);
  event->window->controls = nullptr;
  delete all;
  return eventNotHandledErr;
}

// What the platform does by itself in a window comes behind all other handlers.
OSStatus WindowCreated(HandlerCall*, Event* event, void*) {
  constexpr EventKind kPress[] = {{kEventClassMouse, kEventMouseDown}};
  constexpr EventKind kWheel[] = {{kEventClassMouse, kEventMouseWheelMoved}};
  constexpr EventKind kKeys[] = {{kEventClassKeyboard, kEventRawKeyDown},
                                 {kEventClassKeyboard, kEventRawKeyRepeat},
                                 {kEventClassKeyboard, kEventRawKeyModifiersChanged}};
  constexpr EventKind kActivation[] = {{kEventClassWindow, kEventWindowActivated},
                                       {kEventClassWindow, kEventWindowDeactivated}};
  constexpr EventKind kEnd[] = {{kEventClassWindow, kEventWindowEnding}};
  EventTargetRef target = GetWindowEventTarget(event->window);
  InstallEventHandler(target, HandlePress, kPress, 1, nullptr);
  InstallEventHandler(target, HandleWheel, kWheel, 1, nullptr);
  InstallEventHandler(target, HandleKey, kKeys, 3, nullptr);
  InstallEventHandler(target, HandleActivation, kActivation, 2, nullptr);
  InstallEventHandler(target, EndOfWindow, kEnd, 1, nullptr);
  return eventNotHandledErr;
}

}  // namespace

void InitControls() {
  constexpr EventKind kCreated[] = {{kEventClassWindow, kEventWindowCreated}};
  InstallEventHandler(GetApplicationEventTarget(), WindowCreated, kCreated, 1, nullptr);
}

void FinishControls() {
  ReleaseCursor(text_cursor);
  text_cursor = nullptr;
  ForgetTracking(nullptr);
}

CursorRef FindControlCursor(Point where, WindowRef w) {
  const Control* c = FindControlUnderMouse(where, w);
  if (!c || !c->kind->text_cursor || !c->active) return nullptr;
  if (!text_cursor) text_cursor = CreateDesktopCursor(DesktopCursor::kText);
  return text_cursor;
}

WindowControls* ControlsOf(WindowRef w) {
  return IsValidWindow(w) ? w->controls : nullptr;
}

bool IsValidControl(ControlRef c) {
  return IsLiveObject(reinterpret_cast<const Object*>(c)) &&
         c->object.type->kind == ObjectKind::kControl;
}

Control* NewControl(PaneRef pane, const KindRow& kind, const Rect& bounds) {
  if (!pane) return nullptr;
  auto* c = new Control;
  c->object.type = &kControlType;
  c->object.record = c;
  c->kind = &kind;
  c->pane = pane;
  c->bounds = c->area = bounds;
  c->horizontal = bounds.width() > bounds.height();
  WindowControls& all = *pane->owner;
  c->previous = all.last;
  (all.last ? all.last->next : all.first) = c;
  all.last = c;
  c->role = kind.role;
  c->minimum = kind.minimum;
  c->maximum = kind.maximum;
  EnterObject(&c->object);
  EnterBands(c);
  NoticeChange(all.window->object.serial, Change::kChildren);
  return c;
}

void DisposeControl(ControlRef c) {
  if (!IsValidControl(c)) return;
  LoseFocus(c);
  DisposeControl(c->part);
  if (IsControlVisible(c)) Uncover(c, ControlArea(c));
  ForgetTracking(c);
  Unlink(c);
  NoticeChange(c->object.serial, Change::kEnded);
  NoticeChange(OwnerOf(c).window->object.serial, Change::kChildren);
  EndObject(&c->object);
}

EventTargetRef GetControlEventTarget(ControlRef c) {
  return IsValidControl(c) ? &c->object.target : nullptr;
}
void SetControlReference(ControlRef c, void* reference) {
  if (IsValidControl(c)) c->reference = reference;
}
void* GetControlReference(ControlRef c) {
  return IsValidControl(c) ? c->reference : nullptr;
}
WindowRef GetControlOwner(ControlRef c) {
  return IsValidControl(c) ? OwnerOf(c).window : nullptr;
}

Rect GetControlBounds(ControlRef c) {
  if (!IsValidControl(c)) return {};
  return Offset(c->bounds, c->pane->bounds.left, c->pane->bounds.top);
}

namespace {

// Gives it another place; what it uncovers is erased and lost.
template <typename Function>
void Replace(Control* c, Function place) {
  auto covered = [c] { return OwnerOf(c).focus == c ? RingArea(c) : ControlArea(c); };
  const bool visible = IsControlVisible(c);
  const Rect before = covered();
  LeaveBands(c);
  place();
  EnterBands(c);
  if (!visible) return;
  Uncover(c, before);
  RedrawArea(OwnerOf(c), c->pane, covered());
}

}  // namespace

void SetControlBounds(ControlRef c, const Rect& bounds) {
  if (!IsValidControl(c) || c->bounds == bounds) return;
  Replace(c, [&] {
    c->bounds = c->area = bounds;
    c->horizontal = bounds.width() > bounds.height();
    if (c->kind->placed) c->kind->placed(c);
  });
  NoticeChange(c->object.serial, Change::kBounds);
}

void SetControlArea(ControlRef c, const Rect& area) {
  if (!IsValidControl(c)) return;
  const Rect& b = c->bounds;
  const Rect wanted{std::min(area.left, b.left), std::min(area.top, b.top),
                    std::max(area.right, b.right), std::max(area.bottom, b.bottom)};
  if (wanted == c->area) return;
  Replace(c, [&] {
    c->area = wanted;
    if (c->kind->placed) c->kind->placed(c);
  });
}

Rect GetControlArea(ControlRef c) {
  return IsValidControl(c) ? ControlArea(c) : Rect();
}

static void SetText(Control* c, const char* utf8) {
  std::string text = ValidUtf8(utf8 ? utf8 : "");
  if (c->text == text) return;
  c->text = std::move(text);
  NoticeChange(c->object.serial, Change::kName);
  Draw1Control(c);
}

void SetControlTitle(ControlRef c, const char* utf8) {
  if (IsValidControl(c) && c->kind->has_title) SetText(c, utf8);
}
const char* GetControlTitle(ControlRef c) {
  return IsValidControl(c) && c->kind->has_title ? c->text.c_str() : "";
}
void SetStaticText(ControlRef c, const char* utf8) {
  if (IsValidControl(c) && c->kind == &kStaticTextKind) SetText(c, utf8);
}
void SetPaneName(ControlRef c, const char* utf8) {
  if (IsValidControl(c) && c->kind == &kUserPaneKind) SetText(c, utf8);
}

void SetControlRole(ControlRef c, ObjectRole role) {
  if (IsValidControl(c)) c->role = role;
}
void SetControlCorner(ControlRef c, int corner) {
  if (IsValidControl(c)) c->corner = corner;
}
void SetControlDescription(ControlRef c, const char* utf8) {
  if (!IsValidControl(c)) return;
  c->described = ValidUtf8(utf8 ? utf8 : "");
  NoticeChange(c->object.serial, Change::kName);
}
bool DescribeControl(ControlRef c, uint64_t* serial, Description* out) {
  if (!IsValidControl(c)) return false;
  *serial = c->object.serial;
  Describe(c, out);
  return true;
}
void PressControl(ControlRef c) {
  if (IsValidControl(c) && c->active && c->kind->key && !c->kind->step) PressByKey(c);
}
void StepControl(ControlRef c, bool up) {
  if (!IsValidControl(c) || !c->active || !c->kind->step) return;
  DispatchScope scope;
  c->kind->step(c, up);
}
// A slider stands among other settings, where who scrolls past would change it unseen: it takes the
// wheel with the keyboard only.
bool ControlTakesWheel(ControlRef c) {
  if (!IsValidControl(c) || !c->kind->wheel) return false;
  return c->kind != &kSliderKind || OwnerOf(c).focus == c;
}
void AttachControl(ControlRef whole, ControlRef part) {
  if (!IsValidControl(whole) || !IsValidControl(part)) return;
  whole->part = part;
  part->whole = whole;
}

void SetControl32BitValue(ControlRef c, int32_t value) {
  if (!IsValidControl(c)) return;
  value = std::clamp(value, c->minimum, c->maximum);
  if (c->value == value) return;
  c->value = value;
  NoticeChange(c->object.serial, Change::kValue);
  RedrawWithRing(c);
}
void SetControlRange(ControlRef c, int32_t minimum, int32_t maximum) {
  if (!IsValidControl(c)) return;
  maximum = std::max(minimum, maximum);
  if (c->minimum == minimum && c->maximum == maximum) return;
  c->minimum = minimum;
  c->maximum = maximum;
  c->value = std::clamp(c->value, minimum, maximum);
  NoticeChange(c->object.serial, Change::kValue);
  RedrawWithRing(c);
}
void SetControlViewSize(ControlRef c, int32_t view) {
  if (!IsValidControl(c) || c->view == view) return;
  c->view = view;
  RedrawWithRing(c);
}
int32_t GetControl32BitValue(ControlRef c) {
  return IsValidControl(c) ? c->value : 0;
}
int32_t GetControl32BitMaximum(ControlRef c) {
  return IsValidControl(c) ? c->maximum : 0;
}

void SetControlKeys(ControlRef c, uint8_t keys) {
  if (IsValidControl(c)) c->keys = keys;
}

void ActivateControl(ControlRef c) {
  if (!IsValidControl(c) || c->active) return;
  c->active = true;
  NoticeChange(c->object.serial, Change::kState);
  Draw1Control(c);
  ActivateControl(c->part);
}

void DeactivateControl(ControlRef c) {
  if (!IsValidControl(c) || !c->active) return;
  c->active = false;
  NoticeChange(c->object.serial, Change::kState);
  c->inside = false;
  LoseFocus(c);
  if (!IsValidControl(c)) return;
  Draw1Control(c);
  DeactivateControl(c->part);
}

bool IsControlActive(ControlRef c) {
  return IsValidControl(c) && c->active;
}

void ShowControl(ControlRef c) {
  if (!IsValidControl(c) || c->shown) return;
  c->shown = true;
  NoticeChange(c->object.serial, Change::kState);
  Draw1Control(c);
  ShowControl(c->part);
}

void HideControl(ControlRef c) {
  if (!IsValidControl(c) || !c->shown) return;
  LoseFocus(c);
  if (!IsValidControl(c)) return;
  HideControl(c->part);
  const bool visible = IsControlVisible(c);
  c->shown = c->inside = false;
  NoticeChange(c->object.serial, Change::kState);
  if (visible) Uncover(c, ControlArea(c));
}

bool IsControlVisible(ControlRef c) {
  return IsValidControl(c) && c->shown && PaneShows(c->pane);
}
bool IsControlHilited(ControlRef c) {
  return IsValidControl(c) && (c->inside || c->held);
}

bool IsControlLetterShown(ControlRef c) {
  return IsValidControl(c) && c->underlined;
}

void SetControlOpener(ControlRef c, ControlRef opener) {
  if (!IsValidControl(c)) return;
  if (c->opener) c->opener->opens_for = nullptr;
  c->opener = IsValidControl(opener) && &OwnerOf(opener) == &OwnerOf(c) ? opener : nullptr;
  if (!c->opener) return;
  if (opener->opens_for) opener->opens_for->opener = nullptr;
  opener->opens_for = c;
}

void HoldControl(ControlRef c, bool held) {
  if (!IsValidControl(c) || c->held == held) return;
  c->held = held;
  NoticeChange(c->object.serial, Change::kState);
  Draw1Control(c);
}

}  // namespace platform
