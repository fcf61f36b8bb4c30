#include "platform/text/utf8.h"

#include <cstring>

namespace platform {
namespace {

// How many bytes follow the first one of a character; -1 when none begins so.
int FollowersOf(uint8_t first) {
  if (first < 0x80) return 0;
  if (first >= 0xC2 && first < 0xE0) return 1;
  if ((first & 0xF0) == 0xE0) return 2;
  return first >= 0xF0 && first < 0xF5 ? 3 : -1;
}

// Reads at most `most` bytes from p, which has at least one; stops at a byte that does not belong.
char32_t Read(const uint8_t* p, size_t most, int* length) {
  *length = 1;
  int more = FollowersOf(*p);
  if (more <= 0) return more < 0 ? 0xFFFD : *p;
  char32_t c = *p & (0x3F >> more);
  for (int i = 1; i <= more; ++i) {
    if (size_t(i) >= most || (p[i] & 0xC0) != 0x80) return 0xFFFD;
    c = c << 6 | (p[i] & 0x3F);
  }
  bool bad = (more == 2 && c < 0x800) || (more == 3 && c < 0x10000) || c > 0x10FFFF ||
             (c >= 0xD800 && c < 0xE000);
  if (bad) return 0xFFFD;
  *length = more + 1;
  return c;
}

}  // namespace

char32_t NextUtf8(const char** text) {
  const uint8_t* p = reinterpret_cast<const uint8_t*>(*text);
  if (!*p) return 0;
  int length;
  char32_t c = Read(p, 4, &length);
  *text += length;
  return c;
}

char32_t TakeUtf8(std::string_view* text) {
  int length;
  char32_t c = Read(reinterpret_cast<const uint8_t*>(text->data()), text->size(), &length);
  text->remove_prefix(size_t(length));
  return c;
}

int PutUtf8(char32_t c, char out[4]) {
  if (c < 0x80) return out[0] = char(c), 1;
  int n = c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  for (int i = n - 1; i > 0; --i, c >>= 6) out[i] = char(0x80 | (c & 0x3F));
  out[0] = char((0xF00 >> n & 0xFF) | c);
  return n;
}

bool IsAscii(std::string_view text) {
  uint8_t all = 0;
  for (const char c : text) all |= uint8_t(c);
  return all < 0x80;
}

bool IsUtf8(std::string_view text) {
  constexpr uint64_t kHigh = 0x8080808080808080;
  const uint8_t* p = reinterpret_cast<const uint8_t*>(text.data());
  for (const uint8_t* end = p + text.size(); p < end;) {
    uint64_t eight = kHigh;
    if (end - p >= 8) std::memcpy(&eight, p, 8);
    if (!(eight & kHigh)) {
      p += 8;
      continue;
    }
    int length;
    if (Read(p, size_t(end - p), &length) == 0xFFFD && length == 1) return false;
    p += length;
  }
  return true;
}

std::string ValidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    char bytes[4];
    const char32_t c = TakeUtf8(&text);
    valid.append(bytes, size_t(PutUtf8(c, bytes)));
  }
  return valid;
}

size_t CutUtf8(std::string_view text, size_t size) {
  if (text.size() <= size) return text.size();
  // A character has at most four bytes: the one that stands on the border begins in the last three.
  size_t from = size;
  for (int back = 0; back < 3 && from > 0 && (text[from] & 0xC0) == 0x80; ++back) --from;
  std::string_view rest = text.substr(from);
  TakeUtf8(&rest);
  return text.size() - rest.size() > size ? from : size;
}

void CopyUtf8(std::string_view text, char* out, size_t size) {
  if (size == 0) return;
  const size_t n = CutUtf8(text, size - 1);
  std::memcpy(out, text.data(), n);
  out[n] = 0;
}

}  // namespace platform
