#include "platform/display/alert_sound.h"
#include "toolkit/xw.h"

void XwBeep() {
  platform::AlertSoundPlay();
}
