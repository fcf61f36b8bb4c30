// Strings with a length byte, and back.
#include <cstring>

#include "toolkit/xw.h"

char* P2CSTR(const unsigned char* pascal) {
  static char str[255];
  size_t n = pascal ? pascal[0] : 0;
  if (n > sizeof str - 1) n = sizeof str - 1;
  if (n) memcpy(str, pascal + 1, n);
  str[n] = 0;
  return str;
}

unsigned char* C2PSTR(const char* text) {
  static unsigned char str[256];
  size_t n = text ? strnlen(text, 255) : 0;
  str[0] = static_cast<unsigned char>(n);
  if (n) memcpy(str + 1, text, n);
  return str;
}
