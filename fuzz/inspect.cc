// Lines of a client of the inspector, and the input that they bring about, in a program with
// controls, menus and things that it draws.
#include <cstdlib>
#include <string_view>

#include "platform/display/headless/headless.h"
#include "platform/inspect/requests.h"
#include "toolkit/core/post.h"
#include "toolkit/xw.h"

namespace {

namespace input = platform::headless;

XwMenuItem items[] = {{"Open", 0, 1, nullptr}, {"", 0, 0, nullptr}, {nullptr, 0, 0, nullptr}};
XwMenuItem bar[] = {{"File", 0, XwValue(items), nullptr}, {nullptr, 0, 0, nullptr}};
const char* const rows[] = {"one", "two", "three", nullptr};
XwWindow* window;
bool ended;

int Handle(int type) {
  if (type != XWE_EXPOSE) return 0;
  XwSet(Inp.window);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(9, 2, 2, 40, 40);
  XwDescribe(-1, XWA_ROW, XWT_SELECTED, "drawn", "value");
  XwBoxList(4, 0, 0, 0, 0);
  XwSet(nullptr);
  return 0;
}

bool Idle() {
  // Nobody is left who would close a menu.
  platform::RawEvent lost;
  lost.type = platform::RawEvent::kGrabLost;
  input::Inject(lost);
  ended = true;
  XwEvent end = Inp;
  end.window = nullptr;
  end.type = 9999;
  PostEvent(end);
  return true;
}

void Run() {
  ended = false;
  while (!ended) XwWaitEvent(nullptr);
}

void Open() {
  setenv("XW_DISPLAY", "headless", 1);
  // The leak checker cannot follow what fontconfig keeps: its patterns refer to their parts by
  // distances, not by pointers.
  setenv("XW_FONTS", FONTS, 1);
  input::UseSteppedClock(1000);
  input::SetIdleHandler(Idle);
  XwSession("fuzz", "Fuzz", 7);
  window = XwCreate(0, 50, 50, 300, 200, Handle);
  XwSetMenu(window, bar);
  constexpr uint32_t kOn = XWC_ENABLED | XWC_VISIBLE;
  XwButton(window, "Print", 1, 10, 50, 80, 26, kOn, 0);
  XwButton(window, "Print", 2, 10, 80, 80, 26, kOn, 0);
  XwEditBox(window, "text", 3, 10, 110, 80, 24, kOn);
  XwListBox(window, rows, 4, 110, 50, 80, 60, kOn);
  XwComboBox(window, rows, 5, 110, 120, 80, 24, kOn, 0);
  XwSlider(window, 6, 10, 140, 80, 20, kOn, 0, 10, 5);
  XwShow(window, 1);
  static platform::TreeListener listener{[](void*, uint64_t, platform::Change) {}, nullptr};
  platform::AddTreeListener(&listener);
  Run();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!window) Open();
  std::string_view left(reinterpret_cast<const char*>(data), size);
  while (!left.empty()) {
    const std::string_view line = left.substr(0, left.find('\n'));
    left.remove_prefix(std::min(left.size(), line.size() + 1));
    platform::Answer answer = platform::Perform(line);
    // Each line is answered, at once, when its wait is over or when all has been typed.
    if (answer.line.empty() && !answer.wait && !answer.typing) abort();
    while (answer.typing && answer.line.empty()) {
      Run();
      answer.line = platform::TypeOn(&*answer.typing);
    }
    if (answer.line.find('\n') != std::string::npos) abort();
    if (answer.wait && platform::LookAt(*answer.wait, true).empty()) abort();
    if (answer.hang_up) break;
    Run();
  }
  return 0;
}
