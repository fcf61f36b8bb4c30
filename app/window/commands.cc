// One table of commands: name, menu, key, when it can be used, what it does.
#include "app/window/commands.h"

#include <iterator>

#include "app/window/console.h"

namespace console {
namespace {

bool Always(const Console*) {
  return true;
}
bool HasSelection(const Console* c) {
  return c->files.selected() >= 0;
}
bool HasParent(const Console* c) {
  return c->folder.path() != "/";
}
template <JobAction action>
bool CanDo(const Console* c) {
  return CanChange(c, action);
}
template <JobAction action>
void Do(Console* c) {
  ChangeSelected(c, action);
}
bool IsSending(const Console* c) {
  for (const Transfer& t : c->state.transfers)
    if (t.state == Sending::kSending) return true;
  return false;
}
template <int column>
void Sort(Console* c) {
  SortBy(c, column);
}
void About(Console* c) {
  Tell(c, true, "Quorvik " QUORVIK_VERSION ", a print console for the Linux desktop");
}

enum Menu : uint8_t { kFile, kQueue, kView, kHelp, kMenus };
constexpr const char* kTitles[kMenus] = {"File", "Queue", "View", "Help"};

struct Command {
  Menu menu;
  const char* name;  // "": a separator
  int key = 0;
  uint32_t modifiers = 0;
  bool (*enabled)(const Console* c) = Always;
  void (*run)(Console* c) = nullptr;
};
// A command's number is its place here and 1.
constexpr Command kCommands[] = {
    {kFile, "Open", 'o', XWS_CONTROL, HasSelection, OpenSelected},
    {kFile, "Print", 'p', XWS_CONTROL, CanPrint, PrintSelected},
    {kFile, ""},
    {kFile, "Close Window", 'w', XWS_CONTROL, Always, Leave},
    {kQueue, "Hold", 'h', XWS_CONTROL, CanDo<JobAction::kHold>, Do<JobAction::kHold>},
    {kQueue, "Release", 'g', XWS_CONTROL, CanDo<JobAction::kRelease>, Do<JobAction::kRelease>},
    {kQueue, "Remove", XWE_DELETE, XWS_CONTROL, CanDo<JobAction::kRemove>, Do<JobAction::kRemove>},
    {kQueue, ""},
    {kQueue, "Stop Sending", '.', XWS_CONTROL, IsSending, StopSending},
    {kView, "Refresh", 'r', XWS_CONTROL, Always, RefreshAll},
    {kView, "Enclosing Folder", XWE_UP, XWS_CONTROL, HasParent, GoUp},
    {kView, ""},
    {kView, "Sort by Name", '1', XWS_CONTROL, Always, Sort<0>},
    {kView, "Sort by Size", '2', XWS_CONTROL, Always, Sort<1>},
    {kView, "Sort by Date", '3', XWS_CONTROL, Always, Sort<2>},
    {kHelp, "About Quorvik", 0, 0, Always, About},
};
constexpr int kCount = int(std::size(kCommands));

// The arrays that the toolkit keeps pointers into, for the life of the program.
XwMenuItem items[kMenus][kCount + 1];
XwMenuItem bar[kMenus + 1];

}  // namespace

void SetUpCommands(Console* c) {
  int used[kMenus] = {};
  for (int i = 0; i < kCount; ++i) {
    const Command& command = kCommands[i];
    items[command.menu][used[command.menu]++] = {command.name, 0, command.run ? i + 1 : 0, nullptr};
  }
  for (int m = 0; m < kMenus; ++m) {
    items[m][used[m]] = {};
    bar[m] = {kTitles[m], 0, reinterpret_cast<XwValue>(items[m]), nullptr};
  }
  for (int i = 0; i < kCount; ++i)
    if (kCommands[i].key)
      XwSetMenuItemKey(items[kCommands[i].menu], i + 1, kCommands[i].key, kCommands[i].modifiers);
  XwSetMenu(c->window, bar);
}

void ShowCommands(const Console* c) {
  for (int i = 0; i < kCount; ++i)
    if (kCommands[i].run)
      XwEnableMenuItem(items[kCommands[i].menu], i + 1, !c->asking && kCommands[i].enabled(c));
}

void RunCommand(Console* c, int command) {
  if (command < 1 || command > kCount || c->asking) return;
  const Command& chosen = kCommands[command - 1];
  if (!chosen.run || !chosen.enabled(c)) return;
  if (c->list_open) ClosePrinterList(c);
  chosen.run(c);
}

}  // namespace console
