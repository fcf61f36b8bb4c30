#include "platform/text/letters.h"

#include "platform/text/utf8.h"

namespace platform {

char32_t FoldLetter(char32_t c) {
  // Latin, Greek and Cyrillic capitals stand a fixed distance before their small letters.
  if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
      (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F))
    return c + 0x20;
  if (c >= 0x400 && c <= 0x40F) return c + 0x50;
  const bool digit = c >= '0' && c <= '9';
  return digit || (c >= 'a' && c <= 'z') || c >= 0xB5 ? c : 0;
}

char32_t FirstLetter(std::string_view utf8) {
  return utf8.empty() ? 0 : FoldLetter(TakeUtf8(&utf8));
}

char32_t FoldTyped(char32_t c) {
  const char32_t letter = FoldLetter(c);
  return letter ? letter : c;
}

bool BeginsWithTyped(std::string_view utf8, const std::u32string& typed) {
  for (const char32_t c : typed)
    if (utf8.empty() || FoldTyped(TakeUtf8(&utf8)) != c) return false;
  return true;
}

char32_t LetterOfKey(uint32_t base_keysym, uint32_t keysym, const char* text) {
  const uint32_t s = base_keysym ? base_keysym : keysym;
  // Key symbols of Latin 1 are their characters; others name one with this bit.
  constexpr uint32_t kUnicode = 0x01000000;
  if ((s >= 0x20 && s < 0x7F) || (s >= 0xA0 && s <= 0xFF)) return FoldLetter(s);
  if ((s & 0xFF000000u) == kUnicode) return FoldLetter(s & 0xFFFFFF);
  return *text ? FoldLetter(NextUtf8(&text)) : 0;
}

}  // namespace platform
