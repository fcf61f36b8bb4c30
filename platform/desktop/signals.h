// Signals as requests of the desktop.
#pragma once

namespace platform {

// SIGTERM becomes a request to quit.
void InitSignals();
// SIGTERM does again what it did before.
void FinishSignals();

}  // namespace platform
