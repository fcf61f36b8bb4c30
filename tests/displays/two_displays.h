// One script, two displays: the same events in the same order, and the same pictures.
//
// The program under test runs in a separate process and writes a line for each event that its
// handlers get. On X a second connection plays the user; headless, the input is injected.
#pragma once
#include <vector>

#include "toolkit/xw.h"

namespace displays {

// A part of a script, and what comes after it.
struct Act {
  const char* script;
  enum After : uint8_t {
    kNothing,
    kPicture,   // of the first window, its menu bar and the menus over it
    kSteal,     // another program takes the pointer
    kGiveBack,  // and lets go of it
  } after = kNothing;
};

struct Play {
  // Makes the windows, with HookTrace for those that are traced; the script plays on the one that
  // it returns. It is titled "Script". A wait that returns 778 ends the program.
  XwWindow* (*make)();
  std::vector<Act> acts;
  // On a screen the pointer comes back into the window when a menu over it goes.
  bool with_motions = false;
  // What the headless trace must contain.
  std::vector<const char*> lines;
};

void ExpectTheSame(const Play& play);

}  // namespace displays
