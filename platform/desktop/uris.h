// Addresses of files as the desktop passes them about.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The path of `file:///path` (or with this machine's name as host), percent signs decoded. Empty
// for any other scheme or host, a relative path, and bytes that no path can hold.
std::string LocalPathOfUri(std::string_view uri);
// A list of addresses, one a line; comments begin with #. Local files by their paths, what lies
// elsewhere ("http://host/a") by its address; what is no address is left out.
std::vector<std::string> PathsAndAddresses(std::string_view list);

}  // namespace platform
