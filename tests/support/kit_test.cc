// The seed, the time limit, the trace.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/support/seed.h"
#include "tests/support/time_limit.h"
#include "tests/support/trace.h"

namespace support {
namespace {

TEST(Seed, IsTakenFromTheEnvironmentAndPrinted) {
  setenv("QUORVIK_SEED", "0x2A", 1);
  testing::internal::CaptureStdout();
  EXPECT_EQ(Seed(7), 42u);
  EXPECT_EQ(Seed(8), 42u);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "seed: QUORVIK_SEED=42\n");
}

TEST(Seed, ThatIsNoNumberIsRefused) {
  for (const char* text : {"", "12x", "-1", "99999999999999999999"}) {
    setenv("QUORVIK_SEED", text, 1);
    EXPECT_EXIT(Seed(7), testing::ExitedWithCode(2), "QUORVIK_SEED is no number") << text;
  }
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

TEST(Trace, MotionsOfOneWindowMerge) {
  EXPECT_EQ(MergeMotions("a 770 item 1\na 770 item 2\nb 770 item 3\na 770 item 4\n"
                         "a 771 item 4\na 770 item 5\n"),
            "a 770 item 2\nb 770 item 3\na 770 item 4\na 771 item 4\na 770 item 5\n");
}

}  // namespace
}  // namespace support
