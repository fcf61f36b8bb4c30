// A console that already runs in this session, as it is reached on the message bus.
#pragma once
#include <string>
#include <vector>

namespace console {

// Asks it to come forward with these files, absolute paths. Whether it has taken them: false where
// no console runs, where there is no bus, and when no answer comes within `ms` milliseconds.
bool HandOverFiles(const std::vector<std::string>& paths, int ms = 2000);

}  // namespace console
