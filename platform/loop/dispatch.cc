#include "platform/loop/dispatch.h"

#include <csignal>

#include "platform/events/queue.h"
#include "platform/events/targets.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

bool BelongsToWindow(const Event& e) {
  return e.cls == kEventClassMouse || e.cls == kEventClassKeyboard || e.cls == kEventClassWindow;
}

// The dispatcher's only handler.
OSStatus Dispatch(HandlerCall*, Event* event, void*) {
  EventTargetRef target =
      BelongsToWindow(*event) ? GetWindowEventTarget(event->window) : GetApplicationEventTarget();
  if (event->cls == kEventClassAppleEvent && event->payload) {
    event->request.files = reinterpret_cast<const char* const*>(&event->payload);
    event->request.file_count = 1;
  }
  const OSStatus status = SendEventToEventTarget(event, target);
  ReleaseEvent(event);
  return status;
}

// Nobody takes the request to quit: the process ends as if it had not been caught.
OSStatus EndProcess(HandlerCall*, Event* event, void*) {
  if (event->request.id == kAEQuitApplication) {
    signal(SIGTERM, SIG_DFL);
    raise(SIGTERM);
  }
  return eventNotHandledErr;
}

}  // namespace

void InitDispatch() {
  constexpr EventKind kAll[] = {{0, 0}};
  constexpr EventKind kRequests[] = {{kEventClassAppleEvent, kEventAppleEvent}};
  InstallEventHandler(GetEventDispatcherTarget(), Dispatch, kAll, 1, nullptr);
  InstallEventHandler(GetApplicationEventTarget(), EndProcess, kRequests, 1, nullptr);
}

}  // namespace platform
