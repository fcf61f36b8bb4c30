#include "platform/display/screens.h"

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
