// One table from key symbol to (virtual key, Mac Roman character). Key symbols are those of the
// X keyboard extension's names (xkbcommon-keysyms), which every display delivers.
#include <algorithm>
#include <iterator>

#include "platform/input/translate.h"
#include "platform/text/mac_roman.h"

namespace platform {
namespace {

struct KeyRow {
  uint32_t keysym;
  MacKey key;
};

// Sorted by key symbol.
constexpr KeyRow kKeys[] = {
    {0xFE20, {0x30, 9}},                              // ISO_Left_Tab
    {0xFF08, {0x33, 8}},                              // BackSpace
    {0xFF09, {0x30, 9}},                              // Tab
    {0xFF0D, {0x24, 13}},                             // Return
    {0xFF1B, {0x35, 27}},                             // Escape
    {0xFF50, {0x73, 1}},                              // Home
    {0xFF51, {0x7B, 28}},                             // Left
    {0xFF52, {0x7E, 30}},                             // Up
    {0xFF53, {0x7C, 29}},                             // Right
    {0xFF54, {0x7D, 31}},                             // Down
    {0xFF55, {0x74, 11}},                             // Page Up
    {0xFF56, {0x79, 12}},                             // Page Down
    {0xFF57, {0x77, 4}},                              // End
    {0xFF63, {0x72, 5}},                              // Insert
    {0xFF6A, {0x72, 5}},                              // Help
    {0xFF80, {0x31, ' '}},                            // keypad space
    {0xFF89, {0x30, 9}},                              // keypad Tab
    {0xFF8D, {0x4C, 3}},                              // keypad Enter
    {0xFF95, {0x73, 1}},                              // keypad Home
    {0xFF96, {0x7B, 28}},                             // keypad Left
    {0xFF97, {0x7E, 30}},                             // keypad Up
    {0xFF98, {0x7C, 29}},                             // keypad Right
    {0xFF99, {0x7D, 31}},                             // keypad Down
    {0xFF9A, {0x74, 11}},                             // keypad Page Up
    {0xFF9B, {0x79, 12}},                             // keypad Page Down
    {0xFF9C, {0x77, 4}},                              // keypad End
    {0xFF9E, {0x72, 5}},                              // keypad Insert
    {0xFF9F, {0x75, 127}},                            // keypad Delete
    {0xFFAA, {0x43, '*'}},                            // keypad
    {0xFFAB, {0x45, '+'}},    {0xFFAC, {0x41, ','}},  // the decimal key where it types a comma
    {0xFFAD, {0x4E, '-'}},    {0xFFAE, {0x41, '.'}}, {0xFFAF, {0x4B, '/'}}, {0xFFB0, {0x52, '0'}},
    {0xFFB1, {0x53, '1'}},    {0xFFB2, {0x54, '2'}}, {0xFFB3, {0x55, '3'}}, {0xFFB4, {0x56, '4'}},
    {0xFFB5, {0x57, '5'}},    {0xFFB6, {0x58, '6'}}, {0xFFB7, {0x59, '7'}}, {0xFFB8, {0x5B, '8'}},
    {0xFFB9, {0x5C, '9'}},    {0xFFBD, {0x51, '='}}, {0xFFBE, {0x7A, 16}},  // F1
    {0xFFBF, {0x78, 16}},     {0xFFC0, {0x63, 16}},  {0xFFC1, {0x76, 16}},  {0xFFC2, {0x60, 16}},
    {0xFFC3, {0x61, 16}},     {0xFFC4, {0x62, 16}},  {0xFFC5, {0x64, 16}},  {0xFFC6, {0x65, 16}},
    {0xFFC7, {0x6D, 16}},     {0xFFC8, {0x67, 16}},  {0xFFC9, {0x6F, 16}},  // F12
    {0xFFCA, {0x69, 16}},                                                   // F13
    {0xFFFF, {0x75, 127}},                                                  // Delete
    {0x1008FF81, {0x69, 16}},  // the symbol that most keymaps give to the key F13
};

// The keypad's decimal key: its symbol when it does not type, and those that it types with.
constexpr uint32_t kKeypadDelete = 0xFF9F;
constexpr MacKey kDecimalPoint{0x41, '.'}, kDecimalComma{0x41, ','};

constexpr uint16_t kTypingKey = 0;  // any key of the main block: only its character counts

}  // namespace

MacKey LookUpKey(uint32_t keysym, uint32_t base_keysym, uint32_t unicode, uint32_t modifiers) {
  const KeyRow* row = std::lower_bound(std::begin(kKeys), std::end(kKeys), keysym,
                                       [](const KeyRow& r, uint32_t k) { return r.keysym < k; });
  if (row != std::end(kKeys) && row->keysym == keysym) {
    // A character over 126 is a control code where it names a key, so Delete keeps its own.
    return row->key;
  }
  // Some keymaps give the keypad's decimal key the symbol of a plain comma or point.
  if (base_keysym == kKeypadDelete && unicode > 0x20) {
    return unicode == ',' ? kDecimalComma : kDecimalPoint;
  }
  // With Control or Command a letter key gives its letter, whatever the layout would type.
  if (modifiers & (controlKey | rightControlKey | cmdKey)) {
    if (keysym >= 0x20 && keysym < 0x7F) return {kTypingKey, uint8_t(keysym)};
    if (base_keysym >= 0x20 && base_keysym < 0x7F) return {kTypingKey, uint8_t(base_keysym)};
  }
  if (unicode >= 0x20 && unicode < 0x7F) return {kTypingKey, uint8_t(unicode)};
  if (unicode >= 0x80) {
    int c = UnicodeToMacRoman(unicode);
    if (c > 0) return {kTypingKey, uint8_t(c)};
  }
  return {0xFFFF, 0};
}

}  // namespace platform
