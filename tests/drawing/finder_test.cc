// The remembered answers of the font finder: with a home, a configuration and font folders of the
// test's own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "platform/fonts/face.h"
#include "platform/fonts/finder.h"
#include "tests/os/scratch.h"
#include "toolkit/xw.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

class Finder : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(root_ / "fonts" / "deep");
    fs::create_directories(root_ / "home");
    std::ofstream(root_ / "fonts.conf")
        << "<?xml version=\"1.0\"?><fontconfig><dir>" << (root_ / "fonts").string() << "</dir><dir>"
        << (root_ / "later").string() << "</dir><cachedir>" << (root_ / "fontcache").string()
        << "</cachedir></fontconfig>";
    Install("plain.ttf", "fonts/deep");
    setenv("FONTCONFIG_FILE", (root_ / "fonts.conf").c_str(), 1);
    setenv("HOME", (root_ / "home").c_str(), 1);
    unsetenv("XDG_CACHE_HOME");
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XW_FONTS");
  }

  void Install(const char* file, const char* folder) {
    fs::create_directories(root_ / folder);
    fs::copy_file(fs::path(FONTS) / file, root_ / folder / file,
                  fs::copy_options::overwrite_existing);
  }
  fs::path Cache() { return root_ / "home/.cache/xw/fonts"; }

  // Runs in a process of its own, since answers are kept in memory too; true when it holds there.
  static bool InProcess(const std::function<bool()>& check) {
    pid_t child = fork();
    if (child == 0) _exit(check() ? 0 : 1);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  static bool FinderLoaded() {
    return ReadFile("/proc/self/maps").find("libfontconfig") != std::string::npos;
  }
  // Loads a font by family and style and looks at the name that was found.
  static bool Loads(const char* family, int style, const char* name, bool asked) {
    XwFont* f = LoadFont(family, 20, style);
    return std::string(f->name) == name && XwTextWidth(f, "x") > 0 && FinderLoaded() == asked;
  }

  const Scratch scratch_;
  const fs::path root_ = scratch_.path();
};

}  // namespace

TEST_F(Finder, WarmStartsDoNotAsk) {
  auto plain = [&](bool asked) {
    return InProcess([&] { return Loads("Quorvik Test", 3, "QuorvikTest", asked); });
  };
  EXPECT_TRUE(plain(true));
  EXPECT_EQ(ModeOf(Cache()), 0600u);
  EXPECT_TRUE(plain(false));
  EXPECT_TRUE(InProcess([] { return Loads("Quorvik Test", 0, "QuorvikTest", false); }));
  // A name that was never asked for.
  EXPECT_TRUE(InProcess([] { return Loads("Monaco", 0, "Monaco", true); }));
}

TEST_F(Finder, AnotherEnvironmentIsAskedAgain) {
  const auto plain = [](bool asked) {
    return InProcess([=] { return Loads("Quorvik Test", 0, "QuorvikTest", asked); });
  };
  EXPECT_TRUE(plain(true));
  EXPECT_TRUE(plain(false));
  fs::copy_file(root_ / "fonts.conf", root_ / "other.conf");
  setenv("FONTCONFIG_FILE", (root_ / "other.conf").c_str(), 1);
  EXPECT_TRUE(plain(true));
}

TEST_F(Finder, FontsInstalledLaterAreFound) {
  auto bold = [&](const char* name, bool asked) {
    return InProcess([&] { return Loads("Quorvik Test", 1, name, asked); });
  };
  for (const char* folder : {"fonts", "fonts/deep", "fonts/new", "later", "later/deeper"}) {
    fs::remove_all(root_ / "later");
    fs::remove_all(root_ / "fonts/new");
    fs::remove(root_ / "fonts/bold.ttf");
    fs::remove(root_ / "fonts/deep/bold.ttf");
    EXPECT_TRUE(bold("QuorvikTest", true)) << folder;
    EXPECT_TRUE(bold("QuorvikTest", false)) << folder;
    usleep(20000);  // font caches go by time stamps
    Install("bold.ttf", folder);
    EXPECT_TRUE(bold("QuorvikTest-Bold", true)) << folder;
    EXPECT_TRUE(bold("QuorvikTest-Bold", false)) << folder;
    usleep(20000);
  }
}

// Two fonts in one file: each has its number in it, and the answer keeps that number.
TEST_F(Finder, FontsOfACollectionAreToldApart) {
  fs::remove(root_ / "fonts/deep/plain.ttf");
  std::string file("ttcf\0\1\0\0\0\0\0\2", 12), fonts;
  const auto append = [](std::string* to, uint32_t word) {
    for (int shift : {24, 16, 8, 0}) *to += char(word >> shift);
  };
  for (const char* name : {"plain.ttf", "bold.ttf"}) {
    std::string font = ReadFile(fs::path(FONTS) / name);
    const uint32_t base = uint32_t(20 + fonts.size());
    append(&file, base);
    for (size_t table = 0; table < size_t(font[5]); ++table) {
      std::string moved;
      const auto* at = reinterpret_cast<const uint8_t*>(&font[12 + 16 * table + 8]);
      append(&moved, base + (at[0] << 24 | at[1] << 16 | at[2] << 8 | at[3]));
      font.replace(12 + 16 * table + 8, 4, moved);
    }
    fonts += font;
  }
  std::ofstream(root_ / "fonts/deep/both.ttc") << file + fonts;
  for (const bool asked : {true, false}) {
    EXPECT_TRUE(InProcess([=] {
      return Loads("Quorvik Test", 0, "QuorvikTest", asked) &&
             Loads("Quorvik Test", 1, "QuorvikTest-Bold", asked) &&
             XwTextWidth(LoadFont("Quorvik Test", 20, 0), "x") == 12 &&
             XwTextWidth(LoadFont("Quorvik Test", 20, 1), "x") == 14;
    }));
  }
}

// Fonts that stand in: asked for once a page and style, and an answer that is no font any more is
// passed over, whatever is in its place.
TEST_F(Finder, PagesOfOtherFontsAreRemembered) {
  Install("bold.ttf", "fonts/deep");
  const auto text = [](const char* utf8, bool asked, int width) {
    return InProcess([=] {
      const bool right = XwTextWidthUtf8(LoadFont("Liberation Mono", 20, 0), utf8) == width;
      return right && FinderLoaded() == asked;
    });
  };
  Install("mono.ttf", "fonts/deep");
  fs::copy_file("/usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf",
                root_ / "fonts/deep/han.ttf");
  EXPECT_TRUE(text("\u4e2d", true, 20));
  EXPECT_TRUE(text("\u4e2d", false, 20));
  EXPECT_TRUE(text("\u4e2d\u0915", true, 40)) << "another page; no font has it";
  EXPECT_TRUE(text("\u4e2d\u0915", false, 40));
  // In place, so that the folder's time stamp is the one before.
  const auto stamp = fs::last_write_time(root_ / "fonts/deep");
  fs::remove(root_ / "fonts/deep/han.ttf");
  ASSERT_EQ(mkfifo((root_ / "fonts/deep/han.ttf").c_str(), 0600), 0);
  fs::last_write_time(root_ / "fonts/deep", stamp);
  EXPECT_TRUE(text("\u4e2d", false, 20)) << "a box";
}

TEST_F(Finder, DamagedAnswersAreNotBelieved) {
  auto plain = [&] {
    return InProcess([&] { return Loads("Quorvik Test", 0, "QuorvikTest", true); });
  };
  Install("plain.ttf", "");  // a relative name would find it
  fs::current_path(root_);
  ASSERT_TRUE(plain());
  std::string good = ReadFile(Cache());
  std::string font = good.substr(good.find("nQuorvikTest\t"));
  std::string head = good.substr(0, good.size() - font.size());
  const std::string bad[] = {"",
                             "\n",
                             "xw fonts 0\n",
                             good.substr(0, good.size() - 1),
                             good.substr(0, good.size() / 2),
                             head + "nQuorvikTest\tplain.ttf\t0\t1000\t800\t-200\t600\n",
                             head + "nQuorvikTest\t/x.ttf\t-1\t1000\t800\t-200\t600\n",
                             head + "nQuorvikTest\t/x.ttf\t0\t0\t800\t-200\t600\n",
                             head + "nQuorvikTest\t/x.ttf\t0\t1000\t800\n",
                             head + "nQuorvikTest\t/x.ttf\t0\t1000\t800\t-200\t99999999999\n",
                             head + "nQuorvikTest\t/x.ttf\t0\t1000\t800\t-200\t600\tmore\n",
                             std::string(2 << 20, 'x') + "\n"};
  for (const std::string& text : bad) {
    std::ofstream(Cache(), std::ios::trunc) << text;
    EXPECT_TRUE(plain()) << text.substr(0, 200);
  }
  fs::remove(Cache());
  fs::create_symlink("/etc/passwd", Cache());
  EXPECT_TRUE(plain());
  EXPECT_FALSE(fs::is_symlink(Cache()));  // replaced, not followed
  fs::remove(Cache());
  ASSERT_EQ(mkfifo(Cache().c_str(), 0600), 0);
  EXPECT_TRUE(plain());
  EXPECT_TRUE(fs::is_regular_file(Cache()));
}

// The folder's time stamp does not tell that a file in it was written over.
TEST_F(Finder, FilesDamagedInPlaceLeaveTextReadable) {
  Install("bold.ttf", "fonts/deep");
  auto width = [](const char* name) {
    return InProcess([=] { return XwTextWidth(LoadFont(name, 20, 0), "text") > 0; });
  };
  for (const char* name : {"Quorvik Test", "No Such Font"}) ASSERT_TRUE(width(name));
  std::ofstream(root_ / "fonts/deep/plain.ttf", std::ios::trunc) << "no font";
  for (const char* name : {"Quorvik Test", "No Such Font"}) EXPECT_TRUE(width(name)) << name;
}

TEST_F(Finder, WithoutAPlaceForTheFile) {
  std::ofstream(root_ / "home/.cache") << "in the way";
  EXPECT_TRUE(InProcess([] { return Loads("Quorvik Test", 0, "QuorvikTest", true); }));
  EXPECT_TRUE(InProcess([] { return Loads("Quorvik Test", 0, "QuorvikTest", true); }));
}

TEST_F(Finder, NoFontAtAll) {
  fs::remove_all(root_ / "fonts");
  EXPECT_TRUE(InProcess([] {
    XwFont* f = LoadFont("Quorvik Test", 20, 0);
    return f->ascent == 20 && f->descent == -19 && XwTextWidth(f, "text") == 0;
  }));
}

// Names as font services give them, matched by hand.
TEST(Match, Order) {
  FontCatalogue c;
  auto add = [&](const char* file, const char* postscript, const char* full, const char* family,
                 int weight, int slant, int width) {
    FontEntry e;
    e.file = file;
    e.postscript = postscript;
    e.full_names = {full};
    e.families = {family};
    e.weight = weight;
    e.slant = slant;
    e.width = width;
    c.entries.push_back(e);
  };
  add("0", "NimbusSans-Light", "Nimbus Sans Light", "Nimbus Sans", 50, 0, 100);
  add("1", "NimbusSans-Bold", "Nimbus Sans Bold", "Nimbus Sans", 200, 0, 100);
  add("2", "NimbusSans-Italic", "Nimbus Sans Italic", "Nimbus Sans", 80, 100, 100);
  add("3", "NimbusSans-Regular", "Nimbus Sans Regular", "Nimbus Sans", 80, 0, 100);
  add("4", "NimbusSansNarrow-Bold", "Nimbus Sans Narrow Bold", "Nimbus Sans Narrow", 200, 0, 75);
  add("5", "Odd", "Odd Light", "Odd", 50, 0, 100);
  struct {
    const char *name, *file;
  } const cases[] = {{"NimbusSans-Bold", "1"},
                     {"Nimbus Sans Italic", "2"},
                     {"Nimbus Sans", "3"},
                     {"Helvetica", "3"},
                     {"Helvetica-Bold", "1"},
                     {"Helvetica-Italic", "2"},
                     {"Helvetica-Bold-Italic", nullptr},
                     {"Helvetica-Narrow", nullptr},
                     {"Helvetica-Narrow-Bold", "4"},
                     {"helvetica", nullptr},
                     {"Times", nullptr},
                     {"Odd", "5"},
                     {"Odd-Bold", nullptr},
                     {"Helvetica-Italic-Bold", nullptr}};
  for (const auto& k : cases) {
    const FontEntry* e = MatchFont(c, k.name);
    EXPECT_EQ(e ? e->file : "", k.file ? k.file : "") << k.name;
  }
}
