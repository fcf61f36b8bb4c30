// quorvik-print against the daemon.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

class Cli : public ::testing::Test {
 protected:
  Outcome Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"/usr/bin/env", "-C", daemon_.folder(), QUORVIK_PRINT});
    return RunProgram(arguments, {"QUORVIK_SERVER=" + std::string(daemon_.host())});
  }
  Daemon daemon_;
};

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(Cli, ListsAndGamut) {
  daemon_.Start();
  EXPECT_TRUE(Has(Run({"list"}).out, "Proof printer  idle"));
  EXPECT_TRUE(Has(Run({"profiles"}).out, "Fine"));
  EXPECT_EQ(Run({"profiles", "Nobody"}).out, "no profiles\n");
  std::ofstream(daemon_.Path("gamut/g.icc")) << "gamut";
  const std::string output = daemon_.folder() + "/got.icc";
  EXPECT_EQ(Run({"gamut", "g.icc", "--output", output}).code, 0);
  EXPECT_EQ(ReadWhole(output), "gamut");
  EXPECT_EQ(Run({"gamut", "g.icc"}).code, 0);  // beside it, under its own name
  EXPECT_EQ(ReadWhole(daemon_.folder() + "/g.icc"), "gamut");
  EXPECT_EQ(Run({"gamut", "none", "--output", output}).code, 1);
  EXPECT_EQ(Run({"gamut", "g.icc", "--folder", "none", "--output", output}).code, 1);
  EXPECT_EQ(ReadWhole(output), "gamut");
  EXPECT_EQ(Run({"gamut", "g.icc", "--output", "/nowhere/at/all"}).code, 4);
  // What is no file keeps its place.
  const std::string pipe = daemon_.folder() + "/pipe", link = daemon_.folder() + "/link";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::filesystem::create_symlink("got.icc", link);
  for (const std::string& path : {pipe, link, daemon_.folder()}) {
    EXPECT_EQ(Run({"gamut", "g.icc", "--output", path}).code, 4);
  }
  EXPECT_TRUE(std::filesystem::is_fifo(pipe) && std::filesystem::is_symlink(link));
}

}  // namespace
