// What the platform does by itself with a key.
#include <set>

#include "platform/controls/control.h"
#include "platform/events/key_characters.h"
#include "platform/menus/menus.h"
#include "platform/text/letters.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr uint32_t kAlt = optionKey | rightOptionKey;
constexpr uint32_t kControlOrCommand = cmdKey | controlKey | rightControlKey;

bool PressLetter(WindowControls& all, const Event& e) {
  const char32_t letter = LetterOfKey(e.key.base_keysym, e.key.keysym, e.key.text);
  if (!letter) return false;
  for (Control* c = all.first; c; c = c->next) {
    if (!CanTakeKeys(c, kKeysLetter) || FirstLetter(c->text) != letter) continue;
    if (e.kind == kEventRawKeyDown) PressByKey(c);
    return true;
  }
  return false;
}

bool PressOther(Control* c, const Event& e) {
  if (!c || !c->active || !IsControlVisible(c)) return false;
  if (e.kind == kEventRawKeyDown) PressByKey(c);
  return true;
}

// Alt+Down opens what stands beside the control with the keyboard, or what that has itself.
bool PressOpener(const WindowControls& all, const Event& e) {
  if (e.key.character != kDownKey || !all.focus) return false;
  Control* opener = all.focus->opener;
  if (!opener && all.focus->kind->open) opener = all.focus;
  return PressOther(opener, e);
}

bool TakeKey(WindowControls& all, const Event& e) {
  const uint32_t modifiers = e.key.modifiers;
  if (modifiers & kAlt)
    return !(modifiers & kControlOrCommand) && (PressOpener(all, e) || PressLetter(all, e));
  if (all.focus && all.focus->kind->key && all.focus->kind->key(all.focus, e)) return true;
  if (modifiers & kControlOrCommand) return false;
  switch (e.key.character) {
    case kTabKey:
      return all.tab_moves && MoveFocusByTab(all, modifiers & (shiftKey | rightShiftKey));
    case kReturnKey:
    case kEnterKey:
      return PressOther(all.ok, e);
    case kEscapeKey:
      return PressOther(all.cancel, e);
    default:
      return false;
  }
}

}  // namespace

void ShowLetters(WindowControls& all, bool shown) {
  if (all.alt == shown) return;
  all.alt = shown;
  std::set<char32_t> taken;
  for (Control* c = all.first; c; c = c->next) {
    bool underlined = false;
    if (shown && CanTakeKeys(c, kKeysLetter))
      if (const char32_t letter = FirstLetter(c->text))
        underlined = !MenuBarTakesLetter(letter) && taken.insert(letter).second;
    if (underlined == c->underlined) continue;
    c->underlined = underlined;
    Draw1Control(c);
  }
}

void HideControlLetters() {
  for (WindowRef w : WindowList())
    if (WindowControls* all = ControlsOf(w)) ShowLetters(*all, false);
}

OSStatus HandleKey(HandlerCall*, Event* event, void*) {
  WindowControls* all = ControlsOf(event->window);
  if (all) all->shift = event->key.modifiers & (shiftKey | rightShiftKey);
  if (!all || event->key.ignored) return eventNotHandledErr;
  if (event->kind == kEventRawKeyModifiersChanged) {
    const uint32_t modifiers = event->key.modifiers;
    ShowLetters(*all, (modifiers & kAlt) && !(modifiers & kControlOrCommand));
    return eventNotHandledErr;
  }
  return TakeKey(*all, *event) ? noErr : eventNotHandledErr;
}

}  // namespace platform
