#include "tests/support/script.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "platform/events/event.h"

namespace support {

namespace {

struct VerbRow {
  std::string_view name;
  Step::Verb verb;
  int numbers;   // at most three
  int optional;  // of these, from the end
  enum { kNothing, kKeyName, kModifierNames, kPath } word;
};
constexpr VerbRow kVerbs[] = {
    {"move", Step::kMove, 2, 0, VerbRow::kNothing},
    {"down", Step::kDown, 1, 1, VerbRow::kNothing},
    {"up", Step::kUp, 1, 1, VerbRow::kNothing},
    {"click", Step::kClick, 3, 1, VerbRow::kNothing},
    {"scroll", Step::kScroll, 2, 0, VerbRow::kNothing},
    {"key", Step::kKey, 0, 0, VerbRow::kKeyName},
    {"hold", Step::kHold, 0, 0, VerbRow::kKeyName},
    {"release", Step::kRelease, 0, 0, VerbRow::kKeyName},
    {"modifiers", Step::kModifiers, 0, 0, VerbRow::kModifierNames},
    {"wait", Step::kWait, 1, 0, VerbRow::kNothing},
    {"resize", Step::kResize, 2, 0, VerbRow::kNothing},
    {"close", Step::kClose, 0, 0, VerbRow::kNothing},
    {"focus", Step::kFocus, 0, 0, VerbRow::kNothing},
    {"unfocus", Step::kUnfocus, 0, 0, VerbRow::kNothing},
    {"lose", Step::kLose, 0, 0, VerbRow::kNothing},
    {"open", Step::kOpen, 0, 0, VerbRow::kPath},
    {"preferences", Step::kPreferences, 0, 0, VerbRow::kNothing},
    {"quit", Step::kQuit, 0, 0, VerbRow::kNothing},
};

struct NameRow {
  std::string_view name;
  uint32_t bits;
};
constexpr NameRow kKeyNames[] = {
    {"space", 0x20},     {"BackSpace", 0xFF08}, {"Tab", 0xFF09},      {"Return", 0xFF0D},
    {"Escape", 0xFF1B},  {"Home", 0xFF50},      {"Left", 0xFF51},     {"Up", 0xFF52},
    {"Right", 0xFF53},   {"Down", 0xFF54},      {"Page_Up", 0xFF55},  {"Page_Down", 0xFF56},
    {"End", 0xFF57},     {"Help", 0xFF6A},      {"KP_Enter", 0xFF8D}, {"Delete", 0xFFFF},
    {"Shift_L", 0xFFE1}, {"Control_L", 0xFFE3}, {"Alt_L", 0xFFE9},    {"Super_L", 0xFFEB},
};
constexpr NameRow kModifierNames[] = {
    {"command", platform::cmdKey},     {"shift", platform::shiftKey},
    {"caps", platform::alphaLock},     {"option", platform::optionKey},
    {"control", platform::controlKey},
};
constexpr uint32_t kF1 = 0xFFBE;

bool KeySymbol(const std::string& word, uint32_t* symbol) {
  if (word.size() == 1 && word[0] > ' ' && word[0] <= '~') return *symbol = uint8_t(word[0]), true;
  for (const NameRow& row : kKeyNames) {
    if (row.name == word) return *symbol = row.bits, true;
  }
  const int n = word[0] == 'F' ? atoi(word.c_str() + 1) : 0;
  if (n < 1 || n > 13 || word != "F" + std::to_string(n)) return false;
  *symbol = kF1 + uint32_t(n) - 1;
  return true;
}

bool Modifier(const std::string& word, uint32_t* bits) {
  for (const NameRow& row : kModifierNames) {
    if (row.name == word) return *bits |= row.bits, true;
  }
  return false;
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

bool Words(const VerbRow& row, std::istringstream& words, Step* step) {
  std::string word;
  switch (row.word) {
    case VerbRow::kKeyName:
      return words >> word && KeySymbol(word, &step->bits);
    case VerbRow::kPath:
      return bool(words >> step->path);
    case VerbRow::kModifierNames:
      while (words >> word) {
        if (!Modifier(word, &step->bits)) return false;
      }
      return true;
    default:
      return true;
  }
}

bool ParseStep(const std::string& text, Step* step) {
  std::istringstream words(text);
  std::string verb;
  words >> verb;
  for (const VerbRow& row : kVerbs) {
    if (row.name != verb) continue;
    step->verb = row.verb;
    std::string rest;
    return Numbers(row, words, step) && Words(row, words, step) && !(words >> rest);
  }
  return false;
}

}  // namespace

bool ParseScript(std::string_view text, Script* script, std::string* error) {
  script->clear();
  std::istringstream lines{std::string(text)};
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    if (line.starts_with('#')) line.clear();
    line = line.substr(0, line.find(" # "));
    for (size_t from = 0; from < line.size();) {
      size_t to = line.find("; ", from);
      if (to == std::string::npos) to = line.size();
      const std::string part = line.substr(from, to - from);
      from = to + 2;
      if (part.find_first_not_of(' ') == std::string::npos) continue;
      Step step{};
      step.line = number;
      if (!ParseStep(part, &step)) {
        *error = "line " + std::to_string(number) + ": not a step: \"" + part + "\"";
        return false;
      }
      script->push_back(std::move(step));
    }
  }
  return true;
}

Script MakeScript(std::string_view text) {
  Script script;
  std::string error;
  if (!ParseScript(text, &script, &error)) {
    fprintf(stderr, "script: %s\n", error.c_str());
    exit(2);
  }
  return script;
}

}  // namespace support
