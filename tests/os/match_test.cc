#include <gtest/gtest.h>

#include "os/match.h"
#include "os/os.h"

namespace {

// Beside the seeds of fuzz/match_name.cc, which has a second matcher.
TEST(Match, OnePattern) {
  EXPECT_TRUE(match_name("*.c", "a.c") && match_name("\xE4?", "\xE4\xF6"));
  EXPECT_FALSE(match_name("a*c", "abcc") || match_name("*?c", "abc"));
  EXPECT_FALSE(match_name(nullptr, "a") || match_name("a", nullptr));
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
