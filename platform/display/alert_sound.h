// The sound that asks for attention.
#pragma once

namespace platform {

// Nothing where the display has no sound.
void AlertSoundPlay();

}  // namespace platform
