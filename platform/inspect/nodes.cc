#include "platform/inspect/nodes.h"

#include <algorithm>
#include <iterator>

#include "platform/inspect/json.h"

namespace platform {
namespace {

constexpr const char* kRoles[] = {
    "window",       "pane",       "button",        "menu-button", "check-box",
    "radio-button", "color-well", "column-header", "slider",      "scroll-bar",
    "label",        "menu-bar",   "menu",          "menu-item",   "separator",
    "list",         "row",        "pop-up-button", "text-field",  "table",
    "cell",         "group",      "picture",       "status",      "progress",
};
static_assert(std::size(kRoles) == size_t(ObjectRole::kCount), "a name for each role");

// In the order of their bits.
constexpr const char* kStates[] = {"shown",    "enabled",   "focusable", "focused", "checked",
                                   "mixed",    "pressed",   "default",   "active",  "has-menu",
                                   "selected", "read-only", "expanded"};
constexpr const char* kActions[] = {"press", "focus", "increase", "decrease"};

const char* RoleName(ObjectRole role) {
  return kRoles[size_t(role)];
}

bool Has(const Description& d, const Address& a) {
  return d.state & kIsShown && (a.role.empty() || a.role == RoleName(d.role)) &&
         (!a.has_name || a.name == d.name);
}

void Search(const DescribedNode& node, const Address& address, Found* way,
            std::vector<Found>* out) {
  if (Has(node.what, address)) {
    out->push_back(*way);
    out->back().node = &node;
  }
  way->above.push_back(&node);
  for (const DescribedNode& child : node.children) Search(child, address, way, out);
  way->above.pop_back();
}

bool IsOfMenu(ObjectRole role) {
  return role == ObjectRole::kMenuBar || role == ObjectRole::kMenu || role == ObjectRole::kMenuItem;
}

template <size_t N>
void PutBits(std::string* out, const char* key, uint32_t bits, const char* const (&names)[N]) {
  *out += std::string(",\"") + key + "\":[";
  bool first = true;
  for (size_t i = 0; i < N; ++i) {
    if (!(bits >> i & 1)) continue;
    if (!first) *out += ',';
    first = false;
    PutJsonText(out, names[i]);
  }
  *out += ']';
}

void PutNumber(std::string* out, const char* key, int64_t number) {
  *out += std::string(",\"") + key + "\":" + std::to_string(number);
}

}  // namespace

std::vector<Found> FindNodes(const std::vector<DescribedNode>& roots, const Address& address) {
  std::vector<Found> found;
  Found way{};
  for (const DescribedNode& root : roots) Search(root, address, &way, &found);
  return found;
}

Rect VisiblePart(const Found& found) {
  Rect part = found.node->what.bounds;
  bool of_menu = IsOfMenu(found.node->what.role);
  for (size_t i = found.above.size(); i-- > 0;) {
    const Description& d = found.above[i]->what;
    // Menus have windows of their own, and the bar lies above the content.
    of_menu = of_menu || IsOfMenu(d.role);
    if (!of_menu && !d.bounds.empty()) part = Intersect(part, d.bounds);
  }
  return part;
}

bool IsRoleName(const std::string& name) {
  return std::find(std::begin(kRoles), std::end(kRoles), name) != std::end(kRoles);
}

std::string Words(const Address& a) {
  std::string words = a.role.empty() ? "node" : a.role;
  if (a.has_name) words += " \"" + a.name + '"';
  return words;
}

void PutNode(std::string* out, const DescribedNode& node, bool deep) {
  const Description& d = node.what;
  *out += "{\"role\":";
  PutJsonText(out, RoleName(d.role));
  *out += ",\"name\":";
  PutJsonText(out, d.name);
  if (!d.value.empty()) {
    *out += ",\"value\":";
    PutJsonText(out, d.value);
  }
  if (!node.help.empty()) {
    *out += ",\"help\":";
    PutJsonText(out, node.help);
  }
  PutBits(out, "states", d.state, kStates);
  if (d.actions) PutBits(out, "actions", d.actions, kActions);
  PutNumber(out, "x", d.bounds.left);
  PutNumber(out, "y", d.bounds.top);
  PutNumber(out, "width", std::max(d.bounds.width(), 0));
  PutNumber(out, "height", std::max(d.bounds.height(), 0));
  if (d.minimum != d.maximum) {
    PutNumber(out, "minimum", d.minimum);
    PutNumber(out, "maximum", d.maximum);
  }
  PutNumber(out, "serial", int64_t(node.serial));
  if (deep && !node.children.empty()) {
    *out += ",\"children\":";
    PutNodes(out, node.children);
  }
  *out += '}';
}

void PutNodes(std::string* out, const std::vector<DescribedNode>& nodes) {
  *out += '[';
  for (const DescribedNode& n : nodes) {
    if (&n != &nodes.front()) *out += ',';
    PutNode(out, n, true);
  }
  *out += ']';
}

}  // namespace platform
