// Wildcard patterns against a second, slower matcher that works on whole pieces of the pattern.
#include <stdint.h>
#include <stdlib.h>

#include <string>

#include "os/match.h"
#include "os/os.h"

namespace {

bool SlowMatch(const std::string& pattern, const std::string& name) {
  if (pattern[0] == '*') {
    const std::string rest = pattern.substr(1);
    return name.size() >= rest.size() && name.substr(name.size() - rest.size()) == rest;
  }
  size_t at = 0;
  for (size_t p = 0; p < pattern.size(); ++p) {
    if (pattern[p] == '*') {
      if (p + 1 == pattern.size()) return true;
      at = name.find(pattern[++p], at);
      if (at == std::string::npos) return false;
    } else if (at >= name.size() || (pattern[p] != '?' && pattern[p] != name[at])) {
      return false;
    }
    ++at;
  }
  return at == name.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t cut = text.find('\0');
  const std::string pattern = text.substr(0, cut);
  const std::string name =
      cut == std::string::npos ? "" : std::string(text.substr(cut + 1).c_str());
  if ((match_name(pattern.c_str(), name.c_str()) != 0) != SlowMatch(pattern, name)) abort();
  const auto split = os::SplitPatterns(pattern.c_str());
  if (split.empty() || split.size() > 60) abort();
  size_t total = 0;
  for (const std::string& one : split) {
    if (one.find_first_of(",|") != std::string::npos) abort();
    total += one.size() + 1;
  }
  if (total > 1024) abort();
  return 0;
}
