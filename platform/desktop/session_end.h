// The end of the session as a request to quit. Who manages the session tells it on the session's
// bus; the machine's log-in manager tells of a shutdown on the system's. A session with neither
// ends its programs with a signal.
#pragma once
#include <systemd/sd-bus.h>

namespace platform {

// Nothing is asked of anyone yet.
void InitSessionEnd(const char* session_name);
void FinishSessionEnd();
// Registers with the session's manager, if there is one, over a connection that its owner goes on
// processing; and joins the system's bus.
void WatchSessionEnd(sd_bus* session);
// The owner has closed the connection, or is about to.
void ForgetSessionEnd();

}  // namespace platform
