// The token that the desktop's launcher hands to a start: it names the user's action that the start
// follows, so that the first window may come to the front and the launcher knows when it has.
#pragma once
#include <string>

namespace platform {

// Takes the token out of the environment, where children would inherit it.
void TakeStartToken();
// Empty when there was none.
const std::string& StartToken();

}  // namespace platform
