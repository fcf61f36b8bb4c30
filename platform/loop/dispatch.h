// The way of one event to the handlers of its target.
#pragma once

namespace platform {

// Installs the dispatcher, and what the platform does with requests that nobody takes.
void InitDispatch();

}  // namespace platform
