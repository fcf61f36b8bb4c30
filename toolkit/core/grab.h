// Buttons held and the grab that they make.
#pragma once
#include <cstdint>

#include "toolkit/core/state.h"

// Buttons 1 to 5 have bits in Inp.state.
constexpr int kLastButton = 5;
// Clears the bits of buttons that are let go; a passive grab ends with the last.
void DropButtons(uint32_t mask);
