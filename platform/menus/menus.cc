#include "platform/menus/menus.h"

#include <algorithm>

#include "platform/access/access.h"
#include "platform/menus/menu.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr int kLargestPicture = 64;

void ReleaseRecord(void* record) {
  delete static_cast<Menu*>(record);
}

void Describe(const void* record, Description* out) {
  auto* m = static_cast<const Menu*>(record);
  *out = {ObjectRole::kMenu, m->title, "", m->disabled ? 0u : uint32_t{kIsEnabled}, 0, {}};
}

constexpr ObjectType kMenuType = {ObjectKind::kMenu, ReleaseRecord, Describe};

MenuItem* ItemOf(MenuRef m, int item) {
  return IsValidMenu(m) && item >= 1 && item <= int(m->items.size()) ? &m->items[size_t(item - 1)]
                                                                     : nullptr;
}

void Changed(MenuRef m, const MenuItem& item, Change what) {
  NoticeChange(item.serial, what);
  MenuChanged(m);
}

}  // namespace

bool MenuItem::enabled() const {
  return !(attributes & kMenuItemAttrDisabled) && !separator() &&
         !(IsValidMenu(sub) && sub->disabled);
}

MenuRef CreateNewMenu(int id) {
  auto* m = new Menu;
  m->object.type = &kMenuType;
  m->object.record = m;
  m->id = id;
  EnterObject(&m->object);
  return m;
}

void DisposeMenu(MenuRef m) {
  if (!IsValidMenu(m)) return;
  MenuEnds(m);
  ForgetInBar(m);
  NoticeChange(m->object.serial, Change::kEnded);
  EndObject(&m->object);
}

bool IsValidMenu(MenuRef m) {
  return IsLiveObject(reinterpret_cast<const Object*>(m)) &&
         m->object.type->kind == ObjectKind::kMenu;
}

EventTargetRef GetMenuEventTarget(MenuRef m) {
  return IsValidMenu(m) ? &m->object.target : nullptr;
}
int GetMenuID(MenuRef m) {
  return IsValidMenu(m) ? m->id : 0;
}

void SetMenuTitle(MenuRef m, const char* utf8) {
  if (!IsValidMenu(m)) return;
  m->title = ValidUtf8(utf8 ? utf8 : "");
  NoticeChange(m->object.serial, Change::kName);
  ForgetBarLayout();
}

int AppendMenuItemText(MenuRef m, const char* utf8) {
  if (!IsValidMenu(m)) return 0;
  MenuItem item;
  item.text = ValidUtf8(utf8 ? utf8 : "");
  item.serial = TakeSerial();
  m->items.push_back(std::move(item));
  NoticeChange(m->object.serial, Change::kChildren);
  MenuChanged(m);
  return int(m->items.size());
}

int CountMenuItems(MenuRef m) {
  return IsValidMenu(m) ? int(m->items.size()) : 0;
}

void SetMenuItemText(MenuRef m, int item, const char* utf8) {
  MenuItem* i = ItemOf(m, item);
  if (!i) return;
  i->text = ValidUtf8(utf8 ? utf8 : "");
  Changed(m, *i, Change::kName);
}

const char* GetMenuItemText(MenuRef m, int item) {
  const MenuItem* i = ItemOf(m, item);
  return i ? i->text.c_str() : "";
}

void ChangeMenuItemAttributes(MenuRef m, int item, uint32_t set, uint32_t clear) {
  MenuItem* i = ItemOf(m, item);
  if (!i) return;
  const uint32_t now = (i->attributes & ~clear) | set;
  if (now == i->attributes) return;
  i->attributes = now;
  Changed(m, *i, Change::kState);
}

static void Enable(MenuRef m, int item, bool enabled) {
  if (!IsValidMenu(m)) return;
  if (item == 0) {
    if (m->disabled == !enabled) return;
    m->disabled = !enabled;
    NoticeChange(m->object.serial, Change::kState);
    MenuChanged(m);
    ForgetBarLayout();
  } else {
    const uint32_t bit = kMenuItemAttrDisabled;
    ChangeMenuItemAttributes(m, item, enabled ? 0 : bit, enabled ? bit : 0);
  }
}
void EnableMenuItem(MenuRef m, int item) {
  Enable(m, item, true);
}
void DisableMenuItem(MenuRef m, int item) {
  Enable(m, item, false);
}
bool IsMenuItemEnabled(MenuRef m, int item) {
  if (!IsValidMenu(m) || m->disabled) return false;
  const MenuItem* i = ItemOf(m, item);
  return item == 0 || (i && i->enabled());
}

void CheckMenuItem(MenuRef m, int item, bool checked) {
  MenuItem* i = ItemOf(m, item);
  if (!i || i->checked == checked) return;
  i->checked = checked;
  Changed(m, *i, Change::kState);
}

void SetMenuItemCommandID(MenuRef m, int item, uint32_t command) {
  if (MenuItem* i = ItemOf(m, item)) i->command = command;
}

void SetMenuItemHierarchicalMenu(MenuRef m, int item, MenuRef sub) {
  MenuItem* i = ItemOf(m, item);
  if (!i) return;
  i->sub = IsValidMenu(sub) ? sub : nullptr;
  Changed(m, *i, Change::kChildren);
}

void SetMenuItemPicture(MenuRef m, int item, int w, int h, const uint8_t* pixels) {
  MenuItem* i = ItemOf(m, item);
  if (!i) return;
  const bool usable = pixels && w >= 1 && h >= 1 && w <= kLargestPicture && h <= kLargestPicture;
  i->picture_width = usable ? w : 0;
  i->picture_height = usable ? h : 0;
  i->picture.clear();
  if (usable) i->picture.assign(pixels, pixels + size_t(4) * size_t(w) * size_t(h));
  MenuChanged(m);
}

void SetMenuItemKeyText(MenuRef m, int item, const char* utf8) {
  MenuItem* i = ItemOf(m, item);
  if (!i) return;
  i->key = ValidUtf8(utf8 ? utf8 : "");
  Changed(m, *i, Change::kValue);
}

}  // namespace platform
