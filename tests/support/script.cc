#include "tests/support/script.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace support {

namespace {

struct VerbRow {
  std::string_view name;
  Step::Verb verb;
  int numbers;   // at most three
  int optional;  // of these, from the end
  bool key;      // its name follows
};
constexpr VerbRow kVerbs[] = {
    {"move", Step::kMove, 2, 0, false},       {"down", Step::kDown, 1, 1, false},
    {"up", Step::kUp, 1, 1, false},           {"click", Step::kClick, 3, 1, false},
    {"scroll", Step::kScroll, 2, 0, false},   {"key", Step::kKey, 0, 0, true},
    {"hold", Step::kHold, 0, 0, true},        {"release", Step::kRelease, 0, 0, true},
    {"wait", Step::kWait, 1, 0, false},       {"resize", Step::kResize, 2, 0, false},
    {"close", Step::kClose, 0, 0, false},     {"focus", Step::kFocus, 0, 0, false},
    {"unfocus", Step::kUnfocus, 0, 0, false},
};

struct NameRow {
  std::string_view name;
  uint32_t symbol;
};
constexpr NameRow kKeyNames[] = {
    {"space", 0x20},     {"BackSpace", 0xFF08}, {"Tab", 0xFF09},      {"Return", 0xFF0D},
    {"Escape", 0xFF1B},  {"Home", 0xFF50},      {"Left", 0xFF51},     {"Up", 0xFF52},
    {"Right", 0xFF53},   {"Down", 0xFF54},      {"Page_Up", 0xFF55},  {"Page_Down", 0xFF56},
    {"End", 0xFF57},     {"Help", 0xFF6A},      {"KP_Enter", 0xFF8D}, {"Delete", 0xFFFF},
    {"Shift_L", 0xFFE1}, {"Control_L", 0xFFE3}, {"Alt_L", 0xFFE9},    {"Super_L", 0xFFEB},
};
constexpr uint32_t kF1 = 0xFFBE;

bool KeySymbol(const std::string& word, uint32_t* symbol) {
  if (word.size() == 1 && word[0] > ' ' && word[0] <= '~') return *symbol = uint8_t(word[0]), true;
  for (const NameRow& row : kKeyNames) {
    if (row.name == word) return *symbol = row.symbol, true;
  }
  const int n = word[0] == 'F' ? atoi(word.c_str() + 1) : 0;
  if (n < 1 || n > 13 || word != "F" + std::to_string(n)) return false;
  *symbol = kF1 + uint32_t(n) - 1;
  return true;
}

bool Numbers(const VerbRow& row, std::istringstream& words, Step* step) {
  int* const places[] = {&step->a, &step->b, &step->c};
  for (int i = 0; i < row.numbers; ++i) {
    std::string word;
    if (!(words >> word)) {
      *places[i] = 1;
      return i >= row.numbers - row.optional;
    }
    char* end = nullptr;
    *places[i] = int(strtol(word.c_str(), &end, 10));
    if (*end != '\0') return false;
  }
  return true;
}

bool ParseStep(const std::string& text, Step* step) {
  std::istringstream words(text);
  std::string verb;
  words >> verb;
  for (const VerbRow& row : kVerbs) {
    if (row.name != verb) continue;
    step->verb = row.verb;
    std::string key, rest;
    return Numbers(row, words, step) &&
           (!row.key || (words >> key && KeySymbol(key, &step->symbol))) && !(words >> rest);
  }
  return false;
}

}  // namespace

Script MakeScript(std::string_view text) {
  Script script;
  std::istringstream lines{std::string(text)};
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    line = line.substr(0, line.find(" # "));
    for (size_t from = 0; from < line.size();) {
      const size_t to = std::min(line.find("; ", from), line.size());
      const std::string part = line.substr(from, to - from);
      from = to + 2;
      if (part.find_first_not_of(' ') == std::string::npos) continue;
      Step step{};
      step.line = number;
      if (!ParseStep(part, &step)) {
        fprintf(stderr, "script, line %d: not a step: \"%s\"\n", number, part.c_str());
        exit(2);
      }
      script.push_back(step);
    }
  }
  return script;
}

}  // namespace support
