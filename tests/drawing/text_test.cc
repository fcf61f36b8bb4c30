// Fonts and text with fonts whose numbers can be worked out by hand: 1000 units an em, every
// character as wide as every other (plain 600 units, bold 700, narrow 400, bold italic 750).
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/fonts/fonts.h"
#include "platform/text/mac_roman.h"
#include "tests/support/canvas.h"

using namespace platform;
using testkit::Canvas;

// Before any font is asked for.
[[maybe_unused]] static const int kFontsChosen = setenv("XW_FONTS", FONTS, 1);

TEST(Fonts, StepsOfLookUp) {
  struct {
    const char* family;
    int size, style;
    const char* name;
    int advance;  // of one character at size 100
  } const cases[] = {
      {"Quorvik Test", 100, 0, "QuorvikTest", 60},
      {"Quorvik Test", 100, 1, "QuorvikTest-Bold", 70},
      {"Quorvik Test", 100, 2, "QuorvikTest", 60},  // no plain italic
      {"Quorvik Test", 100, 3, "QuorvikTest-Bold-Italic", 75},
      {"Quorvik Test", 100, 32, "QuorvikTest-Narrow", 40},
      {"Quorvik Test", 100, 33, "QuorvikTest-Bold", 70},  // narrow bold: narrow goes before bold
      {"Quorvik Test", 100, 34, "QuorvikTest-Narrow", 40},
      {"Quorvik Test Narrow", 100, 0, "Quorvik Test Narrow", 40},  // the family as given
      {"Monaco", 100, 0, "Monaco", 50},                            // by a stand-in
      {"Monaco", 100, 1, "Monaco", 50},
      {"No Such Font", 100, 1, "No Such Font", 60},  // drawn with another
  };
  for (const auto& c : cases) {
    XwFont* f = LoadFont(c.family, c.size, c.style);
    EXPECT_STREQ(f->name, c.name) << c.family << " " << c.style;
    EXPECT_EQ(f->style, c.style) << c.family;
    EXPECT_EQ(f->size, c.size);
    EXPECT_EQ(XwTextWidth(f, "x"), c.advance) << c.family << " " << c.style;
  }
}

TEST(Fonts, OnlyExactNamesCount) {
  EXPECT_NE(FindFont("Quorvik Test"), nullptr);       // full name and family
  EXPECT_NE(FindFont("QuorvikTest-Bold"), nullptr);   // PostScript name
  EXPECT_NE(FindFont("Quorvik Test Bold"), nullptr);  // full name
  for (const char* near : {"quorvik test", "Quorvik", "QuorvikTest-Light", "Helvetica", "", " "})
    EXPECT_EQ(FindFont(near), nullptr) << near;
  EXPECT_EQ(FindFont(nullptr), nullptr);
}

TEST(Fonts, Metrics) {
  struct {
    int size, ascent, descent, max_advance;
  } const cases[] = {{10, 8, 2, 6},   // 8.5 and 2.5, truncated
                     {13, 10, 3, 7},  // 10.9, 3.1, 7.8
                     {20, 16, 4, 12},       {1, 1, 0, 0},     {0, 0, 0, 0},
                     {1000, 800, 200, 600}, {-10, -7, -1, -6}};
  for (const auto& c : cases) {
    XwFont* f = LoadFont("Quorvik Test", c.size, 0);
    EXPECT_EQ(f->ascent, c.ascent) << c.size;
    EXPECT_EQ(f->descent, c.descent) << c.size;
    EXPECT_EQ(f->max_advance, c.max_advance) << c.size;
  }
  XwFont* missing = LoadFont("No Such Font", 13, 0);
  EXPECT_EQ(missing->ascent, 13);
  EXPECT_EQ(missing->descent, -12);
  EXPECT_EQ(missing->max_advance, 13);
  std::string name(300, 'n');
  EXPECT_EQ(std::strlen(LoadFont(name.c_str(), 12, 0)->name), 81u);
  EXPECT_STREQ(LoadFont(nullptr, 12, 0)->name, "");
}

TEST(Fonts, DashedNames) {
  struct {
    const char* xname;
    const char* name;
    int style, size;
  } const cases[] = {
      {"-*-quorvikTest-bold-r-normal-*-18-*-*-*-*-*-*-*", "QuorvikTest-Bold", 1, 18},
      {"-*-QuorvikTest-medium-r-narrow-*-10-*", "QuorvikTest-Narrow", 32, 10},
      {"-*-QuorvikTest-bold-r-narrow-*-10-*", "QuorvikTest-Bold", 1, 10},
      {"-*-QuorvikTest-bold-i-normal-*-10-*", "QuorvikTest-Bold-Italic", 3, 10},
      {"-*-QuorvikTest-bold-o-normal-*-10-*", "QuorvikTest-Bold", 1, 10},
      {"-*-QuorvikTest-Bold-I-Narrow-*-10x-*", "QuorvikTest", 0, 10},
      {"-*-QuorvikTest", "QuorvikTest", 0, 0},
      {"", "", 0, 0},
      {nullptr, "", 0, 0},
  };
  for (const auto& c : cases) {
    XwFont* f = XwLoadFont(c.xname);
    EXPECT_STREQ(f->name, c.name) << (c.xname ? c.xname : "null");
    EXPECT_EQ(f->style, c.style);
    EXPECT_EQ(f->size, c.size);
  }
  char field[200];
  EXPECT_STREQ(GetFontParm("a-b-c-", 1, field), "b");
  EXPECT_STREQ(GetFontParm("a-b-c-", -3, field), "a");
  EXPECT_STREQ(GetFontParm("a-b-c", 2, field), "c");
  EXPECT_STREQ(GetFontParm("a-b-c", 3, field), "");
  EXPECT_STREQ(GetFontParm("a-b-c", INT_MAX, field), "");
  EXPECT_EQ(std::strlen(GetFontParm(std::string(5000, 'x').c_str(), 0, field)), 199u);
  EXPECT_EQ(GetFontParm("a-b", 1, nullptr), nullptr);
}

// At size 10 a character is 6 pixels wide, at size 13 it is 7.8.
TEST(Text, Width) {
  XwFont* ten = LoadFont("Quorvik Test", 10, 0);
  XwFont* thirteen = LoadFont("Quorvik Test", 13, 0);
  EXPECT_EQ(XwTextWidth(ten, ""), 0);
  EXPECT_EQ(XwTextWidth(ten, nullptr), 0);
  EXPECT_EQ(XwTextWidth(nullptr, "abc"), 0);  // no session, no default font
  EXPECT_EQ(XwTextWidth(ten, "abcde"), 30);
  EXPECT_EQ(XwTextWidth(thirteen, "a"), 7);
  EXPECT_EQ(XwTextWidth(thirteen, "abcdefghi"), 70);   // 70.2
  EXPECT_EQ(XwTextWidth(thirteen, "abcdefghij"), 78);  // exactly
  EXPECT_EQ(XwTextWidth(ten, "a\n\tb\x7F"), 12);       // control characters do not advance
  XWF_NORMAL = ten;
  EXPECT_EQ(XwTextWidth(nullptr, "abc"), 18);
  std::string long_text(100000, 'x');
  EXPECT_EQ(XwTextWidth(ten, long_text.c_str()), 600000);
  EXPECT_EQ(XwTextWidth(LoadFont("Quorvik Test", INT_MIN, 0), "abc"), 0);
}

// The same columns show, whether the pen begins beyond the left edge or not.
TEST(Text, IsCutAtTheLeft) {
  XwFont* f = LoadFont("Quorvik Test", 13, 0);
  for (const double scale : {1.0, 1.25}) {
    Canvas cut(40, 20, scale), whole(60, 20, scale);
    XW = &cut.window();
    XwDrawText(f, 0, -10, 2, 0, 0, "abcdef", 0, -1);
    XW = &whole.window();
    XwDrawText(f, 0, 10, 2, 0, 0, "abcdef", 0, -1);
    const int shift = DeviceEdge(20, scale);
    for (int x = 0; x < cut.surface().width - 5; ++x)
      ASSERT_EQ(cut.at(x, 10), whole.at(x + shift, 10)) << scale << ": " << x;
  }
}

// What the font lacks comes from another, at that one's own width.
TEST(Text, MissingCharactersAreFoundElsewhere) {
  XwFont* f = LoadFont("Quorvik Test", 10, 0);
  EXPECT_EQ(XwTextWidth(f, "\xAA"), 7);  // the trade mark sign, first found in the bold font
  for (int c = 32; c < 256; ++c) {
    char text[2] = {char(c), 0};
    EXPECT_EQ(XwTextWidth(f, text) > 0, c != 127) << c;
  }
}

TEST(Text, Trim) {
  XwFont* f = LoadFont("Quorvik Test", 10, 0);
  struct {
    const char* text;
    int width;
    const char* result;
  } const cases[] = {{"abcdef", 36, "abcde"}, {"abcdef", 37, "abcdef"}, {"abcdef", 7, "a"},
                     {"abcdef", 6, ""},       {"abcdef", 0, ""},        {"abcdef", -5, ""},
                     {"", 100, ""},           {nullptr, 100, ""},       {"abc", INT_MAX, "abc"},
                     {"abc", INT_MIN, ""}};
  for (const auto& c : cases) EXPECT_STREQ(XwTextTrim(f, c.text, c.width), c.result) << c.width;
  // Compared untruncated: ten characters of size 13 are 78 pixels, nine 70.2.
  XwFont* thirteen = LoadFont("Quorvik Test", 13, 0);
  EXPECT_STREQ(XwTextTrim(thirteen, "abcdefghij", 78), "abcdefghi");
  EXPECT_STREQ(XwTextTrim(thirteen, "abcdefghij", 71), "abcdefghi");
  EXPECT_STREQ(XwTextTrim(thirteen, "abcdefghij", 70), "abcdefgh");
  std::string long_text(1000, 'x');
  EXPECT_EQ(std::strlen(XwTextTrim(f, long_text.c_str(), INT_MAX)), 199u);
  EXPECT_STREQ(XwTextTrim(f, XwTextTrim(f, "abcdef", 37), 13), "ab");  // its own result
}

// The search as a table of its attempts, written out for eight characters: limit = width - 6.
TEST(Text, Fit) {
  XwFont* f = LoadFont("Quorvik Test", 10, 0);
  struct {
    const char* text;
    int width;
    const char* result;
  } const cases[] = {
      {"abcdefgh", 55, "abcdefgh"},  // 48 < 49
      {"abcdefgh", 54, "ab...gh"},   // "abc...gh" is 48 as well, not less
      {"abcdefgh", 67, "abcdefgh"},
      {"abcdefgh", 49, "ab...gh"},
      {"abcdefgh", 43, "ab...h"},
      {"abcdefgh", 37, "a...h"},
      {"abcdefgh", 31, "a..."},
      {"abcdefgh", 30, ""},
      {"abcde", 37, "abcde"},
      {"abcde", 36, "a..."},
      {"abcde", 30, ""},
      {"abcd", 30, ""},
      {"abcd", 31, "abcd"},
      {"", 100, ""},
      {nullptr, 100, ""},
      {"abcdefgh", INT_MIN, ""},
      {"abcdefgh", INT_MAX, "abcdefgh"},
  };
  for (const auto& c : cases) EXPECT_STREQ(XwTextFit(f, c.text, c.width), c.result) << c.width;
  std::string long_text(1000, 'x');
  EXPECT_EQ(std::strlen(XwTextFit(f, long_text.c_str(), INT_MAX)), 199u);
  EXPECT_EQ(std::strlen(XwTextFit(f, long_text.c_str(), 600)), 98u);  // 98 * 6 < 594
}

// A block of size 10: columns 1..5 of its 6, the 7 rows above the baseline.
TEST(Text, DrawsWhereItMeasures) {
  XwFont* f = LoadFont("Quorvik Test", 10, 0);
  struct {
    int flags, w, h, x, y;  // where the first of "ab" begins, and its top row
  } const cases[] = {
      {0, 0, 0, 3, 5 + 1},            // free: ascent 8, blocks 7 high
      {0x400, 0, 30, 3, 5 + 1},       // free when either is 0
      {0x400, 40, 20, 3 + 5, 5 + 6},  // (20 - 10) / 2 + 1
      {0x200, 40, 20, 3 + 40 - 5 - 12, 5 + 6},
      {0, 40, 20, 3 + 14, 5 + 6},
      {0x600, 40, 20, 3 + 14, 5 + 6},
      {0x100, 41, 21, 3 + 14, 5 + 6},
      {0, 40, 7, 3 + 14, 5 - 1 + 1},  // -3 / 2 is -1
  };
  for (const auto& c : cases) {
    Canvas canvas(60, 40);
    XwDrawText(f, c.flags, 3, 5, c.w, c.h, "ab", 0x0000FF, -1);
    for (int y = 0; y < 40; ++y)
      for (int x = 0; x < 60; ++x) {
        int column = x - c.x;
        bool ink = column >= 0 && column < 12 && column % 6 >= 1 && column % 6 < 5 && y >= c.y &&
                   y < c.y + 7;
        ASSERT_EQ(canvas.at(x, y), ink ? 0xFFFF0000u : Canvas::kBlank)
            << c.flags << ": " << x << ", " << y;
      }
  }
}

TEST(Text, BackgroundsAndUnderline) {
  XwFont* f = LoadFont("Quorvik Test", 10, 0);
  struct {
    int flags, w, h;
    int32_t background;
    int background_pixels, ink;  // pixels of 0x00FF00 and of red
  } const cases[] = {
      {0, 0, 0, 0x00FF00, 12 * 10 - 56, 56},
      {0, 40, 20, 0x00FF00, 40 * 20 - 56, 56},
      {0, 40, 20, -1, 0, 56},
      {0, 40, 20, -5, 0, 56},
      {0, 40, 20, -2, 40 * 20 - 56, 56},  // the window's own background
      {0, 0, 0, -2, 12 * 10 - 56, 56},
      {0x800, 0, 0, -1, 0, 56 + 12},
      {0, 6, 20, 0x00FF00, 6 * 20, 0},  // nothing fits, the background stays
      {0, -6, 20, 0x00FF00, 0, 0},
  };
  for (const auto& c : cases) {
    Canvas canvas(60, 40);
    canvas.window().color = 0x00FF00;
    XwDrawText(f, c.flags, 3, 5, c.w, c.h, "ab", 0x0000FF, c.background);
    EXPECT_EQ(canvas.Count(0xFF00FF00u), c.background_pixels) << c.background << " " << c.w;
    EXPECT_EQ(canvas.Count(0xFFFF0000u), c.ink) << c.background << " " << c.w;
  }
  Canvas canvas(60, 40);
  XwDrawText(f, 0x800, 3, 5, 0, 0, "ab", 0x0000FF, -1);
  EXPECT_EQ(canvas.at(3, 15), 0xFFFF0000u);  // just below the descent
  char* kept = XwTextTrim(f, "kept", 100);
  XwDrawText(f, 0, 0, 0, 40, 20, "new", 0, -1);
  EXPECT_STREQ(kept, "new");
}

// At every scale the pen lies at the rounded product: no drift against the measured width.
TEST(Text, ScaledPens) {
  for (double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
    Canvas canvas(200, 20, scale);
    XwFont* f = LoadFont("Quorvik Test", 10, 0);
    XwDrawText(f, 0, 2, 0, 0, 0, "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", 0, -1);
    int middle = DeviceEdge(5, scale);
    for (int i = 0; i < 30; ++i) {
      // The middle of each block is full ink, the gap after it full background.
      double left = (2 + 6 * i) * scale;
      EXPECT_EQ(canvas.at(int(left + 3 * scale), middle), 0xFF000000u) << scale << " " << i;
      EXPECT_EQ(canvas.at(int(left + 0.5), middle), Canvas::kBlank) << scale << " " << i;
    }
  }
}

TEST(MacRoman, BothWaysAndBounds) {
  for (int c = 1; c < 256; ++c) {
    EXPECT_EQ(UnicodeToMacRoman(MacRomanToUnicode(uint8_t(c))), c);
    char text[2] = {char(c), 0};
    EXPECT_EQ(Utf8ToMacRoman(MacRomanToUtf8(text).c_str()), text);
  }
  EXPECT_EQ(MacRomanToUtf8("\x8A\xA5\xDB"), "\u00e4\u2022\u20ac");
  struct {
    const char *utf8, *mac;
  } const cases[] = {{"caf\u00e9", "caf\x8E"}, {"\u4e2d", "?"},
                     {"a\xC3", "a?"},          {"\xC0\xAF", "??"},
                     {"\xED\xA0\x80", "???"},  {"\xF4\x90\x80\x80", "????"},
                     {"\xE2\x82", "??"},       {"", ""},
                     {"\U0001F600!", "?!"}};
  for (const auto& c : cases) EXPECT_EQ(Utf8ToMacRoman(c.utf8), c.mac) << c.utf8;
  char out[4];
  EXPECT_EQ(MacRomanToUtf8("a\xDB", out, 4), 1u);  // three bytes do not fit any more
  EXPECT_STREQ(out, "a");
  EXPECT_EQ(MacRomanToUtf8("\xDB", out, 4), 3u);
  EXPECT_EQ(Utf8ToMacRoman("abcdef", out, 4), 3u);
  EXPECT_EQ(Utf8ToMacRoman("abc", out, 1), 0u);
  EXPECT_EQ(Utf8ToMacRoman("abc", nullptr, 0), 0u);
  EXPECT_EQ(Utf8ToMacRoman("a\u4e2db", out, 4, 0), 2u);
  EXPECT_EQ(MacRomanToUtf8(nullptr, out, 4), 0u);
}
