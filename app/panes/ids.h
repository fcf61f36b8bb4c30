// The numbers that hits, and reports of controls and menus carry. A button of a command has the
// command's.
#pragma once

namespace console {

// Owners of hits.
enum Owner { kNobody, kFiles, kQueue, kPlaces, kCrumbs, kStatus };

enum CommandId {
  kOpenCommand = 1,
  kPrintCommand,
  kCloseCommand,
  kHoldCommand,
  kReleaseCommand,
  kRemoveCommand,
  kStopSendingCommand,
  kRefreshCommand,
  kUpCommand,
  kFilterCommand,
  kSortByNameCommand,
  kSortBySizeCommand,
  kSortByDateCommand,
  kAboutCommand,
  kStartServerCommand,
  kRetryCommand,
  kDismissCommand,
  kPreferencesCommand,
  kCommandsEnd
};

enum ControlId {
  kPrinterControl = 50,
  kProfileControl,
  kLessControl,
  kCopiesControl,
  kMoreControl,
  kPriorityControl,
  kHoldNextControl,
  kFilterControl,
  kCloseAnswer,
  kKeepOpenAnswer,
  // Those of a table's heads follow its own.
  kFilesControls = 100,
  kQueueControls = 200
};
static_assert(int(kCommandsEnd) <= int(kPrinterControl));

}  // namespace console
