#include "platform/display/alert_sound.h"

#include "platform/display/display.h"
#include "platform/display/screens.h"

namespace platform {

void AlertSoundPlay() {
  const Display* d = CurrentDisplay();
  if (d && d->beep) d->beep();
}

}  // namespace platform
