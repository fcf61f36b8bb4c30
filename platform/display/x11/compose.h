// Characters of key symbols, dead keys and compose sequences.
#pragma once
#include <cstdint>

#include "platform/events/event.h"

namespace platform::x11 {

struct Composed {
  uint32_t keysym = 0, unicode = 0;  // both 0: the key is part of an unfinished sequence
  char typed[kTypedText + 1] = {};   // UTF-8, where it is more than one character
};

// Takes the symbol of a pressed key. The result of a sequence stands in place of its last key. A
// dead key reports its symbol and no character.
Composed Compose(uint32_t keysym);
// Forgets a sequence begun.
void ResetCompose();
void CloseCompose();
// The character of a symbol, 0 when it has none.
uint32_t UnicodeOfKeysym(uint32_t keysym);
// The symbol of the capital letter; any other symbol as it is.
uint32_t UpperKeysym(uint32_t keysym);

}  // namespace platform::x11
