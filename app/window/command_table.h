// What a command is, and the one table of all of them. A new command is a number in
// app/panes/ids.h and a row in command_table.cc: menus, context menus, keys and buttons follow.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/window/console.h"

namespace console {

// The menus of the bar. A command without one stands in context menus, has keys or a button.
enum Menu : uint8_t { kFileMenu, kEditMenu, kQueueMenu, kViewMenu, kHelpMenu, kMenus };
constexpr Menu kNoMenu = kMenus;

// Where a key without Control counts: bits of stops.
constexpr unsigned In(FocusStop stop) {
  return 1u << int(stop);
}
constexpr unsigned kInFiles = In(FocusStop::kFiles), kInQueue = In(FocusStop::kQueue);
constexpr unsigned kEverywhere = ~0u;

// An item of the menu that a command opens.
struct CommandChoice {
  std::string text;  // UTF-8, not empty
  bool checked = false, enabled = true;
  std::string name = "";  // for `choose_name`: of the media, profile or printer; "": none
};
// A choice of what has this name.
CommandChoice NamedChoice(const std::string& name, bool checked);
// One for each of these, behind a first one, with that text, for none of them. The chosen one is
// checked, "" being none of them; nullopt: no choice is.
std::vector<CommandChoice> NamedChoicesOrNone(const char* none,
                                              const std::vector<std::string>& names,
                                              const std::optional<std::string>& chosen);
// More are not shown.
constexpr int kMostChoices = 128;

// What many commands do without.
struct CommandMore {
  bool group = false;  // a separator stands before it
  // The key in the menu, and its modifiers.
  int key = 0;
  uint32_t modifiers = XWS_CONTROL;
  // A key without Control, and where it counts.
  int plain_key = 0;
  unsigned where = 0;
  unsigned contexts = 0;  // the context menus that it stands in, bits
  // The text while the menu shows, in place of the name.
  std::string (*text)(const Console*) = nullptr;
  const char* tip = nullptr;  // of its button, in place of the name
  // Why it cannot be used though `enabled` holds: a sentence without its full stop; "": it can.
  std::string (*why_not)(const Console*) = nullptr;
  bool (*checked)(const Console*) = nullptr;
  // It opens a menu of these in place of running. `choose` gets the number of one, from 0, or
  // `choose_name` the name that it had when the menu showed: the list may be another one by then.
  std::vector<CommandChoice> (*choices)(const Console*) = nullptr;
  void (*choose)(Console*, int choice) = nullptr;
  void (*choose_name)(Console*, const std::string& name) = nullptr;
};

using Enabled = bool (*)(const Console*);
using Run = void (*)(Console*);
struct Command {
  CommandId id;
  Menu menu;
  const char* name;  // UTF-8
  Enabled enabled;   // null: always
  Run run;           // null when it opens a menu
  CommandMore more = {};
};

// In the order of the menus. Two commands may not share a key at the same place.
std::span<const Command> Commands();

}  // namespace console
