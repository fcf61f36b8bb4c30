#include "platform/loop/dispatch.h"

#include <csignal>
#include <string>
#include <vector>

#include "platform/clipboard/clipboard.h"
#include "platform/desktop/documents.h"
#include "platform/events/queue.h"
#include "platform/events/targets.h"
#include "platform/events/trackers.h"
#include "platform/inspect/inspect.h"
#include "platform/menus/menus.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

uint32_t held_modifiers;

// Releases whose window has ended are the application's.
bool BelongsToWindow(const Event& e) {
  const bool of_window =
      e.cls == kEventClassMouse || e.cls == kEventClassKeyboard || e.cls == kEventClassWindow;
  return of_window && e.window;
}

// The dispatcher's only handler.
OSStatus Dispatch(HandlerCall*, Event* event, void*) {
  if (lone_alt_waits) [[unlikely]]
    WatchLoneAlt(*event);
  NoteModifiers(*event);
  if (AskTracker(event) != Tracking::kTake) return DispatchEvent(event);
  ReleaseEvent(event);
  return noErr;
}

// Nobody takes the request to quit: the process ends as if it had not been caught.
OSStatus EndProcess(HandlerCall*, Event* event, void*) {
  if (event->request.id == kAEQuitApplication) {
    KeepText();
    FinishInspect();
    signal(SIGTERM, SIG_DFL);
    raise(SIGTERM);
  }
  return eventNotHandledErr;
}

}  // namespace

OSStatus DispatchEvent(Event* event) {
  EventTargetRef target =
      BelongsToWindow(*event) ? GetWindowEventTarget(event->window) : GetApplicationEventTarget();
  std::vector<std::string> paths;
  std::vector<const char*> files;
  if (event->cls == kEventClassAppleEvent && event->payload) {
    paths = SplitPaths(static_cast<const char*>(event->payload));
    for (const std::string& path : paths) files.push_back(path.c_str());
    event->request.files = files.data();
    event->request.file_count = int(files.size());
  }
  const OSStatus status = SendEventToEventTarget(event, target);
  ReleaseEvent(event);
  return status;
}

void NoteModifiers(const Event& event) {
  if (event.cls == kEventClassKeyboard && event.kind == kEventRawKeyModifiersChanged)
    held_modifiers = event.key.modifiers;
}

uint32_t HeldModifiers() {
  return held_modifiers;
}

void InitDispatch() {
  held_modifiers = 0;
  constexpr EventKind kAll[] = {{0, 0}};
  constexpr EventKind kRequests[] = {{kEventClassAppleEvent, kEventAppleEvent}};
  InstallEventHandler(GetEventDispatcherTarget(), Dispatch, kAll, 1, nullptr);
  InstallEventHandler(GetApplicationEventTarget(), EndProcess, kRequests, 1, nullptr);
}

}  // namespace platform
