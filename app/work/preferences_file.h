// The file of preferences: quorvik/console.conf in $XDG_CONFIG_HOME, else in ~/.config. Only its
// user can read it, and it is replaced as a whole.
#pragma once
#include <memory>
#include <string>

#include "app/model/preferences.h"
#include "app/work/background_task.h"

namespace console {

// "" when the user has no home folder.
std::string PreferencesPath();
// The usual ones when there is no such file, or it cannot be read, or is larger than 256 KiB.
Preferences LoadPreferences(const std::string& path);
// Makes the folders that are missing. False, with errno, when it cannot be written: what was there
// before stays.
bool StorePreferences(const std::string& path, const Preferences& preferences);

// Stores in the background: a home folder that does not answer holds up neither the window nor its
// end. Of what is stored while another storing is under way only the last one counts.
class PreferencesWriter {
 public:
  explicit PreferencesWriter(std::string path);
  void Store(const Preferences& preferences);
  // Waits until all is written, for so many milliseconds at most. Whether it is.
  bool Finish(int ms);

 private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
  BackgroundTask task_;
};

}  // namespace console
