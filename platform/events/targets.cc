#include "platform/events/targets.h"

namespace platform {
namespace {

struct Targets {
  EventTarget application, dispatcher;
};

constinit Targets state;

bool Wants(const InstalledHandler& h, const Event& e) {
  return h.cls == 0 || (h.cls == e.cls && h.kind == e.kind);
}

}  // namespace

EventTargetRef GetApplicationEventTarget() {
  return &state.application;
}
EventTargetRef GetEventDispatcherTarget() {
  return &state.dispatcher;
}

void InstallEventHandler(EventTargetRef target, EventHandler handler, const EventKind* kinds,
                         int count, void* user_data) {
  if (!target || !handler) return;
  for (int i = 0; i < count; ++i)
    target->handlers.push_back({kinds[i].cls, kinds[i].kind, handler, user_data});
}

OSStatus SendEventToEventTarget(Event* event, EventTargetRef target) {
  if (!target) return eventNotHandledErr;
  DispatchScope scope;
  for (size_t i = target->handlers.size(); i-- > 0;) {
    if (i >= target->handlers.size()) continue;
    const InstalledHandler h = target->handlers[i];
    if (!Wants(h, *event)) continue;
    OSStatus status = h.handler(nullptr, event, h.user_data);
    if (status != eventNotHandledErr) return status;
    if (target->ended) return noErr;
  }
  return eventNotHandledErr;
}

void FinishTargets() {
  state = Targets();
}

}  // namespace platform
