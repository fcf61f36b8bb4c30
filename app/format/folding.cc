#include "app/format/folding.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "app/format/fold_table.h"
#include "printserver/visible.h"

namespace console {
namespace {

// The marks that a name in decomposed form has after its letters.
bool IsAccent(uint32_t code) {
  return (code >= 0x300 && code < 0x370) || (code >= 0x483 && code < 0x488);
}

// The letters of fold_table.h that keep their mark, in two characters.
uint32_t Composed(uint32_t letter, uint32_t accent) {
  constexpr uint32_t kLetters[][3] = {{0x438, 0x306, 0x439},   // й
                                      {0x456, 0x308, 0x457},   // ї
                                      {0x443, 0x306, 0x45e},   // ў
                                      {0x433, 0x301, 0x453},   // ѓ
                                      {0x43a, 0x301, 0x45c}};  // ќ
  for (const auto& l : kLetters)
    if (l[0] == letter && l[1] == accent) return l[2];
  return letter;
}

uint32_t FoldLetter(uint32_t code) {
  struct Block {
    uint32_t first;
    const char16_t* letters;
    size_t count;
  };
  constexpr Block kBlocks[] = {
      {0xc0, kLatin, std::size(kLatin) - 1},
      {0x370, kGreekAndCyrillic, std::size(kGreekAndCyrillic) - 1},
      {0x1e00, kMoreLatinAndGreek, std::size(kMoreLatinAndGreek) - 1},
  };
  for (const Block& b : kBlocks)
    if (code >= b.first && code - b.first < b.count && b.letters[code - b.first] != u' ')
      return b.letters[code - b.first];
  if (code >= 0x531 && code <= 0x556) return code + 0x30;  // Armenian
  return code;
}

const char* LongFoldOf(uint32_t code) {
  for (const LongFold& f : kLongFolds)
    if (f.from == code) return f.to;
  return nullptr;
}

// Takes the first character off, which is not ASCII, with its accents.
void FoldCharacter(std::string_view* text, std::string* out) {
  const char first = text->front();
  const uint32_t code = nc::TakeCharacter(text);
  if (code == nc::kNotUtf8) return out->push_back(first);
  if (IsAccent(code)) return;
  uint32_t folded = FoldLetter(code);
  if (!text->empty() && uint8_t(text->front()) >= 0xcc) {
    std::string_view after = *text;
    folded = Composed(folded, nc::TakeCharacter(&after));
  }
  if (const char* two = LongFoldOf(folded))
    *out += two;
  else
    AppendCharacter(folded, out);
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// A number: its length goes before it, so that the longer one is larger.
void AppendNumbersAsSuch(std::string_view folded, std::string* key) {
  for (size_t i = 0; i < folded.size();) {
    if (!IsDigit(folded[i])) {
      key->push_back(folded[i++]);
      continue;
    }
    while (i + 1 < folded.size() && folded[i] == '0' && IsDigit(folded[i + 1])) ++i;
    const size_t begin = i;
    while (i < folded.size() && IsDigit(folded[i])) ++i;
    key->push_back('0');
    key->push_back(char(std::min<size_t>(i - begin, 255)));
    key->append(folded, begin, i - begin);
  }
}

}  // namespace

void AppendCharacter(uint32_t code, std::string* out) {
  auto rest = [&](int shift) { out->push_back(char(0x80 | (code >> shift & 0x3f))); };
  if (code < 0x80) return out->push_back(char(code));
  if (code < 0x800) {
    out->push_back(char(0xc0 | code >> 6));
  } else if (code < 0x10000) {
    out->push_back(char(0xe0 | code >> 12));
    rest(6);
  } else {
    out->push_back(char(0xf0 | code >> 18));
    rest(12);
    rest(6);
  }
  rest(0);
}

void FoldInto(std::string_view text, std::string* out) {
  while (!text.empty()) {
    const auto c = uint8_t(text.front());
    if (c >= 0x80) {
      FoldCharacter(&text, out);
      continue;
    }
    out->push_back(c >= 'A' && c <= 'Z' ? char(c + 32) : char(c));
    text.remove_prefix(1);
  }
}

std::string Folded(std::string_view utf8) {
  std::string out;
  FoldInto(utf8, &out);
  return out;
}

std::string_view EndingOf(std::string_view name) {
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

std::string NaturalKey(std::string_view name) {
  const std::string_view ending = EndingOf(name);
  std::string key;
  key.reserve(name.size() + 8);
  AppendNumbersAsSuch(Folded(name.substr(0, name.size() - ending.size() - !ending.empty())), &key);
  if (ending.empty()) return key;
  // Below every character, so that a name goes before those that it begins.
  key.push_back(1);
  AppendNumbersAsSuch(Folded(ending), &key);
  return key;
}

bool NaturalLess(std::string_view a, std::string_view b) {
  const int order = NaturalKey(a).compare(NaturalKey(b));
  return order != 0 ? order < 0 : a < b;
}

}  // namespace console
