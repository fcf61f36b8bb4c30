// What a program's handlers saw, in a form that is the same on every display and in every run: no
// time, the pointer relative to its window, no place on the screen, neighbouring motions as one.
#pragma once
#include <string>
#include <string_view>

#include "toolkit/xw.h"

namespace support {

// From now on a line is written for each event that `w` gets ("main 771 item 0 at 20 30 state 1"),
// then its own handler is called, whose result counts. `name` stands for the window in the trace.
void HookTrace(XwWindow* w, const std::string& name);
// Each line is written there as it comes; -1, as at the beginning: nowhere.
void WriteTraceTo(int descriptor);

// The lines of `text` with neighbouring motions of one window merged into the last of them.
std::string MergeMotions(std::string_view text);

}  // namespace support
