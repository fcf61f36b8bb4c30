// The keys of menu items, and the menus that were made for the bar.
#include <algorithm>
#include <cctype>
#include <vector>

#include "toolkit/core/alive.h"
#include "toolkit/windows/menu_state.h"

using namespace platform;

namespace {

struct ItemKey {
  const XwMenuItem* record;
  int type;
  uint32_t modifiers;
};
struct BuiltEntry {
  const XwMenuItem* items;
  MenuRef menu;
};
struct MenuState {
  std::vector<ItemKey> keys;
  std::vector<BuiltEntry> built;
  XwMenuItem* bar = nullptr;
};
MenuState& State() {
  static auto* state = new MenuState;
  return *state;
}

constexpr uint32_t kKeyModifiers = XWS_CONTROL | XWS_SHIFT | XWS_OPTION | XWS_COMMAND;

int FoldType(int type) {
  return type >= 'A' && type <= 'Z' ? type + ('a' - 'A') : type;
}

const ItemKey* KeyOf(const XwMenuItem* record) {
  for (const ItemKey& k : State().keys)
    if (k.record == record) return &k;
  return nullptr;
}

struct NameRow {
  int type;
  const char* name;
};
constexpr NameRow kNames[] = {
    {' ', "Space"},         {XWE_BACKSPACE, "Backspace"}, {XWE_TAB, "Tab"},
    {XWE_RETURN, "Return"}, {XWE_ESCAPE, "Esc"},          {XWE_F13, "F13"},
    {XWE_HELP, "Help"},     {XWE_DELETE, "Del"},          {XWE_HOME, "Home"},
    {XWE_END, "End"},       {XWE_PAGE_UP, "PgUp"},        {XWE_PAGE_DOWN, "PgDn"},
    {XWE_UP, "Up"},         {XWE_LEFT, "Left"},           {XWE_DOWN, "Down"},
    {XWE_RIGHT, "Right"},
};

std::string KeyName(int type) {
  for (const NameRow& row : kNames)
    if (row.type == type) return row.name;
  if (type >= XWE_F1 && type < XWE_F1 + 12) return "F" + std::to_string(type - XWE_F1 + 1);
  return type > ' ' && type < 127 ? std::string(1, char(toupper(type))) : "";
}

constexpr struct {
  uint32_t bit;
  const char* name;
} kModifierNames[] = {
    {XWS_CONTROL, "Ctrl+"}, {XWS_OPTION, "Alt+"}, {XWS_SHIFT, "Shift+"}, {XWS_COMMAND, "Super+"}};

bool IsKey(const ItemKey& k, int type, uint32_t modifiers) {
  return k.type == FoldType(type) && k.modifiers == (modifiers & kKeyModifiers);
}

// The shown and enabled record below `items` whose key this is; with `any`, whatever its state.
XwMenuItem* FindKey(XwMenuItem* items, int type, uint32_t modifiers, bool any,
                    SearchedArrays* searched) {
  if (!searched->Enter(items)) return nullptr;
  XwMenuItem* found = nullptr;
  for (XwMenuItem* r = items; r->text && !found; ++r) {
    if (!any && r->flags & (XWM_DISABLED | XWM_HIDDEN)) continue;
    if (!IsMenuLeaf(*r)) {
      found = FindKey(reinterpret_cast<XwMenuItem*>(r->id), type, modifiers, any, searched);
      continue;
    }
    const ItemKey* k = KeyOf(r);
    if (k && *r->text && IsKey(*k, type, modifiers)) found = r;
  }
  searched->Leave();
  return found;
}

}  // namespace

MenuRef BuiltMenu(const XwMenuItem* items) {
  if (!items || !(items->flags & XWM_BUILT)) return nullptr;
  for (const BuiltEntry& e : State().built)
    if (e.items == items && e.menu == items->menu && IsValidMenu(e.menu)) return e.menu;
  return nullptr;
}

void NoteBuilt(XwMenuItem* items, MenuRef menu) {
  std::erase_if(State().built, [&](const BuiltEntry& e) {
    if (e.items != items) return false;
    if (e.menu != menu) DisposeMenu(e.menu);
    return true;
  });
  State().built.push_back({items, menu});
}

MenuRef EmptyMenu(XwMenuItem* title) {
  for (const BuiltEntry& e : State().built)
    if (e.items == title && IsValidMenu(e.menu)) return e.menu;
  MenuRef menu = CreateNewMenu(0);
  SetMenuTitle(menu, MenuItemText(*title).c_str());
  NoteBuilt(title, menu);
  return menu;
}

void SetBarArray(XwMenuItem* bar) {
  State().bar = bar;
}
XwMenuItem* BarArray() {
  return State().bar;
}

std::string MenuKeyText(const XwMenuItem* record) {
  const ItemKey* k = KeyOf(record);
  if (!k) return "";
  std::string text;
  for (const auto& m : kModifierNames)
    if (k->modifiers & m.bit) text += m.name;
  return text + KeyName(k->type);
}

void ShowQuitKey() {
  SetQuitKeyText(MenuBarHasKey('q', XWS_CONTROL) ? "" : "Ctrl+Q");
}

void XwSetMenuItemKey(XwMenuItem* items, int32_t id, int type, uint32_t modifiers) {
  MenuRef menu;
  int position;
  XwMenuItem* record = FindMenuItem(items, id, &menu, &position, true);
  if (!record) return;
  std::erase_if(State().keys, [record](const ItemKey& k) { return k.record == record; });
  if (type > 0) State().keys.push_back({record, FoldType(type), modifiers & kKeyModifiers});
  SetMenuItemKeyText(menu, position, MenuKeyText(record).c_str());
  ShowQuitKey();
}

MenuKeyHit FindMenuKey(int type, uint32_t modifiers, bool any) {
  SearchedArrays searched;
  for (XwMenuItem* title = BarArray(); title && title->text; ++title) {
    if (title->flags & (XWM_DISABLED | XWM_HIDDEN)) continue;
    auto* items = reinterpret_cast<XwMenuItem*>(title->id);
    XwMenuItem* record = FindKey(items, type, modifiers, any, &searched);
    if (record) return {record, items, BuiltMenu(items)};
  }
  return {};
}

bool MenuBarHasKey(int type, uint32_t modifiers) {
  SearchedArrays searched;
  for (XwMenuItem* title = BarArray(); title && title->text; ++title)
    if (FindKey(reinterpret_cast<XwMenuItem*>(title->id), type, modifiers, true, &searched))
      return true;
  return false;
}

void DropMenus() {
  for (const BuiltEntry& e : State().built) DisposeMenu(e.menu);
  State() = MenuState();
}
