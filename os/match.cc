#include "os/match.h"

#include <ctype.h>
#include <string.h>

#include "os/os.h"

namespace os {

namespace {

constexpr size_t kMostBytes = 1023;
constexpr size_t kMostPatterns = 60;
constexpr char kSeparators[] = ",|";

std::string UpperCase(std::string text) {
  for (char& c : text) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

std::vector<std::string> SplitPatterns(const char* patterns) {
  if (!patterns) patterns = "*";
  std::string list(patterns, strnlen(patterns, kMostBytes + 1));
  if (list.size() > kMostBytes) {
    const size_t last = list.find_last_of(kSeparators);
    list.resize(last == std::string::npos ? 0 : last);
  }
  if (list.find("*.") != std::string::npos && 2 * list.size() + 1 <= kMostBytes) {
    list += "|" + UpperCase(list);
  }
  std::vector<std::string> result;
  for (size_t start = 0; result.size() < kMostPatterns;) {
    const size_t end = list.find_first_of(kSeparators, start);
    result.push_back(list.substr(start, end - start));
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return result;
}

bool IsLeftOut(const char* name, int types) {
  if (name[0] != '.') return false;
  if (!(types & OS_LIST_FOLDERS)) return !(types & OS_LIST_HIDDEN);
  if (!name[1]) return true;
  return name[1] != '.' && name[2] && !(types & OS_LIST_HIDDEN);
}

}  // namespace os

namespace {

bool EndsWith(const char* name, const char* rest) {
  const size_t name_length = strlen(name);
  const size_t rest_length = strlen(rest);
  return name_length >= rest_length && strcmp(name + name_length - rest_length, rest) == 0;
}

}  // namespace

extern "C" int match_name(const char* pattern, const char* name) {
  if (!pattern || !name) return 0;
  if (pattern[0] == '*') return EndsWith(name, pattern + 1);
  for (; *name; ++name) {
    if (*pattern == '*') {
      if (!pattern[1]) return 1;
      if (*name == pattern[1]) pattern += 2;
    } else if (*pattern == '?' || *pattern == *name) {
      ++pattern;
    } else {
      return 0;
    }
  }
  return !pattern[0] || (pattern[0] == '*' && !pattern[1]);
}
