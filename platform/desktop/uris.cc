#include "platform/desktop/uris.h"

#include <unistd.h>

#include <algorithm>

namespace platform {

namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool IsThisMachine(std::string_view host) {
  if (host.empty() || host == "localhost") return true;
  char name[256] = {};
  return gethostname(name, sizeof name - 1) == 0 && host == name;
}

}  // namespace

std::string LocalPathOfUri(std::string_view uri) {
  constexpr std::string_view kScheme = "file://";
  if (uri.substr(0, kScheme.size()) != kScheme) return {};
  uri.remove_prefix(kScheme.size());
  const size_t slash = uri.find('/');
  if (slash == std::string_view::npos || !IsThisMachine(uri.substr(0, slash))) return {};
  uri.remove_prefix(slash);
  std::string path;
  for (size_t i = 0; i < uri.size(); ++i) {
    char c = uri[i];
    if (c == '%') {
      const int high = i + 2 < uri.size() ? HexDigit(uri[i + 1]) : -1;
      const int low = high >= 0 ? HexDigit(uri[i + 2]) : -1;
      if (low < 0) return {};
      c = char(high * 16 + low);
      i += 2;
    }
    if (c == 0) return {};
    path.push_back(c);
  }
  return path;
}

namespace {

// Of something that is no local file.
bool IsAddressElsewhere(std::string_view text) {
  const size_t colon = text.find("://");
  if (colon == 0 || colon == std::string_view::npos) return false;
  return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 127; });
}

}  // namespace

std::string PathOrAddress(std::string_view uri) {
  std::string path = LocalPathOfUri(uri);
  return path.empty() && IsAddressElsewhere(uri) ? std::string(uri) : path;
}

std::vector<std::string> PathsAndAddresses(std::string_view list) {
  std::vector<std::string> paths;
  while (!list.empty()) {
    const size_t end = list.find_first_of("\r\n");
    const std::string_view line = list.substr(0, end);
    list = end == std::string_view::npos ? std::string_view() : list.substr(end + 1);
    if (line.empty() || line.front() == '#') continue;
    if (std::string path = PathOrAddress(line); !path.empty()) paths.push_back(std::move(path));
  }
  return paths;
}

}  // namespace platform
