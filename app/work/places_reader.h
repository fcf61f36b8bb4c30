// Reads volumes and folder trees on a separate thread: each tree is built there, with the folders
// that are open expanded, and handed over whole.
#pragma once
#include "app/model/places.h"
#include "app/work/background_task.h"

namespace console {

class PlacesReader {
 public:
  // What looks at the file system. Tests put a slow one in its place.
  using Read = void (*)(PlacesListing*);
  static Read read;

  // What was asked for before is dropped; its tree is destroyed when it has been read.
  void Ask(PlacesRequest request);
  void Drop();
  // What is being waited for; null when nothing is.
  const PlacesRequest* request() const { return listing_ ? &listing_->request : nullptr; }
  bool WaitFor(int ms) const { return task_.WaitFor(ms); }
  // Of one that is done: hands it over.
  PlacesListing Take();

 private:
  BackgroundTask task_;
  std::shared_ptr<PlacesListing> listing_;
};

// What the places of the system are called.
std::vector<Volume> ListVolumes();

}  // namespace console
