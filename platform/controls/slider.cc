#include <algorithm>

#include "platform/controls/control.h"
#include "platform/events/key_characters.h"

namespace platform {
namespace {

void Draw(Control* c, ContextRef context) {
  DrawThemeSlider(context, ThumbInfo(c));
}

void Border(const Control* c, Rect* border, int* corner) {
  *border = ThemeThumb(ThumbInfo(c));
  *corner = (border->width() + 1) / 2;
}

int32_t Sum(const Control* c, int64_t by) {
  return int32_t(std::clamp<int64_t>(c->value + by, c->minimum, c->maximum));
}

void Follow(Control* c, Point where) {
  if (!c->active || !IsControlVisible(c)) return;
  const int32_t value = HeldThumbValue(c, where);
  if (value != c->value) MoveThumb(c, value);
}

bool Press(Control* c, Point where) {
  HoldThumb(c, where);
  c->inside = true;
  Draw1Control(c);
  Follow(c, where);
  return IsValidControl(c);
}

bool Release(Control* c, bool) {
  if (!c->inside) return false;
  c->inside = false;
  Draw1Control(c);
  HitControl(c, false, kControlIndicatorPart);
  return false;
}

void Change(Control* c, int64_t by, bool by_key) {
  if (MoveThumb(c, Sum(c, by))) HitControl(c, by_key, kControlIndicatorPart);
}

bool Key(Control* c, const Event& e) {
  if (e.key.modifiers & kShortcut) return false;
  const int64_t range = int64_t{c->maximum} - c->minimum, page = std::max<int64_t>(range / 10, 1);
  const struct {
    uint8_t key;
    int64_t by;
  } rows[] = {{kLeftKey, -1},     {kDownKey, -1},        {kRightKey, 1},     {kUpKey, 1},
              {kPageUpKey, page}, {kPageDownKey, -page}, {kHomeKey, -range}, {kEndKey, range}};
  for (const auto& row : rows) {
    if (row.key != e.key.character) continue;
    Change(c, row.by, true);
    return true;
  }
  return false;
}

// The wheel raises the value when it is turned forwards or to the right.
void Wheel(Control* c, float dx, float dy) {
  const bool sideways = c->horizontal && dx != 0;
  const int steps = TakeWheelSteps(c, dx, dy, kWheelNotch);
  Change(c, sideways ? steps : -steps, false);
}

void Step(Control* c, bool up) {
  Change(c, up ? 1 : -1, false);
}

}  // namespace

const KindRow kSliderKind = {.draw = Draw,
                             .press = Press,
                             .drag = Follow,
                             .release = Release,
                             .key = Key,
                             .describe = DescribeThumb,
                             .border = Border,
                             .act = nullptr,
                             .minimum = 0,
                             .maximum = 0,
                             .has_title = false,
                             .role = ObjectRole::kSlider,
                             .wheel = Wheel,
                             .step = Step,
                             .front_looks = true};

ControlRef CreateSliderControl(PaneRef pane, const Rect& bounds, bool horizontal, int32_t value,
                               int32_t minimum, int32_t maximum, ControlAction action) {
  ControlRef c = NewControl(pane, kSliderKind, bounds);
  if (!c) return nullptr;
  c->horizontal = horizontal;
  c->action = action;
  SetControlRange(c, minimum, maximum);
  SetControl32BitValue(c, value);
  SetControlKeys(c, kKeysByTab | kKeysByRequest);
  return c;
}

}  // namespace platform
