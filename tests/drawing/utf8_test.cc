// UTF-8 text: where the toolkit's set and it must agree, clusters, fonts that stand in, boxes.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <climits>
#include <cstdlib>
#include <filesystem>

#include "platform/fonts/fonts.h"
#include "platform/fonts/glyphs.h"
#include "platform/graphics/font_library.h"
#include "platform/text/mac_roman.h"
#include "platform/theme/text.h"
#include "platform/theme/theme.h"
#include "tests/os/scratch.h"
#include "tests/support/canvas.h"

using namespace platform;
using testkit::Canvas;
namespace fs = std::filesystem;

namespace {

const fs::path kFonts = "/usr/share/fonts/truetype";

// Each test has a new folder of fonts, and none of them has been asked for yet.
class Utf8Text : public testing::Test {
 protected:
  void SetUp() override {
    XWF_NORMAL = nullptr;
    Begin();
    setenv("XW_FONTS", scratch_.path().c_str(), 1);
  }
  void TearDown() override {
    FinishFonts();
    FinishFontLibrary();
  }
  static void Begin() {
    FinishFonts();
    FinishFontLibrary();
  }
  void Use(const fs::path& file, const std::string& as = "") {
    ASSERT_TRUE(fs::exists(file)) << file << " is missing: see tools/setup";
    fs::create_symlink(file, scratch_.At(as.empty() ? file.filename().string() : as));
  }
  void UseScripts() {
    Use(kFonts / "dejavu/DejaVuSans.ttf");
    Use(kFonts / "droid/DroidSansFallbackFull.ttf");
    for (const char* script : {"Devanagari", "Thai"})
      Use(kFonts / "noto" / (std::string("NotoSans") + script + "-Regular.ttf"));
  }

  const Scratch scratch_;
};

XwFont* Dejavu() {
  return LoadFont("DejaVu Sans", 13, 0);
}

std::vector<uint32_t> Drawn(XwFont* font, const std::string& utf8, double scale = 1) {
  Canvas canvas(200, 24, scale);
  XwDrawTextUtf8(font, 0x800, 3, 3, 0, 0, utf8.c_str(), 0, 0xDDEEFF);
  std::vector<uint32_t> pixels;
  for (int y = 0; y < canvas.surface().height; ++y)
    for (int x = 0; x < canvas.surface().width; ++x) pixels.push_back(canvas.at(x, y));
  return pixels;
}

// Where carets can stand.
std::vector<size_t> Stops(XwFont* font, const std::string& utf8) {
  TextLine line;
  LayOutText(static_cast<SizedFont*>(font->platform), utf8, &line);
  std::vector<size_t> stops;
  for (const TextCluster& c : line.clusters) stops.push_back(c.start);
  return stops;
}

std::string Trim(XwFont* font, const std::string& text, int width, int size = 300) {
  char out[300] = "untouched";
  XwTextTrimUtf8(font, text.c_str(), width, out, size);
  return out;
}
std::string Fit(XwFont* font, const std::string& text, int width) {
  char out[300] = "";
  XwTextFitUtf8(font, text.c_str(), width, out, sizeof out);
  return out;
}

}  // namespace

TEST_F(Utf8Text, TheToolkitsSetLooksTheSame) {
  UseScripts();
  XwFont* font = Dejavu();
  EXPECT_STREQ(XwTextFit(font, "WWWW", 45), "") << "four are not shortened";
  EXPECT_EQ(Fit(font, "WWWW", 45), "");
  for (int first = 1; first < 256; first += 15) {
    std::string mac;
    for (int c = first; c < first + 15 && c < 256; ++c) mac += char(c);
    const std::string utf8 = MacRomanToUtf8(mac.c_str());
    EXPECT_EQ(XwTextWidthUtf8(font, utf8.c_str()), XwTextWidth(font, mac.c_str())) << first;
    for (double scale : {1.0, 1.5}) {
      Canvas old(200, 24, scale), now(200, 24, scale);
      for (const auto& [w, h, flags] : {std::tuple{0, 0, 0x800}, {150, 22, 0x200}, {9, 9, 0}}) {
        old.Wipe(), now.Wipe();
        XW = &old.window();
        XwDrawText(font, flags, 1, 1, w, h, mac.c_str(), 0x0000FF, 0xDDEEFF);
        XW = &now.window();
        XwDrawTextUtf8(font, flags, 1, 1, w, h, utf8.c_str(), 0x0000FF, 0xDDEEFF);
        for (int y = 0; y < old.surface().height; ++y)
          for (int x = 0; x < old.surface().width; ++x)
            ASSERT_EQ(now.at(x, y), old.at(x, y)) << first << ": " << x << ", " << y;
      }
    }
    for (int width : {0, 20, 45, 80, 1000}) {
      const std::string trimmed = XwTextTrim(font, mac.c_str(), width);
      EXPECT_EQ(Trim(font, utf8, width), MacRomanToUtf8(trimmed.c_str()));
      const std::string fitted = XwTextFit(font, mac.c_str(), width);
      EXPECT_EQ(Fit(font, utf8, width), MacRomanToUtf8(fitted.c_str()));
    }
  }
}

TEST_F(Utf8Text, CaretsStandBetweenClusters) {
  UseScripts();
  XwFont* font = Dejavu();
  const struct {
    std::string text;
    std::vector<size_t> stops;
  } rows[] = {
      {"", {0}},
      {"a\u00e9\u4e2d\U0001F600", {0, 1, 3, 6, 10}},
      {"e\u0301x\u0323\u0302", {0, 3, 8}},  // composed, and what has no composition
      {"\u0301a", {0, 2, 3}},               // no letter before it
      {"\u0928\u093f\u0938\u094d", {0, 6, 12}},
      {"\u1112\u1161\u11ab\u1100", {0, 9, 12}},
      {"\u304b\u3099", {0, 6}},
      {"a\u200db", {0, 4, 5}},
      {"\U0001F468\u200d\U0001F469", {0, 11}},
      {"\U0001F44D\U0001F3FD!", {0, 8, 9}},
      {"\U0001F1E9\U0001F1EA\U0001F1EB", {0, 8, 12}},
      {"a\xff\xc3\xe4\xb8", {0, 1, 2, 3, 4, 5}},
      {"a\tb\x7f", {0, 1, 2, 3, 4}},
  };
  for (const auto& row : rows) EXPECT_EQ(Stops(font, row.text), row.stops) << row.text;
  EXPECT_EQ(XwTextWidthUtf8(font, "\u200b\u202e\t\ufe0f"), 0);
}

TEST_F(Utf8Text, MarksStandOverTheirLetters) {
  UseScripts();
  XwFont* font = Dejavu();
  const char* const same[][2] = {{"e\u0301", "\u00e9"},      {"o\u031b\u0323", "\u1ee3"},
                                 {"l\u030cx", "\u013ex"},  // wider than the letter
                                 {"\u304b\u3099", "\u304c"}, {"a\xff", "a\ufffd"},
                                 {"a\u200bb", "ab"}};
  for (const auto& [text, other] : same) EXPECT_EQ(Drawn(font, text), Drawn(font, other)) << text;
  for (const char* letter : {"x", "\u0e01", "\u0915"}) {
    const std::string marked = std::string(letter) + (*letter == 'x'        ? "\u0301"
                                                      : letter[1] == '\xb8' ? "\u0e35"
                                                                            : "\u0947");
    EXPECT_EQ(XwTextWidthUtf8(font, marked.c_str()), XwTextWidthUtf8(font, letter));
    EXPECT_NE(Drawn(font, marked), Drawn(font, letter));
  }
  // The marks of this font lie to the right of their pen, so they are drawn at the letter's.
  Use(kFonts / "dejavu/DejaVuSansMono.ttf");
  Begin();
  const auto right_of = [](const std::vector<uint32_t>& pixels) {
    size_t right = 0;
    for (size_t i = 0; i < pixels.size(); ++i)
      if ((pixels[i] & 0xFF) < 0x80) right = std::max(right, i % 200);
    return right;
  };
  font = LoadFont("DejaVu Sans Mono", 13, 0);
  EXPECT_EQ(right_of(Drawn(font, "x\u0301")), right_of(Drawn(font, "x")));
}

TEST_F(Utf8Text, AThemeTextIsCutOnlyWhereItDoesNotFit) {
  UseScripts();
  const int width = ThemeTextWidth("caf\u00e9", false) - 1;  // which is rounded up
  const auto drawn = [width](int more) {
    Canvas c(80, 24);
    ThemeTextStyle style;
    style.justification = TextJustification::kLeft;
    DrawThemeText(c.context(), {3, 3, 3 + width + more, 21}, "caf\u00e9", style);
    return std::vector<uint32_t>(c.surface().pixels, c.surface().pixels + 80 * 24);
  };
  EXPECT_EQ(drawn(0), drawn(9));
  EXPECT_NE(drawn(-1), drawn(9));
  FinishTheme();
}

TEST_F(Utf8Text, WhatTheFontLacksComesFromTheFirstFileThatHasIt) {
  Use(kFonts / "droid/DroidSansFallbackFull.ttf", "c.ttf");
  Use(fs::path(FONTS) / "plain.ttf");
  XwFont* font = LoadFont("Quorvik Test", 10, 0);
  EXPECT_EQ(XwTextWidthUtf8(font, "a\u4e2db"), 6 + 10 + 6);
  EXPECT_EQ(font->ascent + font->descent, 10) << "the line is as high as the font";
  const auto han = Drawn(font, "\u4e2d");
  // DejaVu has no Chinese, and comes before what has; of Greek it is the first.
  const auto greek = Drawn(font, "\u03b1");
  Begin();
  Use(kFonts / "dejavu/DejaVuSans.ttf", "b.ttf");
  font = LoadFont("Quorvik Test", 10, 0);
  EXPECT_EQ(Drawn(font, "\u4e2d"), han);
  EXPECT_NE(Drawn(font, "\u03b1"), greek);
  EXPECT_EQ(XwTextWidthUtf8(font, "c\u030c"), 6) << "the font's own letter stays";
  EXPECT_EQ(XwTextWidthUtf8(LoadFont("Quorvik Test", 1000, 0), "\u03b3"), 592) << "rounded";
  Begin();
  Use(fs::path(FONTS) / "mono.ttf", "a.ttf");
  font = LoadFont("Quorvik Test", 10, 0);
  EXPECT_EQ(XwTextWidthUtf8(font, "\u03a9"), 7) << "of the toolkit's set, the sans-serif has it";
}

TEST_F(Utf8Text, WhatNoFontHasIsABoxWithItsNumber) {
  Use(fs::path(FONTS) / "plain.ttf");
  XwFont* font = LoadFont("Quorvik Test", 13, 0);
  EXPECT_EQ(XwTextWidthUtf8(font, "\u4e2d"), 13);
  EXPECT_EQ(XwTextWidthUtf8(font, "\U0001F600"), 17);
  EXPECT_NE(Drawn(font, "\u4e2d"), Drawn(font, "\u4e2e"));
  EXPECT_NE(Drawn(font, "\U0001F600"), Drawn(font, "\U0010F600"));
  // The frame of 11 by 15 pixels around "4E" over "2D": 11 and 12 pixels, and 9 and 12.
  Canvas canvas(20, 24);
  XwDrawTextUtf8(font, 0, 2, 3, 0, 0, "\u4e2d", 0, -1);
  EXPECT_EQ(canvas.Count(0xFF000000u), 2 * 11 + 2 * 13 + 9 + 10 + 11 + 10);
  for (double scale : {0.5, 1.25, 2.0, 20.0}) {
    Canvas scaled(20, 24, scale);
    XwDrawTextUtf8(font, 0, 2, 3, 0, 0, "\u4e2d\U0010FFFF", 0, -1);
    EXPECT_GT(scaled.Count(0xFF000000u), 0) << scale;
  }
}

// However many characters are drawn, the masks of a size take a bounded amount of memory.
TEST_F(Utf8Text, MasksAreDroppedBeforeTheyFillTheMemory) {
  UseScripts();
  XwFont* font = LoadFont("DejaVu Sans", 200, 0);
  Canvas canvas(20, 20);
  for (char32_t c = 0x4E00; c < 0x5200; ++c) {
    char utf8[5] = {};
    PutUtf8(c, utf8);
    XwDrawTextUtf8(font, 0, 0, 0, 0, 0, utf8, 0, -1);
  }
  const auto& sets = static_cast<SizedFont*>(font->platform)->sets;
  ASSERT_EQ(sets.size(), 1u);
  EXPECT_LT(sets[0]->masks.size(), size_t{17} << 20);
}

TEST_F(Utf8Text, AFontThatIsRemovedShowsBoxes) {
  UseScripts();
  XwFont* font = Dejavu();
  EXPECT_GT(XwTextWidthUtf8(font, "a"), 0);
  fs::remove(scratch_.At("DroidSansFallbackFull.ttf"));
  EXPECT_EQ(XwTextWidthUtf8(font, "\u4e2d"), 13);
  Begin();
  const auto box = Drawn(Dejavu(), "\u4e2d");
  Begin();
  Use(kFonts / "droid/DroidSansFallbackFull.ttf");
  EXPECT_NE(Drawn(Dejavu(), "\u4e2d"), box) << "after a new start it is there";
}

// What is no font, and what must not be waited for.
TEST_F(Utf8Text, FoldersOfAnythingEnd) {
  Use(kFonts / "dejavu/DejaVuSans.ttf", "z.ttf");
  ASSERT_EQ(mkfifo(scratch_.At("a.ttf").c_str(), 0600), 0);
  scratch_.File("empty.ttf");
  scratch_.File("text.ttf", "no font");
  scratch_.Folder("folder.ttf");
  EXPECT_GT(XwTextWidthUtf8(Dejavu(), "text \u4e2d"), 0);
  for (const char* folder : {"/proc", "/dev", "/", "/proc/self/fd", "/nowhere"}) {
    Begin();
    setenv("XW_FONTS", folder, 1);
    EXPECT_EQ(XwTextWidthUtf8(Dejavu(), "text \u4e2d"), 0) << folder;
  }
}

TEST_F(Utf8Text, ResultsAreCutBetweenCharacters) {
  Use(fs::path(FONTS) / "plain.ttf");
  XwFont* font = LoadFont("Quorvik Test", 10, 0);
  const struct {
    const char* text;
    int width, size;
    const char* result;
    int length;
  } rows[] = {{"caf\u00e9s", 100, 300, "caf\u00e9s", 6},
              {"caf\u00e9s", 25, 300, "caf\u00e9", 5},
              {"caf\u00e9s", 25, 5, "caf", 5},
              {"caf\u00e9s", 24, 300, "caf", 3},
              {"e\u0301e\u0301", 7, 300, "e\u0301", 3},
              {"e\u0301e\u0301", 6, 300, "", 0},
              {"a\xff", 100, 300, "a\ufffd", 4},
              {"a\xff", 100, 4, "a", 4},
              {"\U0001F600b", 100, 4, "", 5},
              {"\xf0\x80\x81\x81", 100, 300, "\ufffd\ufffd\ufffd\ufffd", 12},
              {"abc", 100, 1, "", 3},
              {"abc", 100, 0, "untouched", 3},
              {"abc", INT_MIN, 300, "", 0},
              {"abc", INT_MAX, 300, "abc", 3}};
  for (const auto& row : rows) {
    EXPECT_EQ(Trim(font, row.text, row.width, row.size), row.result) << row.text << row.width;
    EXPECT_EQ(XwTextTrimUtf8(font, row.text, row.width, nullptr, 300), row.length) << row.text;
  }
  // Clusters count as characters do in the other call: "abcdefgh" gives "ab...gh" there.
  EXPECT_EQ(Fit(font, "a\u0301bcdefge\u0301", 54), "a\u0301b...ge\u0301");
  EXPECT_EQ(Fit(font, "\xff\xff\xff\xff\xff", 35), "\ufffd...");
  EXPECT_EQ(Fit(font, "e\u0301e\u0301e\u0301e\u0301", 30), "") << "four clusters";
  char same[300] = "abcdefgh";
  EXPECT_EQ(XwTextFitUtf8(font, same, 54, same, sizeof same), 7);
  EXPECT_STREQ(same, "ab...gh");
  std::string long_text(100000, 'x');
  EXPECT_EQ(XwTextTrimUtf8(font, long_text.c_str(), INT_MAX, nullptr, 0), 100000);
  EXPECT_EQ(XwTextFitUtf8(font, nullptr, 100, same, sizeof same), 0);
}
