// Names and numbers as a person reads, compares and cuts them.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "app/format/cut.h"
#include "app/format/folding.h"
#include "app/format/words.h"
#include "app/model/name_filter.h"

namespace console {
namespace {

TEST(Folding, CaseAndAccentsDoNotCount) {
  const char* const cases[][2] = {
      {"Émile Åström", "emile astrom"},
      {"e\u0301cole", "ecole"},  // a letter and its accent apart
      {"Straße ŒUVRE", "strasse oeuvre"},
      {"Ἀθήνα ΣΊΣΥΦΟΣ", "αθηνα σισυφοσ"},
      {"Ёлка Й", "елка й"},
      {"и\u0306", "й"},
      {"Ǆ ÿ Ž ɏ ӿ Ῥ", "dz y z y ӿ ρ"},
      {"日本 😀 \xff\xc3", "日本 😀 \xff\xc3"},
  };
  for (const auto& c : cases) EXPECT_EQ(Folded(c[0]), c[1]);
}

TEST(NaturalOrder, IsThatOfAPerson) {
  // Each before the next.
  const std::vector<std::string> names = {"01.pdf",
                                          "1.pdf",
                                          "1 a.pdf",
                                          "2.pdf",
                                          "10.pdf",
                                          "9999999999999999999998",
                                          "10000000000000000000000",
                                          "Äpfel",
                                          "apfelbaum",
                                          "page 2 of 3.tif",
                                          "page 10.tif",
                                          "page 10 of 3.tif",
                                          "v1.9",
                                          "v1.10",
                                          "zebra",
                                          "Ωμέγα",
                                          "ёлка",
                                          "жук"};
  std::vector<std::string> sorted(names.rbegin(), names.rend());
  std::sort(sorted.begin(), sorted.end(), NaturalLess);
  EXPECT_EQ(sorted, names);
}

TEST(CutMiddle, KeepsBeginningAndEnding) {
  const struct {
    const char* name;
    int most;
    const char* cut;
  } cases[] = {
      {"short.pdf", 9, "short.pdf"},
      {"a long name of a report.pdf", 16, "a long n…ort.pdf"},
      {"a long name of a report.pdf", 7, "a ….pdf"},
      {"name.with-a-very-long-ending", 10, "name.w…ing"},
      {"abcdef", 0, "a…f"},
      {"ééééééééé", 5, "ééé…é"},
      {"x\u0301y\u0301z\u0301w\u0301v\u0301", 4, "x\u0301y\u0301…v\u0301"},
      {"👍🏽👍🏽👍🏽👍🏽", 3, "👍🏽…👍🏽"},
      {"👩‍👧👩‍👧👩‍👧👩‍👧", 3, "👩‍👧…👩‍👧"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CutMiddle(c.name, c.most), c.cut);
    EXPECT_LE(CharacterCount(CutMiddle(c.name, c.most)), std::max(c.most, 3));
  }
  for (size_t room = 0; room < 40; ++room) {
    const std::string cut = CutMiddleTo("a long näme of a report.pdf",
                                        [&](const std::string& s) { return s.size() <= room; });
    EXPECT_LE(cut.size(), std::max<size_t>(room, 5));
    EXPECT_TRUE(room < 14 || cut.ends_with(".pdf")) << cut;
  }
}

TEST(Words, OfNumbers) {
  EXPECT_EQ(NumberText(0) + " " + NumberText(999) + " " + NumberText(-100000), "0 999 -100,000");
  EXPECT_EQ(NumberOf(1234567, "file", "files"), "1,234,567 files");
  EXPECT_EQ(MissingText({"a", "b, c"}), "2 files are missing: “a”, “b, c”");
}

TEST(NameFilter, TakesPatternsAndParts) {
  const struct {
    const char* filter;
    std::vector<const char*> taken, left;
  } cases[] = {
      {"", {"", "a"}, {}},
      {" , ", {"a"}, {}},
      {"*.pdf, *.TIF", {"A.PDF", "b.tif", ".pdf"}, {"a.pdf.txt", "tif"}},
      {"resume", {"Mon Résumé.doc", "RESUME"}, {"resum"}},
      {"img?.png", {"img1.png", "imgé.png", "IMGя.png"}, {"img.png", "img12.png"}},
      {"*?b", {"aab", "xyb"}, {"b"}},
      {"a*b*c", {"abc", "axxbyybc"}, {"abcd", "acb"}},
      {"*", {"", "a"}, {}},
      {"a b,x", {"a b", "x.y"}, {"ab"}},
  };
  for (const auto& c : cases) {
    const NameFilter filter(c.filter);
    for (const char* name : c.taken) EXPECT_TRUE(filter.Matches(name)) << c.filter << " " << name;
    for (const char* name : c.left) EXPECT_FALSE(filter.Matches(name)) << c.filter << " " << name;
  }
  // No name takes long, whatever the pattern.
  EXPECT_FALSE(NameFilter("*a*a*a*a*a*a*a*a*a*a*b").Matches(std::string(255, 'a')));
}

}  // namespace
}  // namespace console
