// The main of every test program: a time limit for each test, --seconds=N (default 60; 0, as under
// a debugger: none).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

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
  double seconds = 60;
  if (argc > 1 && !strncmp(argv[1], "--seconds=", 10)) seconds = atof(argv[1] + 10);
  testing::UnitTest::GetInstance()->listeners().Append(new Limits(seconds));
  return RUN_ALL_TESTS();
}
