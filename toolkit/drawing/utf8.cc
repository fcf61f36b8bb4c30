// The toolkit's characters and UTF-8, for programs whose names come from elsewhere.
#include "platform/text/mac_roman.h"
#include "toolkit/xw.h"

int XwFromUtf8(const char* utf8, char* dst, int size) {
  if (!dst || size <= 0) return 0;
  return int(platform::Utf8ToMacRoman(utf8, dst, size_t(size), '?'));
}

int XwToUtf8(const char* text, char* dst, int size) {
  if (!dst || size <= 0) return 0;
  return int(platform::MacRomanToUtf8(text, dst, size_t(size)));
}
