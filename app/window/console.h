// The console's one window: what it shows and what the user has chosen. The panes
// (app/panes) draw and know what can be hit there; console.cc routes the events, pointer.cc those
// of the pointer.
#pragma once
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/look/hits.h"
#include "app/model/print_choice.h"
#include "app/model/queue_words.h"
#include "app/panes/away_banner.h"
#include "app/panes/details.h"
#include "app/panes/files.h"
#include "app/panes/ids.h"
#include "app/panes/needs.h"
#include "app/panes/places.h"
#include "app/panes/printers.h"
#include "app/panes/queue.h"
#include "app/panes/status.h"
#include "app/panes/tools.h"
#include "app/server/server.h"
#include "app/work/arguments.h"
#include "app/work/folder_reader.h"
#include "app/work/folder_watch.h"
#include "app/work/places_reader.h"
#include "app/work/preferences_file.h"

namespace console {

// Panes, as bits: what is to be drawn again.
enum Pane : unsigned {
  kToolsPane = 1,
  kPlacesPane = 2,
  kFolderPane = 4,
  kDetailsPane = 8,
  kQueuePane = 16,
  kStatusPane = 32,
  kPrintersPane = 64,
  kNeedsPane = 128,
  kBannerPane = 256,
  kAllPanes = 511
};

// Where the keyboard is; Tab goes through them in this order.
enum class FocusStop {
  kPlaces,
  kPrinters,
  kFiles,
  kDetails,
  kQueue,
  kShowAllFiles,
  kStartServer,
  kRetry,
  kNeedsButton,
  kDismiss,
  kPrint,
  kRefresh,
  kPrinter,
  kProfile,
  kMedia,
  kCopies,
  kPriority,
  kHold,
  kColour,
  kOptions,
  kFilter,
  kQueueFilter,
  kQueueOwner,
  kQueuePart,
  kShowAllJobs,
  kCount
};
inline bool IsControl(FocusStop stop) {
  return stop > FocusStop::kQueue;
}

// A document that has a preview: it is made again when one of these changes.
struct PreviewSubject {
  PreviewRequest request;  // its path is empty when there is none
  double scale = 1;        // device pixels per logical pixel
  int64_t size = 0, time = 0;
  bool operator==(const PreviewSubject&) const = default;
};

// What is kept between two runs, and what writes it down; null where nothing is to be written.
struct Remembered {
  Preferences preferences;
  std::unique_ptr<PreferencesWriter> writer;
  bool server_fixed = false;  // by the environment
};

// The keyboard is in the queue, or in what says what it shows.
inline bool IsInQueue(FocusStop stop) {
  return stop == FocusStop::kQueue || stop >= FocusStop::kQueueFilter;
}

// What takes the documents or jobs that are dragged: the queue, or a printer.
struct CarryTarget {
  bool queue = false;
  std::string printer;  // name, "": none
  // The console's table that they are carried out of; null: they come from elsewhere.
  const Table* source = nullptr;
  explicit operator bool() const { return queue || !printer.empty(); }
  bool operator==(const CarryTarget&) const = default;
};

struct ServerStart;

struct Console {
  explicit Console(const std::string& host);

  XwWindow* window = nullptr;
  XwWindow* front = nullptr;  // the other window that has the keyboard; null: none has
  // Those that had it since `window` did, in that order.
  std::vector<XwWindow*> second_windows;
  Layout layout;
  Hits hits;
  Hit hover, pressed;
  FocusStop stop = FocusStop::kFiles;
  bool tells_of_jobs = false;  // the queue has the keyboard, or had it before the details
  bool exposed = false;        // the first picture has been asked for; until then nothing is drawn
  bool has_begun = false;      // it is drawn, and what it does not need has begun
  bool has_menus = false;      // else its menu bar has titles alone
  bool active = true;          // keys of the desktop come to the window
  // Modifiers that were held at the last key or event of the pointer: a timer's event, which is a
  // copy from when it was sent, brings back those of then in Inp.
  uint32_t modifiers = 0;
  unsigned damage = kAllPanes;
  uint32_t last_press = 0;  // for double clicks
  uint32_t last_print = 0;  // likewise, of the Print button
  // Of the reason that was told last: it ends once this no longer gives it.
  std::string (*told_still)(const Console*) = nullptr;
  std::string told_why;
  // Buttons of commands: each is enabled when its command can be run.
  std::vector<XwWindow*> buttons;
  std::vector<std::string> button_tips;  // as they show now

  // What is known, and what has been chosen. Results come to reader, watch and server.
  FolderReader reader;
  FolderWatch watch;
  PlacesReader places_reader;
  int places_s = 0;               // since the present one was asked for
  PlacesPane::Row place_pressed;  // as it was then
  int reading_s = 0;              // since the present reading was asked for
  int silent_s = 0;               // that the watch has had no answer; 0 as long as that is not long
  int posted_silent_s = 0;        // the same, on its way
  PreviewMaker previews;
  PreviewSubject previewed;  // what was asked for last
  Server server;
  ServerState state;
  int last_notice = 0;        // that was shown
  std::vector<Arrival> sent;  // from this window, the last ones last
  int just_sent = 0;          // orders that are not yet in the state
  PrintChoice choice;
  Remembered remembered;
  std::shared_ptr<ServerStart> server_start;  // under way; null when none is
  bool start_tried = false;                   // by itself, since the server was there last
  // Came while a row was held, and are shown when it is let go.
  std::unique_ptr<FolderReading> held_reading;
  bool queue_waits = false;
  bool scrolls_by_drag = false;      // the timer runs
  bool drag_escaped = false;         // by an Escape that an edit box reports once more
  bool asking = false;               // whether to leave before all has reached the server
  bool failed_while_asking = false;  // something has not been done since
  XwWindow* question = nullptr;      // the sheet that asks

  bool hidden_for_now = false;  // hidden names show for a document among them, in this folder

  std::string drag_printer;  // in whose row documents are dragged; "": the chosen one
  bool drag_shows = false;
  std::string told_of_selection;             // a message that ends with the selection of files
  std::map<int, std::string> awaited_drops;  // whose documents are to come, and on which printer
  int drops = 0;                             // that have come

  CarryTarget carried_to;      // where rows that are carried would go
  bool carry_shows = false;    // by the shape of the pointer
  int held_x = 0, held_y = 0;  // where the pointer was last, with a row held

  PaneSizes panes;
  int border_grip = 0;     // where beside a border it was pressed
  PaneSizes panes_before;  // the same press
  Printers printers;
  std::string printer_pressed;  // name

  ToolsPane tools{&choice};
  PrintersPane printer_list{layout, printers};
  NeedsPane needs{layout, printers};
  PlacesPane places{layout};
  FilesPane files{layout};
  DetailsPane details{layout, files.folder, choice, state, printers};
  QueuePane queue{layout, state};
  AwayBanner banner{layout, state, server.host()};
  StatusPane status{layout, state, server.host()};
};

enum Timer { kTickTimer = 1, kReadingTimer, kProgressTimer, kIconTimer, kDragTimer };

// --- The window (console.cc)
// Creates and shows it. `start` is the folder that it opens with; where that is gone, the nearest
// one above it. Null when the display refuses. One console a process.
Console* OpenConsole(const std::string& host, const std::string& start, Remembered remembered = {});
// The one that is open; null when none is.
Console* TheConsole();
// Hides the window and ends the worker.
void CloseConsole(Console* c);
void Tell(Console* c, bool good, const std::string& utf8);
// Why something cannot be done: it stays until it is read, or until another command is given. "":
// nothing is told.
// Ends by itself when `still` has another answer; null: with the next command.
using Reason = std::string (*)(const Console*);
void TellWhy(Console* c, const std::string& utf8, Reason still = nullptr);
// A reason that holds no longer would only mislead: it ends.
void EndPastReason(Console* c);
// How often each document that is given up now was not sent, by its number.
std::map<int, int> FailuresIn(const ServerState& state);
// What is new of that since `before`; what was told of documents that are gone, or are being sent
// again, ends.
void TellNotSent(Console* c, const std::map<int, int>& before);
// Draws what is damaged.
void DrawConsole(Console* c);
void SetFocusStop(Console* c, FocusStop stop);
// For the window's present size and what is wanted of the panes.
void LayOutWindow(Console* c);
// Whether the keyboard is there; a question has it before everything else, and an inactive window
// has none.
inline bool HasKeyboard(const Console* c, FocusStop stop) {
  return c->active && c->stop == stop && !c->asking;
}

// Another window of the console has the keyboard, or has it no longer: when it is shown, when it
// becomes active or inactive.
void NoteActivity(XwWindow* second, bool active);
// Destroys it; null is ignored. The keyboard goes back to the window that had it before.
void CloseSecond(XwWindow* second);
// What follows a change of the selection in the files, or in the queue.
void SelectionChanged(Console* c, bool files);
// Shift and Control, as they are held.
SelectionKeys HeldKeys(const Console* c);

// --- The pointer (pointer.cc): each takes the event that Inp has
void PressPrimary(Console* c);
// The secondary button opens the menu of the row, or of all that are selected with it.
void PressSecondary(Console* c);
void Motion(Console* c);
void Release(Console* c);
// Ends a drag as if it had not begun; what is held does nothing more. False when nothing is held
// that can be dragged.
bool CancelDrag(Console* c);
// The pointer is held beyond the rows that it drags over.
void ScrollByDrag(Console* c);
// Logical pixels, positive down.
void TurnWheel(Console* c, float dy);
// What lies under the pointer now.
void SetHover(Console* c, const Hit& hit);

// --- Rows that are carried out of their table (carrying.cc)
bool Carries(const Console* c);
// The pointer has moved with a row held: takes rows up where something takes them, and shows what
// letting go would do.
void FollowCarry(Console* c, const Hit& hit);
// The same again, after a new state of the server.
void ShowCarry(Console* c);
// Ends the showing; nothing is done.
void EndCarry(Console* c);
// The button comes up: does what was shown, or says why not.
void DropCarried(Console* c);
// Frames what takes what is dragged, also from outside, and says so; none: takes the frame away.
void ShowDropTarget(Console* c, const CarryTarget& to, const std::string& hint);

// --- The controls (controls.cc)
void MakeControls(Console* c);
// Where the layout says.
void PlaceControls(Console* c);
// They follow what the window shows. While a question is asked they are disabled.
void UpdateControls(Console* c);
// What one reports.
void UseControl(Console* c, int id, int value);
// A report of an edit box: 788 (gained or lost), 789, 790.
void UseEditBox(Console* c, int type, int id, bool gained);
// Where the keyboard is after a box has lost it: in the box that took it, or in `table`.
FocusStop StopAfterBox(const Console* c, FocusStop table);
// The control of a stop; null for the tables and lists.
XwWindow* ControlAt(const Console* c, FocusStop stop);
// Whether Tab stops there now.
bool CanStopAt(const Console* c, FocusStop stop);

// --- The folder (browsing.cc)
// Enters a folder, once it has been read; `select` is the name to select there, "" for none.
void EnterFolder(Console* c, const std::string& path, const std::string& select);
void GoUp(Console* c);
// Results of the reader and of the watch.
void FolderCame(Console* c, FolderReading* reading);
void ShowHeldReading(Console* c);
void FolderChanged(Console* c);
void ShowSilence(int seconds);
// Says that something is being read.
void ShowWait(Console* c);
// What a tick does: says what takes long.
void WatchFolder(Console* c);
// Begins to watch the one that is shown, once the window is.
void WatchShownFolder(Console* c);
// Gives up what is being entered.
void StopReading(Console* c);
// Enters the folder that is selected alone, or says why not.
void OpenSelected(Console* c);
// A sentence without its full stop, "" when it can be.
std::string WhyNotOpen(const Console* c);
void SortBy(Console* c, int column);
void RefreshFolder(Console* c);
// Shows the files alone that match; "": all.
void SetFilter(Console* c, const std::string& text);
void PressCrumb(Console* c, int index);
// The one that is shown does not answer.
bool FolderIsSilent(const Console* c);
// Names that begin with a dot.
void ShowHiddenNames(Console* c, bool show);
// The folder that the path lies in, or the nearest one above it that can be read.
void ShowFolderOf(Console* c, const std::string& path);
// Enters the first one's folder and selects all that lie in it; a folder is entered itself.
void ShowDocuments(Console* c, std::vector<std::string> paths);

// --- Documents from elsewhere (opening.cc)
// Documents are dragged over the window (XW_DRAG_OVER), or are no longer: where they would go
// shows.
void DragDocuments(Console* c, int what);
// Of a 798: those that another program asks to open are selected, those that were dropped are
// queued; a folder that was dropped is entered.
void TakeDocuments(Console* c);
// Of the console's own folder: the files are printed as if they had been dropped from outside, in
// the row of that printer; "": on the chosen one. Folders are passed over.
void PrintFiles(Console* c, std::vector<std::string> paths, const std::string& printer);
// The files that the program was started with are selected, and what is missing is told.
void OpenFiles(Console* c, const FilesToOpen& files);

// --- The places (places.cc)
// They are read once the first picture is drawn. `folder` is the one that will be shown.
void BeginPlaces(Console* c, const std::string& folder);
// They mark the folder that is shown now.
void FollowInPlaces(Console* c);
// Something may have changed: they are read again.
void RefreshPlaces(Console* c);
// What a tick does: says when the reading takes long.
void WatchPlaces(Console* c);
void PressPlace(Console* c, const Hit& hit);
void UsePlace(Console* c, const Hit& hit);
void PlacesKey(Console* c, int type);

// --- The printers (printers.cc)
// After a new state of the server, or another choice.
void PrintersCame(Console* c);
void ChoosePrinter(Console* c, const std::string& name);
void PressPrinter(Console* c, const Hit& hit);
void UsePrinter(Console* c, const Hit& hit);
void PrintersKey(Console* c, int type);

// --- Sizes of the panes (panes.cc)
void AddBorderHits(Console* c);
// What the pointer looks like over a border.
int BorderCursor(const Hit& hit);
void PressBorder(Console* c, const Hit& hit, bool twice);
void DragBorder(Console* c, const Hit& hit);
// The panes are as they were before the press.
void PutBackBorder(Console* c);
// Between the window and the preferences.
void RecallPanes(Console* c);
void NotePanes(const Console* c, Preferences* p);

// --- A server that is away, and starting one on this computer (server_start.cc)
// It has not answered since it went: it is tried again, or will be.
bool IsServerAway(const Console* c);
void RetryServer(Console* c);
// The server that does not answer would run here, and none is being started; else why that is not
// so: a sentence without its full stop.
std::string WhyNotStartServer(const Console* c);
bool CanStartServer(const Console* c);
// In the background; the status line says what came of it.
void StartServer(Console* c);
// The same where the preferences say so, once each time that the server has gone.
void StartServerByItself(Console* c);
// The window closes: it waits for nothing. The server starts all the same.
void ForgetServerStart(Console* c);

// --- What is remembered (remembering.cc)
// Reads the file of preferences. Without an answer the usual ones count, and nothing is written.
Remembered Recall(const std::string& path);
// The window follows what was remembered: before its first folder has been read.
void ShowRemembered(Console* c);
// Takes those that somebody has chosen, and stores them in the background.
void KeepPreferences(Console* c, const Preferences& preferences);
// A server that has answered is among the recent ones.
void RememberServer(Console* c);
// Stores what has changed, in the background.
void Remember(Console* c);
// The same at the end: waits a little until it has been written.
void FinishRemembering(Console* c);

// --- The window of preferences (preferences_window.cc)
// One at most; comes to the front.
void ShowPreferences(Console* c);
// Without saving.
void ClosePreferences();
// The server's state has changed.
void UpdatePreferences();

// --- The window of scanners and profiles (lists_window.cc)
// One at most; comes to the front.
void ShowLists(Console* c);
void CloseLists();
// The server's state has changed.
void UpdateLists();
// What the server answered to what was asked there: the window shows it until the next question.
void TellInLists(const Message& message);

// --- The preview (preview.cc)
// Asks for that of the selected document when it has none yet, and ends another one.
void UpdatePreview(Console* c);
// One is there.
void TakePreview(Console* c);
// Keeps which files the jobs that have just arrived are.
void NoteSent(Console* c);
// The file of the only job that is selected; no path where it is not known.
SentFile FileOfJob(const Console* c);
// The same, as the result of a background task.
void ShowPreview(void* data, int taken);

// --- Printing (controls.cc)
// How documents are printed now: an order without one.
PrintOrder UsualOrder(const Console* c);
// Queues them and says how many; `folders` that were selected with them are not printed.
void SendOrders(Console* c, std::vector<PrintOrder> orders, int folders);
// Those that still wait to be sent: how many, or why none can be cancelled.
int StillQueued(const Console* c);
std::string WhyNotCancelQueued(const Console* c);
void CancelQueued(Console* c);
// Why the chosen printer, or another one, cannot be used: a sentence without its full stop, "" when
// it can.
std::string WhyNotPrint(const Console* c);
std::string WhyNotPrintOn(const Console* c, const std::string& printer);
// The same, and why nothing of the folder is printed.
std::string WhyNotPrintSelected(const Console* c);
// All documents that are selected; folders are passed over.
void PrintSelected(Console* c);
// Of the table that has the keyboard.
bool CanSelectAll(const Console* c);
void SelectAll(Console* c);

// --- Quitting (quit_confirmation.cc)
// What is given up when the console leaves the server.
Unsent NotAtServer(const Console* c);
// Whether the window may close at once; else the question is shown, over everything else.
bool AskBeforeQuit(Console* c);
// It was asked, and nothing waits any more. The question goes, too, where something was not done.
bool MayLeaveNow(Console* c);
// A report of the sheet's buttons: true when the answer is to leave.
bool GiveAnswer(Console* c, int id);
void QuestionKey(Console* c, int type);
// Where it stands in the window.
void PlaceQuestion(Console* c);
// What lies around the sheet.
void DrawAroundQuestion(const Console* c);

}  // namespace console
