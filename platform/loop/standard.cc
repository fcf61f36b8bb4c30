#include "platform/loop/standard.h"

#include <csignal>

#include "platform/display/window.h"
#include "platform/events/queue.h"

namespace platform {
namespace {

// The window under a pointer that moves freely chooses its cursor.
void ChooseCursor(const Event& motion) {
  if (!IsValidWindow(motion.window)) return;
  Event e(kEventClassWindow, kEventWindowCursorChange, motion.window);
  e.time = motion.time;
  e.mouse.where = motion.mouse.where;
  SendEventToEventTarget(&e, GetWindowEventTarget(motion.window));
}

// Nobody takes the request to quit: the process ends as if it had not been caught.
void EndProcess() {
  signal(SIGTERM, SIG_DFL);
  raise(SIGTERM);
}

}  // namespace

bool PrepareEvent(Event* event) {
  if (event->cls == kEventClassWindow && event->kind == kEventWindowBoundsChanged &&
      !event->bounds.programmatic)
    return HandleConfigure(event);
  if (event->cls == kEventClassAppleEvent && event->payload) {
    event->request.files = reinterpret_cast<const char* const*>(&event->payload);
    event->request.file_count = 1;
  }
  return true;
}

OSStatus FinishEvent(Event* event, OSStatus status) {
  if (event->cls == kEventClassMouse && event->kind == kEventMouseMoved) ChooseCursor(*event);
  if (event->cls == kEventClassAppleEvent && status == eventNotHandledErr &&
      event->request.id == kAEQuitApplication)
    EndProcess();
  ReleaseEvent(event);
  return status;
}

}  // namespace platform
