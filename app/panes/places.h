// Places to go, and the room that is left at the one that is shown.
#pragma once
#include <string>
#include <vector>

#include "app/look/hits.h"
#include "app/panes/layout.h"
#include "app/work/place_finder.h"

namespace console {

struct PlacesPane {
  // `folder`: the path of the one that is shown; `active`: the window is.
  void Draw(const std::string& folder, bool active, const Hit& hover) const;
  void AddHits(const std::string& folder, Hits* hits) const;

  const Layout& layout;  // looked at for as long as the pane lives
  std::vector<Place> places;
  std::string free_text;
};

}  // namespace console
