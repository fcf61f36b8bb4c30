// The places on the left: when they are read, and what is done with them.
#include "app/format/words.h"
#include "app/window/console.h"

namespace console {
namespace {

void ShowPlaces(void*, int taken);

void AskPlaces(Console* c) {
  // It takes longer than the first picture, which it is not to hold up; and once a folder is
  // known it would be asked again. One that does not come soon is not waited for.
  if (!c->has_begun || (!c->files.folder.known() && c->files.reading_text.empty())) return;
  c->places_s = 0;
  c->places.wait_text.clear();
  c->places_reader.Ask(c->places.tree.Request(),
                       [] { XwPost("places", nullptr, ShowPlaces, nullptr); });
}

void ShowPlaces(void*, int taken) {
  Console* c = TheConsole();
  if (!c || !taken || !c->places_reader.request()) return;
  if (!c->places.Take(c->places_reader.Take())) AskPlaces(c);
  c->damage |= kPlacesPane;
  DrawConsole(c);
}

void GoToPlace(Console* c, int row) {
  const std::string path = c->places.rows[size_t(row)].path;
  if (c->places.Choose(row)) AskPlaces(c);
  EnterFolder(c, path, "");
}

// One that is closed while it is being read may be what does not answer.
void OpenPlace(Console* c, int row, bool open) {
  if (c->places.SetOpen(row, open) || (!open && c->places_reader.request())) AskPlaces(c);
}

constexpr int kSilentSeconds = 3;

}  // namespace

void BeginPlaces(Console* c, const std::string& folder) {
  c->places.Begin(folder);
}

void FollowInPlaces(Console* c) {
  const std::string& path = c->files.folder.path();
  // One that the tree lacks may be newer than the tree.
  const Places& tree = c->places.tree;
  if (c->places.Follow(path) || (tree.known(tree.used()) && c->places.Find(tree.used(), path) < 0))
    AskPlaces(c);
  c->damage |= kPlacesPane;
}

void RefreshPlaces(Console* c) {
  if (!c->places_reader.request()) AskPlaces(c);
}

void WatchPlaces(Console* c) {
  const bool silent = c->places_reader.request() && ++c->places_s >= kSilentSeconds;
  const std::string text = silent ? "No answer for " + NumberText(c->places_s) + " s" : "";
  if (text == c->places.wait_text) return;
  c->places.wait_text = text;
  c->damage |= kPlacesPane;
}

// What is pressed is remembered by its path: the rows may be others when it is let go.
void PressPlace(Console* c, const Hit& hit) {
  c->place_pressed = {};
  if (hit.part == SideList::kBody) return SetFocusStop(c, FocusStop::kPlaces);
  c->place_pressed = c->places.rows[size_t(hit.index)];
  c->places.list.GoTo(hit.index);
}

void UsePlace(Console* c, const Hit& hit) {
  const int row = c->places.Find(c->place_pressed.volume, c->place_pressed.path);
  if (row < 0 || hit.part == SideList::kBody) return;
  if (hit.part == SideList::kMark)
    OpenPlace(c, row, !c->places.rows[size_t(row)].open);
  else
    GoToPlace(c, row);
}

void PlacesKey(Console* c, int type) {
  SideList& list = c->places.list;
  const int at = list.at();
  c->damage |= kPlacesPane;
  if (list.Key(type) || at < 0) return;
  if (list.Type(type, Inp.time, [c](int row) { return c->places.rows[size_t(row)].name; })) return;
  const PlacesPane::Row& row = c->places.rows[size_t(at)];
  if (type == XWE_RETURN || type == ' ') GoToPlace(c, at);
  // What lies in an open one may still be on its way.
  const bool shows_more = at + 1 < list.rows() && c->places.rows[size_t(at) + 1].depth > row.depth;
  if (type == XWE_RIGHT && row.open && shows_more)
    list.GoTo(at + 1);
  else if (type == XWE_RIGHT && row.opens && !row.open)
    OpenPlace(c, at, true);
  if (type == XWE_LEFT && row.open)
    OpenPlace(c, at, false);
  else if (type == XWE_LEFT)
    list.GoTo(c->places.Around(at));
}

}  // namespace console
