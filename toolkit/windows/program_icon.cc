// The program's icon, as the desktop shows it.
#include "platform/windows/windows.h"
#include "toolkit/xw.h"

void XwSetProgramIcon(const uint32_t* argb, int size) {
  platform::SetProgramIcon(argb, size);
}
