// What all controls share: a record, the platform's control, and how the two know each other.
#pragma once
#include "platform/controls/controls.h"
#include "toolkit/xw.h"

// Of the record.
inline platform::ControlRef NativeControl(const XwWindow* control) {
  return static_cast<platform::ControlRef>(control->platform);
}
// Where a control of `parent` is made; null when it cannot have one (more).
platform::PaneRef PaneForControl(XwWindow* parent);
// The record of a control that the platform has made. `text` is an icon where the style says so.
// Null when the control is null.
XwWindow* CreateWindowControl(XwWindow* parent, int32_t id, int kind, int x, int y, int width,
                              int height, uint32_t style, const char* text, XwValue value,
                              platform::ControlRef control);
// Its text, whether it is active and whether it shows, as the style says.
void ActivateWindowControl(XwWindow* control, const char* text);
// The handler of `control` for these kinds of control events.
void InstallControlHandler(XwWindow* control, platform::EventHandler handler,
                           std::initializer_list<uint32_t> kinds);
// The current event becomes a report to the parent.
void ReportControl(XwWindow* control, int32_t item, int32_t value);
