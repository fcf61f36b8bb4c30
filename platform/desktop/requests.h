// Requests that do not come through the display: signals, and the session's message bus.
#pragma once
#include <poll.h>

#include "platform/display/display.h"

namespace platform {

// A source of requests with a descriptor to wait on. Sources are added once and stay.
struct RequestSource {
  int (*file_descriptor)();     // -1: none now
  bool (*next)(RawEvent* out);  // as Display::next_event; kQuit, kPreferences, kOpenFile
  short (*events)() = nullptr;  // what to poll it for; null: for input
};
void AddRequestSource(const RequestSource& source);

// SIGTERM becomes a request to quit.
void InstallSignalSource();
// Queues what all sources have.
void TakeDesktopRequests();

}  // namespace platform
