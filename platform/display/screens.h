// What the rooms of the platform know of the running session.
#pragma once
#include "platform/display/display.h"

namespace platform {

const char* PlatformSessionName();
const Screen& MainScreen();

}  // namespace platform
