// Addresses of files as the desktop passes them about.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The path of `file:///path` (or with this machine's name as host), percent signs decoded. Empty
// for any other scheme or host, a relative path, and bytes that no path can hold.
std::string LocalPathOfUri(std::string_view uri);
// The same; the address itself where it is of something that lies elsewhere ("http://host/a").
// Empty for what is neither.
std::string PathOrAddress(std::string_view uri);
// A list of addresses, one a line; comments begin with #; what is no address is left out.
std::vector<std::string> PathsAndAddresses(std::string_view list);

}  // namespace platform
