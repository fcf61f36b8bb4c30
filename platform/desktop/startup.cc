#include "platform/desktop/startup.h"

#include <cstdlib>

namespace platform {
namespace {

constexpr size_t kMaxLength = 1024;  // a longer token is ignored

std::string& Token() {
  static auto* token = new std::string;
  return *token;
}

}  // namespace

void TakeStartToken() {
  Token().clear();
  for (const char* variable : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"}) {
    const char* value = getenv(variable);
    if (value == nullptr) continue;
    const std::string text = value;
    if (Token().empty() && text.size() <= kMaxLength) Token() = text;
    unsetenv(variable);
  }
}

const std::string& StartToken() {
  return Token();
}

}  // namespace platform
