// What the keyboard asks of the menu bar: F10, a lone Alt, Alt with a title's first letter.
#include "platform/menus/menu.h"
#include "platform/text/letters.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr uint32_t kAlt = optionKey | rightOptionKey;
constexpr uint32_t kOtherModifiers =
    cmdKey | shiftKey | controlKey | rightShiftKey | rightControlKey;
constexpr uint32_t kF10 = 0xFFC7;

WindowRef alt_in = nullptr;  // Alt went down in this window, and nothing has happened since
bool letters_shown = false;  // Alt is held: the letters are underlined

void EndLoneAlt() {
  alt_in = nullptr;
  lone_alt_waits = false;
}

// The program's own menus come before the one of its name, which F10 and a lone Alt reach.
MenuRef TitleByLetter(char32_t letter) {
  MenuRef named = nullptr;
  for (const BarTitle& t : BarTitles()) {
    if (!letter || t.menu->disabled || IsOverflowTitle(t) || FirstLetter(t.menu->title) != letter)
      continue;
    if (!IsApplicationMenu(t.menu)) return t.menu;
    named = t.menu;
  }
  return named;
}

// A menu with Quit alone comes behind all others: nobody is to quit by a slip.
MenuRef FirstTitle() {
  MenuRef quits = nullptr;
  for (const BarTitle& t : BarTitles()) {
    if (t.menu->disabled) continue;
    if (!OnlyQuits(t.menu)) return t.menu;
    quits = t.menu;
  }
  return quits;
}

void ShowLetters(bool shown) {
  if (letters_shown == shown) return;
  letters_shown = shown;
  DrawMenuBar();
}

// Alt alone opens the bar: pressed and released in one window, with no input between.
void Modifiers(const Event& e) {
  const bool alt = e.key.modifiers & kAlt;
  // One that was held before has to do with another window: it is that of Alt+Tab.
  const bool alone = alt && !(e.key.modifiers & kOtherModifiers) && !e.key.held_before;
  if (alone) {
    alt_in = e.window;
    lone_alt_waits = true;
  } else {
    if (!alt && alt_in == e.window) RequestMenuBar(FirstTitle());
    EndLoneAlt();
  }
  ShowLetters(alone && MenuBarWindow());
}

OSStatus Key(HandlerCall*, Event* event, void*) {
  if (event->key.ignored || !MenuBarWindow()) return eventNotHandledErr;
  if (event->kind == kEventRawKeyModifiersChanged) {
    Modifiers(*event);
    return eventNotHandledErr;
  }
  EndLoneAlt();
  if (event->kind != kEventRawKeyDown) return eventNotHandledErr;
  const uint32_t modifiers = event->key.modifiers;
  MenuRef wanted = nullptr;
  if (event->key.keysym == kF10 && !(modifiers & (kAlt | kOtherModifiers)))
    wanted = FirstTitle();
  else if ((modifiers & kAlt) && !(modifiers & kOtherModifiers))
    wanted = TitleByLetter(LetterOfKey(event->key.base_keysym, event->key.keysym, event->key.text));
  if (!wanted) return eventNotHandledErr;
  RequestMenuBar(wanted);
  return noErr;
}

OSStatus Deactivated(HandlerCall*, Event*, void*) {
  EndLoneAlt();
  ShowLetters(false);
  return eventNotHandledErr;
}

OSStatus KeyWindowEnding(HandlerCall*, Event* event, void*) {
  if (alt_in == event->window) EndLoneAlt();
  return eventNotHandledErr;
}

}  // namespace

bool lone_alt_waits = false;

void WatchLoneAlt(const Event& e) {
  const bool input =
      e.cls == kEventClassMouse && e.kind != kEventMouseMoved && e.kind != kEventMouseDragged;
  if (input) EndLoneAlt();
}

bool MenuBarTakesLetter(char32_t letter) {
  return TitleByLetter(letter) != nullptr;
}

void HideBarLetters() {
  ShowLetters(false);
}

bool ShowsLetter(const Menu* m) {
  return letters_shown && TitleByLetter(FirstLetter(m->title)) == m;
}

void InstallBarKeys(WindowRef w) {
  constexpr EventKind kKeys[] = {{kEventClassKeyboard, kEventRawKeyDown},
                                 {kEventClassKeyboard, kEventRawKeyRepeat},
                                 {kEventClassKeyboard, kEventRawKeyModifiersChanged}};
  constexpr EventKind kDeactivated[] = {{kEventClassWindow, kEventWindowDeactivated}};
  constexpr EventKind kEnding[] = {{kEventClassWindow, kEventWindowEnding}};
  EventTargetRef target = GetWindowEventTarget(w);
  InstallEventHandler(target, Key, kKeys, 3, nullptr);
  InstallEventHandler(target, Deactivated, kDeactivated, 1, nullptr);
  InstallEventHandler(target, KeyWindowEnding, kEnding, 1, nullptr);
}

void ForgetBarKeys() {
  EndLoneAlt();
  letters_shown = false;
}

}  // namespace platform
