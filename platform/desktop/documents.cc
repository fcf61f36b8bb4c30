#include "platform/desktop/documents.h"

namespace platform {

std::string JoinPaths(const std::vector<std::string>& paths) {
  std::string text;
  for (const std::string& path : paths) {
    if (!text.empty()) text += '\n';
    for (const char c : path) {
      if (c == '\n' || c == '\\') text += '\\';
      text += c == '\n' ? 'n' : c;
    }
  }
  return text;
}

std::vector<std::string> SplitPaths(std::string_view text) {
  std::vector<std::string> paths;
  if (text.empty()) return paths;
  paths.emplace_back();
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') {
      paths.emplace_back();
      continue;
    }
    const bool escaped = text[i] == '\\' && i + 1 < text.size();
    if (escaped) ++i;
    paths.back() += escaped && text[i] == 'n' ? '\n' : text[i];
  }
  return paths;
}

}  // namespace platform
