// What a client asks for, one line each, and what it is answered.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "platform/inspect/nodes.h"

namespace platform {

// A wait that is under way.
struct NodeWait {
  Address address;
  std::string value;
  bool has_value = false;  // waits for the value
  bool gone = false;       // waits until there is no such node
  int ms = 0;              // the longest wait
};

// Keys that are being pressed: one, or those of a text, a piece at a time. The program handles each
// piece before the next comes.
struct Typing {
  WindowRef window;
  uint64_t serial;  // of the window
  std::string key;  // by its name; empty: none
  uint32_t modifiers;
  std::string text;  // UTF-8
  size_t at = 0;     // so much of it has been typed
};

struct Answer {
  std::string line;              // without its end; empty while the request is under way
  std::optional<NodeWait> wait;  // to be asked about with LookAt
  std::optional<Typing> typing;  // to go on with TypeOn
  bool hang_up = false;          // the line was no request
};

// Does what the line asks for.
Answer Perform(std::string_view line);
// The answer to a wait, when it is over; empty while it is not. `late`: its time is over.
std::string LookAt(const NodeWait& wait, bool late);
// Types the next piece. The answer, when that was the last or the window has ended; else empty.
std::string TypeOn(Typing* typing);
// The answer that tells what was wrong.
std::string Failure(const std::string& what);

}  // namespace platform
