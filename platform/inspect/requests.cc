#include "platform/inspect/requests.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "platform/graphics/png.h"
#include "platform/input/record.h"
#include "platform/inspect/inject.h"
#include "platform/inspect/json.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr int kPatience = 10000, kLongestWait = 3600 * 1000;  // milliseconds
constexpr int kMostClicks = 3, kMostButtons = 5, kMostNumber = 1000000;

struct Request {
  std::string what, key, text, modifiers;
  NodeWait wait;  // with the address
  int button = 1, count = 1;
};

// Removes the known fields from the object; a field that is left has no meaning in this request.
class Fields {
 public:
  explicit Fields(JsonObject* object) : object_(*object) {}
  bool Text(const char* key, std::string* out) {
    JsonValue v;
    if (!Take(key, &v)) return false;
    if (v.kind != JsonValue::kText) wrong_ = key;
    *out = std::move(v.text);
    return true;
  }
  void Number(const char* key, int least, int most, int* out) {
    JsonValue v;
    if (!Take(key, &v)) return;
    const bool good = v.kind == JsonValue::kNumber && v.number >= least && v.number <= most &&
                      v.number == std::trunc(v.number);
    if (good)
      *out = int(v.number);
    else
      wrong_ = key;
  }
  void Truth(const char* key, bool* out) {
    JsonValue v;
    if (!Take(key, &v)) return;
    if (v.kind != JsonValue::kBool) wrong_ = key;
    *out = v.truth;
  }
  // True, with the field's name, when one has a wrong value or no meaning in this request.
  bool Wrong(std::string* key) const {
    *key = wrong_ || object_.empty() ? wrong_.value_or("") : object_.begin()->first;
    return wrong_ || !object_.empty();
  }

 private:
  bool Take(const char* key, JsonValue* out) {
    const auto at = object_.find(key);
    if (at == object_.end()) return false;
    *out = std::move(at->second);
    object_.erase(at);
    return true;
  }
  JsonObject& object_;
  std::optional<std::string> wrong_;
};

// False, with the field, when one has a wrong value or no meaning in this request.
bool ReadRequest(JsonObject* object, Request* r, std::string* wrong) {
  Fields fields(object);
  fields.Text("do", &r->what);
  Address& a = r->wait.address;
  if (r->what != "tree") {
    fields.Text("role", &a.role);
    a.has_name = fields.Text("name", &a.name);
    if (!a.empty()) fields.Number("n", 1, kMostNumber, &a.number);
  }
  if (r->what == "click") {
    fields.Number("button", 1, kMostButtons, &r->button);
    fields.Number("count", 1, kMostClicks, &r->count);
  }
  if (r->what == "click" || r->what == "key") fields.Text("modifiers", &r->modifiers);
  if (r->what == "key") fields.Text("key", &r->key);
  if (r->what == "type") fields.Text("text", &r->text);
  if (r->what == "wait") {
    r->wait.ms = kPatience;
    r->wait.has_value = fields.Text("value", &r->wait.value);
    fields.Truth("gone", &r->wait.gone);
    fields.Number("ms", 0, kLongestWait, &r->wait.ms);
  }
  return !fields.Wrong(wrong);
}

std::string Success() {
  return "{\"ok\":true}";
}

std::string WithNode(const DescribedNode& node) {
  std::string out = "{\"ok\":true,\"node\":";
  PutNode(&out, node, false);
  return out + '}';
}

std::string Several(const std::vector<Found>& found, const Address& address) {
  std::string out = "{\"ok\":false,\"error\":";
  PutJsonText(&out, "there is more than one " + Words(address));
  out += ",\"nodes\":[";
  for (const Found& f : found) {
    if (&f != &found.front()) out += ',';
    PutNode(&out, *f.node, false);
  }
  return out + "]}";
}

// The node with this address; null, with the answer, when there is none or more than one.
const Found* Choose(const std::vector<Found>& found, const Address& a, std::string* failure) {
  if (a.number == 0 && found.size() > 1) {
    *failure = Several(found, a);
    return nullptr;
  }
  const size_t which = a.number ? size_t(a.number - 1) : 0;
  if (which < found.size()) return &found[which];
  *failure =
      Failure("no " + Words(a) + (a.number ? " #" + std::to_string(a.number) : "") + " is shown");
  return nullptr;
}

// The tree of this moment, and what the request means in it.
struct Target {
  std::vector<DescribedNode> roots = DescribeTree();
  std::vector<Found> found;
  const Found* node = nullptr;
  Rect part;  // of it that shows
  WindowRef window = nullptr;

  Point middle() const { return {(part.left + part.right) / 2, (part.top + part.bottom) / 2}; }
};

// "" when the node exists and some of it shows.
std::string Aim(const Address& address, Target* t) {
  std::string failure;
  t->found = FindNodes(t->roots, address);
  t->node = Choose(t->found, address, &failure);
  if (!t->node) return failure;
  t->part = VisiblePart(*t->node);
  const DescribedNode& root = t->node->above.empty() ? *t->node->node : *t->node->above.front();
  if (!t->part.empty()) t->window = WindowAt(root.serial, t->middle());
  return t->window ? "" : Failure(Words(address) + " is out of sight");
}

// Whether the program can take input at all, for requests without an address too.
std::string CheckInput() {
  return Replaying() ? Failure("a recording is being played back") : "";
}

std::string Click(const Request& r, const Address& address, uint32_t modifiers) {
  Target t;
  if (std::string failure = Aim(address, &t); !failure.empty()) return failure;
  if (!(t.node->node->what.state & kIsEnabled)) return Failure(Words(address) + " is disabled");
  InjectClick(t.window, t.middle(), r.button, r.count, modifiers);
  return WithNode(*t.node->node);
}

// The window that keys go to. An addressed node without the focus gets it by a click, a window by
// a report of the desktop.
std::string AimKeys(const Address& address, WindowRef* out) {
  if (address.empty()) {
    *out = KeyWindow();
    return *out ? "" : Failure("no window takes keys");
  }
  Target t;
  if (std::string failure = Aim(address, &t); !failure.empty()) return failure;
  const Description& d = t.node->node->what;
  *out = FrameOf(t.window);
  if (d.role == ObjectRole::kWindow) {
    InjectFocus(*out);
  } else if (!(d.state & kIsFocused)) {
    if (!(d.state & kIsEnabled)) return Failure(Words(address) + " is disabled");
    InjectClick(t.window, t.middle(), 1, 1, 0);
  }
  return "";
}

// The keys come once the node has the keyboard, and what its click has brought about is handled.
void Type(Request* r, uint32_t modifiers, Answer* answer) {
  WindowRef w = nullptr;
  if (r->what == "key" && !IsKey(r->key))
    answer->line = Failure("no key is called \"" + r->key + '"');
  else if (!IsTypable(r->text))
    answer->line = Failure("the text has characters that no key types");
  else
    answer->line = AimKeys(r->wait.address, &w);
  if (!answer->line.empty()) return;
  answer->typing = {w, w->object.serial, std::move(r->key), modifiers, std::move(r->text)};
}

// The pixels of a part of the window's buffer; global, logical.
std::string Picture(const Window& w, const Rect& part) {
  const Surface& s = w.surface;
  if (!s.pixels) return Failure("the window has no picture");
  auto x = [&](int at) { return std::clamp(DeviceEdge(at - w.content.left, s.scale), 0, s.width); };
  auto y = [&](int at) {
    return std::clamp(DeviceEdge(at - w.content.top + w.menu_bar_height, s.scale), 0, s.height);
  };
  const DeviceRect r{x(part.left), y(part.top), x(part.right), y(part.bottom)};
  if (r.empty()) return Failure("nothing of it shows");
  const std::string png =
      EncodePng(s.pixels + int64_t(r.top) * s.stride + r.left, r.width(), r.height(), s.stride);
  std::string out = "{\"ok\":true,\"width\":" + std::to_string(r.width()) +
                    ",\"height\":" + std::to_string(r.height()) + ",\"png\":";
  PutJsonBytes(&out, png);
  return out + '}';
}

// Without an address: the first window, with its menu bar.
std::string Shoot(const Address& address) {
  if (!address.empty()) {
    Target t;
    if (std::string failure = Aim(address, &t); !failure.empty()) return failure;
    return Picture(*t.window, t.part);
  }
  WindowRef first = MenuBarWindow();
  if (!first || !first->visible) return Failure("the first window is not shown");
  Rect whole = first->content;
  whole.top -= first->menu_bar_height;
  return Picture(*first, whole);
}

std::string Tree() {
  std::string out = "{\"ok\":true,\"tree\":";
  PutNodes(&out, DescribeTree());
  return out + '}';
}

Answer Obey(Request& r) {
  Answer answer;
  const Address& address = r.wait.address;
  uint32_t modifiers = 0;
  if (r.what == "tree") {
    answer.line = Tree();
  } else if (r.what == "shot") {
    answer.line = Shoot(address);
  } else if (r.what == "wait") {
    answer.line = LookAt(r.wait, false);
    if (answer.line.empty()) answer.wait = r.wait;
  } else if (!ParseModifiers(r.modifiers, &modifiers)) {
    answer.line = Failure("no modifiers: " + r.modifiers);
  } else if (answer.line = CheckInput(); !answer.line.empty()) {
    return answer;
  } else if (r.what == "click") {
    answer.line = Click(r, address, modifiers);
  } else {
    Type(&r, modifiers, &answer);
  }
  return answer;
}

bool IsRequest(const std::string& what) {
  for (const char* known : {"tree", "click", "key", "type", "wait", "shot"})
    if (what == known) return true;
  return false;
}

}  // namespace

std::string Failure(const std::string& what) {
  std::string out = "{\"ok\":false,\"error\":";
  PutJsonText(&out, what);
  return out + '}';
}

Answer Perform(std::string_view line) {
  Answer answer;
  JsonObject object;
  if (!ParseJsonObject(line, &object)) {
    answer.line = Failure("the line is no request");
    answer.hang_up = true;
    return answer;
  }
  Request r;
  std::string wrong;
  const bool good = ReadRequest(&object, &r, &wrong);
  const Address& a = r.wait.address;
  if (!IsRequest(r.what))
    answer.line = Failure("nothing to do is called \"" + r.what + '"');
  else if (!good)
    answer.line = Failure("the field \"" + wrong + "\" is wrong");
  else if (!a.role.empty() && !IsRoleName(a.role))
    answer.line = Failure("no role is called \"" + a.role + '"');
  else if (a.empty() && (r.what == "click" || r.what == "wait"))
    answer.line = Failure("a role or a name is needed");
  else
    return Obey(r);
  return answer;
}

std::string TypeOn(Typing* t) {
  constexpr int kAtOnce = 32;
  if (!IsValidWindow(t->window) || t->window->object.serial != t->serial)
    return Failure("the window has ended");
  if (!t->key.empty()) InjectKey(t->window, t->key, t->modifiers);
  t->at += InjectText(t->window, t->text.c_str() + t->at, kAtOnce);
  return t->at < t->text.size() ? "" : Success();
}

std::string LookAt(const NodeWait& wait, bool late) {
  const std::vector<DescribedNode> roots = DescribeTree();
  const std::vector<Found> found = FindNodes(roots, wait.address);
  std::string failure;
  const Found* node = Choose(found, wait.address, &failure);
  if (!node && found.size() > 1 && !wait.address.number) return failure;
  if (wait.gone) {
    if (!node) return Success();
  } else if (node && (!wait.has_value || node->node->what.value == wait.value)) {
    return WithNode(*node->node);
  }
  if (!late) return "";
  if (node && !wait.gone)
    return Failure(Words(wait.address) + " has the value \"" + node->node->what.value + '"');
  return node ? Failure(Words(wait.address) + " is still there") : failure;
}

}  // namespace platform
