#include <gtest/gtest.h>

#include "os/match.h"
#include "os/os.h"

namespace {

TEST(Match, OnePattern) {
  const struct {
    const char* pattern;
    const char* name;
    int expected;
  } rows[] = {
      {"*", "anything", 1},     {"*.c", "a.c", 1},     {"*.c", "a.C", 0},    {"*abc", "xxabc", 1},
      {"*abc", "abcx", 0},      {"**abc", "x*abc", 1}, {"**abc", "xabc", 0}, {"*?c", "abc", 0},
      {"*?c", "a?c", 1},        {"", "", 1},           {"", "a", 0},         {"abc", "abc", 1},
      {"abc", "abcd", 0},       {"a?c", "abc", 1},     {"a?c", "ac", 0},     {"?", "", 0},
      {"a*", "abcdef", 1},      {"a*c", "ac", 1},      {"a*c", "abc", 1},    {"a*c", "abcc", 0},
      {"a*c", "ab", 0},         {"a*c*", "abcc", 1},   {"a*c?", "abcd", 1},  {"a*?", "abc", 0},
      {"a*?", "ab?", 1},        {"a**", "ab*", 1},     {"a**", "abc", 0},    {"a*b*c", "axbxc", 1},
      {"\xE4?", "\xE4\xF6", 1}, {nullptr, "a", 0},     {"a", nullptr, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(match_name(row.pattern, row.name), row.expected)
        << (row.pattern ? row.pattern : "null") << " against " << (row.name ? row.name : "null");
  }
}

TEST(Match, ListsOfPatterns) {
  using List = std::vector<std::string>;
  const std::string long_one = "*." + std::string(509, 'x');
  const struct {
    std::string patterns;
    List expected;
  } rows[] = {
      {"a,b|c", {"a", "b", "c"}},
      {"", {""}},
      {"a,,b", {"a", "", "b"}},
      {"*.txt,*.log", {"*.txt", "*.log", "*.TXT", "*.LOG"}},
      {"a*.b", {"a*.b", "A*.B"}},
      {"*.C", {"*.C", "*.C"}},
      {long_one, {long_one, "*." + std::string(509, 'X')}},  // 511 twice and a bar: 1023
      {long_one + "x", {long_one + "x"}},                    // one more: no second use
      {std::string(1023, 'a'), {std::string(1023, 'a')}},
      {std::string(1024, 'a'), {""}},
      {"keep," + std::string(1019, 'a'), {"keep"}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(os::SplitPatterns(row.patterns.c_str()), row.expected) << row.patterns;
  }
  EXPECT_EQ(os::SplitPatterns(nullptr), List{"*"});
  std::string many = "p0";
  for (int i = 1; i < 70; ++i) many += ",p" + std::to_string(i);
  const List split = os::SplitPatterns(many.c_str());
  ASSERT_EQ(split.size(), 60u);
  EXPECT_EQ(split.back(), "p59");
}

}  // namespace
