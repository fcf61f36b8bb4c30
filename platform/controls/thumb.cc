// What sliders and scroll bars have in common: a thumb that follows the pointer, steps of the
// wheel, and the callback for both.
#include <algorithm>
#include <cmath>
#include <string>

#include "platform/controls/control.h"

namespace platform {
namespace {

constexpr int kMostSteps = 1000;  // of one turn of the wheel

// The pointer holds one thumb at a time.
struct {
  int offset = 0;      // from the beginning of the thumb to the pointer
  int place = 0;       // of the pointer, when it took hold
  int32_t value = 0;   // at that moment
  bool jumped = true;  // the thumb came to the pointer
} hold;

// The wheel's last turn.
struct {
  uint64_t serial = 0;
  float rest = 0;
} turn;

int Along(const Control* c, Point where) {
  return c->horizontal ? where.x : where.y;
}

}  // namespace

ThemeThumbInfo ThumbInfo(const Control* c) {
  ThemeThumbInfo i;
  i.bounds = GetControlBounds(const_cast<Control*>(c));
  i.slider = c->kind == &kSliderKind;
  i.horizontal = c->horizontal;
  i.minimum = c->minimum;
  i.maximum = c->maximum;
  i.value = c->value;
  i.view = c->view;
  i.active = c->active;
  i.held = IsControlHilited(const_cast<Control*>(c));
  i.front = OwnerOf(c).window->active;
  i.framed = c->framed && !c->whole;
  return i;
}

void HoldThumb(Control* c, Point where) {
  const Rect thumb = ThemeThumb(ThumbInfo(c));
  const int from = c->horizontal ? thumb.left : thumb.top;
  const int length = c->horizontal ? thumb.width() : thumb.height();
  hold.place = Along(c, where);
  hold.value = c->value;
  hold.jumped = hold.place < from || hold.place >= from + length;
  hold.offset = hold.jumped ? length / 2 : hold.place - from;
}

int32_t HeldThumbValue(const Control* c, Point where) {
  const int place = Along(c, where);
  if (place == hold.place && !hold.jumped) return hold.value;
  return ThemeThumbValue(ThumbInfo(c), place - hold.offset);
}

bool ActOnPart(Control* c, int part) {
  if (c->action) c->action(c, part);
  return IsValidControl(c);
}

bool MoveThumb(Control* c, int32_t value) {
  SetControl32BitValue(c, value);
  return ActOnPart(c, kControlIndicatorPart);
}

int TakeWheelSteps(const Control* c, float dx, float dy, float pixels) {
  const float by = c->horizontal && dx != 0 ? dx : dy;
  if (!std::isfinite(by)) return 0;
  // A turn in the other direction drops the fraction that is left.
  if (turn.serial != c->object.serial || turn.rest * by < 0) turn.rest = 0;
  turn.serial = c->object.serial;
  turn.rest += by;
  const float most = float(kMostSteps) * pixels;
  turn.rest = std::clamp(turn.rest, -most, most);
  const int steps = int(turn.rest / pixels);
  turn.rest -= float(steps) * pixels;
  return steps;
}

void DescribeThumb(const Control* c, Description* out) {
  out->value = std::to_string(c->value);
  out->minimum = c->minimum;
  out->maximum = c->maximum;
}

}  // namespace platform
