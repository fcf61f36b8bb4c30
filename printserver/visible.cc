#include "printserver/visible.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>

namespace nc {

namespace {

// Sorted.
constexpr struct {
  uint32_t first, last;
} kUnseen[] = {
    {0, 0x1f},          {0x7f, 0xa0},       {0xad, 0xad},       {0x34f, 0x34f},
    {0x61c, 0x61c},     {0x115f, 0x1160},   {0x1680, 0x1680},   {0x17b4, 0x17b5},
    {0x180b, 0x180f},   {0x2000, 0x200f},   {0x2028, 0x202f},   {0x205f, 0x206f},
    {0x2800, 0x2800},   {0x3164, 0x3164},   {0xfe00, 0xfe0f},   {0xfeff, 0xfeff},
    {0xffa0, 0xffa0},   {0xfff0, 0xfffb},   {0x13430, 0x1343f}, {0x1bca0, 0x1bca3},
    {0x1d173, 0x1d17a}, {0xe0000, 0xe0fff},
};

size_t CountDigits(std::string_view text) {
  size_t n = 0;
  while (n < text.size() && isxdigit(static_cast<unsigned char>(text[n]))) ++n;
  return n;
}

// Whether it reads like what follows the backslash of a sequence.
bool ReadsLikeSequence(std::string_view text) {
  if (text.substr(0, 1) == "x") return CountDigits(text.substr(1)) >= 2;
  if (text.substr(0, 2) != "u{") return false;
  const size_t digits = CountDigits(text.substr(2));
  return digits > 0 && text.substr(2 + digits, 1) == "}";
}

// The sequence for the first character; empty when it is shown as it is.
std::string SequenceOf(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text[0]);
  const uint32_t code = TakeCharacter(&text);
  char sequence[16] = "";
  if (code == kNotUtf8) {
    snprintf(sequence, sizeof sequence, "\\x%02X", byte);
  } else if (IsUnseen(code)) {
    snprintf(sequence, sizeof sequence, "\\u{%04X}", static_cast<unsigned>(code));
  }
  return sequence;
}

}  // namespace

uint32_t TakeCharacter(std::string_view* text) {
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
  return good ? code : kNotUtf8;
}

bool IsUnseen(uint32_t code) {
  const auto* at = std::partition_point(std::begin(kUnseen), std::end(kUnseen),
                                        [code](const auto& range) { return range.last < code; });
  return at != std::end(kUnseen) && at->first <= code;
}

std::string VisibleName(std::string_view name) {
  std::string out;
  while (!name.empty()) {
    const size_t backslashes = std::min(name.find_first_not_of('\\'), name.size());
    out.append(backslashes, '\\');
    name.remove_prefix(backslashes);
    if (name.empty()) break;
    const std::string sequence = SequenceOf(name);
    if (!sequence.empty() || ReadsLikeSequence(name)) out.append(backslashes, '\\');
    const std::string_view rest = name;
    TakeCharacter(&name);
    out += sequence.empty() ? rest.substr(0, rest.size() - name.size()) : sequence;
  }
  return out;
}

}  // namespace nc
