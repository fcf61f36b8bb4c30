#include "platform/loop/tracking.h"

#include <algorithm>

#include "platform/controls/controls.h"
#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/timers.h"
#include "platform/input/translate.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/receive.h"
#include "platform/menus/menus.h"

namespace platform {
namespace {

// Collects deferred events, and puts it before everything else at the end.
class NestedWait {
 public:
  NestedWait() {
    list_.outer = main_event_queue.deferred;
    main_event_queue.deferred = &list_;
  }
  ~NestedWait() {
    main_event_queue.deferred = list_.outer;
    main_event_queue.Prepend(list_.events);
  }
  NestedWait(const NestedWait&) = delete;
  NestedWait& operator=(const NestedWait&) = delete;

  void Defer(const Event& e) {
    if (!e.posted()) {
      list_.events.push_back(e);
      return;
    }
    // Of a program's own event a receive fills in nothing else.
    Event posted(e.cls, 0);
    posted.payload = e.payload;
    list_.events.push_back(posted);
  }

 private:
  DeferredEvents list_;
};

}  // namespace

WaitEnd WaitTracking(Tracker* tracker, bool (*done)(void* data), double timeout) {
  StartTracking(tracker);
  NestedWait wait;
  const double end = GetCurrentEventTime() + std::max(0.0, timeout);
  bool asked = false;
  WaitEnd result = WaitEnd::kDone;
  Event e;
  for (;;) {
    // The owner is checked first: without it, what `done` reads may be destroyed.
    if (!TrackerLives(*tracker)) {
      result = WaitEnd::kOwnerEnded;
      break;
    }
    if (done(tracker->data)) break;
    const double now = GetCurrentEventTime();
    if (timeout >= 0 && asked && now >= end) {
      result = WaitEnd::kTimeout;
      break;
    }
    asked = true;
    // Each wait ends with the next timer, which may end the tracking or the owner.
    double left = timeout < 0 ? timeout : std::max(0.0, end - now);
    if (const double timer = NextTimer(now); timer >= 0 && (left < 0 || timer < left)) left = timer;
    if (!ReceiveNextEvent(left, &e)) continue;
    if (e.posted()) {
      wait.Defer(e);
      continue;
    }
    const Tracking answer = AskTracker(&e);
    if (answer != Tracking::kLater) NoteModifiers(e);
    if (answer == Tracking::kLater)
      wait.Defer(e);
    else if (answer == Tracking::kPass)
      DispatchEvent(&e);
    else
      ReleaseEvent(&e);
  }
  StopTracking(tracker);
  return result;
}

namespace {

struct TextWait {
  TextArrived arrived;
  void* data;
  int request = 0;
  bool done = false;
};

}  // namespace

void WaitForText(Selection which, int timeout_ms, TextArrived arrived, void* data) {
  const SharedText own = OfferedText(which);
  if (own || timeout_ms < 1 || !CurrentDisplay()) return arrived(data, own.get());
  TextWait wait{arrived, data};
  wait.request = AskText(
      which, timeout_ms,
      [](void* waiting, const std::string* text) {
        auto* w = static_cast<TextWait*>(waiting);
        w->done = true;
        w->arrived(w->data, text);
      },
      &wait);
  Tracker tracker;
  tracker.data = &wait;
  tracker.ask = [](void* waiting, Event* e) {
    const auto* w = static_cast<const TextWait*>(waiting);
    const bool answer = e->cls == kEventClassClipboard && int(e->request.id) == w->request;
    return answer ? Tracking::kPass : Tracking::kLater;
  };
  WaitTracking(
      &tracker, [](void* waiting) { return static_cast<const TextWait*>(waiting)->done; },
      timeout_ms / 1000.0);
  ForgetAsk(wait.request);
}

static MenuChoice WaitForChoice() {
  // A menu that a callback opens during the wait closes this one and uses the same tracker; it has
  // ended when control returns here.
  WaitTracking(
      MenuTracker(), [](void*) { return MenuIsDone(); }, kEventDurationForever);
  return CloseMenus();
}

static int WaitForMenu() {
  const MenuChoice choice = WaitForChoice();
  return choice.item ? choice.menu << 16 | choice.item : 0;
}

int PopUpMenuSelect(MenuRef menu, int top, int left, int item) {
  if (!OpenPopUpMenu(menu, {left, top}, item)) return 0;
  SetMenuPointer(LastPointer());
  return WaitForMenu();
}

int PopUpMenuSelectBelow(MenuRef menu, WindowRef w, const Rect& anchor, int item) {
  if (!OpenPopUpMenuBelow(menu, w, anchor, item)) return 0;
  SetMenuPointer(LastPointer());
  return WaitForChoice().item;
}

int MenuSelect(Point where) {
  return OpenMenuBarAt(where) ? WaitForMenu() : 0;
}

int MenuSelectByKey(MenuRef menu) {
  if (!OpenBarMenu(menu)) return 0;
  // Alt has done its part, and comes up while no window hears of it.
  HideBarLetters();
  HideControlLetters();
  SetMenuPointer(LastPointer());
  return WaitForMenu();
}

}  // namespace platform
