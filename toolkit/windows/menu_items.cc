// Items by their ids: the record changes first, the shown menu follows.
#include <algorithm>
#include <cstring>

#include "toolkit/windows/menu_state.h"

using namespace platform;

namespace {

constexpr XwValue kPointer = 0x10000;  // ids from here on are addresses
constexpr XwValue kDeepId = 65534;     // greater ones are looked for in the array alone
constexpr uint32_t kAttributes = XWM_DISABLED | XWM_HIDDEN;

struct Found {
  XwMenuItem* record = nullptr;
  XwMenuItem* items = nullptr;
  int position = 0;
};

Found Find(XwMenuItem* items, XwValue id, SearchedArrays* searched) {
  Found found;
  if (!searched->Enter(items)) return found;
  int position = 1;
  for (XwMenuItem* r = items; r->text && !found.record; ++r, ++position) {
    if (!IsMenuLeaf(*r) && id <= kDeepId)
      found = Find(reinterpret_cast<XwMenuItem*>(r->id), id, searched);
    if (!found.record && r->id == id) found = {r, items, position};
  }
  searched->Leave();
  return found;
}

Found Find(XwMenuItem* items, XwValue id) {
  SearchedArrays searched;
  return Find(items, id, &searched);
}

// The records of a radio range.
struct Range {
  XwMenuItem* items = nullptr;
  XwMenuItem* first = nullptr;
  XwMenuItem* end = nullptr;
};
Range RangeOf(XwMenuItem* items, XwValue first, XwValue last) {
  Range r;
  if (!items) return r;
  if (first == 0) {
    r.items = r.first = r.end = items;
    while (r.end->text) ++r.end;
    return r;
  }
  const Found found = Find(items, first);
  if (!found.record) return r;
  r.items = found.items;
  r.first = r.end = found.record;
  while (r.end->text)
    if (r.end++->id == last) break;
  return r;
}

}  // namespace

bool SearchedArrays::Enter(const XwMenuItem* items) {
  if (!items || depth >= kDeepestMenu) return false;
  if (std::find(arrays.begin(), arrays.end(), items) != arrays.end()) return false;
  arrays.push_back(items);
  ++depth;
  return true;
}

XwMenuItem* FindMenuItem(XwMenuItem* items, XwValue id, MenuRef* menu, int* position,
                         bool item_level) {
  *menu = nullptr;
  *position = 0;
  const Found found = Find(items, id);
  if (!found.record) return nullptr;
  if (id >= kPointer && !item_level && !IsMenuLeaf(*found.record)) {
    *menu = BuiltMenu(reinterpret_cast<XwMenuItem*>(id));
    return found.record;
  }
  *menu = BuiltMenu(found.items);
  *position = found.position;
  return found.record;
}

void XwEnableMenuItem(XwMenuItem* items, XwValue id, int enable) {
  MenuRef menu;
  int position;
  XwMenuItem* r = FindMenuItem(items, id, &menu, &position, false);
  if (!r) return;
  r->flags = enable ? r->flags & ~XWM_DISABLED : r->flags | XWM_DISABLED;
  enable ? EnableMenuItem(menu, position) : DisableMenuItem(menu, position);
}

void XwChangeMenuItemText(XwMenuItem* items, XwValue id, const char* text) {
  MenuRef menu;
  int position;
  XwMenuItem* r = text ? FindMenuItem(items, id, &menu, &position, true) : nullptr;
  if (!r) return;
  r->text = text;
  XwMenuItem plain = *r;
  plain.flags &= ~XWM_DOTS;
  SetMenuItemText(menu, position, MenuItemText(plain).c_str());
}

void XwChangeMenuItemFlags(XwMenuItem* items, XwValue id, int32_t flags) {
  MenuRef menu;
  int position;
  XwMenuItem* r = FindMenuItem(items, id, &menu, &position, true);
  if (!r) return;
  r->flags = (flags & ~XWM_BUILT) | (r->flags & XWM_BUILT);
  CheckMenuItem(menu, position, flags & XWM_CHECKED);
  const uint32_t set = uint32_t(flags) & kAttributes;
  ChangeMenuItemAttributes(menu, position, set, set ^ kAttributes);
}

void XwCheckMenuItem(XwMenuItem* items, XwValue id, int check) {
  MenuRef menu;
  int position;
  XwMenuItem* r = FindMenuItem(items, id, &menu, &position, true);
  if (!r) return;
  r->flags = check ? r->flags | XWM_CHECKED : r->flags & ~XWM_CHECKED;
  CheckMenuItem(menu, position, check);
}

void XwCheckMenuRadioItem(XwMenuItem* items, XwValue first, XwValue last, XwValue selected) {
  const Range range = RangeOf(items, first, last);
  MenuRef menu = BuiltMenu(range.items);
  int position = 1;
  for (XwMenuItem* r = range.first; r != range.end; ++r, ++position) {
    const bool on = r->id == selected;
    r->flags = on ? r->flags | XWM_CHECKED : r->flags & ~XWM_CHECKED;
    CheckMenuItem(menu, position, on);
  }
}

int XwGetMenuItemState(XwMenuItem* items, XwValue id) {
  const Found found = Find(items, id);
  return found.record && found.record->flags & XWM_CHECKED ? 1 : 0;
}

XwValue XwGetMenuRadioItem(XwMenuItem* items, XwValue first, XwValue last) {
  const Range range = RangeOf(items, first, last);
  for (XwMenuItem* r = range.first; r != range.end; ++r)
    if (r->flags & XWM_CHECKED) return r->id;
  return 0;
}

char* XwGetMenuItemText(XwMenuItem* items, XwValue id, char* buffer) {
  if (!buffer) return nullptr;
  *buffer = 0;
  const Found found = Find(items, id);
  if (!found.record) return nullptr;
  strcpy(buffer, found.record->text);
  return buffer;
}
