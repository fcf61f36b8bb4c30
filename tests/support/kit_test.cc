// The time limit and the leak guard see what they are for.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "tests/support/leak_guard.h"
#include "tests/support/time_limit.h"
#include "toolkit/xw.h"

namespace support {
namespace {

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
