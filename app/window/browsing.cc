// Going about in folders: what is asked for, and what becomes of the answers.
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

constexpr FileOrder kOrders[] = {FileOrder::kName, FileOrder::kSize, FileOrder::kTime};

// When it is said that something is being read, and that it does not answer.
constexpr int kLongMs = 200, kSilentSeconds = 3;

}  // namespace

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

void Listed(Console* c) {
  c->files.Arranged();
  FollowInPlaces(c);
  c->damage |= kFolderPane | kDetailsPane | kToolsPane | kPlacesPane | kStatusPane;
}

void ShowFreeRoom(Console* c, const FolderReading& r) {
  c->places.free_text.clear();
  if (r.room > 0) c->places.free_text = SizeText(r.free) + " free of " + SizeText(r.room);
}

void Entered(Console* c, FolderReading* r) {
  c->files.typed.Stop();
  const bool same = r->content->path() == c->files.folder.path();
  if (!same) SetFilter(c, "");
  c->files.folder.Show(std::move(r->content));
  ShowFreeRoom(c, *r);
  c->files.table.Release();
  c->files.table.ScrollTo(0);
  c->files.selection.Set(r->select.empty() ? std::vector<std::string>()
                                           : std::vector<std::string>{r->select});
  Listed(c);
  c->files.table.Reveal(c->files.table.focus());
  if (r->request.kind != FolderRequest::kDocument) return;
  c->stop = FocusStop::kFiles;
  if (!r->select.empty() && c->files.table.selected() < 0)
    Tell(c, false, r->select + ": " + TroubleText(ENOENT));
}

// The folder shown stays; where none is yet, it is the nearest one above.
void NotEntered(Console* c, const FolderReading& r) {
  const std::string& path = r.request.path;
  Tell(c, false, path + ": " + TroubleText(r.error));
  if (c->files.folder.known()) return;
  if (r.request.kind != FolderRequest::kUp && path != "/")
    return AskFolder(c, {FolderRequest::kUp, ParentPath(path), ""});
  c->files.folder.Begin("/");
  c->files.folder.Lose(r.error, {});
  Listed(c);
}

void ReadAgain(Console* c, FolderReading* r) {
  if (r->error == 0)
    c->files.folder.Show(std::move(r->content));
  else
    c->files.folder.Lose(r->error, r->stamp);
  ShowFreeRoom(c, *r);
  Listed(c);
}

std::string SilenceText(const std::string& path, int seconds) {
  return "No answer for " + std::to_string(seconds) + " s: " + LastName(path);
}

void ShowReading(Console* c, const std::string& text) {
  if (text == c->files.reading_text) return;
  c->files.reading_text = text;
  c->damage |= kFolderPane;
}

}  // namespace

bool FolderIsSilent(const Console* c) {
  const FolderRequest* w = c->reader.request();
  return c->silent_s > 0 ||
         (w && w->path == c->files.folder.path() && c->reading_s >= kSilentSeconds);
}

void FolderCame(Console* c, FolderReading* reading) {
  c->held_reading.reset();
  XwTimer(c->window, kReadingTimer, 0);
  ShowReading(c, "");
  if (!Moves(reading->request) && c->files.table.HoldsRow()) {
    c->held_reading = std::make_unique<FolderReading>(std::move(*reading));
    return DrawConsole(c);
  }
  if (!Moves(reading->request))
    ReadAgain(c, reading), RefreshPlaces(c);
  else if (reading->error == 0)
    Entered(c, reading);
  else
    NotEntered(c, *reading);
  if (c->files.folder.known()) c->watch.Watch(c->files.folder.path(), c->files.folder.stamp());
  DrawConsole(c);
}

void ShowHeldReading(Console* c) {
  const std::unique_ptr<FolderReading> reading = std::move(c->held_reading);
  if (reading && !c->files.table.HoldsRow()) FolderCame(c, reading.get());
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
    ShowReading(c, SilenceText(c->files.folder.path(), c->silent_s));
  else if (!w)
    ShowReading(c, "");
}

void StopReading(Console* c) {
  const FolderRequest* w = c->reader.request();
  if (!w || !Moves(*w) || !c->files.folder.known()) return;
  c->reader.Drop();
  XwTimer(c->window, kReadingTimer, 0);
  ShowReading(c, "");
}

void EnterFolder(Console* c, const std::string& path, const std::string& select) {
  AskFolder(c, {FolderRequest::kEnter, path, select});
}

void GoUp(Console* c) {
  const std::string here = c->files.folder.path();
  if (here != "/") AskFolder(c, {FolderRequest::kUp, ParentPath(here), LastName(here)});
}

void OpenSelected(Console* c) {
  const int row = c->files.table.selected();
  if (row < 0) return;
  if (c->files.folder.At(row).folder)
    EnterFolder(c, c->files.folder.PathOf(row), "");
  else
    Tell(c, true, "Print or Ctrl+P prints it");
}

void SortBy(Console* c, int column) {
  const FileOrder order = kOrders[column];
  // Names begin with the first, sizes and times with the largest.
  const bool descending =
      order == c->files.folder.order() ? !c->files.folder.descending() : order != FileOrder::kName;
  c->files.folder.Sort(order, descending);
  Listed(c);
  c->files.table.Reveal(c->files.table.focus());
}

// What is being entered is read just now.
void RefreshFolder(Console* c) {
  if (c->reader.request() && Moves(*c->reader.request())) return;
  AskFolder(c, {FolderRequest::kAgain, c->files.folder.path(), ""});
}

void SetFilter(Console* c, const std::string& text) {
  c->files.folder.Filter(text);
  Listed(c);
  c->files.table.Reveal(c->files.table.focus());
  if (text != c->files.FilterText()) XwSetTextUtf8(c->files.filter, text.c_str());
}

void PressCrumb(Console* c, int index) {
  const std::string path = c->files.CrumbPath(index);
  if (path.empty()) return;
  // Where one comes from is selected there.
  std::string below = c->files.folder.path();
  while (below != "/" && ParentPath(below) != path) below = ParentPath(below);
  EnterFolder(c, path, LastName(below));
}

void ShowDocument(Console* c, const char* path) {
  if (!path || path[0] != '/') return;
  std::string document = path;
  while (document.size() > 1 && document.back() == '/') document.pop_back();
  AskFolder(c, {FolderRequest::kDocument, document, ""});
}

void OpenFiles(Console* c, const FilesToOpen& files) {
  const auto& [found, missing] = files;
  if (!found.empty() || !missing.empty())
    ShowDocument(c, (found.empty() ? missing : found).front().c_str());
  if (missing.size() > 1)
    Tell(c, false, CountText(int64_t(missing.size()), "file is", "files are") + " missing");
  else if (!missing.empty())
    Tell(c, false, LastName(missing.front()) + ": no such file or folder");
  else if (found.size() > 1)
    Tell(c, true,
         "The first of " + CountText(int64_t(found.size()), "file", "files") + " is selected");
  c->damage |= kStatusPane;
  DrawConsole(c);
}

}  // namespace console
