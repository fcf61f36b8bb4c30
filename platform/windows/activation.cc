// Which window is active, and whether the application is.
#include <algorithm>

#include "platform/access/access.h"
#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/theme/roles.h"
#include "platform/windows/state.h"

namespace platform {
namespace {

void PostActivation(bool active) {
  auto& state = Windows().activation;
  if (state.posted == active) return;
  state.posted = active;
  Event e(kEventClassApplication, active ? kEventAppActivated : kEventAppDeactivated);
  e.time = GetCurrentEventTime();
  PostEventToQueue(GetMainEventQueue(), e);
}

// The desktop itself has given the window the focus.
void PostFocus(WindowRef w) {
  Event e(kEventClassWindow, kEventWindowFocusAcquired, w);
  e.time = GetCurrentEventTime();
  PostEventToQueue(GetMainEventQueue(), e);
}

// An answer to the program's own request comes within this time, in seconds.
constexpr double kAnswerTime = 2;

bool AnswersRequest(WindowRef w) {
  auto& state = Windows().activation;
  const bool own = state.asked == w && GetCurrentEventTime() - state.asked_at <= kAnswerTime;
  state.asked = nullptr;
  return own;
}

// The background of an inactive window is lighter, so all of it is drawn again, unless the state
// changes back before that.
void SetActive(WindowRef w, bool active) {
  if (w->active == active) return;
  uint32_t before = WindowBackground(w);
  w->active = active;
  NoticeChange(w->object.serial, Change::kState);
  ShowBackdrop(w);
  if (w->visible && w->brush && WindowBackground(w) != before) w->recolor = !w->recolor;
  Event e(kEventClassWindow, active ? kEventWindowActivated : kEventWindowDeactivated, w);
  SendEventToEventTarget(&e, &w->object.target);
}

// Docked windows are active while any window is; windows of a group that shares its activation with
// the one that has the focus.
bool LooksActive(const Window& w) {
  const auto& state = Windows().activation;
  if (!state.focused) return false;
  if (w.parent) return LooksActive(*w.parent);
  if (&w == state.focused || (w.state & kStateDocked)) return true;
  return w.group && w.group == state.focused->group &&
         (w.group->attributes & kWindowGroupAttrSharedActivation);
}

}  // namespace

void HandleFocus(WindowRef w, bool focused) {
  if (w->focused == focused) return;
  w->focused = focused;
  auto& state = Windows().activation;
  if (focused) {
    if (state.focused && IsValidWindow(state.focused)) state.focused->focused = false;
    state.focused = w;
    w->focused = true;
    if (!AnswersRequest(w)) PostFocus(w);
    PostActivation(true);
    auto& list = WindowList();
    if (std::find(list.begin(), list.end(), w) != list.end()) {
      std::erase(list, w);
      list.insert(list.begin(), w);
    }
  } else if (state.focused == w) {
    state.focused = nullptr;
  }
  state.known = true;
}

void NoteFocusRequest(WindowRef w) {
  auto& state = Windows().activation;
  if (w->focused || w->parent) return;  // a pop-up takes none
  state.asked = w;
  state.asked_at = GetCurrentEventTime();
}

void UpdateActivation() {
  auto& state = Windows().activation;
  if (!state.known) return;
  state.known = false;
  if (!state.focused) PostActivation(false);
  for (WindowRef w : WindowList()) SetActive(w, LooksActive(*w));
}

bool IsWindowActive(WindowRef w) {
  return IsValidWindow(w) && w->active;
}
bool IsApplicationActive() {
  return Windows().activation.focused != nullptr;
}

void SelectWindow(WindowRef w, const char* token) {
  if (!IsValidWindow(w)) return;
  auto& list = WindowList();
  std::erase(list, w);
  list.insert(list.begin(), w);
  if (w->visible) NoteFocusRequest(w);
  CurrentDisplay()->raise(w, w->visible ? kRaiseBoth : kRaiseOnly, token);
}

void ActivateWindow(WindowRef w, bool activate) {
  if (IsValidWindow(w)) SetActive(w, activate);
}

void SetFrontProcess() {
  // The display brings a program forward with the window that is selected.
}

void SetUserFocusWindow(WindowRef w) {
  if (!IsValidWindow(w) || !w->visible || w->focused) return;
  NoteFocusRequest(w);
  CurrentDisplay()->raise(w, kRaiseFocus, nullptr);
}

}  // namespace platform
