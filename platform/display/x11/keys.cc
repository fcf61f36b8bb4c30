// The keyboard: the server's keymap, held keys, dead keys and compose sequences.
//
// The keymap comes from the server through its XKB extension, so that whatever changed it (a layout
// switch, a remapped key) is followed. xkbcommon can read it as well, but only over a connection of
// the shared xcb, and this program's xcb is linked in. What characters the symbols are, and the
// sequences, are xkbcommon's, loaded when the first key is pressed.

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/display/x11/compose.h"
#include "platform/display/x11/x.h"
#include "platform/display/x11/xkb.h"

namespace platform::x11 {

namespace {

constexpr uint32_t kShiftR = 0xFFE2, kControlR = 0xFFE4, kAltR = 0xFFEA, kMetaR = 0xFFE8;

struct KeyType {
  uint8_t mask = 0;
  struct Entry {
    uint8_t mods, level;
    uint8_t preserved;  // of `mods`, those that keep their own effect
  };
  std::vector<Entry> entries;
};
struct Key {
  uint8_t types[4] = {};
  uint8_t group_info = 0, width = 0;
  std::vector<uint32_t> syms;
};
struct Keymap {
  std::vector<KeyType> types;
  Key keys[256];
  uint8_t alt = XCB_MOD_MASK_1, super = XCB_MOD_MASK_4;
};

// A held key as it was reported: its release has the same key and character.
struct Held {
  bool down = false;
  const Window* window = nullptr;  // that heard of it last; null: it has ended
  Composed as;
};

struct Keyboard {
  bool loaded = false;
  Keymap map;
  Held held[256];
  uint32_t reported = 0;  // modifiers
  const Window* reported_to = nullptr;
  bool orphaned = false;  // the window that got the modifiers is destroyed; no other has got them
  uint32_t state = 0;     // the server's, as last reported
};
Keyboard k;

xcb_xkb_get_map_reply_t* AskMap() {
  constexpr uint16_t kParts =
      XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  auto cookie = xcb_xkb_get_map(x.c, XCB_XKB_ID_USE_CORE_KBD, kParts, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                0, 0, 0, 0, 0, 0);
  return xcb_xkb_get_map_reply(x.c, cookie, nullptr);
}

void TakeTypes(xcb_xkb_key_type_iterator_t it, Keymap* map) {
  for (; it.rem != 0; xcb_xkb_key_type_next(&it)) {
    KeyType type;
    type.mask = it.data->mods_mask;
    const xcb_xkb_kt_map_entry_t* entries = xcb_xkb_key_type_map(it.data);
    const xcb_xkb_mod_def_t* preserve = xcb_xkb_key_type_preserve(it.data);
    const int preserves = xcb_xkb_key_type_preserve_length(it.data);
    for (int i = 0; i < xcb_xkb_key_type_map_length(it.data); ++i) {
      if (!entries[i].active) continue;
      const uint8_t preserved = i < preserves ? preserve[i].mask : uint8_t{0};
      type.entries.push_back({entries[i].mods_mask, entries[i].level, preserved});
    }
    map->types.push_back(std::move(type));
  }
}

void TakeSyms(xcb_xkb_key_sym_map_iterator_t it, int code, Keymap* map) {
  for (; it.rem != 0 && code < 256; xcb_xkb_key_sym_map_next(&it), ++code) {
    Key& key = map->keys[code];
    memcpy(key.types, it.data->kt_index, sizeof key.types);
    key.group_info = it.data->groupInfo;
    key.width = it.data->width;
    const xcb_keysym_t* syms = xcb_xkb_key_sym_map_syms(it.data);
    key.syms.assign(syms, syms + xcb_xkb_key_sym_map_syms_length(it.data));
  }
}

// Which of the eight modifiers carry Alt and Super here.
void TakeModifiers(const xcb_xkb_key_mod_map_t* entries, int count, Keymap* map) {
  uint8_t alt = 0, super = 0;
  for (int i = 0; i < count; ++i) {
    for (uint32_t sym : map->keys[entries[i].keycode].syms) {
      if (sym == 0xFFE9 || sym == kAltR) alt |= entries[i].mods;
      if (sym == 0xFFEB || sym == 0xFFEC) super |= entries[i].mods;
    }
  }
  if (alt != 0) map->alt = alt;
  if (super != 0) map->super = uint8_t(super & ~map->alt);
}

void LoadKeymap() {
  k.loaded = true;
  Reply<xcb_xkb_get_map_reply_t> r(AskMap());
  if (!r) return;
  xcb_xkb_get_map_map_t parts{};
  xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(r.p), r->nTypes, r->nKeySyms, r->nKeyActions,
                             r->totalActions, r->totalKeyBehaviors, r->virtualMods,
                             r->totalKeyExplicit, r->totalModMapKeys, r->totalVModMapKeys,
                             r->present, &parts);
  k.map = Keymap{};
  TakeTypes(xcb_xkb_get_map_map_types_rtrn_iterator(r.p, &parts), &k.map);
  TakeSyms(xcb_xkb_get_map_map_syms_rtrn_iterator(r.p, &parts), r->firstKeySym, &k.map);
  TakeModifiers(parts.modmap_rtrn, r->totalModMapKeys, &k.map);
}

// Maps a group that the key does not have to one that it has, by the rule of the key's definition.
int FitGroup(const Key& key, int group) {
  const int count = key.group_info & 0x0F;
  if (group < count) return group;
  switch (key.group_info & 0xC0) {
    case XCB_XKB_GROUPS_WRAP_CLAMP_INTO_RANGE:
      return count - 1;
    case XCB_XKB_GROUPS_WRAP_REDIRECT_INTO_RANGE: {
      const int to = (key.group_info >> 4) & 3;
      return to < count ? to : 0;
    }
    default:
      return group % count;
  }
}

const KeyType* TypeOf(const Key& key, int group) {
  const size_t type = key.types[group & 3];
  return type < k.map.types.size() ? &k.map.types[type] : nullptr;
}

uint32_t Lookup(uint8_t code, int group, uint8_t mods) {
  const Key& key = k.map.keys[code];
  if ((key.group_info & 0x0F) == 0 || key.syms.empty()) return 0;
  group = FitGroup(key, group);
  size_t level = 0;
  uint8_t taken = 0;  // modifiers that have had their effect
  if (const KeyType* type = TypeOf(key, group)) {
    taken = type->mask;
    for (const KeyType::Entry& e : type->entries) {
      if (e.mods != (mods & type->mask)) continue;
      level = e.level;
      taken = uint8_t(type->mask & ~e.preserved);
    }
  }
  const size_t at = size_t(group) * key.width + level;
  const uint32_t sym = level < key.width && at < key.syms.size() ? key.syms[at] : 0;
  return (mods & ~taken & XCB_MOD_MASK_LOCK) != 0 ? UpperKeysym(sym) : sym;
}

// What the key is in the first of its layouts that types Latin, so that Control with it means the
// same in all of them; else in the first.
uint32_t BaseSymbol(uint8_t code) {
  const int groups = k.map.keys[code].group_info & 0x0F;
  for (int group = 0; group < groups; ++group) {
    const uint32_t sym = Lookup(code, group, 0);
    if (sym > 0x20 && sym < 0x7F) return sym;
  }
  return Lookup(code, 0, 0);
}

bool HeldSym(uint32_t a, uint32_t b) {
  for (int code = 8; code < 256; ++code) {
    if (!k.held[code].down) continue;
    const Key& key = k.map.keys[code];
    if (!key.syms.empty() && (key.syms[0] == a || key.syms[0] == b)) return true;
  }
  return false;
}

Native* FocusedNative() {
  for (auto& [id, n] : x.windows) {
    if (n->w->focused) return n;
  }
  return nullptr;
}

// `held`: since before the window got the keyboard.
void ReportModifiers(Native* n, xcb_timestamp_t time, bool held = false) {
  const uint32_t now = Modifiers(k.state);
  if (now == k.reported || (n == nullptr && !k.orphaned)) return;
  k.reported = now;
  if (n != nullptr) {
    k.reported_to = n->w;
    k.orphaned = false;
  }
  RawEvent* e = Emit(RawEvent::kModifiers, n, time);
  e->modifiers = now;
  e->held = held;
}

void EmitKey(RawEvent::Type type, Native* n, uint8_t code, xcb_timestamp_t time) {
  RawEvent* e = Emit(type, n, time);
  e->keycode = code;
  const Composed& as = k.held[code].as;
  e->keysym = as.keysym;
  e->unicode = as.unicode;
  if (type != RawEvent::kKeyUp) memcpy(e->typed, as.typed, sizeof e->typed);
  e->base_keysym = BaseSymbol(code);
  e->modifiers = Modifiers(k.state);
}

// The release of a key whose window was destroyed has no window.
void EmitKeyUp(Native* n, uint8_t code, xcb_timestamp_t time) {
  EmitKey(RawEvent::kKeyUp, k.held[code].window != nullptr ? n : nullptr, code, time);
}

// Reports releases that no window got, because the focused one was destroyed while a key was down.
void ReleaseMissed(Native* n) {
  const bool any =
      std::any_of(std::begin(k.held), std::end(k.held), [](const Held& h) { return h.down; });
  if (!any) return;
  Reply<xcb_query_keymap_reply_t> now(xcb_query_keymap_reply(x.c, xcb_query_keymap(x.c), nullptr));
  for (int code = 8; now && code < 256; ++code) {
    if (!k.held[code].down || (now->keys[code / 8] >> (code % 8) & 1) != 0) continue;
    k.held[code].down = false;
    EmitKeyUp(n, uint8_t(code), 0);
  }
}

void SelectXkb() {
  constexpr uint16_t kMapParts =
      XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  constexpr uint16_t kEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                               XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
  xcb_xkb_select_events(x.c, XCB_XKB_ID_USE_CORE_KBD, kEvents, 0, kEvents, kMapParts, kMapParts,
                        nullptr);
  // Without this every auto-repeat would look like a release and a press.
  xcb_discard_reply(
      x.c, xcb_xkb_per_client_flags(x.c, XCB_XKB_ID_USE_CORE_KBD,
                                    XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                    XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0)
               .sequence);
}

}  // namespace

void OpenKeyboard() {
  const xcb_query_extension_reply_t* ext = xcb_get_extension_data(x.c, &xcb_xkb_id);
  if (ext == nullptr || !ext->present) return;
  Reply<xcb_xkb_use_extension_reply_t> use(
      xcb_xkb_use_extension_reply(x.c, xcb_xkb_use_extension(x.c, 1, 0), nullptr));
  if (!use || !use->supported) return;
  x.xkb_event = ext->first_event;
  SelectXkb();
  auto cookie = xcb_xkb_get_state(x.c, XCB_XKB_ID_USE_CORE_KBD);
  LoadKeymap();
  Reply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(x.c, cookie, nullptr));
  if (state) k.state = uint32_t(state->mods) | uint32_t(state->group) << 13;
}

uint32_t KeysymOf(uint8_t code, int group, uint8_t mods) {
  return Lookup(code, group, mods);
}

void CloseKeyboard() {
  CloseCompose();
  k = Keyboard{};
}

uint32_t Modifiers(uint32_t state) {
  uint32_t out = 0;
  if ((state & XCB_MOD_MASK_SHIFT) != 0) {
    const bool right = HeldSym(kShiftR, kShiftR);
    if (right) out |= rightShiftKey;
    if (!right || HeldSym(0xFFE1, 0xFFE1)) out |= shiftKey;
  }
  if ((state & XCB_MOD_MASK_CONTROL) != 0) {
    const bool right = HeldSym(kControlR, kControlR);
    if (right) out |= rightControlKey;
    if (!right || HeldSym(0xFFE3, 0xFFE3)) out |= controlKey;
  }
  if ((state & k.map.alt) != 0) {
    const bool right = HeldSym(kAltR, kMetaR);
    if (right) out |= rightOptionKey;
    if (!right || HeldSym(0xFFE9, 0xFFE7)) out |= optionKey;
  }
  if ((state & XCB_MOD_MASK_LOCK) != 0) out |= alphaLock;
  if ((state & k.map.super) != 0) out |= cmdKey;
  return out;
}

void RefreshKeys(Native* n) {
  if (!x.late_done) return;
  ReleaseMissed(n);
  ReportModifiers(n, 0, true);
}

void HandleKey(const xcb_key_press_event_t* e, bool press) {
  Native* n = FindNative(e->event);
  if (!x.late_done) {
    OpenLate();
    ReportModifiers(n, e->time);  // this key may be one of them
  }
  Held& held = k.held[e->detail];
  if (n == nullptr || (!press && !held.down)) return;
  x.user_time = e->time;
  k.state = e->state;
  if (!press) {
    held.down = false;
    EmitKeyUp(n, e->detail, e->time);
    return;
  }
  const bool repeat = held.down;
  held.down = true;
  held.window = n->w;
  if (!repeat) {
    const uint32_t sym = Lookup(e->detail, (e->state >> 13) & 3, uint8_t(e->state));
    held.as = Compose(sym);
  }
  EmitKey(repeat ? RawEvent::kKeyRepeat : RawEvent::kKeyDown, n, e->detail, e->time);
}

void HandleXkb(const xcb_generic_event_t* event) {
  const auto* state = reinterpret_cast<const xcb_xkb_state_notify_event_t*>(event);
  switch (state->xkbType) {
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
      LoadKeymap();
      break;
    case XCB_XKB_STATE_NOTIFY:
      k.state = uint32_t(state->mods) | uint32_t(state->group & 3) << 13;
      ReportModifiers(FocusedNative(), state->time);
      break;
    default:
      break;
  }
}

void ReleaseKeys(Native* n, xcb_timestamp_t time) {
  for (int code = 8; code < 256; ++code) {
    if (!k.held[code].down) continue;
    k.held[code].down = false;
    EmitKeyUp(n, uint8_t(code), time);
  }
  ResetCompose();
}

void ForgetKeys(const Window* w) {
  for (Held& held : k.held)
    if (held.window == w) held.window = nullptr;
  if (k.reported_to != w) return;
  k.reported_to = nullptr;
  k.orphaned = true;
}

}  // namespace platform::x11
