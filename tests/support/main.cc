// The main of every test program: a time limit for each test (QUORVIK_TEST_SECONDS, default 60; 0,
// as under a debugger: none).
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include "tests/support/time_limit.h"

namespace {

class Limits : public testing::EmptyTestEventListener {
 public:
  explicit Limits(double seconds) : seconds_(seconds) {}
  void OnTestStart(const testing::TestInfo& info) override {
    limit_.emplace(seconds_, (std::string(info.test_suite_name()) + "." + info.name()).c_str());
  }
  void OnTestEnd(const testing::TestInfo&) override { limit_.reset(); }

 private:
  double seconds_;
  std::optional<support::TimeLimit> limit_;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const char* wanted = getenv("QUORVIK_TEST_SECONDS");
  testing::UnitTest::GetInstance()->listeners().Append(
      new Limits(wanted != nullptr ? atof(wanted) : 60));
  return RUN_ALL_TESTS();
}
