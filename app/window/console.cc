#include "app/window/console.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/format/texts.h"
#include "app/look/controls.h"
#include "app/window/commands.h"
#include "app/window/help.h"
#include "app/window/program_icon.h"
#include "app/window/queue_commands.h"

namespace console {
namespace {

constexpr int kTickMs = 1000, kProgressMs = 100;
// Drawing the program's icons takes longer than the first picture, which they are not to hold up.
constexpr int kIconMs = 60;
// For threads that read folders, at the end.
constexpr int kLastWaitMs = 50;

// The handlers of a window carry no argument of the program's: there is one console.
Console* g_console;

// --- Drawing

// Of the table that has the keyboard, or had it last.
std::string SelectionText(const Console* c) {
  return c->tells_of_jobs ? c->queue.SelectionText() : c->files.SelectionText();
}

void AddAllHits(Console* c) {
  c->hits.Begin();
  if (!c->asking) {
    c->places.AddHits(&c->hits, HasKeyboard(c, FocusStop::kPlaces));
    c->files.AddHits(&c->hits);
    c->queue.AddHits(&c->hits);
    c->details.AddHits(HasKeyboard(c, FocusStop::kDetails), &c->hits);
    c->banner.AddHits(&c->hits);
    c->status.AddHits(SelectionText(c), &c->hits);
    c->printer_list.AddHits(&c->hits, HasKeyboard(c, FocusStop::kPrinters));
    c->needs.AddHits(&c->hits);
    AddBorderHits(c);
  }
  c->hits.End();
}

}  // namespace

void SetFocusStop(Console* c, FocusStop stop) {
  if (c->stop == stop) return;
  c->stop = stop;
  if (stop == FocusStop::kCopies) c->tools.BeginCopies();
  if (IsInQueue(stop)) c->queue.StayHere();
  c->damage = kAllPanes;
}

void LayOutWindow(Console* c) {
  c->layout = LayOut(c->window->width, c->window->height, c->panes);
  // Below the rows: none moves when it comes or goes.
  if (c->banner.shown)
    c->layout.banner = c->layout.queue.TakeBottom(AwayBanner::kHeight);
  else if (c->needs.shown)
    c->layout.needs = c->layout.queue.TakeBottom(NeedsPane::kHeight);
  PlaceControls(c);
  c->damage |= kAllPanes;
}

void SelectionChanged(Console* c, bool files) {
  if (files) c->status.Forget(std::exchange(c->told_of_selection, ""));
  c->damage |=
      kDetailsPane | kStatusPane | (files ? kFolderPane | kToolsPane : unsigned{kQueuePane});
}

SelectionKeys HeldKeys(const Console* c) {
  return {(c->modifiers & XWS_SHIFT) != 0, (c->modifiers & XWS_CONTROL) != 0};
}

namespace {

// The pane that a control belongs to, too; those of the tool bar are the files'.
FocusStop PaneOf(FocusStop stop) {
  if (IsInQueue(stop)) return FocusStop::kQueue;
  return IsControl(stop) ? FocusStop::kFiles : stop;
}

// --- Quitting

[[noreturn]] void Quit(Console* c) {
  CloseConsole(c);
  XwEndSession();
  exit(0);
}

}  // namespace

void GoToNextPane(Console* c) {
  constexpr int kPanes = int(FocusStop::kQueue) + 1;
  const int by = c->modifiers & XWS_SHIFT ? kPanes - 1 : 1;
  int pane = int(PaneOf(c->stop));
  do {
    pane = (pane + by) % kPanes;
  } while (!CanStopAt(c, FocusStop(pane)));
  SetFocusStop(c, FocusStop(pane));
}

void Leave(Console* c) {
  if (AskBeforeQuit(c)) Quit(c);
  SetHover(c, {});  // it is covered
}

void CloseFrontWindow(Console* c) {
  if (!c->front) return Leave(c);
  XwSendEvent(c->front, XWE_CLOSE, 0, 0, 0);
}

void NoteActivity(XwWindow* second, bool active) {
  Console* c = g_console;
  if (!c || !second) return;
  if (active) {
    c->front = second;
    std::erase(c->second_windows, second);
    c->second_windows.push_back(second);
  } else if (c->front == second) {
    c->front = nullptr;
  }
}

void CloseSecond(XwWindow* second) {
  Console* c = g_console;
  const bool had_keyboard = c && second && c->front == second;
  NoteActivity(second, false);
  if (c) std::erase(c->second_windows, second);
  XwDestroy(second);
  // To the console itself the desktop gives it.
  if (had_keyboard && !c->second_windows.empty()) XwSetFocus(c->second_windows.back());
}

namespace {

// --- Keyboard

// A key that moves in the table which has the keyboard, or selects there.
bool TableKey(Console* c, int type) {
  if (c->stop != FocusStop::kFiles && c->stop != FocusStop::kQueue) return false;
  const bool files = c->stop == FocusStop::kFiles;
  Table& table = files ? c->files.table : c->queue.table;
  if (!table.Key(type, HeldKeys(c))) return false;
  SelectionChanged(c, files);
  return true;
}

void FilesKey(Console* c, int type) {
  if (type < ' ' || type > 126) return;
  c->files.Find(type, Inp.time);
  SelectionChanged(c, true);
}

// What is done to jobs by a key is seen: the row with the keyboard is scrolled to first.
void ShowRowFor(Console* c, int command) {
  if (c->stop != FocusStop::kQueue || !ConcernsJobs(command) || c->queue.table.HoldsRow()) return;
  c->queue.table.Reveal(c->queue.table.focus());
  c->damage |= kQueuePane;
  DrawConsole(c);
}

void QueueKey(Console* c, int type) {
  if (type != ' ') return;
  ShowRowFor(c, kHoldCommand);
  RunCommand(c, CanRun(c, kHoldCommand) ? kHoldCommand : kReleaseCommand);
}

// What the control there has not taken.
void StopKey(Console* c, int type) {
  if (c->files.table.HoldsRow() || c->queue.table.HoldsRow()) return;  // the pointer selects
  if (TableKey(c, type)) return;
  if (c->stop == FocusStop::kFiles) FilesKey(c, type);
  if (c->stop == FocusStop::kQueue) QueueKey(c, type);
  if (c->stop == FocusStop::kPlaces) PlacesKey(c, type);
  if (c->stop == FocusStop::kPrinters) PrintersKey(c, type);
  const bool details = c->stop == FocusStop::kDetails;
  if (details && (c->details.PageKey(type) || c->details.scroll.Key(type)))
    c->damage |= kDetailsPane;
  const int by = type == '+' || type == XWE_UP ? 1 : type == '-' || type == XWE_DOWN ? -1 : 0;
  if (!by || c->stop != FocusStop::kPriority) return;
  c->tools.ChangePriority(by);
  c->damage |= kToolsPane | kDetailsPane;
}

// What is disabled is passed over.
void MoveFocus(Console* c, int by) {
  const int stops = int(FocusStop::kCount);
  int stop = int(c->stop);
  do {
    stop = (stop + by + stops) % stops;
  } while (!CanStopAt(c, FocusStop(stop)));
  SetFocusStop(c, FocusStop(stop));
}

// One thing after the other: an error is read, then the keyboard goes back to the files, and from
// there all of them are shown again.
void Escape(Console* c) {
  if (CancelDrag(c)) return;
  StopReading(c);
  c->damage |= kStatusPane;
  const bool error = c->status.HasError();
  c->status.ReadMessage();
  if (error) return;
  if (c->stop != FocusStop::kFiles) return SetFocusStop(c, FocusStop::kFiles);
  if (c->files.folder.rows().filtered()) SetFilter(c, "");
}

void Key(Console* c, int type) {
  if (c->asking) return QuestionKey(c, type);
  if (!c->has_menus) {
    // It came before the menus, which would have sent its command.
    SetUpMenus(c);
    if (const int command = CommandOfMenuKey(type, c->modifiers)) return RunCommand(c, command);
  }
  if (c->modifiers & XWS_CONTROL) {
    // Those of menus come from there, as commands; one that is greyed there does not come.
    if (const int command = CommandOfMenuKey(type, c->modifiers)) {
      ShowRowFor(c, command);
      TellWhyNot(c, command, type);
    } else {
      TableKey(c, type);
    }
    return;
  }
  if (const int command = CommandOfKey(c, type)) {
    constexpr int kRepeats = 2;
    if (command == kPrintCommand && XwGetKeyState(type) == kRepeats) return;
    ShowRowFor(c, command);
    TellWhyNot(c, command, type);
    return RunCommand(c, command);
  }
  if (c->modifiers & XWS_COMMAND) {
    if (type == 'q') Leave(c);
  } else if (type == XWE_TAB) {
    MoveFocus(c, c->modifiers & XWS_SHIFT ? -1 : 1);
  } else if (type == XWE_ESCAPE) {
    Escape(c);
  } else {
    StopKey(c, type);
  }
}

// --- Time

void ServerChanged(Console* c, ServerState state) {
  if (state.away_times != c->state.away_times) c->banner.away_s = 0;
  const auto failures = FailuresIn(c->state);
  c->state = std::move(state);
  TellNotSent(c, failures);
  if (c->state.link == Link::kReady) c->status.EndState();
  if (c->banner.Follow()) LayOutWindow(c);
  NoteSent(c);
  StartServerByItself(c);
  RememberServer(c);
  c->status.Progress("changes", ProgressText(c->state.changing));
  c->just_sent = 0;
  for (const Notice& n : c->state.notices) {
    if (n.number <= c->last_notice) continue;
    c->status.Tell(n.message.tone, n.message.text);
    if (n.of_lists) TellInLists(n.message);
    if (n.message.tone != Tone::kGood) c->failed_while_asking = true;
  }
  if (!c->state.notices.empty()) c->last_notice = c->state.notices.back().number;
  XwTimer(c->window, kProgressTimer, 0);
  if (c->status.SendingRuns()) XwTimer(c->window, kProgressTimer, kProgressMs);
  c->queue_waits = c->queue.table.HoldsRow();
  if (!c->queue_waits) c->queue.Fill();
  PrintersCame(c);
  ShowCarry(c);
  UpdatePreferences();
  UpdateLists();
  c->damage |= kToolsPane | kDetailsPane | kQueuePane | kBannerPane | kStatusPane;
  const bool leaves = MayLeaveNow(c);
  DrawConsole(c);
  if (leaves) Quit(c);
}

void ShowProgress(Console* c) {
  c->server.ShowProgress(&c->state.transfers);
  if (!c->queue_waits) c->queue.ShowProgress();
  c->damage |= kQueuePane | kStatusPane | (c->details.jobs ? kDetailsPane : 0u);
}

void Tick(Console* c) {
  c->server.Tick();
  WatchFolder(c);
  WatchPlaces(c);
  if (c->status.Tick()) c->damage |= kStatusPane;
  ++c->banner.away_s;
  if (c->banner.shown) c->damage |= kBannerPane;
  Remember(c);
}

void OnTimer(Console* c, int timer) {
  if (timer == kTickTimer) Tick(c);
  if (timer == kReadingTimer) ShowWait(c);
  if (timer == kProgressTimer) ShowProgress(c);
  if (timer == kDragTimer) ScrollByDrag(c);
  if (timer == kIconTimer) {
    XwTimer(c->window, kIconTimer, 0);
    SetUpProgramIcon();
  }
  if (MayLeaveNow(c)) Quit(c);
}

void Scrolled(float, float dy) {
  if (g_console) TurnWheel(g_console, dy);
}

// The Menu key, for what is selected where the keyboard is.
void OpenMenuByKey() {
  if (!g_console || g_console->asking) return;
  OpenContextMenuByKey(g_console);
  DrawConsole(g_console);
}

void FilesDragged(int what) {
  if (g_console) DragDocuments(g_console, what);
}

void ShowActivity(int active) {
  Console* c = g_console;
  if (!c) return;
  c->active = active != 0;
  if (c->active) c->second_windows.clear();
  if (c->active) RefreshPlaces(c);  // a disk may have come
  c->damage = kAllPanes;
  DrawConsole(c);
}

// What the first picture does not need begins behind it.
void FirstPictureDrawn(void*, int taken) {
  Console* c = g_console;
  if (!c || !taken) return;
  c->has_begun = true;
  SetUpMenus(c);
  c->server.Begin();
  WatchShownFolder(c);
  RefreshPlaces(c);
}

// Keys and the pointer: what the toolkit sends is a copy with the modifiers of then.
bool IsInput(int type) {
  return type < XWE_CONFIGURE || (type >= XWE_MOTION && type <= XWE_MODIFIERS);
}

int Handle(int type) {
  Console* c = g_console;
  if (!c) return 0;
  if (IsInput(type)) c->modifiers = Inp.state;
  switch (type) {
    case XWE_CONFIGURE:
      LayOutWindow(c);
      break;
    case XWE_EXPOSE:
      if (!c->exposed) XwPost(".first picture", nullptr, FirstPictureDrawn, nullptr);
      c->exposed = true;
      c->damage = kAllPanes;
      break;
    case XWE_MOTION:
      Motion(c);
      break;
    case XWE_PRESS:
      PressPrimary(c);
      break;
    case XWE_PRESS + 1:
      PressSecondary(c);
      break;
    case XWE_RELEASE:
      Release(c);
      break;
    case XWE_MODIFIERS:
      break;
    case XWE_TIMER:
      OnTimer(c, int(Inp.value));
      break;
    case XWE_CONTROL:
    case XWE_SCROLLING:
    case XWE_SCROLLED:
      if (GiveAnswer(c, Inp.item)) Quit(c);
      UseControl(c, Inp.item, int(Inp.value));
      break;
    case XWE_EDIT_SELECT:
    case XWE_EDIT_CHANGED:
    case XWE_EDIT_DONE:
      UseEditBox(c, Inp.type, Inp.item, Inp.value == 1);
      break;
    case XWE_OPEN:
      TakeDocuments(c);
      break;
    case XWE_PREFERENCES:
      ShowPreferences(c);
      break;
    case XWE_CLOSE:
      Leave(c);
      break;
    case XWE_MENU_OPENING:
      ShowCommands(c);
      break;
    case XWE_MENU:
      RunCommand(c, Inp.item);
      break;
    // The session's end and signals do not wait for an answer.
    case XWE_QUIT:
      if (!Inp.param) Quit(c);
      Leave(c);
      break;
    default:
      if (type < XWE_CONFIGURE) Key(c, type);
      break;
  }
  DrawConsole(c);
  return 0;
}

}  // namespace

Console* TheConsole() {
  return g_console;
}

void ShowSilence(int seconds) {
  Console* c = g_console;
  if (!c) return;
  c->silent_s = seconds;
  c->damage |= kFolderPane;
  DrawConsole(c);
}

void ShowPreview(void*, int taken) {
  if (g_console && taken) TakePreview(g_console);
}

namespace {

// Where it was, as far as the screen has room for it and its frame; a first one leaves more free.
Area FirstPlace(const Preferences& p) {
  constexpr int kLeft = 30, kTop = 80, kFree = 60, kFreeAbove = 160;
  constexpr int kFrameTop = 56, kFrameEdge = 4;  // with the menu bar
  const bool known = p.window_top > 0;
  const int free_x = known ? 2 * kFrameEdge : kFree;
  const int free_y = known ? kFrameTop + kFrameEdge : kFreeAbove;
  Area a{kLeft, kTop, std::clamp(XW_SCREENX - free_x, kLeastWidth, p.window_width),
         std::clamp(XW_SCREENY - free_y, kLeastHeight, p.window_height)};
  if (!known) return a;
  a.x = std::clamp(p.window_left, 0, std::max(0, XW_SCREENX - a.w));
  a.y = std::clamp(p.window_top, 0, std::max(kFrameTop, XW_SCREENY - a.h));
  return a;
}

}  // namespace

Console::Console(const std::string& host)
    : reader([this](FolderReading* reading) { FolderCame(this, reading); }),
      watch([this] { FolderChanged(this); }),
      server(host, [this](ServerState news) { ServerChanged(this, std::move(news)); }) {
  state.jobs = std::make_shared<std::vector<NC_Job>>();
  state.printers = std::make_shared<std::vector<NC_Printer>>();
  state.profiles = std::make_shared<std::vector<NC_Profile>>();
}

Console* OpenConsole(const std::string& host, const std::string& start, Remembered remembered) {
  const Preferences& p = remembered.preferences;
  const Area place = FirstPlace(p);
  XwWindow* w = XwCreate(0, place.x, place.y, place.w, place.h, Handle);
  if (!w) return nullptr;
  // At once, since the window's first pixels are made with it. Controls erase to it, also while
  // inactive.
  XwSetGround(w, &TheStyle().tool_bar, 0);
  auto* c = new Console(host);
  g_console = c;
  c->window = w;
  c->remembered = std::move(remembered);
  XwSetSizes(w, kLeastWidth, kLeastHeight, 0, 0, 0, 0);
  XwSetScrollHandler(w, Scrolled);
  XwSetActivationHandler(w, ShowActivity);
  XwSetContextMenuHandler(w, OpenMenuByKey);
  XwSetDragHandler(w, 1, FilesDragged);
  MakeControls(c);
  LayOutWindow(c);
  XwTimer(w, kTickTimer, kTickMs);
  XwTimer(w, kIconTimer, kIconMs);
  c->files.folder.Begin(start);
  ShowRemembered(c);
  BeginPlaces(c, start);
  EnterFolder(c, start, "");
  ShowMenuTitles(c);
  UpdateControls(c);
  XwShow(w, 1);
  XwSetFocus(w);
  return c;
}

void CloseConsole(Console* c) {
  if (!c) return;
  ClosePreferences();
  CloseLists();
  CloseNumberWindow();
  XwTimer(c->window, 0, 0);
  XwShow(c->window, 0);
  XwSync();
  CloseKeys();
  FinishRemembering(c);
  ForgetServerStart(c);
  g_console = nullptr;
  delete c;
  BackgroundTask::WaitForAll(kLastWaitMs);
}

namespace {

void UpdateDetails(Console* c) {
  if (c->stop != FocusStop::kDetails) c->tells_of_jobs = IsInQueue(c->stop);
  c->details.selected = c->files.table.selected();
  c->details.jobs = c->tells_of_jobs && !c->queue.Selected().empty() ? &c->queue : nullptr;
  c->details.job_file = c->details.jobs ? FileOfJob(c).path : "";
  c->details.several = c->details.selected < 0 ? c->files.SelectionText() : "";
  if (!(c->damage & (kFolderPane | kDetailsPane))) return;
  c->details.Update();
  UpdatePreview(c);
  c->details.Update();  // of one whose preview has gone less is known
}

}  // namespace

void DrawConsole(Console* c) {
  if (!c->damage || !c->exposed) return;
  EndPastReason(c);
  UpdateDetails(c);
  UpdateControls(c);
  const unsigned damage = c->damage;
  c->damage = 0;
  XwPush(c->window);
  if (damage & kToolsPane) c->tools.Draw(c->layout);
  if (damage & kPlacesPane) c->places.Draw(c->hover, c->active, HasKeyboard(c, FocusStop::kPlaces));
  if (damage & kPrintersPane)
    c->printer_list.Draw(c->hover, c->active, HasKeyboard(c, FocusStop::kPrinters));
  if (damage & kNeedsPane) c->needs.Draw();
  if (damage & kFolderPane)
    c->files.Draw(c->hover, HasKeyboard(c, FocusStop::kFiles), FolderIsSilent(c));
  if (damage & kDetailsPane) c->details.Draw(c->hover, HasKeyboard(c, FocusStop::kDetails));
  if (damage & kQueuePane) c->queue.Draw(c->hover, HasKeyboard(c, FocusStop::kQueue));
  if (damage & kBannerPane) c->banner.Draw();
  if (damage & kStatusPane) c->status.Draw(c->hover, SelectionText(c));
  if (c->asking) DrawAroundQuestion(c);
  AddAllHits(c);
  XwPop();
}

}  // namespace console
