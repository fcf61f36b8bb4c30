// The seed, the time limit, the leak guard.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "tests/support/leak_guard.h"
#include "tests/support/seed.h"
#include "tests/support/time_limit.h"
#include "toolkit/xw.h"

namespace support {
namespace {

// A process has one seed: each of these needs one of its own.
class SeedDeathTest : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(SeedDeathTest, IsTakenFromTheEnvironmentAndPrinted) {
  setenv("QUORVIK_SEED", "0x2A", 1);
  EXPECT_EXIT(
      {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        exit(Seed(7) == 42u && Seed(8) == 42u ? 0 : 1);
      },
      testing::ExitedWithCode(0), "^seed: QUORVIK_SEED=42\n$");
}

TEST_F(SeedDeathTest, ThatIsNoNumberIsRefused) {
  for (const char* text : {"", "12x", "-1", "99999999999999999999"}) {
    setenv("QUORVIK_SEED", text, 1);
    EXPECT_EXIT(Seed(7), testing::ExitedWithCode(2), "QUORVIK_SEED is no number") << text;
  }
}

// As the build file gives it to this program.
TEST(Environment, EveryEntryIsPassedOn) {
  const char *first = getenv("KIT_FIRST"), *second = getenv("KIT_SECOND");
  if (!first && !second) GTEST_SKIP() << "not run by the build's test driver";
  EXPECT_STREQ(first, "one");
  EXPECT_STREQ(second, "two words");
}

TEST(Dice, RepeatAndCoverTheirRange) {
  Dice a(7), b(7), c(8);
  EXPECT_EQ(a.Next(), b.Next());
  EXPECT_NE(a.Next(), c.Next());
  bool seen[5] = {};
  for (int i = 0; i < 1000; ++i) {
    const int n = a.Between(-2, 2);
    ASSERT_TRUE(n >= -2 && n <= 2);
    seen[n + 2] = true;
  }
  for (const bool s : seen) EXPECT_TRUE(s);
  const int any = a.Between(INT32_MIN, INT32_MAX);
  EXPECT_TRUE(any >= INT32_MIN && any <= INT32_MAX);
}

TEST(TimeLimit, TheOuterOneCountsAgainAfterTheInner) {
  EXPECT_DEATH(
      {
        TimeLimit outer(0.1, "outer");
        { TimeLimit inner(30, "inner"); }
        { TimeLimit none(0, "none"); }
        for (;;) pause();
      },
      "time limit passed: outer");
}

TEST(LeakGuard, NamesWhatIsLeft) {
  Measure();
  const Resources before = Measure();
  EXPECT_TRUE(NothingLeft(before, 4096));
  {
    std::unique_ptr<char[]> block(new char[100000]);
    block[0] = 1;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const testing::AssertionResult result = NothingLeft(before, 50000);
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("memory"), std::string::npos);
    EXPECT_NE(std::string(result.message()).find("descriptors"), std::string::npos);
    EXPECT_EQ(std::string(result.message()).find("windows"), std::string::npos);
    close(ends[0]);
    close(ends[1]);
    EXPECT_TRUE(NothingLeft(before, 200000));
  }
  EXPECT_TRUE(NothingLeft(before, 4096));
}

TEST(LeakGuard, CountsWindows) {
  setenv("XW_DISPLAY", "headless", 1);
  XwSession("kit", "Kit", 7);
  XwWindow* first = XwCreate(0, 10, 10, 100, 100, nullptr);
  XwCreate(first, 0, 0, 10, 10, nullptr);
  XwDestroy(XwCreate(0, 10, 10, 100, 100, nullptr));
  const Resources before = Measure();
  XwWindow* second = XwCreate(0, 10, 10, 100, 100, nullptr);
  EXPECT_NE(std::string(NothingLeft(before, 1 << 20).message()).find("windows"), std::string::npos);
  XwDestroy(second);
  EXPECT_EQ(Measure().windows, before.windows);
}

}  // namespace
}  // namespace support
