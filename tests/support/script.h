// Event scripts: what a user and a desktop do to one window, as text. The same script plays on the
// headless display (here) and on X (x_player.h).
//
//     move 20 30            # the pointer, relative to the window's content
//     down 1; up 1          # buttons 1 primary, 2 secondary, 3 tertiary, 4 and 5 side
//     click 20 30 1
//     scroll 0 3            # logical pixels, right and down
//     key a                 # pressed and released: a character, or a name (Return, F4, Left ...)
//     hold Shift_L; key a; release Shift_L
//     modifiers shift control   # the headless display only; none: no word
//     wait 250              # milliseconds
//     resize 360 240        # the user gives the content this size
//     close                 # asks for it
//     unfocus; focus; lose; preferences; quit; open /a/file      # the headless display only
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
    kModifiers,
    kWait,
    kResize,
    kClose,
    kFocus,
    kUnfocus,
    kLose,
    kOpen,
    kPreferences,
    kQuit
  } verb;
  int line = 0;             // steps of one line come together
  int a = 0, b = 0, c = 0;  // numbers, as written
  uint32_t bits = 0;        // a key's symbol; modifier bits
  std::string path;
};
using Script = std::vector<Step>;

// False with `error` ("line 3: ...") when the text is faulty.
bool ParseScript(std::string_view text, Script* script, std::string* error);
// A script written in a test: a faulty one ends the process with its error.
Script MakeScript(std::string_view text);

// Plays on the headless display, with the stepped clock or the system's: runs the loop until the
// script is over, what it caused is handled, or a wait returns; the result is that of the wait, 0
// at the script's end. One script at a time. `w` is a top-level window.
int Play(const Script& script, XwWindow* w);
// The same beside a loop of the program's own; `at_end` (may be empty) is called after the last
// step. Ends early when the window is destroyed.
void StartPlaying(const Script& script, XwWindow* w, std::function<void()> at_end);

}  // namespace support
