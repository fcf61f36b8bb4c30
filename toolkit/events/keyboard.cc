#include "toolkit/events/keyboard.h"

#include "platform/loop/dispatch.h"
#include "toolkit/core/modifiers.h"
#include "toolkit/core/post.h"
#include "toolkit/core/state.h"
#include "toolkit/events/loop.h"
#include "toolkit/windows/boxes.h"
#include "toolkit/windows/tips.h"

using namespace platform;

namespace {

struct CodeRow {
  uint8_t character;
  int code;
};
constexpr CodeRow kSpecial[] = {
    {8, XWE_BACKSPACE}, {9, XWE_TAB},   {3, XWE_RETURN}, {13, XWE_RETURN},  {5, XWE_HELP},
    {127, XWE_DELETE},  {1, XWE_HOME},  {4, XWE_END},    {11, XWE_PAGE_UP}, {12, XWE_PAGE_DOWN},
    {30, XWE_UP},       {28, XWE_LEFT}, {31, XWE_DOWN},  {29, XWE_RIGHT},
};

constexpr uint8_t kFunctionKey = 16, kEscape = 27;
constexpr uint32_t kKeypadDecimal = 0x41, kEscapeKey = 0x35, kF13Key = 0x69;
// F1 to F12.
constexpr uint8_t kFunctionKeys[] = {0x7A, 0x78, 0x63, 0x76, 0x60, 0x61,
                                     0x62, 0x64, 0x65, 0x6D, 0x67, 0x6F};

// 0: no toolkit key.
int MapKey(uint32_t key_code, uint8_t character) {
  if (character >= 32 && character <= 126)
    return character == ',' && key_code == kKeypadDecimal ? '.' : character;
  if (character == kFunctionKey) {
    if (key_code == kF13Key) return XWE_F13;
    for (int i = 0; i < 12; ++i)
      if (kFunctionKeys[i] == key_code) return XWE_F1 + i;
    return 0;
  }
  if (character == kEscape) return key_code == kEscapeKey ? XWE_ESCAPE : 0;
  for (const CodeRow& row : kSpecial)
    if (row.character == character) return row.code;
  return 0;
}

void ChangeModifiers(uint32_t modifiers) {
  SetModifiers(modifiers);
  Inp.window = Inp.focus;
  Inp.type = XWE_MODIFIERS;
}

}  // namespace

OSStatus EVkeyboard_func(HandlerCall*, Event* event, void* window) {
  Inp.type = 0;
  event->key.ignored = ModalKeepsOut(static_cast<XwWindow*>(window));
  if (event->kind == kEventRawKeyModifiersChanged) {
    ChangeModifiers(event->key.modifiers);
    return eventNotHandledErr;
  }
  SetModifiers(HeldModifiers());  // a copied record may have brought older ones
  if (event->kind == kEventRawKeyDown) EndTip();
  int code = MapKey(event->key.key_code, event->key.character);
  if (!code) return eventNotHandledErr;
  Inp.window = Inp.focus;
  if (event->kind == kEventRawKeyUp) {
    Inp.value = code;
    KeyState[code] = 0;
    Inp.type = XWE_KEY_UP;
    return eventNotHandledErr;
  }
  KeyState[code] = event->kind == kEventRawKeyRepeat ? 2 : 1;
  Inp.type = code;
  Inp.time = EventMilliseconds(event->time);
  if (Inp.window) Inp.item = XCheckbl(Inp.window->boxes);
  return eventNotHandledErr;
}

void ReleaseKey(const Event& event) {
  if (event.kind == kEventRawKeyModifiersChanged)
    SetModifiers(event.key.modifiers);
  else if (int code = MapKey(event.key.key_code, event.key.character))
    KeyState[code] = 0;
}

uint8_t XwGetKeyState(int key) {
  return key >= 0 && key < kKeyCodes ? KeyState[key] : 0;
}
