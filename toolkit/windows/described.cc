#include "toolkit/windows/described.h"

#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

#include "platform/text/utf8.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/state.h"
#include "toolkit/windows/boxes.h"
#include "toolkit/windows/tips.h"

using namespace platform;
using toolkit::state;

static_assert(XWA_PANE == int(ObjectRole::kPane) && XWA_BUTTON == int(ObjectRole::kButton) &&
                  XWA_SLIDER == int(ObjectRole::kSlider) && XWA_LIST == int(ObjectRole::kList) &&
                  XWA_TEXT_FIELD == int(ObjectRole::kTextField) &&
                  XWA_PROGRESS == int(ObjectRole::kProgress) &&
                  XW_A_ROLES == int(ObjectRole::kCount),
              "roles as the described tree numbers them");
static_assert(XWT_FOCUSABLE == int(kIsFocusable) && XWT_FOCUSED == int(kIsFocused) &&
                  XWT_CHECKED == int(kIsChecked) && XWT_MIXED == int(kIsMixed) &&
                  XWT_PRESSED == int(kIsPressed) && XWT_DEFAULT == int(kIsDefault) &&
                  XWT_HAS_MENU == int(kHasMenu) && XWT_SELECTED == int(kIsSelected) &&
                  XWT_READ_ONLY == int(kIsReadOnly) && XWT_EXPANDED == int(kIsExpanded),
              "states as the described tree has them");

namespace {

constexpr uint32_t kGivenStates = XWT_FOCUSABLE | XWT_FOCUSED | XWT_CHECKED | XWT_MIXED |
                                  XWT_PRESSED | XWT_DEFAULT | XWT_HAS_MENU | XWT_SELECTED |
                                  XWT_READ_ONLY | XWT_EXPANDED;

struct Item {
  uint64_t serial = 0;
  ObjectRole role{};
  uint32_t state = 0;  // ObjectState
  std::string name, value;
  Rect box;  // in the window's own coordinates
};

}  // namespace

namespace toolkit {

struct Described {
  // By position, which is the order of the list.
  struct Window {
    std::optional<Item> self;
    std::map<int, Item> items, before;
  };
  std::unordered_map<const XwWindow*, Window> windows;
};

}  // namespace toolkit

namespace {

using toolkit::Described;

Described::Window* Find(const XwWindow* w) {
  if (!state.described) return nullptr;
  const auto at = state.described->windows.find(w);
  return at == state.described->windows.end() ? nullptr : &at->second;
}

void EndItems(std::map<int, Item>* items) {
  std::map<int, Item> ended;
  ended.swap(*items);
  for (const auto& [position, item] : ended) NoticeChange(item.serial, Change::kEnded);
}

// That of the window's node.
uint64_t SerialOf(const XwWindow* w) {
  uint64_t serial = w->serial;
  Description d;
  if (IsTopLevel(w)) DescribeWindow(NativeWindow(w), &serial, &d);
  return serial;
}

void NoticeDifference(uint64_t serial, const Item& was, const Item& now) {
  if (was.value != now.value) NoticeChange(serial, Change::kValue);
  if (was.state != now.state) NoticeChange(serial, Change::kState);
  if (was.box != now.box) NoticeChange(serial, Change::kBounds);
}

void DescribeSelf(const XwWindow* w, std::optional<Item>* self, Item item) {
  const uint64_t serial = SerialOf(w);
  const Item was = self->value_or(Item());
  if (was.name != item.name || was.role != item.role) NoticeChange(serial, Change::kName);
  NoticeDifference(serial, was, item);
  *self = std::move(item);
}

// The item takes the place of the one that was there, and its serial if it is the same thing.
void DescribeItem(const XwWindow* w, Item* place, Item item) {
  if (place->serial && place->role == item.role && place->name == item.name) {
    item.serial = place->serial;
    NoticeDifference(item.serial, std::exchange(*place, item), item);
    return;
  }
  if (place->serial) NoticeChange(place->serial, Change::kEnded);
  item.serial = TakeSerial();
  *place = std::move(item);
  NoticeChange(SerialOf(w), Change::kChildren);
}

// Where the item of a position stands, in the list that is made now.
Item* PlaceOf(Described::Window* all, int position) {
  const auto now = all->items.find(position);
  if (now != all->items.end()) return &now->second;
  Item& place = all->items[position];
  if (const auto was = all->before.find(position); was != all->before.end()) {
    place = std::move(was->second);
    all->before.erase(was);
  }
  return &place;
}

DescribedNode NodeOf(const Item& item, const Description& window) {
  DescribedNode node;
  node.serial = item.serial;
  Description& d = node.what;
  d.role = item.role;
  d.name = item.name;
  d.value = item.value;
  d.state = item.state;
  d.bounds = Offset(item.box, window.bounds.left, window.bounds.top);
  if (window.state & kIsShown && !Intersect(d.bounds, window.bounds).empty()) d.state |= kIsShown;
  return node;
}

}  // namespace

void AddDescribed(const XwWindow* w, DescribedNode* node) {
  const Described::Window* all = Find(w);
  if (!all) return;
  Description& window = node->what;
  if (const std::optional<Item>& self = all->self) {
    if (IsSub(w)) window.role = self->role;
    if (!self->name.empty()) window.name = self->name;
    window.value = self->value;
    if (!(self->state & kIsEnabled)) window.state &= ~uint32_t{kIsEnabled};
    window.state |= self->state & kGivenStates;
  }
  for (const auto& [position, item] : all->items) {
    node->children.push_back(NodeOf(item, window));
    node->children.back().help = TipOf(w, position);
  }
}

void BeginDescribed(const XwWindow* w) {
  Described::Window* all = Find(w);
  if (!all) return;
  EndItems(&all->before);
  all->before.swap(all->items);
}

void EndDescribed(const XwWindow* w) {
  if (Described::Window* all = Find(w)) EndItems(&all->before);
}

void ForgetDescribed(const XwWindow* w) {
  Described::Window* all = Find(w);
  if (!all) return;
  EndItems(&all->before);
  EndItems(&all->items);
  state.described->windows.erase(w);
}

void DropDescribed() {
  delete state.described;
  state.described = nullptr;
}

// Those between are the toolkit's own: menus and what stands in them.
static bool IsGivenRole(int role) {
  return (role >= XWA_PANE && role <= XWA_LABEL) || (role >= XWA_LIST && role < XW_A_ROLES);
}

void XwDescribe(int position, int role, uint32_t states, const char* name, const char* value) {
  if (!tree_is_heard) return;
  XwWindow* w = XW;
  if (!CheckWindow(w) || IsControl(w) || !IsGivenRole(role)) return;
  if (position == -1) position = BoxCount(w);
  Item item;
  if (position != 0 && !BoxAt(w, position, &item.box)) return;
  item.role = ObjectRole(role);
  item.state = states & kGivenStates;
  if (!(states & XWT_DISABLED)) item.state |= kIsEnabled;
  if (name) item.name = ValidUtf8(name);
  if (value) item.value = ValidUtf8(value);
  if (!state.described) state.described = new Described;
  Described::Window& all = state.described->windows[w];
  if (position == 0)
    DescribeSelf(w, &all.self, std::move(item));
  else
    DescribeItem(w, PlaceOf(&all, position), std::move(item));
}
