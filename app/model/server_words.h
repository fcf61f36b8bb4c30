// What the console says of a server that is away.
#pragma once
#include <cstdint>
#include <string>

namespace console {

// Why nothing can be asked of it.
constexpr char kServerAway[] = "The server is away";

// "print-room.local does not answer. Next try in 8 s." `trouble`: what the name does. `left_s`:
// until the next try; below 0: one is under way.
std::string AwayText(const std::string& host, const std::string& trouble, int left_s);
// "The list is as it was at 09:14." Of a list that was true at that time; "" without one (0).
std::string OldListText(int64_t seen, int64_t now);

}  // namespace console
