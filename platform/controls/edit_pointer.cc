// What the pointer does in an edit box: it sets the caret, selects by characters, words or all, and
// scrolls while it is held beside the text.
#include <cstdlib>
#include <utility>

#include "platform/controls/edit.h"

namespace platform {
namespace {

constexpr double kDoubleClick = 0.4;  // seconds
constexpr int kNear = 4;              // pixels between two presses that belong together
constexpr double kScrollPeriod = 0.05;
constexpr int kScrollReach = 12;  // pixels that one step goes beyond the view
constexpr uint16_t kSecondary = 2, kMiddle = 3;

// The selection from what was pressed on to the pointer, in whole units.
void Follow(Control* c) {
  Edit& e = EditOf(c);
  const Rect area = EditTextArea(c);
  const int x = std::clamp(e.pointer.x, area.left - kScrollReach, area.right + kScrollReach);
  size_t first = EditPlaceAt(c, x), last = first;
  if (e.unit == Edit::kWord) {
    EditState word;
    word.font = e.state.font;
    word.text = e.state.text;
    SelectEditWord(&word, first);
    first = word.first();
    last = word.last();
  } else if (e.unit == Edit::kAll) {
    first = 0;
    last = e.state.text.size();
  }
  if (first < e.held_first)
    SelectEdit(&e.state, e.held_last, first);
  else
    SelectEdit(&e.state, e.held_first, std::max(last, e.held_last));
  e.pointer_selects = e.state.selects();
  if (e.pointer_selects && e.arrival == Edit::kFresh) e.arrival = Edit::kPointerFirst;
  ShowEdit(c);
}

void ScrollOn(EventLoopTimerRef, void* control) {
  auto* c = static_cast<Control*>(control);
  if (IsValidControl(c) && IsControlHeld(c)) Follow(c);
}

void CountPresses(Edit* e, Point at) {
  const double now = PressTime();
  const bool again = e->presses > 0 && now - e->pressed_at <= kDoubleClick &&
                     std::abs(at.x - e->pressed.x) <= kNear &&
                     std::abs(at.y - e->pressed.y) <= kNear;
  e->presses = again ? e->presses % 3 + 1 : 1;
  e->pressed_at = now;
  e->pressed = at;
}

}  // namespace

void StopEditScrolling(Edit* e) {
  RemoveEventLoopTimer(e->scroll_timer);
  e->scroll_timer = nullptr;
}

bool PressEdit(Control* c, Point at) {
  if (OwnerOf(c).focus != c) return false;
  Edit& e = EditOf(c);
  CountPresses(&e, at);
  if (e.arrival == Edit::kPointerFirst) e.arrival = Edit::kFresh;
  e.unit = e.presses == 3 ? Edit::kAll : e.presses == 2 ? Edit::kWord : Edit::kCharacter;
  const size_t place = EditPlaceAt(c, at.x);
  e.pointer = at;
  const bool extends = OwnerOf(c).shift && e.unit == Edit::kCharacter;
  e.held_first = e.held_last = extends ? e.state.anchor : place;
  if (e.unit == Edit::kWord) {
    SelectEditWord(&e.state, place);
    e.held_first = e.state.first();
    e.held_last = e.state.last();
  } else if (e.unit == Edit::kAll) {
    e.held_first = 0;
    e.held_last = e.state.text.size();
  }
  Follow(c);
  WakeCaret(c);
  return true;
}

void DragEdit(Control* c, Point at) {
  Edit& e = EditOf(c);
  if (OwnerOf(c).focus != c) return;
  // A motion of one pixel keeps the selection that the press has made.
  if (std::abs(at.x - e.pressed.x) < 2 && !e.scroll_timer && e.pointer == e.pressed) return;
  e.pointer = at;
  Follow(c);
  const Rect area = EditTextArea(c);
  if (at.x >= area.left && at.x < area.right)
    StopEditScrolling(&e);
  else if (!e.scroll_timer)
    e.scroll_timer = InstallEventLoopTimer(kScrollPeriod, kScrollPeriod, ScrollOn, c);
}

bool ReleaseEdit(Control* c, bool) {
  LoseEdit(c);
  return false;  // it sends no hit
}

void LoseEdit(Control* c) {
  Edit& e = EditOf(c);
  StopEditScrolling(&e);
  if (OwnerOf(c).focus == c && std::exchange(e.pointer_selects, false)) OfferSelection(c);
}

void PressEditWithOther(Control* c, Point at, int button) {
  Edit& e = EditOf(c);
  if (button == kSecondary) {
    if (c->active && !e.read_only) SetKeyboardFocus(OwnerOf(c).window, c, kControlEditTextPart);
    if (IsValidControl(c)) OpenEditMenu(c, at);
    return;
  }
  if (button != kMiddle || !c->active || e.read_only) return;
  SetKeyboardFocus(OwnerOf(c).window, c, kControlEditTextPart);
  if (!IsValidControl(c) || OwnerOf(c).focus != c) return;
  const size_t place = EditPlaceAt(c, at.x);
  SelectEdit(&e.state, place, place);
  ShowEdit(c);
  WakeCaret(c);
  // The place is passed on, since a box that has just got the focus selects all of its text.
  Paste(c, Selection::kPrimary, place);
}

}  // namespace platform
