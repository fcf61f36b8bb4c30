// The folder: the way to it as crumbs, and the table of its entries.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/crumbs.h"
#include "app/window/console.h"

namespace console {
namespace {

enum Cells { kName, kSize, kModified };
constexpr FileOrder kOrders[] = {FileOrder::kName, FileOrder::kSize, FileOrder::kTime};

// When it is said that something is being read, and that it does not answer.
constexpr int kLongMs = 200, kSilentSeconds = 3;

constexpr int kCrumbGapWidth = 18;

struct ShownCrumb {
  Crumb crumb;  // without a path: some are left out here
  Area area;
};

// What lies right of the crumbs: what is being read, or what there is.
std::string HeadText(const Console* c) {
  if (!c->reading_text.empty()) return Shown(c->reading_text);
  if (!c->folder.known() || !c->folder.trouble().empty()) return "";
  const FolderRows& rows = c->folder.rows();
  return rows.CountText() + ", " + SizeText(rows.bytes());
}

Area HeadArea(const Console* c) {
  Area a = c->layout.folder_head.Inset(12, 0);
  a.h -= 1;
  a.w = c->layout.filter_label.x - 12 - a.x;
  return a;
}

int HeadTextWidth(const Console* c) {
  const int width = XwTextWidthUtf8(TheStyle().small_text, HeadText(c).c_str());
  return std::min(width + 17, HeadArea(c).w / 2);
}

void DrawHeadText(const Console* c) {
  const Style& l = TheStyle();
  Area a = HeadArea(c);
  DrawLabel(l.small_text, Align::kRight, a.TakeRight(HeadTextWidth(c) - 16), HeadText(c),
            c->reading_text.empty() ? l.second : l.warning);
}

// As many as there is room for; the last one is the folder itself.
std::vector<ShownCrumb> LayOutCrumbs(const Console* c) {
  const Style& l = TheStyle();
  Area bar = HeadArea(c);
  bar.TakeRight(HeadTextWidth(c));
  const std::vector<Crumb> crumbs = CrumbsOf(c->folder.path());
  std::vector<int> widths;
  for (const Crumb& crumb : crumbs) {
    XwFont* font = widths.size() + 1 == crumbs.size() ? l.bold : l.normal;
    widths.push_back(XwTextWidthUtf8(font, crumb.text.c_str()) + 1 + kCrumbGapWidth);
  }
  const int gap = XwTextWidthUtf8(l.normal, "…") + 1 + kCrumbGapWidth;
  std::vector<ShownCrumb> shown;
  for (const int i : FitCrumbs(widths, gap, bar.w + kCrumbGapWidth)) {
    const bool left_out = i == kCrumbGap;
    const int width = left_out ? gap : widths[size_t(i)];
    shown.push_back(
        {left_out ? Crumb{"", "…"} : crumbs[size_t(i)], bar.TakeLeft(width - kCrumbGapWidth)});
    bar.TakeLeft(kCrumbGapWidth);
  }
  return shown;
}

void DrawHead(const Console* c) {
  const Style& l = TheStyle();
  const Area head = c->layout.folder_head;
  Fill(head, l.tool_bar);
  LineAtBottom(head);
  const std::vector<ShownCrumb> crumbs = LayOutCrumbs(c);
  for (size_t i = 0; i < crumbs.size(); ++i) {
    const ShownCrumb& crumb = crumbs[i];
    const bool last = i + 1 == crumbs.size(), lit = c->hover == Hit{kCrumbs, 1, int(i)};
    DrawLabel(last ? l.bold : l.normal, Align::kLeft, crumb.area, crumb.crumb.text,
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
  DrawLabel(l.small_text, Align::kRight, c->layout.filter_label, "Filter", l.second);
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
  const std::string& trouble = c->folder.trouble();
  c->files.SetEmptyText(trouble.empty() ? c->folder.rows().EmptyText()
                                        : "This folder cannot be shown: " + trouble);
  c->files.SetFocused(HasKeyboard(c, FocusStop::kFiles));
  c->files.SetMuted(FolderIsSilent(c));
  DrawHead(c);
  c->files.Draw(c->hover);
}

void AddFolderHits(Console* c) {
  const std::vector<ShownCrumb> crumbs = LayOutCrumbs(c);
  for (size_t i = 0; i < crumbs.size(); ++i)
    if (!crumbs[i].crumb.path.empty())
      c->hits.Add({kCrumbs, 1, int(i)}, crumbs[i].area.Inset(-3, 3),
                  {XWA_BUTTON, 0, crumbs[i].crumb.text, ""});
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
  c->typed.Stop();
  const bool same = r->content->path() == c->folder.path();
  if (!same) SetFilter(c, "");
  c->folder.Show(std::move(r->content));
  ShowFreeRoom(c, *r);
  c->files.ScrollTo(0);
  Listed(c, r->select);
  c->files.Reveal(c->files.selected());
  if (r->request.kind != FolderRequest::kDocument) return;
  c->stop = FocusStop::kFiles;
  if (!r->select.empty() && c->files.selected() < 0)
    Tell(c, false, r->select + ": " + TroubleText(ENOENT));
}

// The folder shown stays; where none is yet, it is the root.
void NotEntered(Console* c, const FolderReading& r) {
  Tell(c, false, r.request.path + ": " + TroubleText(r.error));
  if (c->folder.known()) return;
  if (r.request.path != "/") return AskFolder(c, {FolderRequest::kEnter, "/", ""});
  c->folder.Begin("/");
  c->folder.Lose(r.error, {});
  Listed(c, "");
}

void ReadAgain(Console* c, FolderReading* r) {
  const std::string kept = SelectedName(c);
  if (r->error == 0)
    c->folder.Show(std::move(r->content));
  else
    c->folder.Lose(r->error, r->stamp);
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
  const FileOrder order = kOrders[column];
  // Names begin with the first, sizes and times with the largest.
  const bool descending =
      order == c->folder.order() ? !c->folder.descending() : order != FileOrder::kName;
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
  if (!c->typed.Type(uint32_t(character), Inp.time)) return;
  const int row = c->typed.Row(c->files.selected(), [c](std::string_view text, int from) {
    return c->folder.rows().FindBeginning(text, from);
  });
  if (row >= 0) c->files.Select(row);
}

void SetFilter(Console* c, const std::string& text) {
  const std::string kept = SelectedName(c);
  c->folder.Filter(text);
  Listed(c, kept);
  c->files.Reveal(c->files.selected());
  char shown[1024];
  XwGetTextUtf8(c->filter, shown, sizeof shown);
  if (text != shown) XwSetTextUtf8(c->filter, text.c_str());
}

void PressCrumb(Console* c, int index) {
  const std::vector<ShownCrumb> crumbs = LayOutCrumbs(c);
  if (index < 0 || size_t(index) >= crumbs.size()) return;
  const std::string& path = crumbs[size_t(index)].crumb.path;
  // Where one comes from is selected there.
  std::string below = c->folder.path();
  while (below != "/" && ParentPath(below) != path) below = ParentPath(below);
  EnterFolder(c, path, LastName(below));
}

void ShowDocument(Console* c, const char* path) {
  if (!path || path[0] != '/') return;
  std::string document = path;
  while (document.size() > 1 && document.back() == '/') document.pop_back();
  AskFolder(c, {FolderRequest::kDocument, document, ""});
}

}  // namespace console
