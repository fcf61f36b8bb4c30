// The remembered glyphs: with a cache folder, a configuration and font files of the test's own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "platform/fonts/state.h"
#include "tests/os/scratch.h"
#include "tests/support/canvas.h"
#include "toolkit/xw.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

const fs::path kFonts = "/usr/share/fonts/truetype/dejavu";

class GlyphFile : public testing::Test {
 protected:
  void SetUp() override {
    EndProgram();
    // Apart from where files come and go, since the font finder's answers go by time stamps.
    for (const char* folder : {"fonts", "etc"}) fs::create_directories(root_ / folder);
    for (const char* font : {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf"})
      fs::copy_file(kFonts / font, root_ / "fonts" / font);
    std::ofstream(root_ / "etc/fonts.conf")
        << "<?xml version=\"1.0\"?><fontconfig><dir>" << (root_ / "fonts").string()
        << "</dir><cachedir>" << (root_ / "fontcache").string() << "</cachedir></fontconfig>";
    setenv("FONTCONFIG_FILE", (root_ / "etc/fonts.conf").c_str(), 1);
    setenv("XDG_CACHE_HOME", root_.c_str(), 1);
    unsetenv("XW_FONTS");
    unsetenv("FREETYPE_PROPERTIES");
  }
  void TearDown() override { EndProgram(); }

  // What the next drawing finds is what the next program would.
  static void EndProgram() {
    FinishFonts();
    FinishFontLibrary();
  }
  static bool Opened() {
    for (const auto& face : Fonts().faces)
      if (face->handle.face()) return true;
    return false;
  }
  // A program that has drawn only what is remembered, which is little.
  void BeginWithFew() const;
  fs::path File() const { return root_ / "xw/glyphs"; }

  const Scratch scratch_;
  const fs::path root_ = scratch_.path();
};

std::vector<uint32_t> Drawn(int size, int style, const std::string& utf8, double scale) {
  testkit::Canvas canvas(240, 30, scale);
  XwDrawTextUtf8(LoadFont("DejaVu Sans", size, style), 0x800, 3, 3, 0, 0, utf8.c_str(), 0,
                 0xDDEEFF);
  std::vector<uint32_t> pixels;
  for (int y = 0; y < canvas.surface().height; ++y)
    for (int x = 0; x < canvas.surface().width; ++x) pixels.push_back(canvas.at(x, y));
  return pixels;
}

std::vector<std::vector<uint32_t>> DrawMuch() {
  std::vector<std::vector<uint32_t>> pictures;
  for (const double scale : {1.0, 1.5, 2.0})
    for (const int size : {11, 13})
      for (const int style : {0, 1})
        for (const char* text : {"Queue of 3 (12 pages), 4:07", "Gr\u00f6\u00dfe \u2026 \u00bd",
                                 "q\u0303 e\u0301 \u0416\u0438\u0437\u043d\u044c \u03a9"})
          pictures.push_back(Drawn(size, style, text, scale));
  return pictures;
}

std::string Few() {
  for (const int style : {0, 1}) Drawn(13, style, "a few e\u0301\u2026", 1);
  return "a few e\u0301\u2026";
}

void GlyphFile::BeginWithFew() const {
  EndProgram();
  fs::remove(File());
  Few();
  EndProgram();
  Few();
  EXPECT_FALSE(Opened());
}

std::vector<std::vector<uint32_t>> DrawRest() {
  return {Drawn(13, 0, "HIM \u0416\u0416", 1), Drawn(13, 0, "a few", 2),
          Drawn(20, 0, "Hello \u00e9", 1)};
}

}  // namespace

TEST_F(GlyphFile, DrawsTheSameAndOpensNoFont) {
  const auto made = DrawMuch();
  EXPECT_TRUE(Opened());
  EXPECT_FALSE(fs::exists(File()));
  EndProgram();
  EXPECT_EQ(ModeOf(File()), 0600u);
  EXPECT_EQ(DrawMuch(), made);
  EXPECT_FALSE(Opened());
  // What is not in it is made as ever, beside what is.
  fs::remove(File());
  const auto more = Drawn(13, 0, "Queue \u0130xyz", 1);
  EndProgram();
  fs::remove(File());
  Few();
  EndProgram();
  EXPECT_EQ(Drawn(13, 0, "Queue \u0130xyz", 1), more);
  EXPECT_TRUE(Opened());
}

TEST_F(GlyphFile, IsOnlyForTheSameFontAndTheSameMaking) {
  Few();
  EndProgram();
  const fs::path font = root_ / "fonts/DejaVuSans.ttf";
  const auto before = Drawn(13, 0, "a few", 1);
  EndProgram();
  const auto stamp = fs::last_write_time(font);
  {  // of the same size, in place, with the time of the one before
    std::string bytes = ReadFile(kFonts / "DejaVuSans-Bold.ttf");
    bytes.resize(fs::file_size(font));
    std::ofstream(font, std::ios::in | std::ios::out) << bytes;
  }
  fs::last_write_time(font, stamp);
  EXPECT_NE(Drawn(13, 0, "a few", 1), before);
  EndProgram();
  Drawn(13, 0, "a few", 1);
  EXPECT_FALSE(Opened()) << "remembered of the new one";
  EndProgram();
  setenv("FREETYPE_PROPERTIES", "autofitter:warping=1", 1);
  Drawn(13, 0, "a few", 1);
  EXPECT_TRUE(Opened());
  EndProgram();
  unsetenv("FREETYPE_PROPERTIES");
  fs::remove(File());
  setenv("XW_FONTS", (root_ / "fonts").c_str(), 1);
  Few();
  EndProgram();
  EXPECT_FALSE(fs::exists(File()));
}

// A program that has begun with what is remembered of a font draws the rest with that font, too.
TEST_F(GlyphFile, AFontThatIsReplacedStaysWhileAProgramRuns) {
  const auto rest = DrawRest();
  BeginWithFew();
  fs::copy_file(kFonts / "DejaVuSansMono.ttf", root_ / "new.ttf");
  fs::rename(root_ / "new.ttf", root_ / "fonts/DejaVuSans.ttf");
  EXPECT_EQ(DrawRest(), rest);
}

// A program that began before an update of the font ends after one that began behind it.
TEST_F(GlyphFile, TheNewerFontIsRemembered) {
  BeginWithFew();
  fs::copy_file(kFonts / "DejaVuSans.ttf", root_ / "new.ttf");
  std::ofstream(root_ / "new.ttf", std::ios::app) << "more";
  fs::rename(root_ / "new.ttf", root_ / "fonts/DejaVuSans.ttf");
  const pid_t other = fork();
  if (other == 0) {
    FinishFonts();
    DrawRest();
    FinishFonts();
    _exit(0);
  }
  waitpid(other, nullptr, 0);
  Drawn(14, 1, "bold", 1);
  EndProgram();
  DrawRest();
  EXPECT_FALSE(Opened());
}

TEST_F(GlyphFile, AFontThatIsGoneStaysWhileAProgramRuns) {
  const auto rest = DrawRest();
  BeginWithFew();
  fs::remove(root_ / "fonts/DejaVuSans.ttf");
  EXPECT_EQ(DrawRest(), rest);
  EndProgram();
  EXPECT_EQ(ParseGlyphCache(ReadFile(File())).faces.size(), 1u);
}

TEST_F(GlyphFile, ProgramsAddToIt) {
  Drawn(13, 0, "abc", 1);
  EndProgram();
  Drawn(20, 0, "xyz", 1);
  Drawn(13, 1, "abc", 1);
  EndProgram();
  Drawn(13, 0, "z", 1);
  EndProgram();
  const auto time = fs::last_write_time(File());
  for (const int style : {0, 1}) Drawn(13, style, "abc", 1);
  Drawn(13, 0, "z", 1);
  Drawn(20, 0, "xyz", 1);
  EXPECT_FALSE(Opened());
  EndProgram();
  EXPECT_EQ(fs::last_write_time(File()), time);
}

TEST_F(GlyphFile, StaysSmall) {
  std::string many;
  for (int page = 0; page < 12; ++page)
    for (int i = 0; i < 40; ++i)
      for (const int byte : {0xD0 + page % 2, 0x80 + i + page / 2}) many += char(byte);
  const auto draw_all = [&] {
    for (int size = 10; size < 60; size += 3)
      for (size_t at = 0; at < many.size(); at += 20)
        Drawn(size, 0, many.substr(at, 20) + "abc" + char('d' + size % 20), 2);
  };
  draw_all();
  EndProgram();
  EXPECT_GT(fs::file_size(File()), 20'000u);
  EXPECT_LE(fs::file_size(File()), 256u << 10);
  draw_all();
  EXPECT_FALSE(Fonts().keep_glyphs) << "nothing more fits";
  EndProgram();
  Drawn(10, 0, "abc", 2);
  EXPECT_FALSE(Opened());
}

// Each start after a first one at its scale opens no font, however much others have left.
TEST_F(GlyphFile, AFullOneHasRoomForThisProgram) {
  const auto draw_all = [](double scale) {
    for (const int size : {11, 15, 19})
      for (const int style : {0, 1})
        for (const char* text : {"ABCDEFGHIJKLMNOPQRS", "TUVWXYZ0123456789", "abcdefghijklmnopqrs",
                                 "tuvwxyz.,;:-!?()/"})
          Drawn(size, style, text, scale);
  };
  size_t largest = 0;
  for (const double scale : {1.0, 1.25, 1.5, 1.75, 1.0}) {
    draw_all(scale);
    EndProgram();
    largest = std::max(largest, size_t(fs::file_size(File())));
    EXPECT_LE(largest, 256u << 10);
    draw_all(scale);
    EXPECT_FALSE(Opened()) << scale;
    EndProgram();
  }
  EXPECT_GT(largest, 250u << 10);
}

TEST_F(GlyphFile, ADamagedOneIsNotThere) {
  Few();
  EndProgram();
  const std::string good = ReadFile(File());
  ASSERT_EQ(ParseGlyphCache(good).faces.size(), 2u);
  for (size_t at = 0; at < good.size(); ++at) {
    std::string bad = good;
    bad[at] = char(bad[at] ^ (1 + at % 255));
    ASSERT_TRUE(ParseGlyphCache(bad).faces.empty()) << at;
    ASSERT_TRUE(ParseGlyphCache(good.substr(0, at)).faces.empty()) << at;
  }
  EXPECT_TRUE(ParseGlyphCache(good + std::string(8, 0)).faces.empty());
}

// What has a right checksum may still be nonsense: all that is taken from it lies within it.
TEST_F(GlyphFile, NonsenseLeadsNowhereElse) {
  Few();
  EndProgram();
  const std::string good = ReadFile(File()).substr(24);
  std::mt19937 random(7);
  int taken = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string bad = good;
    for (unsigned n = 1 + random() % 3; n > 0; --n)
      bad[random() % (random() % 2 ? bad.size() : 300)] = char(random() % 2 ? random() : 0xFF);
    if (random() % 8 == 0) bad.resize(random() % bad.size() / 8 * 8);
    const std::string file = SealGlyphCache(bad);
    const GlyphCache cache = ParseGlyphCache(file);
    const auto* words = reinterpret_cast<const uint8_t*>(cache.words.data());
    for (const StoredFace& face : cache.faces)
      for (const StoredSet& set : face.sets)
        for (const StoredGlyph& g : set.glyphs) {
          const uint8_t* end = set.masks.data() + g.offset + g.bytes();
          ASSERT_TRUE(end >= words && end <= words + cache.words.size() * 8);
          ++taken;
        }
    if (round % 100 != 0) continue;
    std::ofstream(File(), std::ios::binary | std::ios::trunc) << file;
    Few();
    EndProgram();
  }
  EXPECT_GT(taken, 1000);
}
