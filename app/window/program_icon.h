// The console's icon: what the desktop shows beside its window.
#pragma once

namespace console {

// Draws it at each size that desktops show and gives it to the session. Needs the session.
void SetUpProgramIcon();

}  // namespace console
