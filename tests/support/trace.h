// What a program's handlers saw, in a form that is the same on every display and in every run: no
// time, the pointer relative to its window, no place on the screen, neighbouring motions as one.
#pragma once
#include <string>
#include <string_view>

#include "toolkit/xw.h"

namespace support {

// From now on a line is noted for each event that `w` gets, then its own handler is called, whose
// result counts. `name` stands for the window in the trace. A window without a handler gets one
// that returns 0. Hooking it again replaces the name; a window that is destroyed is forgotten when
// its address is hooked again.
void HookTrace(XwWindow* w, const std::string& name);
// Lines so far, normalised; ClearTrace forgets them.
std::string Trace();
void ClearTrace();
// Each line is also written there as it comes, before neighbours are merged; -1: nowhere.
void WriteTraceTo(int descriptor);

// The line of Inp, without a line end: "main 771 item 0 at 20 30 state 1".
std::string TraceLine(const std::string& name);
// The lines of `text` with neighbouring motions of one window merged into the last of them.
std::string MergeMotions(std::string_view text);

}  // namespace support
