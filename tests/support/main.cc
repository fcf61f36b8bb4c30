// The main of every test program: a time limit for each test, --seconds=N (default 60; 0, as under
// a debugger: none), and the same surroundings for each test, so that a program runs whole and in
// any order.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/loop/start.h"
#include "tests/support/time_limit.h"

// Null in programs without a toolkit, and without a platform.
[[gnu::weak]] void DropSession();
namespace platform {
[[gnu::weak]] void FinishPlatform();
}

namespace {

// The environment and the working folder.
class Surroundings {
 public:
  Surroundings() {
    for (char** entry = environ; *entry; ++entry) entries_.push_back(*entry);
    if (!getcwd(folder_, sizeof folder_)) folder_[0] = 0;
  }
  void Restore() const {
    clearenv();
    for (const std::string& entry : entries_) {
      const size_t sign = entry.find('=');
      setenv(entry.substr(0, sign).c_str(), entry.c_str() + sign + 1, 1);
    }
    if (folder_[0] && chdir(folder_) != 0) abort();
  }

 private:
  std::vector<std::string> entries_;
  char folder_[PATH_MAX];
};

class EachTest : public testing::EmptyTestEventListener {
 public:
  explicit EachTest(double seconds) : seconds_(seconds) {}
  void OnTestStart(const testing::TestInfo& info) override {
    limit_.emplace(seconds_, (std::string(info.test_suite_name()) + "." + info.name()).c_str());
  }
  void OnTestEnd(const testing::TestInfo&) override {
    if (DropSession) DropSession();
    if (platform::FinishPlatform) platform::FinishPlatform();
    before_.Restore();
    limit_.reset();
  }

 private:
  double seconds_;
  std::optional<support::TimeLimit> limit_;
  const Surroundings before_;
};

}  // namespace

// The library that finds fonts loses some bytes of each configuration that it reads.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  double seconds = 60;
  if (argc > 1 && !strncmp(argv[1], "--seconds=", 10)) seconds = atof(argv[1] + 10);
  testing::UnitTest::GetInstance()->listeners().Append(new EachTest(seconds));
  return RUN_ALL_TESTS();
}
