#include "toolkit/events/install.h"

#include "platform/events/event.h"
#include "platform/events/targets.h"
#include "platform/windows/windows.h"
#include "toolkit/events/desktop.h"
#include "toolkit/events/keyboard.h"
#include "toolkit/events/menu_bar.h"
#include "toolkit/events/mouse.h"

using namespace platform;

namespace {

constexpr EventKind kWindowEvents[] = {
    {kEventClassWindow, kEventWindowClickResizeRgn},
    {kEventClassWindow, kEventWindowBoundsChanging},
    {kEventClassWindow, kEventWindowBoundsChanged},
    {kEventClassWindow, kEventWindowDrawContent},
    {kEventClassWindow, kEventWindowCursorChange},
    {kEventClassWindow, kEventWindowClose},
    {kEventClassWindow, kEventWindowZoom},
    {kEventClassWindow, kEventWindowFocusAcquired},
    {kEventClassWindow, kEventWindowActivated},
    {kEventClassWindow, kEventWindowDeactivated},
    {kEventClassWindow, kEventWindowActivity},
    {kEventClassWindow, kEventWindowDrag},
};
constexpr EventKind kMouseEvents[] = {
    {kEventClassMouse, kEventMouseDown},
    {kEventClassMouse, kEventMouseUp},
    {kEventClassMouse, kEventMouseMoved},
    {kEventClassMouse, kEventMouseDragged},
};
constexpr EventKind kWheelEvents[] = {{kEventClassMouse, kEventMouseWheelMoved}};
constexpr EventKind kKeyEvents[] = {
    {kEventClassKeyboard, kEventRawKeyDown},
    {kEventClassKeyboard, kEventRawKeyModifiersChanged},
    {kEventClassKeyboard, kEventRawKeyRepeat},
    {kEventClassKeyboard, kEventRawKeyUp},
};
constexpr EventKind kApplicationEvents[] = {
    {kEventClassAppleEvent, kEventAppleEvent},
    {kEventClassApplication, kEventAppActivated},
    {kEventClassApplication, kEventAppDeactivated},
    {kEventClassCommand, kEventCommandProcess},
    {kEventClassSystem, kEventSystemDisplayReconfigured},
    {kEventClassKeyboard, kEventRawKeyUp},
    {kEventClassKeyboard, kEventRawKeyModifiersChanged},
};

constexpr EventKind kWindowCreated[] = {{kEventClassWindow, kEventWindowCreated}};
constexpr EventKind kKeyPresses[] = {{kEventClassKeyboard, kEventRawKeyDown}};

template <int N>
void Install(EventTargetRef target, EventHandler handler, const EventKind (&kinds)[N], void* data) {
  InstallEventHandler(target, handler, kinds, N, data);
}

// Before the platform's own handlers are, so that those come first.
OSStatus WindowCreated(HandlerCall*, Event* event, void*) {
  Install(GetWindowEventTarget(event->window), EVmenukey_func, kKeyPresses, nullptr);
  return eventNotHandledErr;
}

}  // namespace

void InstallEventHandlers(XwWindow* w) {
  if (!w) {
    Install(GetApplicationEventTarget(), EVapp_func, kApplicationEvents, nullptr);
    Install(GetApplicationEventTarget(), WindowCreated, kWindowCreated, nullptr);
    return;
  }
  EventTargetRef target = GetWindowEventTarget(static_cast<WindowRef>(w->platform));
  Install(target, EVwindow_func, kWindowEvents, w);
  Install(target, EVmouse_func, kMouseEvents, w);
  Install(target, EVwheel_func, kWheelEvents, w);
  Install(target, EVkeyboard_func, kKeyEvents, w);
}
