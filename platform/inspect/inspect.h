// The inspector: with XW_INSPECT=FILE the program serves its described tree over a local socket to
// programs of the same user, and takes input for what is in it. Requests and answers are lines of
// JSON (docs/inspect.md). It is a source of the loop and never makes it wait.
#pragma once

namespace platform {

// Opens the socket where XW_INSPECT names one. Where that fails the program runs without, and one
// line on standard error says why. Called once the display is open.
void InitInspect(const char* program);
// Ends all connections and removes the socket.
void FinishInspect();

}  // namespace platform
