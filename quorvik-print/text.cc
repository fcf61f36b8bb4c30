#include "quorvik-print/text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "printserver/visible.h"

namespace cli {

size_t Width(std::string_view shown) {
  // East Asian letters and pictures take two places each.
  constexpr struct {
    uint32_t first, last;
  } kWide[] = {{0x1100, 0x115e},   {0x2e80, 0x303e},   {0x3041, 0xa4cf},  {0xac00, 0xd7a3},
               {0xf900, 0xfaff},   {0xfe30, 0xfe6f},   {0xff01, 0xff60},  {0xffe0, 0xffe6},
               {0x1f300, 0x1f64f}, {0x1f900, 0x1f9ff}, {0x20000, 0x3fffd}};
  size_t places = 0;
  while (!shown.empty()) {
    const uint32_t code = nc::TakeCharacter(&shown);
    // The commonest marks, which stand over the letter before them.
    if (code >= 0x300 && code <= 0x36f) continue;
    const bool wide = std::any_of(std::begin(kWide), std::end(kWide), [code](auto range) {
      return code >= range.first && code <= range.last;
    });
    places += wide ? 2 : 1;
  }
  return places;
}

std::string Quoted(std::string_view text) {
  std::string out = "\"";
  while (!text.empty()) {
    const std::string_view rest = text;
    const uint32_t code = nc::TakeCharacter(&text);
    if (code == nc::kNotUtf8) {
      out += "\xef\xbf\xbd";
    } else if (code == '"' || code == '\\') {
      out += '\\';
      out += static_cast<char>(code);
    } else if (code <= 0xffff && nc::IsUnseen(code)) {
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
