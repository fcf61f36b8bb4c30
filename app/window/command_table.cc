#include "app/window/command_table.h"

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/window/commands.h"
#include "app/window/help.h"
#include "app/window/print_options.h"
#include "app/window/queue_commands.h"
#include "app/window/side_commands.h"

namespace console {
namespace {

// --- Edit: of the box with the keyboard

template <int action>
bool CanEdit(const Console* c) {
  return XwCanEdit(XwGetFocus(c->window), action);
}
template <int action>
void Edit(Console* c) {
  XwEdit(XwGetFocus(c->window), action);
}

// --- Queue

template <Verb verb>
std::string WhyNot(const Console* c) {
  return WhyNotChange(c, verb);
}
template <Verb verb>
void Do(Console* c) {
  ChangeJobs(c, {verb});
}
template <Verb verb>
void ChangeTo(Console* c, const std::string& name) {
  ChangeJobs(c, {verb, 0, name});
}
template <int by>
void Move(Console* c) {
  MoveJobs(c, by);
}
std::string WhyNotStopSending(const Console* c) {
  for (const Transfer& t : c->state.transfers)
    if (t.state == Sending::kSending) return "";
  return "Nothing is being sent";
}

// --- Printers

template <PrinterVerb verb, Which which>
bool CanDo(const Console* c) {
  return CanDoToPrinter(c, which, verb);
}
template <PrinterVerb verb, Which which>
std::string WhyNotDo(const Console* c) {
  return WhyNotToPrinter(c, which, verb);
}
template <PrinterVerb verb, Which which>
void DoTo(Console* c) {
  DoToPrinter(c, which, verb);
}

template <PrinterVerb verb, Which which>
constexpr Command PrinterRow(CommandId id, Menu menu, const char* name, CommandMore more) {
  more.why_not = WhyNotDo<verb, which>;
  return {id, menu, name, CanDo<verb, which>, DoTo<verb, which>, more};
}
// In the menu of a printer.
template <PrinterVerb verb>
constexpr Command PrinterVerbRow(CommandId id, const char* name, bool group = false) {
  return PrinterRow<verb, Which::kAt>(id, kNoMenu, name, {.group = group, .contexts = kOnPrinters});
}
// The same of the chosen printer, which the menu of the queue names.
template <PrinterVerb verb>
constexpr Command ChosenPrinterRow(CommandId id, const char* name,
                                   std::string (*text)(const Console*)) {
  return PrinterRow<verb, Which::kChosen>(id, kQueueMenu, name, {.text = text});
}

void StopSending(Console* c) {
  for (const Transfer& t : c->state.transfers) {
    if (t.state != Sending::kSending) continue;
    c->server.Cancel(t.number);
    Tell(c, true, Quoted(t.order.document) + " is not sent: it was stopped");
  }
}

// --- View

bool HasParent(const Console* c) {
  return c->files.folder.path() != "/";
}
void GoToFilter(Console* c) {
  SetFocusStop(c, FocusStop::kFilter);
}
bool FilterHidesFiles(const Console* c) {
  return c->files.folder.rows().filtered();
}
void ShowAllFiles(Console* c) {
  SetFilter(c, "");
  if (c->stop == FocusStop::kShowAllFiles) SetFocusStop(c, FocusStop::kFiles);
}
bool HasMessage(const Console* c) {
  return !c->status.message().text.empty();
}
void DismissMessage(Console* c) {
  c->status.ReadMessage();
  c->damage |= kStatusPane;
}
bool ShowsHidden(const Console* c) {
  return c->files.folder.rows().shows_hidden();
}
void ShowHidden(Console* c) {
  ShowHiddenNames(c, !ShowsHidden(c));
}
template <int column>
void Sort(Console* c) {
  SortBy(c, column);
}
template <FileOrder order>
bool SortsBy(const Console* c) {
  return c->files.folder.order() == order;
}

constexpr Command Row(CommandId id, Menu menu, const char* name, Enabled enabled, Run run,
                      CommandMore more = {}) {
  return {id, menu, name, enabled, run, more};
}

constexpr Command kCommands[] = {
    Row(kOpenCommand, kFileMenu, "Open", nullptr, OpenSelected,
        {.key = 'o',
         .plain_key = XWE_RETURN,
         .where = kInFiles,
         .contexts = kOnFiles,
         .why_not = WhyNotOpen}),
    Row(kPrintCommand, kFileMenu, "Print", nullptr, PrintSelected,
        {.key = 'p', .contexts = kOnFiles, .why_not = WhyNotPrintSelected}),
    Row(kPrintOnCommand, kFileMenu, "Print on", nullptr, nullptr,
        {.group = true,
         .contexts = kOnOptions,
         .choices = NextPrinterChoices,
         .choose_name = ChoosePrinter}),
    Row(kNextProfileCommand, kFileMenu, "With Profile", nullptr, nullptr,
        {.contexts = kOnOptions, .choices = NextProfileChoices, .choose_name = ChooseNextProfile}),
    Row(kNextMediaCommand, kFileMenu, "On Media", nullptr, nullptr,
        {.contexts = kOnOptions, .choices = NextMediaChoices, .choose_name = ChooseNextMedia}),
    Row(kNextCopiesCommand, kFileMenu, "Copies", nullptr, nullptr,
        {.contexts = kOnOptions, .choices = NextCopiesChoices, .choose = ChooseNextCopies}),
    Row(kNextPriorityCommand, kFileMenu, "At Priority", nullptr, nullptr,
        {.contexts = kOnOptions, .choices = NextPriorityChoices, .choose = ChooseNextPriority}),
    Row(kColourCommand, kFileMenu, "Mark in the Queue…", nullptr, ChooseColour,
        {.contexts = kOnOptions,
         .tip = "A colour that marks the next job in the queue; it is not printed"}),
    Row(kHoldNextCommand, kFileMenu, "Hold Next Job", nullptr, HoldNext,
        {.key = 'j', .contexts = kOnOptions, .checked = HoldsNext}),
    Row(kUsualCommand, kFileMenu, "Usual Options", nullptr, UseUsualOptions,
        {.group = true, .contexts = kOnOptions}),
    Row(kOptionsCommand, kNoMenu, "Print Options", nullptr, OpenOptions),
    Row(kCloseCommand, kFileMenu, "Close Window", nullptr, CloseFrontWindow,
        {.group = true, .key = 'w'}),

    Row(kUndoCommand, kEditMenu, "Undo", CanEdit<XWU_UNDO>, Edit<XWU_UNDO>, {.key = 'z'}),
    Row(kRedoCommand, kEditMenu, "Redo", CanEdit<XWU_REDO>, Edit<XWU_REDO>, {.key = 'y'}),
    Row(kCutCommand, kEditMenu, "Cut", CanEdit<XWU_CUT>, Edit<XWU_CUT>,
        {.group = true, .key = 'x'}),
    Row(kCopyCommand, kEditMenu, "Copy", CanEdit<XWU_COPY>, Edit<XWU_COPY>, {.key = 'c'}),
    Row(kPasteCommand, kEditMenu, "Paste", CanEdit<XWU_PASTE>, Edit<XWU_PASTE>, {.key = 'v'}),
    Row(kSelectAllCommand, kEditMenu, "Select All", CanSelectAll, SelectAll, {.key = 'a'}),
    Row(kPreferencesCommand, kEditMenu, "Preferences…", nullptr, ShowPreferences,
        {.group = true, .key = ','}),

    Row(kJobDetailsCommand, kNoMenu, "Job Details", nullptr, ShowJobDetails,
        {.plain_key = XWE_RETURN,
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNotShowJob}),
    Row(kHoldCommand, kQueueMenu, "Hold", nullptr, Do<Verb::kHold>,
        {.key = 'h',
         .plain_key = 'h',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kHold>}),
    Row(kReleaseCommand, kQueueMenu, "Release", nullptr, Do<Verb::kRelease>,
        {.key = 'g',
         .plain_key = 'r',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kRelease>}),
    Row(kPrintAgainCommand, kQueueMenu, "Print Again", nullptr, Do<Verb::kPrintAgain>,
        {.plain_key = 'a',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kPrintAgain>}),
    Row(kPriorityCommand, kQueueMenu, "Priority", nullptr, nullptr,
        {.group = true,
         .plain_key = 'p',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kPriority>,
         .choices = PriorityChoices,
         .choose = ChoosePriority}),
    Row(kCopiesCommand, kQueueMenu, "Copies", nullptr, nullptr,
        {.plain_key = 'c',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kCopies>,
         .choices = CopiesChoices,
         .choose = ChooseCopies}),
    Row(kMoveToPrinterCommand, kQueueMenu, "Move to Printer", nullptr, nullptr,
        {.plain_key = 'm',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kMove>,
         .choices = PrinterChoices,
         .choose_name = ChangeTo<Verb::kMove>}),
    Row(kMediaCommand, kQueueMenu, "Media", nullptr, nullptr,
        {.contexts = kOnJobs,
         .why_not = WhyNot<Verb::kMedia>,
         .choices = MediaChoices,
         .choose_name = ChangeTo<Verb::kMedia>}),
    Row(kProfileCommand, kQueueMenu, "Profile", nullptr, nullptr,
        {.contexts = kOnJobs,
         .why_not = WhyNot<Verb::kProfile>,
         .choices = ProfileChoices,
         .choose_name = ChangeTo<Verb::kProfile>}),
    Row(kMoveUpCommand, kQueueMenu, "Print Earlier", nullptr, Move<-1>,
        {.plain_key = 'u',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kReorder>}),
    Row(kMoveDownCommand, kQueueMenu, "Print Later", nullptr, Move<1>,
        {.plain_key = 'd',
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kReorder>}),
    Row(kRemoveCommand, kQueueMenu, "Remove", nullptr, Do<Verb::kRemove>,
        {.group = true,
         .key = XWE_DELETE,
         .plain_key = XWE_DELETE,
         .where = kInQueue,
         .contexts = kOnJobs,
         .why_not = WhyNot<Verb::kRemove>}),
    Row(kStopSendingCommand, kQueueMenu, "Stop Sending", nullptr, StopSending,
        {.group = true, .key = '.', .why_not = WhyNotStopSending}),
    Row(kCancelQueuedCommand, kQueueMenu, "Cancel Queued Documents", nullptr, CancelQueued,
        {.key = 'k', .why_not = WhyNotCancelQueued}),
    Row(kStartServerCommand, kQueueMenu, "Start a Server", nullptr, StartServer,
        {.key = 's', .why_not = WhyNotStartServer}),
    Row(kRetryCommand, kQueueMenu, "Retry Now", IsServerAway, RetryServer),

    Row(kLoadPaperCommand, kQueueMenu, "Paper Loaded", nullptr, LoadPaper,
        {.group = true, .key = 'l', .text = LoadPaperText, .why_not = WhyNotLoadPaper}),
    ChosenPrinterRow<PrinterVerb::kPause>(
        kPauseChosenCommand, "Pause Printer",
        [](const Console* c) { return ChosenPrinterText(c, "Pause"); }),
    ChosenPrinterRow<PrinterVerb::kResume>(
        kResumeChosenCommand, "Resume Printer",
        [](const Console* c) { return ChosenPrinterText(c, "Resume"); }),
    ChosenPrinterRow<PrinterVerb::kRefuseJobs>(
        kRefuseChosenCommand, "Refuse New Jobs",
        [](const Console* c) { return ChosenPrinterText(c, "Refuse New Jobs for"); }),
    ChosenPrinterRow<PrinterVerb::kTakeJobs>(
        kTakeChosenCommand, "Take New Jobs",
        [](const Console* c) { return ChosenPrinterText(c, "Take New Jobs for"); }),
    PrinterVerbRow<PrinterVerb::kPause>(kPausePrinterCommand, "Pause"),
    PrinterVerbRow<PrinterVerb::kResume>(kResumePrinterCommand, "Resume"),
    PrinterVerbRow<PrinterVerb::kRefuseJobs>(kRefuseJobsCommand, "Refuse New Jobs", true),
    PrinterVerbRow<PrinterVerb::kTakeJobs>(kTakeJobsCommand, "Take New Jobs"),
    PrinterVerbRow<PrinterVerb::kPaperLoaded>(kPaperLoadedCommand, "Paper Loaded", true),
    Row(kMoveAllJobsCommand, kNoMenu, "Move All Jobs to", CanDo<PrinterVerb::kMoveJobs, Which::kAt>,
        nullptr,
        {.group = true,
         .contexts = kOnPrinters,
         .why_not = WhyNotDo<PrinterVerb::kMoveJobs, Which::kAt>,
         .choices = MoveChoices,
         .choose_name = MoveAllJobs}),
    PrinterVerbRow<PrinterVerb::kMakeMine>(kMakeMineCommand, "Make My Default", true),
    Row(kGoToPrintersCommand, kNoMenu, "Choose Printer", nullptr, GoToPrinters),

    Row(kNextPaneCommand, kNoMenu, "Next Pane", nullptr, GoToNextPane,
        {.plain_key = XWE_F1 + 5, .where = kEverywhere}),

    Row(kShowPlacesCommand, kViewMenu, "Places", nullptr, TogglePlaces,
        {.key = '7', .checked = ShowsPlaces}),
    Row(kShowPrintersCommand, kViewMenu, "Printers", nullptr, TogglePrinters,
        {.key = '8', .checked = ShowsPrinters}),
    Row(kShowDetailsCommand, kViewMenu, "Details", nullptr, ToggleDetails,
        {.key = '9', .checked = ShowsDetails}),
    Row(kListsCommand, kViewMenu, "Scanners and Profiles", nullptr, ShowLists),
    Row(kPaneSizeCommand, kViewMenu, "Size of This Pane", nullptr, nullptr,
        {.choices = PaneSizeChoices, .choose = ChangePaneSize}),
    Row(kRefreshCommand, kViewMenu, "Refresh", nullptr, RefreshAll,
        {.group = true, .key = 'r', .plain_key = XWE_F1 + 4, .where = kEverywhere}),
    Row(kUpCommand, kViewMenu, "Enclosing Folder", HasParent, GoUp,
        {.key = XWE_UP, .modifiers = XWS_OPTION, .plain_key = XWE_BACKSPACE, .where = kInFiles}),
    Row(kFilterCommand, kViewMenu, "Filter Files", nullptr, GoToFilter,
        {.key = 'f', .plain_key = '/', .where = kInFiles}),
    Row(kShowAllFilesCommand, kViewMenu, "Show All Files", FilterHidesFiles, ShowAllFiles),
    Row(kDismissCommand, kViewMenu, "Dismiss Message", HasMessage, DismissMessage),
    Row(kShowHiddenCommand, kViewMenu, "Show Hidden Names", nullptr, ShowHidden,
        {.key = 'h', .modifiers = XWS_CONTROL | XWS_SHIFT, .checked = ShowsHidden}),
    Row(kSortByNameCommand, kViewMenu, "Sort by Name", nullptr, Sort<0>,
        {.group = true, .key = '1', .checked = SortsBy<FileOrder::kName>}),
    Row(kSortBySizeCommand, kViewMenu, "Sort by Size", nullptr, Sort<1>,
        {.key = '2', .checked = SortsBy<FileOrder::kSize>}),
    Row(kSortByDateCommand, kViewMenu, "Sort by Modified", nullptr, Sort<2>,
        {.key = '3', .checked = SortsBy<FileOrder::kTime>}),

    Row(kSortQueueCommand, kViewMenu, "Sort Queue By", nullptr, nullptr,
        {.group = true,
         .plain_key = 'o',
         .where = kInQueue,
         .choices = SortChoices,
         .choose = ChooseSort}),
    Row(kQueuePartCommand, kViewMenu, "Jobs Shown", nullptr, nullptr,
        {.plain_key = 's', .where = kInQueue, .choices = PartChoices, .choose = ChoosePart}),
    Row(kMineCommand, kViewMenu, "My Jobs Only", nullptr, ToggleMine,
        {.plain_key = 'y', .where = kInQueue, .checked = ShowsMine}),
    Row(kQueueFilterCommand, kViewMenu, "Filter Queue", nullptr, GoToQueueFilter,
        {.key = 'f', .modifiers = XWS_CONTROL | XWS_SHIFT, .plain_key = '/', .where = kInQueue}),
    Row(kShowAllJobsCommand, kViewMenu, "Show All Jobs", FilterHidesJobs, ShowAllJobs),

    Row(kKeysCommand, kHelpMenu, "Keys", nullptr, ShowKeys, {.key = XWE_F1, .modifiers = 0}),
    Row(kAboutCommand, kHelpMenu, "About Quorvik", nullptr, ShowAbout, {.group = true}),
};

}  // namespace

std::span<const Command> Commands() {
  return kCommands;
}

CommandChoice NamedChoice(const std::string& name, bool checked) {
  const std::string shown = Shown(name);
  return {shown.empty() ? " " : shown, checked, true, name};
}

std::vector<CommandChoice> NamedChoicesOrNone(const char* none,
                                              const std::vector<std::string>& names,
                                              const std::optional<std::string>& chosen) {
  std::vector<CommandChoice> choices{{none, chosen && chosen->empty()}};
  for (const std::string& name : names) choices.push_back(NamedChoice(name, chosen == name));
  return choices;
}

}  // namespace console
