#include "app/work/place_finder.h"

#include <sys/stat.h>

#include "toolkit/xw.h"

namespace console {

struct PlaceFinder::Finding {
  std::vector<Place> places;
  Show show;  // the main thread's; null at the end
};

void PlaceFinder::Find(std::vector<Place> places, Show show) {
  auto finding = std::make_shared<Finding>();
  finding->places = std::move(places);
  finding->show = std::move(show);
  finding_ = finding;
  task_ = BackgroundTask([finding] {
    std::erase_if(finding->places, [](const Place& place) {
      struct stat s {};
      return stat(place.path.c_str(), &s) != 0 || !S_ISDIR(s.st_mode);
    });
    XwPost(
        "places", nullptr,
        [](void* data, int taken) {
          const std::unique_ptr<std::shared_ptr<Finding>> posted(
              static_cast<std::shared_ptr<Finding>*>(data));
          Finding& f = **posted;
          if (taken && f.show) f.show(std::move(f.places));
        },
        new std::shared_ptr<Finding>(finding));
  });
}

PlaceFinder::~PlaceFinder() {
  if (finding_) finding_->show = nullptr;
}

}  // namespace console
