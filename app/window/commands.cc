// The menus, context menus and keys of the table of commands.
#include "app/window/commands.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "app/look/controls.h"
#include "app/window/command_table.h"

namespace console {
namespace {

constexpr const char* kTitles[kMenus] = {"File", "Edit", "Queue", "View", "Help"};
// A choice's number in menus: of each command kMostChoices in a row.
constexpr int kFirstChoice = 0x1000;
static_assert(kFirstChoice + int(kCommandsEnd) * kMostChoices < 0x10000);

// The arrays that the toolkit keeps pointers into, for the life of the program.
struct Choices {
  XwMenuItem items[kMostChoices + 1] = {};
  std::string texts[kMostChoices];
  std::string names[kMostChoices];  // as they were when the menu showed
};
struct Menus {
  XwMenuItem of_bar[kMenus][2 * kCommandsEnd + 1] = {};
  XwMenuItem of_contexts[kContexts][2 * kCommandsEnd + 1] = {};
  XwMenuItem bar[kMenus + 1] = {}, titles[kMenus + 1] = {};
  std::unique_ptr<Choices> choices[kCommandsEnd];
  std::string texts[kCommandsEnd];  // of those whose text changes
  std::string with_keys[kCommandsEnd];
};
Menus& TheMenus() {
  static auto* menus = new Menus;
  return *menus;
}

const Command* Find(int id) {
  for (const Command& command : Commands())
    if (command.id == id) return &command;
  return nullptr;
}

bool CanRun(const Console* c, const Command& command) {
  if (c->asking || (command.enabled && !command.enabled(c))) return false;
  return !command.more.why_not || command.more.why_not(c).empty();
}

// --- Making the arrays

XwMenuItem* ChoicesOf(const Command& command) {
  std::unique_ptr<Choices>& choices = TheMenus().choices[command.id];
  if (!choices) {
    choices = std::make_unique<Choices>();
    for (int i = 0; i < kMostChoices; ++i)
      choices->items[i] = {" ", XWM_UTF8 | XWM_HIDDEN, kFirstChoice + command.id * kMostChoices + i,
                           nullptr};
  }
  return choices->items;
}

// One menu of those that stand in it; a group's separator shows between two of them.
class MenuFiller {
 public:
  explicit MenuFiller(XwMenuItem* items) : items_(items) {}
  void Add(const Command& command, bool stands_here, const char* name) {
    separator_ = separator_ || command.more.group;
    if (!stands_here) return;
    if (separator_ && used_) items_[used_++] = {"", 0, 0, nullptr};
    separator_ = false;
    const XwValue id =
        command.more.choices ? reinterpret_cast<XwValue>(ChoicesOf(command)) : XwValue{command.id};
    items_[used_++] = {name, XWM_UTF8, id, nullptr};
  }
  void End() { items_[used_] = {}; }

 private:
  XwMenuItem* items_;
  int used_ = 0;
  bool separator_ = false;
};

// An item that opens a menu has an arrow where others show their key.
const char* NameWithKey(const Command& command) {
  if (!command.more.choices || !command.more.plain_key) return command.name;
  std::string& text = TheMenus().with_keys[command.id];  // stays where it is
  if (text.empty())
    text = std::string(command.name) + " (" + KeyText(command.more.plain_key, 0) + ")";
  return text.c_str();
}

void FillMenus(Menus* all) {
  for (int m = 0; m < kMenus; ++m) {
    MenuFiller menu(all->of_bar[m]);
    for (const Command& command : Commands()) menu.Add(command, command.menu == m, command.name);
    menu.End();
    const bool empty = !all->of_bar[m][0].text;
    all->bar[m] = {kTitles[m], empty ? XWM_HIDDEN : 0, reinterpret_cast<XwValue>(all->of_bar[m]),
                   nullptr};
  }
  for (int n = 0; n < kContexts; ++n) {
    MenuFiller menu(all->of_contexts[n]);
    for (const Command& command : Commands())
      menu.Add(command, command.more.contexts & (1u << n), NameWithKey(command));
    menu.End();
  }
}

// A context menu shows the key that needs no Control where there is one.
void SetKeys(Menus* all) {
  for (const Command& command : Commands()) {
    const CommandMore& more = command.more;
    if (more.key && command.menu != kNoMenu)
      XwSetMenuItemKey(all->of_bar[command.menu], command.id, more.key, more.modifiers);
    for (int n = 0; n < kContexts; ++n) {
      if (!(more.contexts & (1u << n))) continue;
      const bool plain = more.plain_key;
      XwSetMenuItemKey(all->of_contexts[n], command.id, plain ? more.plain_key : more.key,
                       plain ? 0 : more.modifiers);
    }
  }
}

// --- Before they show

void ShowChoices(const Console* c, const Command& command) {
  Choices& shown = *TheMenus().choices[command.id];
  const std::vector<CommandChoice> choices = command.more.choices(c);
  for (int i = 0; i < kMostChoices; ++i) {
    const XwValue id = shown.items[i].id;
    if (size_t(i) >= choices.size()) {
      if (shown.items[i].flags & XWM_HIDDEN) return;  // and all behind it
      XwChangeMenuItemFlags(shown.items, id, XWM_UTF8 | XWM_HIDDEN);
      continue;
    }
    const CommandChoice& choice = choices[size_t(i)];
    shown.names[i] = choice.name;
    if (shown.texts[i] != choice.text) {
      shown.texts[i] = choice.text;
      XwChangeMenuItemText(shown.items, id, shown.texts[i].c_str());
    }
    XwChangeMenuItemFlags(
        shown.items, id,
        XWM_UTF8 | (choice.checked ? XWM_CHECKED : 0) | (choice.enabled ? 0 : XWM_DISABLED));
  }
}

// In one of the menus that it stands in.
void ShowCommand(const Console* c, const Command& command, XwMenuItem* menu) {
  const CommandMore& more = command.more;
  const bool can = CanRun(c, command);
  if (more.choices)
    return XwEnableMenuItem(menu, reinterpret_cast<XwValue>(ChoicesOf(command)), can);
  XwEnableMenuItem(menu, command.id, can);
  if (more.checked) XwCheckMenuItem(menu, command.id, more.checked(c));
  if (more.text) XwChangeMenuItemText(menu, command.id, TheMenus().texts[command.id].c_str());
}

// What a menu's item is called now.
void TakeText(const Console* c, const Command& command) {
  if (command.more.text) TheMenus().texts[command.id] = command.more.text(c);
}

// What a button's tip says: what it does and its key, or why it cannot be used.
std::string TipOf(const Console* c, const Command& command) {
  const std::string why = command.more.why_not ? command.more.why_not(c) : "";
  if (!why.empty()) return why;
  const std::string key = KeyText(command.more.key, command.more.modifiers);
  const std::string what = command.more.tip ? command.more.tip : command.name;
  return key.empty() ? what : what + " (" + key + ")";
}

}  // namespace

std::string KeyText(int key, uint32_t modifiers) {
  constexpr struct {
    int key;
    const char* name;
  } kNames[] = {{' ', "Space"},         {XWE_BACKSPACE, "Backspace"},
                {XWE_RETURN, "Return"}, {XWE_DELETE, "Del"},
                {XWE_UP, "Up"},         {XWE_DOWN, "Down"},
                {XWE_LEFT, "Left"},     {XWE_RIGHT, "Right"},
                {XWE_HOME, "Home"},     {XWE_END, "End"}};
  if (key <= 0) return "";
  std::string text;
  if (modifiers & XWS_CONTROL) text += "Ctrl+";
  if (modifiers & XWS_OPTION) text += "Alt+";
  if (modifiers & XWS_SHIFT) text += "Shift+";
  for (const auto& row : kNames)
    if (row.key == key) return text + row.name;
  if (key >= XWE_F1 && key < XWE_F1 + 12) return text + "F" + std::to_string(key - XWE_F1 + 1);
  return text + char(key >= 'a' && key <= 'z' ? key - 'a' + 'A' : key);
}

void ShowMenuTitles(Console* c) {
  XwMenuItem* titles = TheMenus().titles;
  for (int m = 0; m < kMenus; ++m) titles[m] = {kTitles[m], 0, 0, nullptr};
  XwSetMenu(c->window, titles);
}

void SetUpMenus(Console* c) {
  if (std::exchange(c->has_menus, true)) return;
  Menus& all = TheMenus();
  for (auto& choices : all.choices) choices.reset();
  FillMenus(&all);
  SetKeys(&all);
  XwSetMenu(c->window, all.bar);
}

bool CanRun(const Console* c, int id) {
  const Command* command = Find(id);
  return command && CanRun(c, *command);
}

void ShowCommands(const Console* c) {
  for (const Command& command : Commands()) {
    if (command.menu == kNoMenu) continue;
    TakeText(c, command);
    ShowCommand(c, command, TheMenus().of_bar[command.menu]);
    if (command.more.choices) ShowChoices(c, command);
  }
}

void ShowButtons(Console* c) {
  c->button_tips.resize(c->buttons.size());
  for (size_t i = 0; i < c->buttons.size(); ++i) {
    XwWindow* button = c->buttons[i];
    const Command* command = Find(button->id);
    EnableControl(button, command && CanRun(c, *command));
    std::string tip = command ? TipOf(c, *command) : "";
    if (tip == c->button_tips[i]) continue;
    XwSetTip(button, 0, tip.c_str());
    c->button_tips[i] = std::move(tip);
  }
}

namespace {

// The menu of a command that was asked for by its key: where the keyboard is.
void OpenChoices(Console* c, const Command& command) {
  ShowChoices(c, command);
  const Table& table = IsInQueue(c->stop) ? c->queue.table : c->files.table;
  const Area row = table.focus() < 0 ? table.Body() : table.RowArea(table.focus());
  XwPopupLocation(c->window, row.x + 60, std::min(row.y + Table::kRowHeight, row.bottom()));
  if (const int chosen = XwPopupMenuByKey(ChoicesOf(command))) RunCommand(c, chosen);
}

void Choose(Console* c, const Command& command, int choice) {
  const CommandMore& more = command.more;
  const Choices* shown = TheMenus().choices[command.id].get();
  if (more.choose) more.choose(c, choice);
  if (!more.choose_name || !shown || shown->items[choice].flags & XWM_HIDDEN) return;
  const std::string name = shown->names[choice];  // choosing it may fill the menu again
  more.choose_name(c, name);
}

}  // namespace

void RunCommand(Console* c, int id) {
  const bool chooses = id >= kFirstChoice;
  const int n = id - kFirstChoice;
  const Command* command = Find(chooses ? n / kMostChoices : id);
  if (!command || !CanRun(c, *command)) return;
  if (!chooses && command->more.choices) return OpenChoices(c, *command);
  // Who goes on to something else has read why the last thing was not done, and wants to see what
  // becomes of this one. Dismiss reads it itself.
  if (id != kDismissCommand) c->status.PassReason();
  c->damage |= kStatusPane;
  if (!chooses && command->run) command->run(c);
  if (chooses) Choose(c, *command, n % kMostChoices);
}

int CommandOfMenuKey(int key, uint32_t modifiers) {
  modifiers &= XWS_CONTROL | XWS_SHIFT | XWS_OPTION | XWS_COMMAND;
  for (const Command& command : Commands())
    if (command.menu != kNoMenu && command.more.key == key && command.more.modifiers == modifiers)
      return command.id;
  return 0;
}

void RunFunctionKey(Console* c) {
  for (const Command& command : Commands()) {
    const CommandMore& more = command.more;
    for (const int key : {more.modifiers ? 0 : more.key, more.plain_key})
      if (key >= XWE_F1 && key < XWE_F1 + 12 && XwGetKeyState(key)) RunCommand(c, command.id);
  }
}

int CommandOfKey(const Console* c, int type) {
  const bool command_key = c->modifiers & XWS_COMMAND;
  for (const Command& command : Commands()) {
    const CommandMore& more = command.more;
    if (command_key ? more.key == type && more.modifiers == XWS_CONTROL
                    : more.plain_key == type && more.where & In(c->stop))
      return command.id;
  }
  return 0;
}

bool ConcernsJobs(int id) {
  const Command* command = Find(id);
  return command && command->more.contexts & kOnJobs;
}

void TellWhyNot(Console* c, int id, int key) {
  constexpr int kRepeats = 2;
  const Command* command = Find(id);
  if (!command || c->asking || !command->more.why_not || XwGetKeyState(key) == kRepeats) return;
  TellWhy(c, command->more.why_not(c), command->more.why_not);
}

void OpenContextMenu(Console* c, ContextMenu context) {
  XwMenuItem* menu = TheMenus().of_contexts[std::countr_zero(unsigned(context))];
  for (const Command& command : Commands()) {
    if (!(command.more.contexts & context)) continue;
    TakeText(c, command);
    ShowCommand(c, command, menu);
    if (command.more.choices) ShowChoices(c, command);
  }
  if (const int chosen = XwPopupMenu(menu)) RunCommand(c, chosen);
}

void OpenContextMenuByKey(Console* c) {
  ContextMenu context;
  Area row, list;
  switch (c->stop) {
    case FocusStop::kFiles:
      context = kOnFiles;
      list = c->layout.folder;
      row = c->files.table.RowArea(c->files.table.selected());
      break;
    case FocusStop::kQueue:
      context = kOnJobs;
      list = c->layout.queue;
      row = c->queue.table.RowArea(c->queue.table.selected());
      break;
    case FocusStop::kPrinters:
      context = kOnPrinters;
      list = c->layout.printers;
      row = c->printer_list.list.RowArea(c->printer_list.list.at());
      break;
    default:
      return;
  }
  // Of a row that does not show, at the top of its list.
  constexpr int kFromLeft = 30;
  const bool shows = row.y >= list.y && row.bottom() <= list.bottom();
  XwPopupLocation(c->window, list.x + kFromLeft, shows ? row.bottom() : list.y);
  OpenContextMenu(c, context);
}

}  // namespace console
