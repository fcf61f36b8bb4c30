#include "printserver/visible.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

using nc::VisibleName;

// The borders of what is UTF-8, of what is seen, and of what reads like a sequence.
TEST(VisibleName, ShowsWhatItIs) {
  const struct {
    std::string name, shown;
  } rows[] = {
      {"", ""},
      {"Größe – 印刷 नमस्ते.pdf", "Größe – 印刷 नमस्ते.pdf"},
      {"a\x1f b\x7f", "a\\u{001F} b\\u{007F}"},
      {"\u0080\u009f\u00a0\u00a1", "\\u{0080}\\u{009F}\\u{00A0}\u00a1"},
      {"\u061b\u061c\u061d", "\u061b\\u{061C}\u061d"},
      {"\u1fff\u2000\u200f\u2010", "\u1fff\\u{2000}\\u{200F}\u2010"},
      {"\u2027\u2028\u202f\u2030\u3000", "\u2027\\u{2028}\\u{202F}\u2030\u3000"},
      {"\U000e0041", "\\u{E0041}"},
      {"\xc1\xbf|\xc2\xa1|\xdf\xbf", "\\xC1\\xBF|\u00a1|\u07ff"},
      {"\xe0\x9f\xbf|\xe0\xa0\x80", "\\xE0\\x9F\\xBF|\u0800"},
      {"\xed\x9f\xbf|\xed\xa0\x80|\xee\x80\x80", "\ud7ff|\\xED\\xA0\\x80|\ue000"},
      {"\xf0\x8f\xbf\xbf|\xf0\x90\x80\x80", "\\xF0\\x8F\\xBF\\xBF|\U00010000"},
      {"\xf4\x8f\xbf\xbf|\xf4\x90\x80\x80|\xf5", "\U0010ffff|\\xF4\\x90\\x80\\x80|\\xF5"},
      {"\xe2\x82|\xbf", "\\xE2\\x82|\\xBF"},
      {"C:\\x\\u{}\\u{12", "C:\\x\\u{}\\u{12"},
      {"\\x4g\\x41", "\\x4g\\\\x41"},
      {"\\\\u{1F}", "\\\\\\\\u{1F}"},
      {"\\\xff", "\\\\\\xFF"},
      {std::string("a\0b", 3), "a\\u{0000}b"},
  };
  for (const auto& row : rows) EXPECT_EQ(VisibleName(row.name), row.shown);
}

TEST(VisibleName, TwoNamesNeverReadTheSame) {
  const std::string alphabet = "\\xu{1}F\xff\x1f";
  std::map<std::string, std::string> seen;
  const auto add = [&](const auto& self, const std::string& name) -> void {
    const auto [at, added] = seen.emplace(VisibleName(name), name);
    ASSERT_TRUE(added) << at->first;
    if (name.size() == 5) return;
    for (char c : alphabet) self(self, name + c);
  };
  add(add, "");
}
