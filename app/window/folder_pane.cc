// The folder: the way to it as crumbs, and the table of its entries.
#include <strings.h>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "app/format/texts.h"
#include "app/window/console.h"

namespace console {
namespace {

enum Cells { kName, kSize, kModified };
constexpr Order kOrders[] = {Order::kName, Order::kSize, Order::kTime};

// When it is said that something is being read, and that it does not answer.
constexpr int kLongMs = 200, kSilentSeconds = 3;
constexpr uint32_t kTypingMs = 1000;

struct Crumb {
  std::string path, text;
  Area area;
};

// What lies right of the crumbs: what is being read, or what there is.
int HeadTextWidth(const Console* c) {
  return c->reading_text.empty() ? 130 : std::min(260, c->layout.folder_head.w / 2);
}

void DrawHeadText(const Console* c) {
  const Style& l = TheStyle();
  Area a = c->layout.folder_head.Inset(12, 0);
  a.h -= 1;
  a = a.TakeRight(HeadTextWidth(c));
  if (!c->reading_text.empty())
    DrawLabel(l.small_text, Align::kRight, a, Shown(c->reading_text), l.warning);
  else if (c->folder.known())
    DrawLabel(l.small_text, Align::kRight, a,
              CountText(c->folder.files(), "file", "files") + ", " + SizeText(c->folder.bytes()),
              l.second);
}

// From the right, as many as there is room for; the last one is the folder itself.
std::vector<Crumb> LayOutCrumbs(const Console* c) {
  const Style& l = TheStyle();
  Area bar = c->layout.folder_head.Inset(12, 0);
  bar.h -= 1;
  bar.TakeRight(HeadTextWidth(c));
  std::vector<Crumb> crumbs;
  for (std::string path = c->folder.path();; path = ParentPath(path)) {
    crumbs.insert(crumbs.begin(), {path, path == "/" ? "Root" : Shown(LastName(path)), {}});
    if (path == "/") break;
  }
  int width = 0;
  size_t first = crumbs.size();
  while (first > 0) {
    XwFont* font = first == crumbs.size() ? l.bold : l.normal;
    const int w = XwTextWidthUtf8(font, crumbs[first - 1].text.c_str()) + 1;
    if (first < crumbs.size() && width + w + 18 > bar.w) break;
    crumbs[--first].area.w = w;
    width += w + 18;
  }
  crumbs.erase(crumbs.begin(), crumbs.begin() + int(first));
  for (Crumb& crumb : crumbs) {
    const int w = crumb.area.w;
    crumb.area = bar.TakeLeft(w);
    bar.TakeLeft(18);
  }
  return crumbs;
}

void DrawHead(const Console* c) {
  const Style& l = TheStyle();
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
    XwSetColor(l.line);
    XwDrawLine(x, y, x + 3, y + 3);
    XwDrawLine(x, y + 6, x + 3, y + 3);
  }
  DrawHeadText(c);
}

// The one that is shown does not answer.
bool FolderIsSilent(const Console* c) {
  const FolderRequest* w = c->reader.request();
  return c->silent_s > 0 || (w && w->path == c->folder.path() && c->reading_s >= kSilentSeconds);
}

std::string SelectedName(const Console* c) {
  return c->files.selected() < 0 ? "" : c->folder.At(c->files.selected()).name;
}

}  // namespace

void DrawFolderPane(Console* c) {
  static std::string trouble;
  trouble = Shown(c->folder.trouble());
  c->files.SetEmptyText(!c->folder.known() ? ""
                        : trouble.empty()  ? "This folder is empty"
                                           : trouble.c_str());
  c->files.SetFocused(HasKeyboard(c, FocusStop::kFiles));
  c->files.SetMuted(FolderIsSilent(c));
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
  const Style& l = TheStyle();
  const FolderEntry e = c->folder.At(row);
  Area a = cell.area;
  switch (column) {
    case kName: {
      const FileKind kind = e.folder ? FileKind::kFolder : KindOf(e.name);
      DrawFileIcon(kind, a.x, a.y + 3, cell.background, 100);
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

namespace {

// Whether a request leads elsewhere.
bool Moves(const FolderRequest& w) {
  return w.kind != FolderRequest::kAgain;
}

void AskFolder(Console* c, FolderRequest request) {
  if (c->reader.request() && *c->reader.request() == request) return;
  c->reader.Ask(std::move(request));
  c->reading_s = 0;
  XwTimer(c->window, kReadingTimer, 0);
  XwTimer(c->window, kReadingTimer, kLongMs);
}

void Listed(Console* c, const std::string& select) {
  c->files.SetRows(c->folder.count());
  c->files.SetSort(int(c->folder.order()), c->folder.descending());
  c->files.KeepSelected(select.empty() ? -1 : c->folder.Find(select));
  c->damage |= kFolderPane | kDetailsPane | kToolsPane | kPlacesPane | kStatusPane;
}

void ShowFreeRoom(Console* c, const FolderReading& r) {
  c->free_text.clear();
  if (r.room > 0) c->free_text = SizeText(r.free) + " free of " + SizeText(r.room);
}

void Entered(Console* c, FolderReading* r) {
  c->typed.clear();
  c->folder.Show(std::move(r->listing));
  ShowFreeRoom(c, *r);
  c->files.ScrollTo(0);
  Listed(c, r->select);
  c->files.Reveal(c->files.selected());
  if (r->request.kind != FolderRequest::kDocument) return;
  c->stop = FocusStop::kFiles;
  if (!r->select.empty() && c->files.selected() < 0)
    Tell(c, false, r->select + ": " + strerror(ENOENT));
}

// The folder shown stays; where none is yet, it is the root.
void NotEntered(Console* c, const FolderReading& r) {
  Tell(c, false, r.request.path + ": " + strerror(r.error));
  if (c->folder.known()) return;
  if (r.request.path != "/") return AskFolder(c, {FolderRequest::kEnter, "/", ""});
  c->folder.Begin("/");
  c->folder.Lose(r.error, {});
  Listed(c, "");
}

void ReadAgain(Console* c, FolderReading* r) {
  const std::string kept = SelectedName(c);
  if (r->error == 0)
    c->folder.Show(std::move(r->listing));
  else
    c->folder.Lose(r->error, r->listing.stamp);
  ShowFreeRoom(c, *r);
  Listed(c, kept);
}

std::string SilenceText(const std::string& path, int seconds) {
  return "No answer for " + std::to_string(seconds) + " s: " + LastName(path);
}

void ShowReading(Console* c, const std::string& text) {
  if (text == c->reading_text) return;
  c->reading_text = text;
  c->damage |= kFolderPane;
}

}  // namespace

void FolderCame(Console* c, FolderReading* reading) {
  XwTimer(c->window, kReadingTimer, 0);
  ShowReading(c, "");
  if (!Moves(reading->request))
    ReadAgain(c, reading);
  else if (reading->error == 0)
    Entered(c, reading);
  else
    NotEntered(c, *reading);
  if (c->folder.known()) c->watch.Watch(c->folder.path(), c->folder.stamp());
  DrawConsole(c);
}

void FolderChanged(Console* c) {
  RefreshFolder(c);
  DrawConsole(c);
}

void ShowWait(Console* c) {
  XwTimer(c->window, kReadingTimer, 0);
  const FolderRequest* w = c->reader.request();
  if (w && Moves(*w) && c->reading_s < kSilentSeconds)
    ShowReading(c, "Reading " + (w->path == "/" ? "Root" : LastName(w->path)) + "…");
}

namespace {

// How long the watch takes is nothing that a replay could repeat, so it is a result.
void TakeSilence(void* data, int taken) {
  const std::unique_ptr<int> seconds(static_cast<int*>(data));
  if (taken) ShowSilence(*seconds);
}

void PostSilence(Console* c) {
  int seconds = c->watch.SilentSeconds();
  if (seconds < kSilentSeconds) seconds = 0;
  if (seconds == c->posted_silent_s) return;
  c->posted_silent_s = seconds;
  XwPost("silence", std::to_string(seconds).c_str(), TakeSilence, new int(seconds));
}

}  // namespace

void WatchFolder(Console* c) {
  PostSilence(c);
  const FolderRequest* w = c->reader.request();
  if (w) ++c->reading_s;
  if (w && c->reading_s >= kSilentSeconds)
    ShowReading(c, SilenceText(w->path, c->reading_s));
  else if (c->silent_s > 0)
    ShowReading(c, SilenceText(c->folder.path(), c->silent_s));
  else if (!w)
    ShowReading(c, "");
}

void StopReading(Console* c) {
  const FolderRequest* w = c->reader.request();
  if (!w || !Moves(*w) || !c->folder.known()) return;
  c->reader.Drop();
  XwTimer(c->window, kReadingTimer, 0);
  ShowReading(c, "");
}

void EnterFolder(Console* c, const std::string& path, const std::string& select) {
  AskFolder(c, {FolderRequest::kEnter, path, select});
}

void GoUp(Console* c) {
  const std::string here = c->folder.path();
  if (here != "/") AskFolder(c, {FolderRequest::kUp, ParentPath(here), LastName(here)});
}

void OpenSelected(Console* c) {
  const int row = c->files.selected();
  if (row < 0) return;
  if (c->folder.At(row).folder)
    EnterFolder(c, c->folder.PathOf(row), "");
  else
    Tell(c, true, "Print or Ctrl+P prints it");
}

void SortBy(Console* c, int column) {
  const std::string kept = SelectedName(c);
  const Order order = kOrders[column];
  // Names begin with the first, sizes and times with the largest.
  const bool descending =
      order == c->folder.order() ? !c->folder.descending() : order != Order::kName;
  c->folder.Sort(order, descending);
  Listed(c, kept);
  c->files.Reveal(c->files.selected());
}

// What is being entered is read just now.
void RefreshFolder(Console* c) {
  if (c->reader.request() && Moves(*c->reader.request())) return;
  AskFolder(c, {FolderRequest::kAgain, c->folder.path(), ""});
}

void FindLetter(Console* c, int character) {
  if (Inp.time - c->typed_at > kTypingMs) c->typed.clear();
  c->typed_at = Inp.time;
  c->typed += char(tolower(character));
  // The same letter again and again goes through the names that begin with it.
  const bool steps = c->typed.find_first_not_of(c->typed[0]) == std::string::npos;
  const std::string wanted = steps ? c->typed.substr(0, 1) : c->typed;
  const int n = c->folder.count(), from = c->files.selected();
  for (int i = steps ? 1 : 0; i <= n && n > 0; ++i) {
    const int row = (from + i + n) % n;
    if (strncasecmp(c->folder.At(row).name, wanted.c_str(), wanted.size()) != 0) continue;
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
  AskFolder(c, {FolderRequest::kDocument, document, ""});
}

}  // namespace console
