// The pictures of alerts, drawn at the device's own pixels.
#pragma once
#include "platform/base.h"

enum class AlertPicture : uint8_t { kNone, kStop, kNote, kApplication };
// In a square box of 64 or 32 pixels. `kApplication` is the program's icon, or a window where it
// has set none.
void DrawAlertPicture(platform::ContextRef c, AlertPicture picture, const platform::Rect& box);
