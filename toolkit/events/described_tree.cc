#include "toolkit/events/described_tree.h"

#include <algorithm>
#include <cstdio>

#include "platform/access/access.h"
#include "platform/controls/controls.h"
#include "platform/lists/lists.h"
#include "platform/menus/menus.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/events/loop.h"
#include "toolkit/target/clip.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/described.h"
#include "toolkit/windows/tips.h"

using namespace platform;

namespace {

ControlRef NativeControl(const XwWindow* control) {
  return static_cast<ControlRef>(control->platform);
}

// What was made directly before a control, in the same parent, where that is a label.
std::string NameFromLabel(const XwWindow* control) {
  const XwWindow* before = control->previous;
  while (before && before->parent != control->parent) before = before->previous;
  if (!before || before->kind != XWK_LABEL || before->style & XWC_ICON) return "";
  uint64_t serial;
  Description label;
  return DescribeControl(NativeControl(before), &serial, &label) ? label.name : "";
}

void DescribeRecord(const XwWindow* w, DescribedNode* node) {
  if (!DescribeControl(NativeControl(w), &node->serial, &node->what)) return;
  Description& d = node->what;
  if (w->kind == XWK_COLOR) {
    char value[8];
    snprintf(value, sizeof value, "#%06X", ColorToRgb(w->value) & 0xFFFFFF);
    d.value = value;
  }
  if (w->kind == XWK_BUTTON && w->style & XWC_MENU) d.state |= kHasMenu;
  if (w->kind == XWK_BUTTON && w->style & (XWC_ICON | XWC_HEADER) &&
      (w->value == 1 || w->value == 2))
    d.state |= kIsChecked;
  if (d.name.empty() && w->kind != XWK_LABEL) d.name = NameFromLabel(w);
  if (w->kind == XWK_LIST) DescribeListRows(NativeControl(w), &node->children);
}

void DescribeSub(const XwWindow* w, DescribedNode* node) {
  node->serial = w->serial;
  Description& d = node->what;
  d.role = ObjectRole::kPane;
  uint64_t serial;
  Description window;
  DescribeWindow(NativeWindow(w), &serial, &window);
  const Point origin = ContentOrigin(w);
  d.bounds = Offset({origin.x, origin.y, origin.x + w->width, origin.y + w->height},
                    window.bounds.left, window.bounds.top);
  d.state = kIsEnabled;
  bool shown = window.state & kIsShown;
  for (const XwWindow* at = w; at && !IsTopLevel(at); at = at->parent)
    shown = shown && at->flags & XW_SHOWN;
  if (shown) d.state |= kIsShown;
}

// In the order of creation, which Tab follows.
std::vector<XwWindow*> ChildrenOf(const XwWindow* w) {
  std::vector<XwWindow*> children;
  for (int i = 0; i < w->child_count; ++i)
    if (w->children[i]) children.push_back(w->children[i]);
  std::sort(children.begin(), children.end(),
            [](const XwWindow* a, const XwWindow* b) { return a->serial < b->serial; });
  return children;
}

DescribedNode FromItem(const DescribedMenuItem& i, ObjectRole role) {
  DescribedNode node;
  node.serial = i.serial;
  node.what = {i.separator ? ObjectRole::kSeparator : role, i.text, i.key, 0, 0, i.bounds};
  Description& d = node.what;
  if (!i.bounds.empty()) d.state |= kIsShown;
  if (i.enabled) d.state |= kIsEnabled;
  if (i.checked) d.state |= kIsChecked;
  if (i.selected) d.state |= kIsFocused;
  if (!i.items.empty()) d.state |= kHasMenu;
  if (role == ObjectRole::kMenuItem && i.enabled && !i.opens) d.actions |= kActionPress;
  for (const DescribedMenuItem& sub : i.items)
    node.children.push_back(FromItem(sub, ObjectRole::kMenuItem));
  return node;
}

// The bar goes before the content of the first window, an open pop-up after it.
void AddMenus(DescribedNode* window) {
  static const uint64_t bar_serial = TakeSerial(), popup_serial = TakeSerial();
  DescribedNode bar;
  bar.serial = bar_serial;
  bar.what.role = ObjectRole::kMenuBar;
  bar.what.state = window->what.state & (kIsShown | kIsEnabled);
  for (const DescribedMenuItem& title : DescribeMenuBar())
    bar.children.push_back(FromItem(title, ObjectRole::kMenu));
  window->children.insert(window->children.begin(), bar);
  DescribedNode popup;
  popup.serial = popup_serial;
  popup.what.role = ObjectRole::kMenu;
  popup.what.state = kIsShown | kIsEnabled;
  for (const DescribedMenuItem& i : DescribeOpenPopUp())
    popup.children.push_back(FromItem(i, ObjectRole::kMenuItem));
  if (!popup.children.empty()) window->children.push_back(popup);
}

DescribedNode Describe(XwWindow* w) {
  DescribedNode node;
  if (IsTopLevel(w))
    DescribeWindow(NativeWindow(w), &node.serial, &node.what);
  else if (IsSub(w))
    DescribeSub(w, &node);
  else
    DescribeRecord(w, &node);
  node.help = TipOf(w, 0);
  // A control with only a picture has its tip as its name.
  if (IsControl(w) && node.what.name.empty()) node.what.name = node.help;
  AddDescribed(w, &node);
  for (XwWindow* c : ChildrenOf(w)) node.children.push_back(Describe(c));
  if (w == W_Start) AddMenus(&node);
  return node;
}

void DescribeAll(std::vector<DescribedNode>* roots) {
  for (XwWindow* w : ChildrenOf(W_Root)) roots->push_back(Describe(w));
}

XwWindow* FindControl(uint64_t serial) {
  for (XwWindow* w = W_Start; w; w = w->next) {
    uint64_t found;
    Description d;
    if (IsLive(w) && IsControl(w) && DescribeControl(NativeControl(w), &found, &d) &&
        found == serial)
      return w;
  }
  return nullptr;
}

// What a press or a step reports is sent, since no dispatch is under way that would deliver it.
template <typename Function>
bool Operate(Function operate) {
  const XwEvent before = Inp;
  Inp.type = 0;
  const bool done = operate();
  const XwEvent report = Inp;
  Inp = before;
  if (report.type) XwSendEvent(report.window, report.type, report.item, report.value, 0);
  return done;
}

bool PressRow(uint64_t serial) {
  TargetScope scope;
  return Operate([serial] {
    for (XwWindow* w = W_Start; w; w = w->next)
      if (IsLive(w) && w->kind == XWK_LIST && PressListRow(NativeControl(w), serial)) return true;
    return false;
  });
}

// Of a pop-up, or of the bar.
bool PressItem(uint64_t serial) {
  if (DescribeOpenPopUp().empty() && ModalKeepsOut(W_Start)) return false;
  TargetScope scope;
  return ChooseDescribedItem(serial);
}

bool Act(uint64_t serial, uint32_t action) {
  XwWindow* control = FindControl(serial);
  if (!control) return action == kActionPress && (PressRow(serial) || PressItem(serial));
  uint64_t found;
  Description d;
  DescribeControl(NativeControl(control), &found, &d);
  // What a user can do at this moment.
  constexpr uint32_t kUsable = kIsShown | kIsEnabled;
  if ((d.state & kUsable) != kUsable || ModalKeepsOut(TopLevel(control))) return false;
  TargetScope scope;
  if (action & d.actions & (kActionPress | kActionIncrease | kActionDecrease))
    Operate([=] {
      if (action == kActionPress)
        PressControl(NativeControl(control));
      else
        StepControl(NativeControl(control), action == kActionIncrease);
      return true;
    });
  else if (action == kActionFocus)
    SetKeyboardFocus(NativeWindow(control), NativeControl(control), 1);
  else
    return false;
  return true;
}

// Programs describe their content while they draw it, so the first listener causes a redraw.
void Heard(bool is_heard) {
  if (!is_heard) return DropDescribed();
  for (XwWindow* w : ChildrenOf(W_Root))
    if (IsLive(w) && IsTopLevel(w))
      InvalidateWindow(NativeWindow(w), {0, 0, w->width, w->height}, true);
}

constexpr TreeSource kSource = {DescribeAll, Act, Heard};

}  // namespace

void DescribeWindows() {
  SetTreeSource(&kSource);
}

void XwDescribeControl(XwWindow* control, const char* name) {
  if (CheckWindow(control) && IsControl(control))
    SetControlDescription(NativeControl(control), name);
}
