// Event scripts: what a user and a desktop do to one window, as text. The same script plays on the
// headless display (here) and on X (x_player.h).
//
//     move 20 30            # the pointer, relative to the window's content
//     down 1; up 1          # buttons 1 primary, 2 secondary, 3 tertiary, 4 and 5 side
//     click 20 30 1
//     scroll 0 3            # logical pixels, right and down
//     key a                 # pressed and released: a character, or a name (Return, F4, Left ...)
//     hold Shift_L; key a; release Shift_L
//     wait 250              # milliseconds
//     resize 360 240        # the user gives the content this size
//     close                 # asks for it
//     unfocus; focus
//
// Steps of one line, separated by "; ", come together; the next line comes when the program has
// come to rest after them.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/xw.h"

namespace support {

struct Step {
  enum Verb : uint8_t {
    kMove,
    kDown,
    kUp,
    kClick,
    kScroll,
    kKey,
    kHold,
    kRelease,
    kWait,
    kResize,
    kClose,
    kFocus,
    kUnfocus
  } verb;
  int line = 0;             // steps of one line come together
  int a = 0, b = 0, c = 0;  // numbers, as written
  uint32_t symbol = 0;      // of a key
};
using Script = std::vector<Step>;

// A faulty text ends the process with a line that says where.
Script MakeScript(std::string_view text);

// Plays on the headless display, beside the program's own loop; `at_end` (may be empty) is called
// after the last step. One script at a time. `w` is a top-level window; its end ends the script.
void StartPlaying(const Script& script, XwWindow* w, std::function<void()> at_end);

}  // namespace support
