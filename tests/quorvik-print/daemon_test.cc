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

TEST_F(Cli, NumbersPrintersAndPrintingAgain) {
  const std::string file = daemon_.WriteFile("file", "text");
  const std::string config =
      daemon_.WriteFile("config",
                        "[printer]\nname=P\nrate=0\n[printer]\nname=Q\nrate=0\n"
                        "[profile]\nname=Fine\nprinter=P\n");
  daemon_.Start({"--config", config});
  const auto ordered = [&] {
    std::string numbers;
    const std::string list = Run({"queue", "--tsv"}).out;
    for (size_t at = 0; (at = list.find('\n', at)) + 1 < list.size(); ++at) numbers += list[at + 1];
    return numbers;
  };
  EXPECT_EQ(Run({"pause", "P", "Q"}).out, "paused P\npaused Q\n");
  EXPECT_TRUE(Has(Run({"print", "--profile=Fine", file}).out, " 1 file, "));
  EXPECT_EQ(Run({"print", file, file, file}).code, 0);
  EXPECT_EQ(Run({"change", "4", "--before", "2"}).code, 0);
  EXPECT_EQ(ordered(), "1423");
  EXPECT_EQ(Run({"remove", "2"}).code, 0);
  // A profile that the new printer lacks is no reason to drop it: the job stays where it is.
  Outcome outcome = Run({"move", "P", "Q"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(Has(outcome.error, "1 file, ")) << outcome.error;
  EXPECT_TRUE(Has(Run({"queue", "--printer=P", "--state=waiting"}).out, "1 "));
  EXPECT_EQ(Run({"refuse", "Q"}).code, 0);
  outcome = Run({"print", "--printer=Q", file});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(Has(outcome.error, "the printer takes no new jobs")) << outcome.error;
  EXPECT_EQ(Run({"resume", "P", "Q"}).code, 0);
  EXPECT_EQ(Run({"print", "--wait", file}).code, 0);
  EXPECT_TRUE(Eventually([&] { return !Has(Run({"queue"}).out, "waiting"); }));
  EXPECT_EQ(Run({"again", "1"}).code, 0);
  EXPECT_TRUE(Eventually([&] { return Has(Run({"queue", "1", "--tsv"}).out, "\n1\tdone\t"); }));
  EXPECT_EQ(Run({"remove", "--all", "--yes"}).code, 0);
  EXPECT_EQ(Run({"queue", "--json"}).out, "[]\n");
}

}  // namespace
