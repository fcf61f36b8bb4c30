// Reads volumes and folder trees on a separate thread: each tree is built there, with the folders
// that are open expanded, and handed over whole.
#pragma once
#include <functional>
#include <memory>

#include "app/model/places.h"
#include "app/work/background_task.h"

namespace console {

class PlacesReader {
 public:
  // What looks at the file system. Tests put a slow one in its place.
  using Read = void (*)(PlacesListing*);
  static Read read;

  PlacesReader() = default;
  ~PlacesReader() { Drop(); }
  PlacesReader(const PlacesReader&) = delete;
  PlacesReader& operator=(const PlacesReader&) = delete;

  // What was asked for before is dropped; its tree is destroyed when it has been read. `told` (may
  // be empty) is called when this one can be taken, usually on another thread, and never after it
  // has been dropped.
  void Ask(PlacesRequest request, std::function<void()> told = {});
  void Drop();
  // What is being waited for; null when nothing is.
  const PlacesRequest* request() const;
  bool WaitFor(int ms) const;
  // Of one that is done: hands it over. Nothing of one that is not.
  PlacesListing Take();

 private:
  struct Reading;
  BackgroundTask task_;
  std::shared_ptr<Reading> reading_;
};

// What the places of the system are called.
std::vector<Volume> ListVolumes();

}  // namespace console
