// Waiting for events and handing them to the windows that they are addressed to.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

// As XwWaitEvent for one window; 0 once that window has ended.
int WaitWhileOpen(XwWindow* modal);
// The innermost wait under way keeps events of this window from its handlers.
bool WaitKeepsOut(XwWindow* w);
// Whether a wait for another window keeps events from this one; a wait that dispatches nothing does
// not count.
bool ModalKeepsOut(XwWindow* w);
// The window that is waited for comes to the front and has the keyboard.
void SelectModal();
// What a press in such a window does: a beep, and the window that is waited for comes to the front
// and has the keyboard, lest the user loses it from sight.
void RefusePress();
// The same of the platform's window. While an alert is open the others keep what they show.
bool ModalKeepsOutNative(const platform::Window* native);
