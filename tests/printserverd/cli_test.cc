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
    arguments.insert(arguments.begin(), QUORVIK_PRINT);
    return RunProgram(arguments, {"QUORVIK_SERVER=" + std::string(daemon_.host())});
  }
  Daemon daemon_;
};

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(Cli, PrintHoldReleaseRemove) {
  daemon_.Start({"--rate", "0"});
  const std::string one = daemon_.WriteFile("one \xc3\xa4\n\x1b[1m\xc2\x9b.txt", "first");
  const std::string two = daemon_.WriteFile("two.txt", "");
  Outcome outcome = Run({"print", "--hold", "--copies=2", "--priority", "60", "--owner", "ann",
                         "--profile", "Fine", "--media", "A3", one, two});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.error, "");  // progress goes to terminals only
  ASSERT_GT(outcome.out.size(), 66U);
  const std::string id = outcome.out.substr(0, 32);
  outcome = Run({"queue"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(Has(outcome.out, id)) << outcome.out;
  EXPECT_TRUE(Has(outcome.out, "one \xc3\xa4??[1m?.txt")) << outcome.out;
  EXPECT_TRUE(Has(outcome.out, "held") && Has(outcome.out, "ann"));
  EXPECT_EQ(ReadWhole(daemon_.Path("jobs/" + id + ".doc")), "first");

  EXPECT_EQ(Run({"release", id.substr(0, 10)}).code, 0);
  EXPECT_TRUE(Eventually([&] { return Has(Run({"queue"}).out, "done"); }));
  EXPECT_EQ(Run({"hold", id}).code, 1);
  outcome = Run({"remove", id, "ffff", id});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(Has(outcome.error, "ffff: no such job")) << outcome.error;
  EXPECT_TRUE(Has(outcome.error, id + ": no such job")) << outcome.error;
  EXPECT_FALSE(Has(Run({"queue"}).out, id));
}

TEST_F(Cli, ListsAndGamut) {
  daemon_.Start();
  EXPECT_TRUE(Has(Run({"list"}).out, "Proof printer  idle"));
  EXPECT_TRUE(Has(Run({"profiles"}).out, "Fine"));
  EXPECT_EQ(Run({"profiles", "Nobody"}).out, "no profiles\n");
  EXPECT_EQ(Run({"scanners"}).out, "no scanners\n");
  EXPECT_EQ(Run({"queue"}).out, "no jobs\n");
  std::ofstream(daemon_.Path("gamut/g.icc")) << "gamut";
  const std::string output = daemon_.folder() + "/got.icc";
  EXPECT_EQ(Run({"gamut", "g.icc", "--output", output}).code, 0);
  EXPECT_EQ(ReadWhole(output), "gamut");
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

TEST_F(Cli, Failures) {
  const std::string file = daemon_.WriteFile("file", "x");
  Outcome outcome = Run({"queue"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_TRUE(Has(outcome.error, "no print server answers")) << outcome.error;
  daemon_.Start();
  const struct {
    std::vector<std::string> arguments;
    int code;
    std::string error;
  } cases[] = {
      {{}, 2, "which command?"},
      {{"fly"}, 2, "unknown command"},
      {{"print"}, 2, "of what?"},
      {{"print", "--copies", "0", file}, 2, "1 to 999"},
      {{"print", "--copies"}, 2, "wants a value"},
      {{"queue", "--loud"}, 2, "unknown option"},
      {{"queue", "much"}, 2, "too many words"},
      {{"print", daemon_.folder() + "/none"}, 4, "No such file"},
      {{"print", daemon_.folder()}, 4, "not a file"},
      {{"print", "--printer", "Nobody", file}, 1, "no such printer"},
      {{"print", daemon_.folder() + "/none", file}, 4, "No such file"},
      {{"--server", "256.1.1.1", "list"}, 3, "no host"},
  };
  for (const auto& row : cases) {
    outcome = Run(row.arguments);
    EXPECT_EQ(outcome.code, row.code) << outcome.error;
    EXPECT_TRUE(Has(outcome.error, row.error)) << outcome.error;
  }
  const int fd = daemon_.Connect();
  EXPECT_EQ(Jobs(fd).size(), 1U);  // the file that was named after one that is not there
  NC_Disconnect(fd);
  EXPECT_EQ(Run({"--help"}).code, 0);
  EXPECT_TRUE(Has(Run({"--help"}).out, "Exit codes"));
}

}  // namespace
