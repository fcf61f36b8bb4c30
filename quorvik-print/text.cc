#include "quorvik-print/text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace cli {

namespace {

constexpr uint32_t kNone = UINT32_MAX;

// Takes the next character off, which must not be empty: kNone for a byte that is not UTF-8.
uint32_t Next(std::string_view* text) {
  const auto byte = [text](size_t i) { return static_cast<unsigned char>((*text)[i]); };
  const unsigned char first = byte(0);
  size_t length = 1;
  if (first >= 0xc2 && first < 0xf5) length = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
  uint32_t code = length == 1 ? first : first & (0x7fu >> length);
  bool good = (first < 0x80 || length > 1) && text->size() >= length;
  for (size_t i = 1; good && i < length; ++i) {
    good = (byte(i) & 0xc0) == 0x80;
    code = code << 6 | (byte(i) & 0x3f);
  }
  // Longer than need be, half of a pair, or past the last character.
  if ((length == 3 && code < 0x800) || (code >= 0xd800 && code < 0xe000) || code > 0x10ffff ||
      (length == 4 && code < 0x10000)) {
    good = false;
  }
  text->remove_prefix(good ? length : 1);
  return good ? code : kNone;
}

bool IsObeyed(uint32_t code) {
  constexpr struct {
    uint32_t first, last;
  } kRanges[] = {{0, 0x1f},        {0x7f, 0x9f},     {0x61c, 0x61c},
                 {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069}};
  return std::any_of(std::begin(kRanges), std::end(kRanges),
                     [code](auto range) { return code >= range.first && code <= range.last; });
}

}  // namespace

std::string Shown(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::string_view rest = text;
    const uint32_t code = Next(&text);
    if (code == kNone || IsObeyed(code)) {
      out += '?';
    } else {
      out += rest.substr(0, rest.size() - text.size());
    }
  }
  return out;
}

size_t Width(std::string_view shown) {
  return static_cast<size_t>(std::count_if(shown.begin(), shown.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
  }));
}

std::string Quoted(std::string_view text) {
  std::string out = "\"";
  while (!text.empty()) {
    const std::string_view rest = text;
    const uint32_t code = Next(&text);
    if (code == kNone) {
      out += "\xef\xbf\xbd";
    } else if (code == '"' || code == '\\') {
      out += '\\';
      out += static_cast<char>(code);
    } else if (IsObeyed(code)) {
      char escape[16];
      snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(code));
      out += escape;
    } else {
      out += rest.substr(0, rest.size() - text.size());
    }
  }
  return out + '"';
}

}  // namespace cli
