// What the program is started with.
#include "app/work/arguments.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "app/work/running_console.h"
#include "tests/os/scratch.h"

namespace console {
namespace {

TEST(Arguments, OptionsEndBeforeFilesThatLookLikeThem) {
  const struct {
    std::vector<const char*> words;
    int what;
    std::vector<std::string> files;
  } kCases[] = {
      {{"a", "-", "b"}, Arguments::kRun, {"a", "-", "b"}},
      {{"--", "--help", "--"}, Arguments::kRun, {"--help", "--"}},
      {{"a", "--helped"}, Arguments::kWrong, {"a"}},
      {{""}, Arguments::kWrong, {}},
      {{"a", "--version", "-x"}, Arguments::kVersion, {"a"}},
  };
  for (const auto& k : kCases) {
    std::vector<const char*> words = {"quorvik"};
    words.insert(words.end(), k.words.begin(), k.words.end());
    const Arguments a = ReadArguments(int(words.size()), words.data());
    EXPECT_EQ(a.what, k.what) << k.words.back();
    EXPECT_EQ(a.files, k.files) << k.words.back();
  }
}

TEST(Arguments, FilesAreFoundFromTheCurrentFolder) {
  const Scratch files;
  const std::string root = std::filesystem::canonical(files.path());
  files.Folder("real/deep");
  files.File("real/x.pdf");
  files.Link("far", "real/deep");
  files.Link("loop", "loop");
  files.Link("y.pdf", "real/x.pdf");
  ASSERT_EQ(chdir(root.c_str()), 0);
  // A link's "..": the real folder's. A link keeps its name.
  const FilesToOpen looked =
      LookForFiles({"far/../x.pdf", ".//y.pdf", "far", "real/..", "/", "gone", "loop", "y.pdf/x",
                    "real/../y.pdf", "/dev/null"});
  EXPECT_EQ(looked.found,
            (std::vector<std::string>{root + "/real/x.pdf", root + "/y.pdf", root + "/far", root,
                                      "/", root + "/y.pdf", "/dev/null"}));
  EXPECT_EQ(looked.devices, std::vector<std::string>{"/dev/null"});
  EXPECT_EQ(looked.missing,
            (std::vector<std::string>{root + "/gone", root + "/loop", root + "/y.pdf/x"}));
}

TEST(Arguments, WithoutABusNobodyTakesFiles) {
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  EXPECT_FALSE(HandOverFiles({"/a"}));
}

}  // namespace
}  // namespace console
