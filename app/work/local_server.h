// Starts a print server on this computer, for a console that finds none: printserverd, beside this
// program or else along PATH, in a separate session, which outlives the console.
#pragma once
#include <sys/types.h>

#include <string>

namespace console {

struct LocalServerResult {
  bool started = false;
  std::string message;  // a line for a person: where its spool is, or why it is not there
  std::string spool;    // bytes; "" when it was not started
  std::string log;      // the file that it writes its messages to
  pid_t pid = 0;        // 0 when it does not run
};

// Whether a server of that name (HOST or HOST:PORT, "": localhost) is the one of this computer:
// localhost, or the address that it stands for. Others of the loopback network are somebody's own.
bool IsLocalhost(const std::string& server);

// Starts the one of that name, which may be any address of the loopback network, and waits until it
// listens, at most `ms` milliseconds; for a background task. It reads
// quorvik/printserverd.conf in $XDG_CONFIG_HOME (else ~/.config) if there is one, and its messages
// go to quorvik/printserverd.log in $XDG_STATE_HOME (else ~/.local/state).
LocalServerResult StartLocalServer(const std::string& server, int ms = 10000);

}  // namespace console
