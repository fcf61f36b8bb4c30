// xkbcommon's tables, loaded when they are needed: the library with the first key, the sequences of
// the locale with the first dead or compose key.
#include "platform/display/x11/compose.h"

#include <dlfcn.h>
#include <xkbcommon/xkbcommon-compose.h>

#include <cstdlib>
#include <initializer_list>

#include "platform/late_library.h"
#include "platform/text/utf8.h"

namespace platform::x11 {

namespace {

struct Library {
  bool tried = false;
  void* handle = nullptr;
  decltype(&xkb_keysym_to_utf32) to_unicode = nullptr;
  decltype(&xkb_keysym_to_upper) to_upper = nullptr;
  decltype(&xkb_context_new) context_new = nullptr;
  decltype(&xkb_context_unref) context_unref = nullptr;
  decltype(&xkb_compose_table_new_from_locale) table_new = nullptr;
  decltype(&xkb_compose_table_unref) table_unref = nullptr;
  decltype(&xkb_compose_state_new) state_new = nullptr;
  decltype(&xkb_compose_state_unref) state_unref = nullptr;
  decltype(&xkb_compose_state_feed) feed = nullptr;
  decltype(&xkb_compose_state_reset) reset = nullptr;
  decltype(&xkb_compose_state_get_status) status = nullptr;
  decltype(&xkb_compose_state_get_one_sym) one_sym = nullptr;
  decltype(&xkb_compose_state_get_utf8) utf8 = nullptr;
};
Library lib;

struct Sequences {
  bool tried = false;
  xkb_context* context = nullptr;
  xkb_compose_table* table = nullptr;
  xkb_compose_state* state = nullptr;
};
Sequences seq;

template <class F>
bool Find(const char* name, F* out) {
  return FindFunction(lib.handle, name, out);
}

bool LoadLibrary() {
  if (lib.tried) return lib.handle != nullptr;
  lib.tried = true;
  lib.handle = dlopen("libxkbcommon.so.0", RTLD_NOW | RTLD_LOCAL);
  if (lib.handle == nullptr) return false;
  const bool whole =
      Find("xkb_keysym_to_utf32", &lib.to_unicode) && Find("xkb_keysym_to_upper", &lib.to_upper) &&
      Find("xkb_context_new", &lib.context_new) && Find("xkb_context_unref", &lib.context_unref) &&
      Find("xkb_compose_table_new_from_locale", &lib.table_new) &&
      Find("xkb_compose_table_unref", &lib.table_unref) &&
      Find("xkb_compose_state_new", &lib.state_new) &&
      Find("xkb_compose_state_unref", &lib.state_unref) &&
      Find("xkb_compose_state_feed", &lib.feed) && Find("xkb_compose_state_reset", &lib.reset) &&
      Find("xkb_compose_state_get_status", &lib.status) &&
      Find("xkb_compose_state_get_one_sym", &lib.one_sym) &&
      Find("xkb_compose_state_get_utf8", &lib.utf8);
  if (whole) return true;
  dlclose(lib.handle);
  lib.handle = nullptr;
  return false;
}

// The locale of the environment; the one without a language has sequences in no file.
const char* ComposeLocale() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = getenv(name);
    if (value == nullptr || *value == 0) continue;
    const bool plain = (value[0] == 'C' && (value[1] == 0 || value[1] == '.')) ||
                       __builtin_strcmp(value, "POSIX") == 0;
    return plain ? "en_US.UTF-8" : value;
  }
  return "en_US.UTF-8";
}

void LoadSequences() {
  if (seq.tried || !LoadLibrary()) return;
  seq.tried = true;
  seq.context = lib.context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES);
  if (seq.context == nullptr) return;
  seq.table = lib.table_new(seq.context, ComposeLocale(), XKB_COMPOSE_COMPILE_NO_FLAGS);
  if (seq.table == nullptr) {
    seq.table = lib.table_new(seq.context, "en_US.UTF-8", XKB_COMPOSE_COMPILE_NO_FLAGS);
  }
  if (seq.table != nullptr) seq.state = lib.state_new(seq.table, XKB_COMPOSE_STATE_NO_FLAGS);
}

bool StartsSequence(uint32_t keysym) {
  return keysym == 0xFF20 || (keysym >= 0xFE50 && keysym <= 0xFE93);
}

Composed Result() {
  char text[64] = {};
  lib.utf8(seq.state, text, sizeof text);
  const char* rest = text;
  Composed out{lib.one_sym(seq.state), uint32_t(NextUtf8(&rest)), {}};
  if (*rest) CopyUtf8(text, out.typed, sizeof out.typed);
  // A result without a symbol of its own is named by its character.
  if (out.keysym == 0 && out.unicode != 0) {
    out.keysym = out.unicode < 0x100 ? out.unicode : out.unicode | 0x01000000;
  }
  return out;
}

}  // namespace

uint32_t UnicodeOfKeysym(uint32_t keysym) {
  if (LoadLibrary()) return lib.to_unicode(keysym);
  if ((keysym >= 0x20 && keysym < 0x7F) || (keysym >= 0xA0 && keysym < 0x100)) return keysym;
  return (keysym & 0xFF000000) == 0x01000000 ? keysym & 0x00FFFFFF : 0;
}

uint32_t UpperKeysym(uint32_t keysym) {
  return LoadLibrary() ? lib.to_upper(keysym) : keysym;
}

Composed Compose(uint32_t keysym) {
  const Composed plain{keysym, UnicodeOfKeysym(keysym), {}};
  if (StartsSequence(keysym)) LoadSequences();
  if (seq.state == nullptr || keysym == 0) return plain;
  const bool fed = lib.feed(seq.state, keysym) == XKB_COMPOSE_FEED_ACCEPTED;
  if (!fed) return plain;  // a modifier
  switch (lib.status(seq.state)) {
    case XKB_COMPOSE_COMPOSING:
      return StartsSequence(keysym) ? Composed{keysym, 0, {}} : Composed{};
    case XKB_COMPOSE_COMPOSED: {
      const Composed result = Result();
      lib.reset(seq.state);
      return result;
    }
    case XKB_COMPOSE_CANCELLED:
      lib.reset(seq.state);
      return Composed{};
    case XKB_COMPOSE_NOTHING:
      break;
  }
  return plain;
}

void ResetCompose() {
  if (seq.state != nullptr) lib.reset(seq.state);
}

void CloseCompose() {
  if (seq.state != nullptr) lib.state_unref(seq.state);
  if (seq.table != nullptr) lib.table_unref(seq.table);
  if (seq.context != nullptr) lib.context_unref(seq.context);
  seq = Sequences{};
  if (lib.handle != nullptr) dlclose(lib.handle);
  lib = Library{};
}

}  // namespace platform::x11
