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

struct Answer {
  std::string line;              // without its end; empty while a wait is under way
  std::optional<NodeWait> wait;  // to be asked about with LookAt
  bool hang_up = false;          // the line was no request
};

// Does what the line asks for.
Answer Perform(std::string_view line);
// The answer to a wait, when it is over; empty while it is not. `late`: its time is over.
std::string LookAt(const NodeWait& wait, bool late);
// The answer that tells what was wrong.
std::string Failure(const std::string& what);

}  // namespace platform
