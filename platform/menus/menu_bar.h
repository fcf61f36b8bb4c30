// The menu bar at the top of the first window: for now it carries the session's name.
#pragma once

namespace platform {

void InitMenus();
void FinishMenus();
// Whether the session's menu offers Preferences; requests from the desktop arrive all the same.
void SetPreferencesCommand(bool offered);
bool PreferencesCommandOffered();

}  // namespace platform
