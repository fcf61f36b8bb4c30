// The numbers that hits, and reports of controls and menus carry. A button of a command has the
// command's.
#pragma once

namespace console {

// Owners of hits.
enum Owner { kNobody, kFiles, kQueue, kPlaces, kCrumbs, kStatus, kPrinters, kBorders, kPages };

enum CommandId {
  kOpenCommand = 1,
  kPrintCommand,
  kCloseCommand,
  kHoldCommand,
  kReleaseCommand,
  kPrintAgainCommand,
  kRemoveCommand,
  kPriorityCommand,
  kCopiesCommand,
  kMediaCommand,
  kProfileCommand,
  kMoveToPrinterCommand,
  kMoveUpCommand,
  kMoveDownCommand,
  kSortQueueCommand,
  kQueuePartCommand,
  kMineCommand,
  kQueueFilterCommand,
  kStopSendingCommand,
  kRefreshCommand,
  kUpCommand,
  kFilterCommand,
  kSortByNameCommand,
  kSortBySizeCommand,
  kSortByDateCommand,
  kAboutCommand,
  kStartServerCommand,
  kSelectAllCommand,
  kShowHiddenCommand,
  kCancelQueuedCommand,
  kRetryCommand,
  kDismissCommand,
  kPreferencesCommand,
  kListsCommand,
  kPausePrinterCommand,
  kResumePrinterCommand,
  kRefuseJobsCommand,
  kTakeJobsCommand,
  kPaperLoadedCommand,
  kPauseChosenCommand,
  kResumeChosenCommand,
  kRefuseChosenCommand,
  kTakeChosenCommand,
  kMoveAllJobsCommand,
  kMakeMineCommand,
  kLoadPaperCommand,
  kGoToPrintersCommand,
  kNextPaneCommand,
  kShowPlacesCommand,
  kShowPrintersCommand,
  kShowDetailsCommand,
  kPaneSizeCommand,
  kUndoCommand,
  kRedoCommand,
  kCutCommand,
  kCopyCommand,
  kPasteCommand,
  kPrintOnCommand,
  kNextProfileCommand,
  kNextMediaCommand,
  kNextCopiesCommand,
  kNextPriorityCommand,
  kColourCommand,
  kHoldNextCommand,
  kUsualCommand,
  kOptionsCommand,
  kKeysCommand,
  kShowAllFilesCommand,
  kShowAllJobsCommand,
  kJobDetailsCommand,
  kCommandsEnd
};

enum ControlId {
  kPrinterControl = 150,
  kProfileControl,
  kMediaControl,
  kCopiesControl,
  kPriorityControl,
  kHoldNextControl,
  kFilterControl,
  kQueueFilterControl,
  kQueueOwnerControl,
  kQueuePartControl,
  kCloseAnswer,
  kKeepOpenAnswer,
  // Scroll bars of the side panes.
  kPlacesControl = 90,
  kPrintersControl,
  kDetailsControl,
  // Those of a table's heads follow its own.
  kFilesControls = 200,
  kQueueControls = 300
};
static_assert(int(kCommandsEnd) <= int(kPlacesControl));

}  // namespace console
