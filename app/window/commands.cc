// One table of commands: name, menu, keys, when it can be used, what it does.
#include "app/window/commands.h"

#include <iterator>

#include "app/window/console.h"

namespace console {
namespace {

bool Always(const Console*) {
  return true;
}
bool HasSelection(const Console* c) {
  return c->files.table.selected() >= 0;
}
bool HasParent(const Console* c) {
  return c->files.folder.path() != "/";
}
template <JobAction action>
bool CanDo(const Console* c) {
  return c->queue.CanChange(action);
}
template <JobAction action>
void Do(Console* c) {
  c->queue.Change(action, &c->server);
}
bool IsSending(const Console* c) {
  for (const Transfer& t : c->state.transfers)
    if (t.state == Sending::kSending) return true;
  return false;
}
bool HasMessage(const Console* c) {
  return !c->status.message().text.empty();
}
void DismissMessage(Console* c) {
  c->status.ReadMessage();
  c->damage |= kStatusPane;
}
void GoToFilter(Console* c) {
  SetFocusStop(c, FocusStop::kFilter);
}
template <int column>
void Sort(Console* c) {
  SortBy(c, column);
}
void About(Console* c) {
  Tell(c, true, "Quorvik " QUORVIK_VERSION ", a print console for the Linux desktop");
}

enum Menu : uint8_t { kFileMenu, kEditMenu, kQueueMenu, kViewMenu, kHelpMenu, kMenus };
constexpr const char* kTitles[kMenus] = {"File", "Edit", "Queue", "View", "Help"};
// Where a key without Control counts.
enum Where : uint8_t { kNowhere, kInFiles, kInQueue, kInBoth };

struct Command {
  CommandId id;
  Menu menu;
  bool begins_group;  // a separator stands before it
  const char* name;
  bool (*enabled)(const Console* c);
  void (*run)(Console* c);
  // In the menu; with Control.
  int key = 0;
  // Without.
  Where where = kNowhere;
  int plain_key = 0;
};
constexpr Command kCommands[] = {
    {kOpenCommand, kFileMenu, false, "Open", HasSelection, OpenSelected, 'o', kInFiles, XWE_RETURN},
    {kPrintCommand, kFileMenu, false, "Print", CanPrint, PrintSelected, 'p'},
    {kCloseCommand, kFileMenu, true, "Close Window", Always, Leave, 'w'},
    {kPreferencesCommand, kEditMenu, false, "Preferences\xC9", Always, ShowPreferences, ','},
    {kHoldCommand, kQueueMenu, false, "Hold", CanDo<JobAction::kHold>, Do<JobAction::kHold>, 'h',
     kInQueue, 'h'},
    {kReleaseCommand, kQueueMenu, false, "Release", CanDo<JobAction::kRelease>,
     Do<JobAction::kRelease>, 'g', kInQueue, 'r'},
    {kRemoveCommand, kQueueMenu, false, "Remove", CanDo<JobAction::kRemove>, Do<JobAction::kRemove>,
     XWE_DELETE, kInQueue, XWE_DELETE},
    {kStopSendingCommand, kQueueMenu, true, "Stop Sending", IsSending, StopSending, '.'},
    {kStartServerCommand, kQueueMenu, false, "Start a Server", CanStartServer, StartServer, 's'},
    {kRetryCommand, kQueueMenu, false, "Retry Now", IsServerAway, RetryServer},
    {kRefreshCommand, kViewMenu, false, "Refresh", Always, RefreshAll, 'r', kInBoth, XWE_F1 + 4},
    {kUpCommand, kViewMenu, false, "Enclosing Folder", HasParent, GoUp, XWE_UP, kInFiles,
     XWE_BACKSPACE},
    {kFilterCommand, kViewMenu, false, "Filter Files", Always, GoToFilter, 'f'},
    {kDismissCommand, kViewMenu, false, "Dismiss Message", HasMessage, DismissMessage},
    {kSortByNameCommand, kViewMenu, true, "Sort by Name", Always, Sort<0>, '1'},
    {kSortBySizeCommand, kViewMenu, false, "Sort by Size", Always, Sort<1>, '2'},
    {kSortByDateCommand, kViewMenu, false, "Sort by Date", Always, Sort<2>, '3'},
    {kAboutCommand, kHelpMenu, false, "About Quorvik", Always, About},
};
constexpr int kCount = int(std::size(kCommands));

const Command* Find(int id) {
  for (const Command& command : kCommands)
    if (command.id == id) return &command;
  return nullptr;
}

// The arrays that the toolkit keeps pointers into, for the life of the program.
XwMenuItem items[kMenus][2 * kCount + 1];
XwMenuItem bar[kMenus + 1];
XwMenuItem file_menu[3], job_menu[4];

void OpenMenu(Console* c, XwMenuItem* menu) {
  for (XwMenuItem* item = menu; item->text; ++item)
    XwEnableMenuItem(menu, item->id, CanRun(c, int(item->id)));
  if (const int chosen = XwPopupMenu(menu)) RunCommand(c, chosen);
}

template <size_t n>
void SetUpMenu(XwMenuItem (&menu)[n], std::initializer_list<CommandId> commands) {
  size_t used = 0;
  for (const CommandId id : commands) menu[used++] = {Find(id)->name, 0, id, nullptr};
  menu[used] = {};
}

}  // namespace

void SetUpCommands(Console* c) {
  int used[kMenus] = {};
  for (const Command& command : kCommands) {
    XwMenuItem* menu = items[command.menu];
    int& n = used[command.menu];
    if (command.begins_group) menu[n++] = {"", 0, 0, nullptr};
    menu[n++] = {command.name, 0, command.id, nullptr};
  }
  for (int m = 0; m < kMenus; ++m) {
    items[m][used[m]] = {};
    bar[m] = {kTitles[m], 0, reinterpret_cast<XwValue>(items[m]), nullptr};
  }
  for (const Command& command : kCommands)
    if (command.key) XwSetMenuItemKey(items[command.menu], command.id, command.key, XWS_CONTROL);
  SetUpMenu(file_menu, {kOpenCommand, kPrintCommand});
  SetUpMenu(job_menu, {kHoldCommand, kReleaseCommand, kRemoveCommand});
  XwSetMenu(c->window, bar);
}

bool CanRun(const Console* c, int id) {
  const Command* command = Find(id);
  return command && !c->asking && command->enabled(c);
}

void ShowCommands(const Console* c) {
  for (const Command& command : kCommands)
    XwEnableMenuItem(items[command.menu], command.id, CanRun(c, command.id));
}

void RunCommand(Console* c, int id) {
  if (CanRun(c, id)) Find(id)->run(c);
}

int CommandOfKey(const Console* c, int type) {
  const bool command_key = c->modifiers & XWS_COMMAND;
  const Where here = c->stop == FocusStop::kQueue ? kInQueue : kInFiles;
  for (const Command& command : kCommands) {
    if (command_key ? command.key == type
                    : command.plain_key == type && (command.where == kInBoth ||
                                                    (command.where == here && !IsControl(c->stop))))
      return command.id;
  }
  return 0;
}

void OpenFileMenu(Console* c) {
  OpenMenu(c, file_menu);
}

void OpenJobMenu(Console* c) {
  OpenMenu(c, job_menu);
}

}  // namespace console
