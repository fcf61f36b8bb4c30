#include "tests/support/random_input.h"

#include "platform/display/headless/headless.h"
#include "platform/events/raw_event.h"

namespace support {

namespace input = platform::headless;

uint32_t RandomInput::Number(uint32_t below) {
  state_ = state_ * 6364136223846793005u + 1442695040888963407u;
  return uint32_t((state_ >> 33) % below);
}

// Letters and marks; what moves and presses.
void RandomInput::Key() {
  const uint32_t special[] = {0xFF09, 0xFF0D, 0xFF1B, 0xFFC7, uint32_t(Between(0xFF50, 0xFF57))};
  const uint32_t key = Number(2) ? special[Number(5)] : uint32_t(Between(30, 130));
  const uint32_t typed = key == 0xFF09 ? 9 : key == 0xFF0D ? 13 : key == 0xFF1B ? 27 : key;
  Number(2) ? input::KeyDown(key, typed) : input::KeyUp(key, typed);
}

void RandomInput::Request(platform::WindowRef (*window)()) {
  if (rare_ > 1 && Number(rare_) != 0) return;
  Number(4) ? input::Close(window()) : input::Lose(window());
}

void RandomInput::Act(platform::WindowRef (*window)()) {
  switch (Number(16)) {
    default:
      return input::MovePointer(Between(area_.left, area_.right), Between(area_.top, area_.bottom));
    case 7:
      return input::Press(Between(1, 6));
    case 8:
    case 9:
      return input::Release(Between(1, 6));
    case 10:
      return Key();
    case 11:
      return Number(3) ? input::Scroll(float(Between(-9, 9)), float(Between(-90, 90)))
                       : input::Modifiers(Number(65536));
    case 12: {
      const int left = Between(-50, 800), top = Between(-50, 600);
      return input::Configure(window(), {left, top, left + Between(1, 400), top + Between(1, 300)});
    }
    case 13:
      return Request(window);
    case 14:
      return Number(4) ? input::Focus(window()) : input::OpenFile("/some/file");
    case 15:
      return input::Pen(
          {uint16_t(Number(8)), uint16_t(Number(65536)), int16_t(Between(-99, 99)), 0},
          platform::RawEvent::Type(
              Between(platform::RawEvent::kMotion, platform::RawEvent::kRelease)));
  }
}

void RandomInput::LetGo() {
  for (int b = 1; b <= 6; ++b) input::Release(b);
  for (uint32_t key = 30; key <= 130; ++key) input::KeyUp(key, key);
  for (uint32_t key : {0xFF09, 0xFF0D, 0xFF1B, 0xFFC7}) input::KeyUp(key);
  for (uint32_t key = 0xFF50; key <= 0xFF57; ++key) input::KeyUp(key);
}

}  // namespace support
