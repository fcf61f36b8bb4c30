// The folder: the way to it as crumbs, and the table of its entries.
#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "app/console.h"
#include "app/texts.h"

namespace console {
namespace {

enum Cells { kName, kSize, kModified };
constexpr Order kOrders[] = {Order::kName, Order::kSize, Order::kTime};

struct Crumb {
  std::string path, text;
  Area area;
};

// From the right, as many as there is room for; the last one is the folder itself.
std::vector<Crumb> LayOutCrumbs(const Console* c) {
  const Look& l = TheLook();
  Area strip = c->layout.folder_head.Inset(12, 0);
  strip.h -= 1;
  strip.TakeRight(130);
  std::vector<Crumb> crumbs;
  for (std::string path = c->folder.path();; path = ParentPath(path)) {
    crumbs.insert(crumbs.begin(), {path, path == "/" ? "Root" : Shown(LastName(path)), {}});
    if (path == "/") break;
  }
  int width = 0;
  size_t first = crumbs.size();
  while (first > 0) {
    XwFont* font = first == crumbs.size() ? l.bold : l.normal;
    const int w = XwTextWidth(font, crumbs[first - 1].text.c_str()) + 1;
    if (first < crumbs.size() && width + w + 18 > strip.w) break;
    crumbs[--first].area.w = w;
    width += w + 18;
  }
  crumbs.erase(crumbs.begin(), crumbs.begin() + int(first));
  for (Crumb& crumb : crumbs) {
    const int w = crumb.area.w;
    crumb.area = strip.TakeLeft(w);
    strip.TakeLeft(18);
  }
  return crumbs;
}

void DrawHead(const Console* c) {
  const Look& l = TheLook();
  const Area head = c->layout.folder_head;
  Fill(head, l.tool_bar);
  LineAtBottom(head);
  const std::vector<Crumb> crumbs = LayOutCrumbs(c);
  for (size_t i = 0; i < crumbs.size(); ++i) {
    const Crumb& crumb = crumbs[i];
    const bool last = i + 1 == crumbs.size(), lit = c->hover == Hit{kCrumbs, 1, int(i)};
    DrawLabel(last ? l.bold : l.normal, Align::kLeft, crumb.area, crumb.text,
              last  ? l.ink
              : lit ? l.accent
                    : l.second);
    if (lit && !last) Fill({crumb.area.x, crumb.area.y + 21, crumb.area.w - 1, 1}, l.accent);
    if (last) break;
    const int x = crumb.area.right() + 6, y = crumb.area.y + 11;
    for (int k = 0; k < 4; ++k) {
      XwBox(x + k, y + k, 1, 1, l.line);
      XwBox(x + k, y + 6 - k, 1, 1, l.line);
    }
  }
  Area right = head.Inset(12, 0);
  right.h -= 1;
  DrawLabel(l.small_text, Align::kRight, right.TakeRight(130),
            CountText(c->folder.files(), "file", "files") + ", " + SizeText(c->folder.bytes()),
            l.second);
}

std::string SelectedName(const Console* c) {
  return c->files.selected() < 0 ? "" : c->folder.At(c->files.selected()).name;
}

}  // namespace

void DrawFolderPane(Console* c) {
  static std::string trouble;
  trouble = Shown(c->folder.trouble());
  c->files.SetEmptyText(trouble.empty() ? "This folder is empty" : trouble.c_str());
  c->files.SetFocused(c->stop == Stop::kFiles);
  DrawHead(c);
  c->files.Draw(c->hover);
}

void AddFolderHits(Console* c) {
  const std::vector<Crumb> crumbs = LayOutCrumbs(c);
  for (size_t i = 0; i < crumbs.size(); ++i)
    c->hits.Add({kCrumbs, 1, int(i)}, crumbs[i].area.Inset(-3, 3));
  c->files.AddHits(&c->hits);
}

void DrawFileCell(Console* c, int row, int column, const CellLook& cell) {
  const Look& l = TheLook();
  const FolderEntry e = c->folder.At(row);
  Area a = cell.area;
  switch (column) {
    case kName: {
      const FileKind kind = e.folder ? FileKind::kFolder : KindOf(e.name);
      DrawFileIcon(kind, a.x, a.y + 3, cell.ground, 100);
      a.TakeLeft(21);
      DrawLabel(l.view, cell.align, a, Shown(e.name), cell.ink);
      break;
    }
    case kSize:
      if (!e.folder) DrawLabel(l.view, cell.align, a, SizeText(e.size), cell.ink);
      break;
    case kModified:
      DrawLabel(l.view, cell.align, a, DayText(e.time, time(nullptr)), cell.ink);
      break;
    default:
      break;
  }
}

void ListedAgain(Console* c, const std::string& select) {
  c->files.SetRows(c->folder.count());
  c->files.SetSort(int(c->folder.order()), c->folder.descending());
  c->files.KeepSelected(select.empty() ? -1 : c->folder.Find(select));
  c->damage |= kFolderPane | kDetailsPane | kToolsPane | kPlacesPane | kStatusPane;
}

bool EnterFolder(Console* c, const std::string& path, const std::string& select) {
  if (!c->folder.Enter(path)) {
    Tell(c, false, path + ": " + strerror(errno));
    return false;
  }
  c->files.ScrollTo(0);
  ListedAgain(c, select);
  c->files.Reveal(c->files.selected());
  FindPlaces(c);
  return true;
}

void GoUp(Console* c) {
  const std::string here = c->folder.path();
  if (here != "/") EnterFolder(c, ParentPath(here), LastName(here));
}

void OpenSelected(Console* c) {
  const int row = c->files.selected();
  if (row >= 0 && c->folder.At(row).folder) EnterFolder(c, c->folder.PathOf(row), "");
}

void SortBy(Console* c, int column) {
  const std::string kept = SelectedName(c);
  const Order order = kOrders[column];
  // Names begin with the first, sizes and times with the largest.
  const bool descending =
      order == c->folder.order() ? !c->folder.descending() : order != Order::kName;
  c->folder.Sort(order, descending);
  ListedAgain(c, kept);
  c->files.Reveal(c->files.selected());
}

void RefreshFolder(Console* c) {
  const std::string kept = SelectedName(c);
  c->folder.Read();
  ListedAgain(c, kept);
}

void FindLetter(Console* c, int character) {
  const int n = c->folder.count(), from = c->files.selected();
  for (int i = 1; i <= n; ++i) {
    const int row = (from + i + n) % n;
    if (tolower(uint8_t(c->folder.At(row).name[0])) != tolower(character)) continue;
    c->files.Select(row);
    return;
  }
}

void PressCrumb(Console* c, int index) {
  const std::vector<Crumb> crumbs = LayOutCrumbs(c);
  if (index < 0 || size_t(index) >= crumbs.size()) return;
  const std::string below =
      size_t(index) + 1 < crumbs.size() ? LastName(crumbs[size_t(index) + 1].path) : "";
  EnterFolder(c, crumbs[size_t(index)].path, below);
}

void ShowDocument(Console* c, const char* path) {
  if (!path || path[0] != '/') return;
  std::string document = path;
  while (document.size() > 1 && document.back() == '/') document.pop_back();
  struct stat s {};
  if (stat(document.c_str(), &s) == 0 && S_ISDIR(s.st_mode)) {
    EnterFolder(c, document, "");
    return;
  }
  if (!EnterFolder(c, ParentPath(document), LastName(document))) return;
  c->stop = Stop::kFiles;
  if (c->files.selected() < 0) Tell(c, false, LastName(document) + ": " + strerror(ENOENT));
}

}  // namespace console
