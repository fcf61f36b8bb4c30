// What the platform does by itself with a key.
#include <set>

#include "platform/controls/control.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr uint8_t kTab = 9, kReturn = 13, kEnter = 3, kEscape = 27;
constexpr uint32_t kAlt = optionKey | rightOptionKey;
constexpr uint32_t kControlOrCommand = cmdKey | controlKey | rightControlKey;

// The character that a key stands for, whatever is held with it.
char32_t LetterOfKey(const KeyFields& key) {
  const uint32_t s = key.base_keysym ? key.base_keysym : key.keysym;
  if ((s >= 0x20 && s < 0x7F) || (s >= 0xA0 && s <= 0xFF)) return FoldLetter(s);
  if ((s & 0xFF000000u) == 0x01000000u) return FoldLetter(s & 0xFFFFFF);
  const char* text = key.text;
  return *text ? FoldLetter(NextUtf8(&text)) : 0;
}

bool PressLetter(WindowControls& all, const Event& e) {
  const char32_t letter = LetterOfKey(e.key);
  if (!letter) return false;
  for (Control* c = all.first; c; c = c->next) {
    if (!CanTakeKeys(c, kKeysLetter) || LetterOf(c) != letter) continue;
    if (e.kind == kEventRawKeyDown) PressByKey(c);
    return true;
  }
  return false;
}

bool PressDefault(Control* c, const Event& e) {
  if (!c || !c->active || !IsControlVisible(c)) return false;
  if (e.kind == kEventRawKeyDown) PressByKey(c);
  return true;
}

bool TakeKey(WindowControls& all, const Event& e) {
  const uint32_t modifiers = e.key.modifiers;
  if (modifiers & kAlt) return !(modifiers & kControlOrCommand) && PressLetter(all, e);
  if (all.focus && all.focus->kind->key && all.focus->kind->key(all.focus, e)) return true;
  if (modifiers & kControlOrCommand) return false;
  switch (e.key.character) {
    case kTab:
      return all.tab_moves && MoveFocusByTab(all, modifiers & (shiftKey | rightShiftKey));
    case kReturn:
    case kEnter:
      return PressDefault(all.ok, e);
    case kEscape:
      return PressDefault(all.cancel, e);
    default:
      return false;
  }
}

}  // namespace

char32_t FoldLetter(char32_t c) {
  if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
      (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F))
    return c + 0x20;
  if (c >= 0x400 && c <= 0x40F) return c + 0x50;
  const bool digit = c >= '0' && c <= '9';
  return digit || (c >= 'a' && c <= 'z') || c >= 0xB5 ? c : 0;
}

char32_t LetterOf(const Control* c) {
  const char* text = c->text.c_str();
  return *text ? FoldLetter(NextUtf8(&text)) : 0;
}

void ShowLetters(WindowControls& all, bool shown) {
  if (all.alt == shown) return;
  all.alt = shown;
  std::set<char32_t> taken;
  for (Control* c = all.first; c; c = c->next) {
    bool underlined = false;
    if (shown && CanTakeKeys(c, kKeysLetter))
      if (const char32_t letter = LetterOf(c)) underlined = taken.insert(letter).second;
    if (underlined == c->underlined) continue;
    c->underlined = underlined;
    Draw1Control(c);
  }
}

OSStatus HandleKey(HandlerCall*, Event* event, void*) {
  WindowControls* all = ControlsOf(event->window);
  if (!all || event->key.ignored) return eventNotHandledErr;
  if (event->kind == kEventRawKeyModifiersChanged) {
    const uint32_t modifiers = event->key.modifiers;
    ShowLetters(*all, (modifiers & kAlt) && !(modifiers & kControlOrCommand));
    return eventNotHandledErr;
  }
  return TakeKey(*all, *event) ? noErr : eventNotHandledErr;
}

}  // namespace platform
