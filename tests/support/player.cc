// Plays scripts on the headless display. A timer of the platform brings each line: the stepped
// clock moves only when the program waits, so a line comes when what came before is done with.
#include <utility>

#include "platform/display/headless/headless.h"
#include "platform/events/timers.h"
#include "platform/windows/windows.h"
#include "tests/support/script.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"

namespace support {

namespace {

namespace input = platform::headless;

constexpr double kPause = 0.001;  // between lines

struct Player {
  Script script;
  size_t next = 0;
  XwWindow* window = nullptr;
  std::function<void()> at_end;
};
Player player;

void Resize(XwWindow* w, int width, int height) {
  input::Configure(NativeWindow(w), {w->x, w->y, w->x + width, w->y + height});
}

void Inject(const Step& s, XwWindow* w) {
  switch (s.verb) {
    case Step::kMove:
      input::MovePointer(w->x + s.a, w->y + s.b);
      break;
    case Step::kDown:
      input::Press(s.a);
      break;
    case Step::kUp:
      input::Release(s.a);
      break;
    case Step::kClick:
      input::Click(w->x + s.a, w->y + s.b, s.c);
      break;
    case Step::kScroll:
      input::Scroll(float(s.a), float(s.b));
      break;
    case Step::kKey:
      input::KeyDown(s.symbol);
      input::KeyUp(s.symbol);
      break;
    case Step::kHold:
      input::KeyDown(s.symbol);
      break;
    case Step::kRelease:
      input::KeyUp(s.symbol);
      break;
    case Step::kWait:
      break;
    case Step::kResize:
      Resize(w, s.a, s.b);
      break;
    case Step::kClose:
      input::Close(NativeWindow(w));
      break;
    case Step::kFocus:
      input::Focus(NativeWindow(w));
      break;
    case Step::kUnfocus:
      input::Focus(nullptr);
      break;
  }
}

void NextLine(platform::EventLoopTimerRef timer, void*) {
  Player& p = player;
  if (p.next >= p.script.size() || !IsLive(p.window)) {
    platform::RemoveEventLoopTimer(timer);
    const std::function<void()> at_end = std::exchange(p.at_end, {});
    if (at_end) at_end();
    return;
  }
  const int line = p.script[p.next].line;
  double pause = kPause;
  for (; p.next < p.script.size() && p.script[p.next].line == line; ++p.next) {
    const Step& step = p.script[p.next];
    if (step.verb == Step::kWait) pause += step.a / 1000.0;
    Inject(step, p.window);
  }
  platform::SetEventLoopTimerNextFireTime(timer, pause);
}

}  // namespace

void StartPlaying(const Script& script, XwWindow* w, std::function<void()> at_end) {
  player = {script, 0, w, std::move(at_end)};
  platform::InstallEventLoopTimer(kPause, kPause, NextLine, nullptr);
}

}  // namespace support
