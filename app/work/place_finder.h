// Looks which places there are, on a separate thread.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/work/background_task.h"

namespace console {

struct Place {
  std::string name, path;
};

class PlaceFinder {
 public:
  // Called on the main thread, between two events, with those of the asked ones that are folders.
  using Show = std::function<void(std::vector<Place>)>;
  PlaceFinder() = default;
  ~PlaceFinder();
  PlaceFinder(const PlaceFinder&) = delete;
  PlaceFinder& operator=(const PlaceFinder&) = delete;

  // Once.
  void Find(std::vector<Place> places, Show show);

 private:
  struct Finding;
  std::shared_ptr<Finding> finding_;
  BackgroundTask task_;
};

}  // namespace console
