// Going about in folders: what is asked for, and what becomes of the answers.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "app/format/cut.h"
#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/crumbs.h"
#include "app/window/commands.h"
#include "app/window/console.h"

namespace console {
namespace {

constexpr FileOrder kOrders[] = {FileOrder::kName, FileOrder::kSize, FileOrder::kTime};

// When it is said that something is being read, and that it does not answer.
constexpr int kLongMs = 200, kSilentSeconds = 3;
constexpr int kMostOfPath = 60;  // characters, in the status line

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

// Of other documents those that lie in the same folder.
std::vector<std::string> NamesToSelect(const Console* c, const FolderReading& r) {
  std::vector<std::string> names;
  if (!r.select.empty()) names.push_back(r.select);
  for (const std::string& path : r.request.others)
    if (ParentPath(path) == c->files.folder.path()) names.push_back(LastName(path));
  return names;
}

// What was asked for, and how many that were named are not in the folder that is shown.
void TellSelected(Console* c, int documents, int folders) {
  const std::vector<std::string> selected = c->files.selection.Ids();
  const int there = int(std::min(selected.size(), size_t(documents)));
  if (there > 0) {
    c->told_of_selection =
        there < documents
            ? NumberText(there) + " of " + CountText(documents, "document", "documents") +
                  " selected: the " + (documents - there == 1 ? "other is" : "others are") +
                  " not in this folder"
        : documents == 1 ? Quoted(selected.front()) + " is selected: Print sends it"
                         : NumberText(documents) + " files are selected: Print sends them";
    Tell(c, true, c->told_of_selection);
  } else if (documents > 0)
    Tell(c, false, NumberOf(documents, "document is", "documents are") + " not in this folder");
  if (folders > 0)
    Tell(c, false, NumberOf(folders, "other folder is", "other folders are") + " not shown");
}

// They are to be seen, whatever is hidden otherwise; and it is said how many are not there.
void DocumentsCame(Console* c, const FolderReading& r) {
  c->stop = FocusStop::kFiles;
  const std::vector<std::string> names = NamesToSelect(c, r);
  const FolderRows& rows = c->files.folder.rows();
  const auto is_hidden = [&rows](const std::string& name) {
    return rows.Has(name) && rows.RowOf(name) < 0;
  };
  const auto some_hidden = [&] { return std::any_of(names.begin(), names.end(), is_hidden); };
  if (some_hidden()) SetFilter(c, "");
  if (some_hidden()) {
    ShowHiddenNames(c, true);
    c->hidden_for_now = true;
  }
  if (!r.missing.empty()) Tell(c, false, MissingText(r.missing));
  for (const std::string& name : r.devices)
    Tell(c, false, Quoted(name) + " is neither a file nor a folder");
  TellSelected(c, r.documents, r.folders);
  // What is pressed next is meant for them.
  if (!c->asking) SetFocusStop(c, FocusStop::kFiles);
}

void Entered(Console* c, FolderReading* r) {
  c->files.typed.Stop();
  const bool same = r->content->path() == c->files.folder.path();
  if (!same) SetFilter(c, "");
  if (!same && c->hidden_for_now) ShowHiddenNames(c, false);
  c->files.folder.Show(std::move(r->content));
  ShowFreeRoom(c, *r);
  UpdateLists();  // its window names the folder
  if (c->files.table.Carries()) EndCarry(c);
  c->files.table.Release();
  c->files.table.ScrollTo(0);
  c->files.selection.Set(NamesToSelect(c, *r));
  SelectionChanged(c, true);
  Listed(c);
  c->files.table.Reveal(c->files.table.focus());
  if (r->request.kind == FolderRequest::kDocument) DocumentsCame(c, *r);
}

// The folder shown stays; where none is yet, it is the nearest one above.
void NotEntered(Console* c, const FolderReading& r) {
  const std::string& path = r.request.path;
  if (r.missing.empty())
    Tell(c, false, CutMiddle(Shown(path), kMostOfPath) + ": " + TroubleText(r.error));
  else
    Tell(c, false, MissingText(r.missing));
  if (c->files.folder.known()) return;
  if (r.request.kind != FolderRequest::kUp && path != "/")
    return AskFolder(c, {FolderRequest::kUp, ParentPath(path), ""});
  c->files.folder.Begin("/");
  c->files.folder.Lose(r.error, {});
  Listed(c);
}

// Somebody has removed or renamed the folder that is shown.
void LeaveLostFolder(Console* c) {
  const std::string path = c->files.folder.path();
  c->status.Tell(
      Tone::kWarning,
      Quoted(LastName(path)) + " is not there any more: the nearest folder above it is shown");
  AskFolder(c, {FolderRequest::kUp, ParentPath(path), ""});
}

// What cannot be read just now is shown empty, and may come back; what is gone is left.
void ReadAgain(Console* c, FolderReading* r) {
  if (r->error == 0)
    c->files.folder.Show(std::move(r->content));
  else
    c->files.folder.Lose(r->error, r->stamp);
  ShowFreeRoom(c, *r);
  Listed(c);
  if (r->error == ENOENT || r->error == ENOTDIR) LeaveLostFolder(c);
}

std::string SilenceText(const std::string& path, int seconds) {
  return "No answer for " + NumberText(seconds) + " s: " + LastName(path);
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
  const bool first = !c->files.folder.known();
  if (!Moves(reading->request))
    ReadAgain(c, reading);
  else if (reading->error == 0)
    Entered(c, reading);
  else
    NotEntered(c, *reading);
  if (first || !Moves(reading->request)) RefreshPlaces(c);
  WatchShownFolder(c);
  DrawConsole(c);
}

void WatchShownFolder(Console* c) {
  if (c->has_begun && c->files.folder.known())
    c->watch.Watch(c->files.folder.path(), c->files.folder.stamp());
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
  if (!c->files.folder.known()) RefreshPlaces(c);
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

std::string WhyNotOpen(const Console* c) {
  const int row = c->files.table.selected();
  const auto& [files, folders, bytes] = c->files.Chosen();
  if (row < 0)
    return files + folders == 0 ? "No folder is selected" : "More than one row is selected";
  return c->files.folder.At(row).folder
             ? ""
             : "Only folders are opened: Print or Ctrl+P prints a document";
}

void OpenSelected(Console* c) {
  const auto& [files, folders, bytes] = c->files.Chosen();
  if (files + folders == 0) return Tell(c, true, WhyNotOpen(c));
  if (const std::string why = WhyNotOpen(c); !why.empty()) return TellWhy(c, why);
  EnterFolder(c, c->files.folder.PathOf(c->files.table.selected()), "");
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

void RefreshAll(Console* c) {
  RefreshFolder(c);
  RefreshPlaces(c);
  c->server.Refresh();
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

void ShowHiddenNames(Console* c, bool show) {
  c->hidden_for_now = false;
  c->files.folder.ShowHidden(show);
  Listed(c);
  c->files.table.Reveal(c->files.table.focus());
}

void ShowFolderOf(Console* c, const std::string& path) {
  AskFolder(c, {FolderRequest::kUp, ParentPath(path), ""});
}

void ShowDocuments(Console* c, std::vector<std::string> paths) {
  for (std::string& path : paths)
    while (path.size() > 1 && path.back() == '/') path.pop_back();
  const size_t elsewhere =
      std::erase_if(paths, [](const std::string& path) { return path.empty() || path[0] != '/'; });
  if (elsewhere > 0) Tell(c, false, "Only files on this computer can be opened");
  if (paths.empty()) return;
  FolderRequest request{FolderRequest::kDocument, paths.front(), ""};
  request.others.assign(paths.begin() + 1, paths.end());
  AskFolder(c, std::move(request));
}

}  // namespace console
