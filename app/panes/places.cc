#include "app/panes/places.h"

#include <algorithm>

#include "app/format/texts.h"
#include "app/look/side_marks.h"
#include "app/look/style.h"
#include "os/os.h"

namespace console {
namespace {

constexpr int kCaption = 32, kFooter = 26;
constexpr int kStep = 14;  // to the right, for each folder around
constexpr int kLeastStep = 2;
constexpr int kBegin = 6, kMark = 18, kIcon = 19, kEnd = 8;
constexpr int kLeastName = 84;

}  // namespace

void PlacesPane::MakeControls(XwWindow* window) {
  list.MakeControls(window, kPlacesControl, "Places");
}

void PlacesPane::Place() {
  Area a = layout.places;
  a.w -= 1;  // the line at the right
  a.TakeTop(kCaption);
  a.TakeBottom(kFooter);
  list.Place(a);
}

void PlacesPane::Begin(const std::string& folder) {
  const std::string home = OS_GetPathName(OS_FOLDER_HOME);
  PlacesListing nothing;
  nothing.volumes = {{"Root", "/", ""}, {"Home", home, ""}};
  tree.Use(LiesIn(folder, home) ? home : "/");
  tree.Show(std::move(nothing));
  MakeRows();
}

int PlacesPane::Find(const std::string& volume, const std::string& path) const {
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].path == path && rows[i].volume == volume) return int(i);
  return -1;
}

// The rows of what is known; the keyboard stays at its place, in sight if it was, or goes to the
// folder that is shown.
void PlacesPane::MakeRows() {
  const int at = list.at();
  const bool seen = list.ShowsRow();
  const Row kept = at >= 0 && size_t(at) < rows.size() ? rows[size_t(at)] : Row{};
  rows.clear();
  deepest_ = 0;
  for (const Volume& v : tree.volumes()) {
    const std::vector<Places::Row>& folders = tree.rows(v.path);
    const bool empty = tree.known(v.path) && folders.empty();
    const bool open = tree.expanded(v.path) && !empty;
    const std::string name = v.host.empty() ? v.name : v.name + " on " + v.host;
    rows.push_back({v.path, v.path, Shown(name), 0, !empty, open, tree.error(v.path) != 0});
    if (!open) continue;
    for (const Places::Row& r : folders) {
      rows.push_back({v.path, r.path, Shown(r.name), r.depth, r.has_folders, r.open, r.unreadable});
      deepest_ = std::max(deepest_, r.depth);
    }
  }
  MarkNearest();
  const int there = Find(kept.volume, kept.path);
  list.SetRows(int(rows.size()), there >= 0 ? there : marked_);
  if (seen) list.GoTo(list.at());
}

void PlacesPane::MarkNearest() {
  marked_ = -1;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (!LiesIn(folder_, rows[i].path)) continue;
    const size_t length = rows[i].path.size();
    const size_t most = marked_ < 0 ? 0 : rows[size_t(marked_)].path.size();
    const bool used = rows[i].volume == tree.used();
    if (length > most || (length == most && used && rows[size_t(marked_)].volume != tree.used()))
      marked_ = int(i);
  }
}

bool PlacesPane::Follow(const std::string& folder) {
  if (folder == folder_) return false;
  folder_ = folder;
  const bool unread = tree.Select(folder);
  MakeRows();
  list.GoTo(marked_);
  follows_ = true;
  return unread;
}

bool PlacesPane::Take(PlacesListing listing) {
  const bool there = follows_ && list.at() == marked_;
  const std::string before = marked_ < 0 ? "" : rows[size_t(marked_)].path;
  const bool whole = tree.Show(std::move(listing));
  MakeRows();
  // What was asked for has come, and is not where the folder was marked until then.
  if (there && marked_ >= 0 && rows[size_t(marked_)].path != before) list.GoTo(marked_);
  return whole;
}

bool PlacesPane::SetOpen(int row, bool open) {
  if (row < 0 || size_t(row) >= rows.size()) return false;
  const Row r = rows[size_t(row)];
  follows_ = false;
  const bool unread =
      r.depth > 0 ? tree.SetOpen(r.volume, r.path, open) : tree.Expand(r.volume, open);
  list.SetRows(list.rows(), row);
  MakeRows();
  return unread;
}

bool PlacesPane::Choose(int row) {
  const bool unread = tree.Use(rows[size_t(row)].volume);
  MakeRows();
  return unread;
}

int PlacesPane::Around(int row) const {
  int around = row;
  while (around > 0 && rows[size_t(around)].depth >= rows[size_t(row)].depth) --around;
  return rows[size_t(row)].depth == 0 ? row : around;
}

// Where the deepest folder would leave its name no room, all steps are smaller.
int PlacesPane::Indent(int row) const {
  const int room = std::max(0, list.Body().w - kBegin - kMark - kIcon - kEnd - kLeastName);
  const int step = std::clamp(room / std::max(1, deepest_), kLeastStep, kStep);
  return kBegin + std::min(room, rows[size_t(row)].depth * step);
}

Area PlacesPane::MarkArea(int row) const {
  const Area a = list.RowArea(row);
  return {a.x + Indent(row), a.y, kMark, a.h};
}

void PlacesPane::DrawRow(int row, const Area& a, const Hit& hover, bool active,
                         bool focused) const {
  const Style& l = TheStyle();
  const Row& r = rows[size_t(row)];
  const bool lit = hover == Hit{kPlaces, SideList::kRow, row};
  const bool strong = active && focused && row == list.at();
  const int32_t background = strong           ? l.accent
                             : row == marked_ ? l.inactive_selection
                             : lit            ? Mix(l.accent, l.side, 9)
                                              : l.side;
  if (background != l.side) XwRoundBox(a.x + 4, a.y, a.w - 8, a.h, 4, background, -1);
  const int32_t ink = strong ? l.on_accent : r.unreadable ? Dimmed(l.ink, background) : l.ink;
  Area text = a;
  text.TakeRight(kEnd);
  text.TakeLeft(Indent(row));
  const Area mark = text.TakeLeft(kMark);
  if (r.opens)
    DrawDisclosure(mark.x + 3, mark.y + 4, r.open,
                   strong                                        ? l.on_accent
                   : hover == Hit{kPlaces, SideList::kMark, row} ? l.ink
                                                                 : l.second);
  const Area icon = text.TakeLeft(kIcon);
  if (r.depth == 0)
    DrawVolumeIcon(icon.x, icon.y + 2, strong ? l.on_accent : l.second,
                   strong ? Mix(l.on_accent, l.accent, 30) : l.pressed);
  else
    DrawFileIcon(FileKind::kFolder, icon.x, icon.y + 2, background, r.unreadable ? 40 : 100);
  DrawLabel(l.view, Align::kLeft, text, CutToWidth(l.view, r.name, text.w), ink);
}

void PlacesPane::Draw(const Hit& hover, bool active, bool focused) const {
  Area a = layout.places;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtRight(a);
  a.w -= 1;
  DrawCaption(a.Inset(12, 0), "PLACES");
  Area foot = a.TakeBottom(kFooter);
  list.DrawRows([&](int row, const Area& area) { DrawRow(row, area, hover, active, focused); });
  if (active && focused && !list.ShowsRow()) DrawFocusRing(list.area(), l.side);
  DrawLabel(l.small_text, Align::kLeft, foot.Inset(12, 0),
            wait_text.empty() ? free_text : wait_text, wait_text.empty() ? l.second : l.warning);
}

void PlacesPane::AddHits(Hits* hits, bool focused) const {
  list.AddHits(
      hits, focused,
      [this](int row) -> Words {
        const Row& r = rows[size_t(row)];
        const uint32_t state = (row == marked_ && r.path == folder_ ? uint32_t{XWT_SELECTED} : 0) |
                               (r.open ? uint32_t{XWT_EXPANDED} : 0);
        const std::string path = Shown(r.path);
        const int room = list.Body().w - Indent(row) - kMark - kIcon - kEnd;
        const bool cut = XwTextWidthUtf8(TheStyle().view, r.name.c_str()) > room;
        return {XWA_ROW, state, r.name, r.unreadable ? "cannot be read" : path, cut ? path : ""};
      },
      [this, hits](int row) {
        if (rows[size_t(row)].opens)
          hits->Add({kPlaces, SideList::kMark, row}, list.Visible(MarkArea(row)));
      });
  const std::string& said = wait_text.empty() ? free_text : wait_text;
  if (!layout.places.Empty() && !said.empty()) {
    Area foot = layout.places;
    hits->Cover(foot.TakeBottom(kFooter), {XWA_LABEL, 0, "Room", said});
  }
}

}  // namespace console
