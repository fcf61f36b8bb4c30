// A print in the running console, driven by tools/inspect: the program knows nothing of it, and the
// recording of it prints once more.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "tests/displays/program.h"
#include "tests/os/scratch.h"
#include "tests/printserverd/daemon.h"
#include "tests/support/x_server.h"

namespace {

using support::Eventually;
using testing_daemon::Daemon;

// What tools/inspect does, a line each; whether it could do all.
bool Inspect(const std::string& lines) {
  FILE* in = popen(INSPECT " -", "w");
  if (!in) return false;
  fputs(lines.c_str(), in);
  return pclose(in) == 0;
}

// The job's owner and copies, once it has been printed; "" when it does not come to that.
std::string PrintedJob(const Daemon& daemon) {
  std::string job;
  Eventually([&] {
    const testing_daemon::Outcome list = testing_daemon::RunProgram(
        {QUORVIK_PRINT, "--tsv", "queue"}, {std::string("QUORVIK_SERVER=") + daemon.host()});
    if (list.out.find("\tdone\t") == std::string::npos) return false;
    job = list.out;
    return true;
  });
  return job;
}

class Driven : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Displays, Driven, testing::Values("headless", "x11"));

TEST_P(Driven, PrintsADocumentAndSoDoesItsRecording) {
  const Scratch home;
  home.File("a.txt", "a few words\n");
  home.Folder("Jobs");
  Daemon daemon;
  daemon.Start();
  std::unique_ptr<support::XServer> server;
  if (GetParam() == std::string("x11"))
    server = std::make_unique<support::XServer>(
        std::vector<std::string>{"-screen", "0", "1280x1024x24"});
  setenv("XW_DISPLAY", GetParam(), 1);
  setenv("HOME", home.path().c_str(), 1);
  setenv("XDG_CONFIG_HOME", home.At(".config").c_str(), 1);
  setenv("QUORVIK_SERVER", daemon.host(), 1);
  setenv("XW_INSPECT", home.At(".socket").c_str(), 1);
  setenv("XW_RECORD", home.At(".recording").c_str(), 1);
  {
    Program console(QUORVIK);
    ASSERT_TRUE(Eventually([&] { return access(home.At(".socket").c_str(), F_OK) == 0; }));
    EXPECT_TRUE(
        Inspect("wait pop-up-button Printer --value 'Proof printer'\n"
                "wait row a.txt\n"
                "click row a.txt\n"
                "wait button Print\n"
                "type 2 text-field Copies\n"
                "click button Print\n"
                "wait row a.txt #2 --value printed\n"
                "shot '" +
                home.At(".shot.png") + "'\n"));
    EXPECT_GT(ReadFile(home.At(".shot.png")).size(), 5000u);
    EXPECT_EQ(console.End(), 0);
  }
  const std::string job = PrintedJob(daemon);
  EXPECT_NE(job.find("a.txt"), std::string::npos);
  daemon.Stop(SIGTERM);
  unsetenv("XW_RECORD");
  unsetenv("XW_INSPECT");
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_REPLAY", home.At(".recording").c_str(), 1);
  Daemon other;
  other.Start();
  setenv("QUORVIK_SERVER", other.host(), 1);
  EXPECT_EQ(Program(QUORVIK).Wait(), 0);
  EXPECT_NE(PrintedJob(other).find("a.txt"), std::string::npos);
}

// A second start hands its files to the console that runs, by the bus, and ends; there they are
// selected. The bus ends with the test, and the console before it.
TEST(SecondStart, HandsItsFilesToTheConsoleThatRuns) {
  const Scratch home;
  for (const char* name : {"a.txt", "b c.txt", "rest.txt"}) home.File(name, "words\n");
  support::XServer server(std::vector<std::string>{"-screen", "0", "1280x1024x24"});
  const std::string script =
      home.File("script",
                "cd \"$HOME\"\n"
                "XW_INSPECT=$HOME/socket " QUORVIK
                " & console=$!\n"
                "export XW_INSPECT=$HOME/socket\n"
                "for i in $(seq 300); do [ -S socket ] && break; sleep 0.1; done\n" INSPECT
                " wait row rest.txt\n"
                "for i in $(seq 300); do dbus-send --session --print-reply "
                "--dest=org.freedesktop.DBus / org.freedesktop.DBus."
                "GetNameOwner string:org.quorvik.Quorvik && break; sleep 0.1; done\n"
                "XW_INSPECT= timeout 60 " QUORVIK " a.txt 'b c.txt' && " INSPECT
                " wait status Message --value '2 files selected, 12 bytes' && " INSPECT
                " tree > tree\n"
                "kill $console; wait $console\n");
  setenv("XW_DISPLAY", "x11", 1);
  setenv("HOME", home.path().c_str(), 1);
  setenv("XDG_CONFIG_HOME", home.At(".config").c_str(), 1);
  setenv("QUORVIK_SERVER", "127.0.0.9:1", 1);
  unsetenv("XW_INSPECT");
  ASSERT_EQ(system(("dbus-run-session -- sh '" + script + "' > /dev/null 2>&1").c_str()), 0);
  const std::string tree = ReadFile(home.At("tree"));
  for (const char* name : {"a.txt", "b c.txt", "rest.txt"}) {
    const size_t at = tree.find(std::string("row \"") + name);
    ASSERT_NE(at, std::string::npos) << tree;
    const bool selected =
        tree.substr(at, tree.find('\n', at) - at).find("selected") != std::string::npos;
    EXPECT_EQ(selected, std::string(name) != "rest.txt") << tree;
  }
}

}  // namespace
