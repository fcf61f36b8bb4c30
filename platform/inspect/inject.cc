#include "platform/inspect/inject.h"

#include <sstream>

#include "platform/events/clock.h"
#include "platform/events/raw_event.h"
#include "platform/text/characters.h"
#include "platform/text/utf8.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr uint32_t kTab = 0xFF09, kBackTab = 0xFE20, kReturn = 0xFF0D, kF1 = 0xFFBE;

struct KeyName {
  const char* name;
  uint32_t keysym;
};
constexpr KeyName kKeys[] = {
    {"BackSpace", 0xFF08}, {"Tab", kTab},       {"Return", kReturn},   {"Escape", 0xFF1B},
    {"Home", 0xFF50},      {"Left", 0xFF51},    {"Up", 0xFF52},        {"Right", 0xFF53},
    {"Down", 0xFF54},      {"Page_Up", 0xFF55}, {"Page_Down", 0xFF56}, {"End", 0xFF57},
    {"Insert", 0xFF63},    {"Help", 0xFF6A},    {"Enter", 0xFF8D},     {"Delete", 0xFFFF},
    {"Space", ' '},
};

struct Key {
  uint32_t keysym = 0, unicode = 0;
};

Key KeyOf(char32_t c) {
  if (c == '\t') return {kTab, 0};
  if (c == '\n') return {kReturn, 0};
  return {c < 0x100 ? uint32_t(c) : 0x1000000u | uint32_t(c), uint32_t(c)};
}

bool FindKey(const std::string& name, Key* out) {
  for (const KeyName& k : kKeys) {
    if (name != k.name) continue;
    *out = {k.keysym, k.keysym < 0x100 ? k.keysym : 0};
    return true;
  }
  for (uint32_t f = 1; f <= 13; ++f) {
    if (name != "F" + std::to_string(f)) continue;
    *out = {kF1 + f - 1, 0};
    return true;
  }
  const char* at = name.c_str();
  const char32_t c = NextUtf8(&at);
  *out = KeyOf(c);
  return c >= ' ' && c != 0x7F && !*at;
}

RawEvent Report(RawEvent::Type type, WindowRef w, uint32_t modifiers) {
  RawEvent raw;
  raw.type = type;
  raw.window = w;
  raw.time = GetCurrentEventTime();
  raw.modifiers = modifiers;
  return raw;
}

void Post(RawEvent::Type type, WindowRef w, uint32_t modifiers) {
  PostRawEvent(Report(type, w, modifiers));
}

void PostKey(WindowRef w, Key key, uint32_t modifiers) {
  for (RawEvent::Type type : {RawEvent::kKeyDown, RawEvent::kKeyUp}) {
    RawEvent raw = Report(type, w, modifiers);
    raw.keysym = raw.base_keysym = raw.keycode = key.keysym;
    if (key.keysym == kTab && modifiers & shiftKey) raw.keysym = kBackTab;
    raw.unicode = key.unicode;
    PostRawEvent(raw);
  }
}

// The pixel in the middle of the logical one.
float PixelIn(int logical, double scale) {
  return float((DeviceEdge(logical, scale) + DeviceEdge(logical + 1, scale)) / 2);
}

}  // namespace

bool ParseModifiers(const std::string& words, uint32_t* out) {
  std::istringstream in(words);
  *out = 0;
  for (std::string word; in >> word;) {
    if (word == "control")
      *out |= controlKey;
    else if (word == "shift")
      *out |= shiftKey;
    else if (word == "alt")
      *out |= optionKey;
    else if (word == "super")
      *out |= cmdKey;
    else
      return false;
  }
  return true;
}

WindowRef WindowAt(uint64_t serial, Point where) {
  WindowRef found = nullptr;
  for (WindowRef w : WindowList()) {
    if (!w->visible) continue;
    Rect whole = w->content;
    whole.top -= w->menu_bar_height;
    if (w->parent && whole.contains(where)) return w;
    if (w->object.serial == serial) found = w;
  }
  return found;
}

// Docked windows are never given it.
void InjectFocus(WindowRef w) {
  if (!w->focused && !(w->state & kStateDocked)) Post(RawEvent::kFocusIn, w, 0);
}

WindowRef KeyWindow() {
  WindowRef front = nullptr;
  for (WindowRef w : WindowList()) {
    if (!w->visible || w->parent || (w->state & kStateDocked)) continue;
    if (w->focused) return w;
    if (!front) front = w;
  }
  if (front) InjectFocus(front);
  return front;
}

WindowRef FrameOf(WindowRef w) {
  while (w->parent && IsValidWindow(w->parent)) w = w->parent;
  return w;
}

void InjectClick(WindowRef w, Point where, int button, int count, uint32_t modifiers) {
  InjectFocus(FrameOf(w));
  if (modifiers) Post(RawEvent::kModifiers, w, modifiers);
  const double scale = w->surface.scale;
  RawEvent raw = Report(RawEvent::kMotion, w, modifiers);
  raw.x = PixelIn(where.x - w->content.left, scale);
  raw.y = PixelIn(where.y - w->content.top + w->menu_bar_height, scale);
  const DeviceRect corner = DeviceBounds(*w);
  raw.root_x = raw.x + float(corner.left);
  raw.root_y = raw.y + float(corner.top);
  raw.under = w;
  PostRawEvent(raw);
  raw.button = uint8_t(button);
  for (int i = 0; i < count; ++i)
    for (RawEvent::Type type : {RawEvent::kPress, RawEvent::kRelease}) {
      raw.type = type;
      PostRawEvent(raw);
    }
  if (modifiers) Post(RawEvent::kModifiers, w, 0);
}

bool IsKey(const std::string& name) {
  Key key;
  return FindKey(name, &key);
}

bool IsTypable(const std::string& utf8) {
  for (const char* at = utf8.c_str(); *at;) {
    const char32_t c = NextUtf8(&at);
    if ((c < ' ' && c != '\t' && c != '\n') || c == 0x7F) return false;
  }
  return true;
}

void InjectKey(WindowRef w, const std::string& name, uint32_t modifiers) {
  Key key;
  if (!FindKey(name, &key)) return;
  if (modifiers) Post(RawEvent::kModifiers, w, modifiers);
  PostKey(w, key, modifiers);
  if (modifiers) Post(RawEvent::kModifiers, w, 0);
}

size_t InjectText(WindowRef w, const char* utf8, int most) {
  const char* at = utf8;
  for (int i = 0; i < most && *at; ++i) PostKey(w, KeyOf(NextUtf8(&at)), 0);
  return size_t(at - utf8);
}

}  // namespace platform
