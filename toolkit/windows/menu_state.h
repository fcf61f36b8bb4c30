// What the files of menus share.
#pragma once
#include <string>
#include <vector>

#include "toolkit/windows/menus.h"

// The id of a leaf is a command, that of others the array of a sub-menu.
bool IsMenuLeaf(const XwMenuItem& record);
// The arrays that a search has visited: an array may contain itself, or be in many places.
struct SearchedArrays {
  std::vector<const XwMenuItem*> arrays;
  int depth = 0;
  // Whether this one is still to be searched. Each true is followed by a Leave.
  bool Enter(const XwMenuItem* items);
  void Leave() { --depth; }
};
// As its menu shows it, UTF-8.
std::string MenuItemText(const XwMenuItem& record);

// The menus of the bar that were made of arrays: null where there is none, or it has ended.
platform::MenuRef BuiltMenu(const XwMenuItem* items);
void NoteBuilt(XwMenuItem* items, platform::MenuRef menu);
// Of a title without items.
platform::MenuRef EmptyMenu(XwMenuItem* title);
// The array that the bar was made of.
void SetBarArray(XwMenuItem* bar);
XwMenuItem* BarArray();

// "Ctrl+O"; "" where the record has no key.
std::string MenuKeyText(const XwMenuItem* record);
// Control+Q quits, unless the bar gives it to an item.
void ShowQuitKey();
