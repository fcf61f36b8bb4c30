// From reports to events.
#pragma once
#include "platform/events/raw_event.h"

namespace platform {

// Queues what one report means.
void TranslateRawEvent(const RawEvent& raw);
// Takes in all that the display and the sources report.
void TakeRawEvents();
// Buttons that are down, as far as reports have been taken in: bit 0 the primary one.
uint32_t HeldButtons();
// The last place of the pointer that was reported, global.
Point LastPointer();
void FinishInput();

// A key symbol and character as (virtual key, Mac Roman character); {0xFFFF, 0}: no such key.
struct MacKey {
  uint16_t key_code;
  uint8_t character;
};
MacKey LookUpKey(uint32_t keysym, uint32_t base_keysym, uint32_t unicode, uint32_t modifiers);

}  // namespace platform
