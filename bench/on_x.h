// The platform on an X server of the bench's own.
#pragma once
#include <signal.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

#include "bench/server.h"
#include "platform/display/display.h"
#include "platform/display/screens.h"
#include "platform/events/targets.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"

// False, with a line that says so, where there is none.
inline bool StartOnX(const char* name, pid_t* server) {
  *server = StartServer();
  if (*server < 0) fprintf(stderr, "%s: cannot start Xvfb\n", name);
  setenv("XW_DISPLAY", "x11", 1);
  return *server >= 0 && platform::InitPlatform(name);
}

inline void FinishOnX(pid_t server) {
  platform::FinishPlatform();
  kill(server, SIGTERM);
  waitpid(server, nullptr, 0);
}

// Everything that waits is dealt with and on the screen.
inline void Settle() {
  platform::CurrentDisplay()->flush(true);
  platform::Event e;
  while (platform::ReceiveNextEvent(0, &e))
    platform::SendEventToEventTarget(&e, platform::GetEventDispatcherTarget());
  platform::FlushWindow(nullptr);
}
