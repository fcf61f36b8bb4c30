#include "platform/display/screens.h"

#include <charconv>
#include <cstring>
#include <string>

namespace platform {
namespace {

struct Screens {
  const Display* display = nullptr;
  std::string session_name;
  Screen main;
};
Screens state;

}  // namespace

const Display* CurrentDisplay() {
  return state.display;
}
void SetCurrentDisplay(const Display* display, const char* session_name) {
  state = {display, session_name, Screen()};
}
const char* PlatformSessionName() {
  return state.session_name.c_str();
}
const Screen& MainScreen() {
  return state.main;
}

double ScaleInText(const char* text) {
  if (!text) return 0;
  double scale = 0;
  const char* end = text + strlen(text);
  const auto [rest, error] = std::from_chars(text, end, scale, std::chars_format::fixed);
  return error == std::errc() && rest == end && scale >= 0.5 && scale <= 8 ? scale : 0;
}

bool UpdateScreens() {
  Screen s;
  if (state.display->screens(&s, 1) <= 0) return false;
  if (state.main.bounds == s.bounds && state.main.scale == s.scale) return false;
  state.main = s;
  return true;
}

int ScreenWidth() {
  return LogicalSize(state.main.bounds.width(), state.main.scale);
}
int ScreenHeight() {
  return LogicalSize(state.main.bounds.height(), state.main.scale);
}

}  // namespace platform
