// Handlers on targets, and the way of one event through them.
#include <unistd.h>

#include <csignal>

#include "platform/display/window.h"
#include "platform/events/queue.h"
#include "platform/loop/standard.h"

namespace platform {
namespace {

EventTarget application_target;
EventTarget dispatcher_target;  // stands for "wherever the event belongs"
int depth = 0;

bool BelongsToWindow(const Event& e) {
  return e.cls == kEventClassMouse || e.cls == kEventClassKeyboard || e.cls == kEventClassWindow;
}

// Newest first. Handlers may install others and may destroy the window.
OSStatus RunHandlers(EventTarget* target, Event* event) {
  for (size_t i = target->handlers.size(); i-- > 0;) {
    if (i >= target->handlers.size()) continue;
    const InstalledHandler h = target->handlers[i];
    if (h.cls != event->cls || h.kind != event->kind) continue;
    OSStatus status = h.handler(nullptr, event, h.user_data);
    if (status != eventNotHandledErr) return status;
    if (event->window && event->window->disposed) return noErr;
  }
  return eventNotHandledErr;
}

}  // namespace

DispatchScope::DispatchScope() {
  ++depth;
}
DispatchScope::~DispatchScope() {
  if (--depth == 0) CollectWindows();
}
bool InDispatch() {
  return depth > 0;
}

EventTargetRef GetWindowEventTarget(WindowRef w) {
  return IsValidWindow(w) ? &w->target : nullptr;
}
EventTargetRef GetApplicationEventTarget() {
  return &application_target;
}
EventTargetRef GetEventDispatcherTarget() {
  return &dispatcher_target;
}

void InstallEventHandler(EventTargetRef target, EventHandler handler, const EventKind* kinds,
                         int count, void* user_data) {
  if (!target || !handler) return;
  for (int i = 0; i < count; ++i)
    target->handlers.push_back({kinds[i].cls, kinds[i].kind, handler, user_data});
}

OSStatus SendEventToEventTarget(Event* event, EventTargetRef target) {
  DispatchScope scope;
  if (target == &dispatcher_target) {
    if (!BelongsToWindow(*event)) {
      target = &application_target;
    } else {
      if (!IsValidWindow(event->window)) return eventNotHandledErr;
      target = &event->window->target;
    }
  }
  if (!target) return eventNotHandledErr;
  if (!PrepareEvent(event)) return noErr;
  OSStatus status = RunHandlers(target, event);
  return FinishEvent(event, status);
}

}  // namespace platform
