// The displays that this build has, in the order in which they are tried.
#include "platform/display/display.h"

namespace platform {

const Display* const kDisplays[] = {
    &kX11Display,
    &kHeadlessDisplay,
    nullptr,
};

}  // namespace platform
