#include "app/panes/places.h"

#include "app/look/style.h"
#include "app/panes/ids.h"

namespace console {
namespace {

constexpr int kCaption = 32, kPlaceHeight = 22, kFooter = 28;

Area PlaceArea(const PlacesPane* p, int i) {
  const Area a = p->layout.places;
  return {a.x + 4, a.y + kCaption + i * kPlaceHeight, a.w - 9, kPlaceHeight - 1};
}

// The place that the folder lies deepest in, -1 none. Everything lies in the root: that says
// nothing.
int PlaceAround(const PlacesPane* p, const std::string& folder) {
  int best = -1;
  size_t length = 1;
  for (int i = 0; i < int(p->places.size()); ++i) {
    const std::string& path = p->places[size_t(i)].path;
    if (path.size() <= length || (folder + "/").rfind(path + "/", 0) != 0) continue;
    best = i;
    length = path.size();
  }
  return best;
}

}  // namespace

void PlacesPane::Draw(const std::string& folder, bool active, const Hit& hover) const {
  Area a = layout.places;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtRight(a);
  DrawCaption(a.Inset(12, 0), "PLACES");
  const int around = PlaceAround(this, folder);
  for (int i = 0; i < int(places.size()); ++i) {
    const Place& place = places[size_t(i)];
    const Area row = PlaceArea(this, i);
    const bool here = place.path == folder, lit = hover == Hit{kPlaces, 1, i};
    const bool lights = here && active;
    int32_t background = l.side;
    if (here || lit || i == around) {
      background = lights                ? l.accent
                   : here || i == around ? l.inactive_selection
                                         : Mix(l.accent, l.side, 9);
      XwRoundBox(row.x, row.y, row.w, row.h, 4, background, -1);
    }
    DrawFileIcon(FileKind::kFolder, row.x + 8, row.y + 2, background, 100);
    Area text = row;
    text.TakeLeft(31);
    DrawLabel(l.view, Align::kLeft, text, place.name, lights ? l.on_accent : l.ink);
  }
  Area foot = a.TakeBottom(kFooter);
  foot.w -= 1;
  Fill(foot, l.status);
  LineAtTop(foot);
  DrawLabel(l.small_text, Align::kLeft, foot.Inset(12, 0), free_text, l.second);
}

void PlacesPane::AddHits(const std::string& folder, Hits* hits) const {
  if (layout.places.Empty()) return;
  for (int i = 0; i < int(places.size()); ++i) {
    const Place& place = places[size_t(i)];
    const uint32_t state = place.path == folder ? XWT_SELECTED : 0;
    hits->Add({kPlaces, 1, i}, PlaceArea(this, i), {XWA_ROW, state, place.name, ""});
  }
}

}  // namespace console
