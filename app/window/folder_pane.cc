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

std::string SelectedName(const Console* c) {
  return c->files.selected() < 0 ? "" : c->folder.At(c->files.selected()).name;
}

}  // namespace

void DrawFolderPane(Console* c) {
  static std::string trouble;
  trouble = Shown(c->folder.trouble());
  c->files.SetEmptyText(!c->folder.known() ? "This folder has not been read yet"
                        : trouble.empty()  ? "This folder is empty"
                                           : trouble.c_str());
  c->files.SetFocused(HasKeyboard(c, FocusStop::kFiles));
  DrawHead(c);
  c->files.Draw(c->hover);
}

void AddFolderHits(Console* c) {
  const std::vector<Crumb> crumbs = LayOutCrumbs(c);
  for (size_t i = 0; i < crumbs.size(); ++i)
    c->hits.Add({kCrumbs, 1, int(i)}, crumbs[i].area.Inset(-3, 3),
                {XWA_BUTTON, 0, crumbs[i].text, ""});
  c->files.AddHits(&c->hits, [c](int row) -> Words {
    const FolderEntry e = c->folder.At(row);
    return {XWA_ROW, 0, Shown(e.name), e.folder ? "folder" : SizeText(e.size)};
  });
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

// What is read this fast is shown at once; well below a frame.
constexpr int kAtOnceMs = 8;
constexpr int kWatchTicks = 10, kLongTicks = 2, kSilentTicks = 30, kTypingTicks = 10;

// Whether a request leads elsewhere.
bool Moves(const FolderRequest& w) {
  return w.kind != FolderRequest::kAgain && w.kind != FolderRequest::kWatch;
}

void AskFolder(Console* c, FolderRequest request) {
  if (c->reader.request() && *c->reader.request() == request) return;
  c->reader.Ask(std::move(request));
  c->reading_ticks = 0;
  TakeUpFolder(c, kAtOnceMs);
  if (c->reader.request()) XwTimer(c->window, kShortTickTimer, kShortTickMs);
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
  if (r.request.path != "/") return AskFolder(c, {FolderRequest::kEnter, "/", "", {}});
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

// A word for what a recording has to take up here.
std::string FolderNews(const Console* c) {
  return c->reader.request()->kind == FolderRequest::kWatch ? "changed"
                                                            : std::to_string(c->reader.number());
}

// For how many seconds a look for changes has had no answer, once that is long. How long a look
// takes is nothing that a replay could repeat, so it is taken up.
void TakeUpSilence(Console* c) {
  const FolderRequest* w = c->reader.request();
  const bool silent = w && w->kind == FolderRequest::kWatch && !c->reader.Done() &&
                      c->reading_ticks >= kSilentTicks;
  const int seconds = silent ? c->reading_ticks * kTickMs / 1000 : 0;
  const std::string news = seconds == c->silent_s ? "" : std::to_string(seconds);
  if (const char* wanted = XwTakeUp("silence", news.empty() ? nullptr : news.c_str()))
    c->silent_s = atoi(wanted);
}

std::string SilenceText(const std::string& path, int seconds) {
  return "No answer for " + std::to_string(seconds) + " s: " + LastName(path);
}

// What is said of a reading that takes its time.
std::string ReadingText(const Console* c) {
  const FolderRequest* w = c->reader.request();
  if (!w || w->kind == FolderRequest::kWatch)
    return c->silent_s > 0 ? SilenceText(c->folder.path(), c->silent_s) : "";
  if (c->reading_ticks < kLongTicks) return "";
  if (c->reading_ticks >= kSilentTicks)
    return SilenceText(w->path, c->reading_ticks * kTickMs / 1000);
  return "Reading " + (w->path == "/" ? "Root" : LastName(w->path)) + "…";
}

}  // namespace

void TakeUpFolder(Console* c, int wait_ms) {
  const std::string news = c->reader.WaitFor(wait_ms) ? FolderNews(c) : "";
  const char* wanted = XwTakeUp("folder", news.empty() ? nullptr : news.c_str());
  if (!wanted) return;
  // In a replay the folder may not have changed by itself.
  if (news != wanted && !strcmp(wanted, "changed"))
    c->reader.Ask({FolderRequest::kWatch, c->folder.path(), "", kNoStamp});
  if (!c->reader.WaitFor(kReplayPatienceMs)) return;
  XwTimer(c->window, kShortTickTimer, 0);
  const auto reading = c->reader.Take();
  if (!Moves(reading->request))
    ReadAgain(c, reading.get());
  else if (reading->error == 0)
    Entered(c, reading.get());
  else
    NotEntered(c, *reading);
}

void WatchFolder(Console* c) {
  ++c->reading_ticks;
  TakeUpFolder(c, 0);
  if (c->ticks % kWatchTicks == 0 && !c->reader.request() && c->folder.known()) {
    c->reader.Ask({FolderRequest::kWatch, c->folder.path(), "", c->folder.stamp()});
    c->reading_ticks = 0;
  }
  TakeUpSilence(c);
  const std::string text = ReadingText(c);
  if (text == c->reading_text) return;
  c->reading_text = text;
  c->damage |= kFolderPane;
}

void StopReading(Console* c) {
  const FolderRequest* w = c->reader.request();
  if (!w || !Moves(*w) || !c->folder.known()) return;
  c->reader.Drop();
  XwTimer(c->window, kShortTickTimer, 0);
}

void EnterFolder(Console* c, const std::string& path, const std::string& select) {
  AskFolder(c, {FolderRequest::kEnter, path, select, {}});
}

void GoUp(Console* c) {
  const std::string here = c->folder.path();
  if (here != "/") AskFolder(c, {FolderRequest::kUp, ParentPath(here), LastName(here), {}});
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
  AskFolder(c, {FolderRequest::kAgain, c->folder.path(), "", {}});
}

void FindLetter(Console* c, int character) {
  if (c->ticks - c->typed_at > kTypingTicks) c->typed.clear();
  c->typed_at = c->ticks;
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
  AskFolder(c, {FolderRequest::kDocument, document, "", {}});
}

}  // namespace console
