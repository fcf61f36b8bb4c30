// The one table of sizes, in logical pixels, beside the colour roles.
#pragma once

namespace platform {

constexpr int kMenuBarHeight = 24;

}  // namespace platform
