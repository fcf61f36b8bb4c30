// The running console, driven by tools/inspect, and a second start beside it.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/os/scratch.h"
#include "tests/support/x_server.h"

namespace {

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
                "printf 'click row rest.txt\\ntype 2 text-field Copies\\n"
                "wait text-field Copies --value 2\\nshot shot.png\\n' | " INSPECT
                " - || exit 3\n"
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
  EXPECT_GT(ReadFile(home.At("shot.png")).size(), 5000u);
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
