// Plays event scripts on an X server, as a user at a second connection does.
#pragma once
#include <functional>

#include "tests/support/script.h"
#include "tests/support/x_server.h"

namespace support {

// `bar` is the height of what lies above the window's content. `rest` is called after each line
// and returns when the program has come to rest. False when a step cannot be done on X; the steps
// before it are done.
bool PlayOnX(const Script& script, XUser& user, xcb_window_t window, int bar,
             const std::function<void()>& rest);

}  // namespace support
