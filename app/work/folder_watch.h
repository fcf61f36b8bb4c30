// Tells when the folder that is shown has changed. A separate thread waits for the system to say
// so; where the system does not (another machine's folder, one that is gone) it looks each second.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "app/model/folder.h"
#include "app/work/background_task.h"

namespace console {

class FolderWatch {
 public:
  // Called on the main thread, between two events. Then it waits for the next Watch.
  using Changed = std::function<void()>;
  explicit FolderWatch(Changed changed);
  // Does not wait for a look that hangs.
  ~FolderWatch();
  FolderWatch(const FolderWatch&) = delete;
  FolderWatch& operator=(const FolderWatch&) = delete;

  // This one instead of that before, which was listed when it had this time of change.
  void Watch(const std::string& path, const FolderStamp& since);
  // For how many whole seconds the present look has been waiting for the system.
  int SilentSeconds() const;

 private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
  BackgroundTask task_;
};

}  // namespace console
