// Files that the program shall open: dropped on a window, or named by a request of another program.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/events/event.h"

namespace platform {

// The id of a request that another program makes by the message bus; a drop's is kAEOpenDocuments.
constexpr uint32_t kOpenAsked = FourCC("oask");
// What the addresses of one drop or request take at most; what comes behind that is left out.
constexpr size_t kMostAddresses = 1 << 20;

// Paths in one text: newlines between them, newlines and backslashes in them as \n and \\.
std::string JoinPaths(const std::vector<std::string>& paths);
std::vector<std::string> SplitPaths(std::string_view text);

}  // namespace platform
