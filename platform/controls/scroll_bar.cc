#include "platform/controls/control.h"
#include "platform/events/key_characters.h"
#include "platform/events/timers.h"

namespace platform {
namespace {

constexpr double kRepeatDelay = 0.4, kRepeatPeriod = 0.05;  // seconds
constexpr int kLinesANotch = 3;

// The press that is under way.
struct {
  Control* bar = nullptr;
  int part = 0;
  Point at;
  EventLoopTimerRef timer = nullptr;
} press;

bool Moves(const Control* c) {
  return c->maximum > c->minimum;
}

void Draw(Control* c, ContextRef context) {
  DrawThemeScrollBar(context, ThumbInfo(c));
}

void Border(const Control*, Rect*, int* corner) {
  *corner = 3;
}

int PartAt(const Control* c, Point where) {
  const Rect thumb = ThemeThumb(ThumbInfo(c));
  const int at = c->horizontal ? where.x : where.y;
  if (at < (c->horizontal ? thumb.left : thumb.top)) return kControlPageUpPart;
  return at < (c->horizontal ? thumb.right : thumb.bottom) ? kControlIndicatorPart
                                                           : kControlPageDownPart;
}

void StopRepeat() {
  RemoveEventLoopTimer(press.timer);
  press.timer = nullptr;
}

// Scrolls page after page until the thumb is under the pointer.
void Repeat(EventLoopTimerRef, void*) {
  Control* c = press.bar;
  if (!IsControlHeld(c)) return StopRepeat();
  DispatchScope scope;
  if (IsControlUnder(c, press.at) && Moves(c) && PartAt(c, press.at) == press.part)
    ActOnPart(c, press.part);
}

bool Press(Control* c, Point where) {
  if (!Moves(c)) return false;
  StopRepeat();
  press.bar = c;
  press.at = where;
  press.part = PartAt(c, where);
  if (press.part == kControlIndicatorPart) {
    HoldThumb(c, where);
    c->inside = true;
    Draw1Control(c);
    return true;
  }
  if (!c->live) return true;
  press.timer = InstallEventLoopTimer(kRepeatDelay, kRepeatPeriod, Repeat, nullptr);
  return ActOnPart(c, press.part);
}

void Drag(Control* c, Point where) {
  press.at = where;
  if (press.part != kControlIndicatorPart || !c->active || !IsControlVisible(c)) return;
  const int32_t value = HeldThumbValue(c, where);
  if (value == c->value) return;
  if (c->live)
    MoveThumb(c, value);
  else
    SetControl32BitValue(c, value);
}

bool Release(Control* c, bool inside) {
  StopRepeat();
  if (!c->active || !IsControlVisible(c)) return false;
  const bool thumb = press.part == kControlIndicatorPart;
  c->inside = false;
  Draw1Control(c);
  HitControl(c, false, thumb || inside ? press.part : 0);
  return false;
}

// Steps of one part, and the hit.
void Steps(Control* c, int part, int count, bool by_key) {
  if (!c->live) {
    for (int i = 0; i + 1 < count && IsValidControl(c); ++i) HitControl(c, by_key, part);
  } else {
    for (int i = 0; i < count; ++i)
      if (!ActOnPart(c, part)) return;
  }
  if (IsValidControl(c)) HitControl(c, by_key, count ? part : 0);
}

bool Key(Control* c, const Event& e) {
  if ((e.key.modifiers & kShortcut) || !Moves(c)) return false;
  static constexpr struct {
    uint8_t key;
    int part;
  } kRows[] = {{kLeftKey, kControlUpButtonPart},    {kUpKey, kControlUpButtonPart},
               {kRightKey, kControlDownButtonPart}, {kDownKey, kControlDownButtonPart},
               {kPageUpKey, kControlPageUpPart},    {kPageDownKey, kControlPageDownPart}};
  for (const auto& row : kRows) {
    if (row.key != e.key.character) continue;
    Steps(c, row.part, 1, true);
    return true;
  }
  if (e.key.character != kHomeKey && e.key.character != kEndKey) return false;
  SetControl32BitValue(c, e.key.character == kHomeKey ? c->minimum : c->maximum);
  if (!c->live || ActOnPart(c, kControlIndicatorPart)) HitControl(c, true, kControlIndicatorPart);
  return true;
}

void Wheel(Control* c, float dx, float dy) {
  if (!Moves(c) || (dy == 0 && (dx == 0 || !c->horizontal))) return;
  const int lines = TakeWheelSteps(c, dx, dy, kWheelNotch / kLinesANotch);
  Steps(c, lines < 0 ? kControlUpButtonPart : kControlDownButtonPart, lines < 0 ? -lines : lines,
        false);
}

void Step(Control* c, bool up) {
  if (Moves(c)) Steps(c, up ? kControlDownButtonPart : kControlUpButtonPart, 1, false);
}

}  // namespace

const KindRow kScrollBarKind = {.draw = Draw,
                                .press = Press,
                                .drag = Drag,
                                .release = Release,
                                .key = Key,
                                .describe = DescribeThumb,
                                .border = Border,
                                .act = nullptr,
                                .minimum = 0,
                                .maximum = 0,
                                .has_title = false,
                                .role = ObjectRole::kScrollBar,
                                .wheel = Wheel,
                                .step = Step,
                                .front_looks = true};

ControlRef CreateScrollBarControl(PaneRef pane, const Rect& bounds, int32_t value, int32_t minimum,
                                  int32_t maximum, int32_t view, bool live, ControlAction action) {
  ControlRef c = NewControl(pane, kScrollBarKind, bounds);
  if (!c) return nullptr;
  c->live = live;
  c->action = action;
  c->view = view;
  SetControlRange(c, minimum, maximum);
  SetControl32BitValue(c, value);
  SetControlKeys(c, kKeysByRequest);
  return c;
}

void SetScrollBarFramed(ControlRef c, bool framed) {
  if (IsValidControl(c)) c->framed = framed;
}

}  // namespace platform
