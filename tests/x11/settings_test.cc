// The scale of the desktop out of bytes that other programs publish.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/display/x11/x.h"

namespace platform::x11 {
namespace {

TEST(Scale, ComesInQuartersFromOneUp) {
  struct Row {
    double dpi, scale;
  };
  constexpr Row kRows[] = {{0, 1},      {72, 1},    {96, 1},  {100, 1}, {107, 1},   {109, 1.25},
                           {120, 1.25}, {144, 1.5}, {192, 2}, {288, 3}, {100000, 8}};
  for (const Row& row : kRows) EXPECT_EQ(ScaleOfDpi(row.dpi), row.scale) << row.dpi;
}

TEST(Scale, ResourcesNameTheDots) {
  struct Row {
    const char* text;
    double dpi;
  };
  constexpr Row kRows[] = {
      {"Xft.dpi:\t192\n", 192},
      {"Xft.dpi: 120", 120},
      {"a: 1\nXft.dpi:144.5\nb:", 144.5},
      {"Xft.dpi : 110\n", 110},
      {"Xft.dpix: 200\n", 0},
      {"xXft.dpi: 200\n", 0},
      {"Xft.dpi: many\n", 0},
      {"Xft.dpi: -5\n", 0},
      {"Xft.dpi: inf\n", 0},
      {"", 0},
      {"Xft.dpi", 0},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(DpiOfResources(row.text, strlen(row.text)), row.dpi) << row.text;
  }
}

// A settings property in either byte order.
class Settings {
 public:
  explicit Settings(bool big) : big_(big) {
    bytes = {uint8_t(big ? 1 : 0), 0, 0, 0};
    Number(7, 4);
    Number(3, 4);
    Head(1, "Net/ThemeName");
    Number(5, 4);
    for (char c : std::string("Plain")) bytes.push_back(uint8_t(c));
    bytes.resize(bytes.size() + 3);
    Head(2, "Some/Color");
    bytes.resize(bytes.size() + 8);
    Head(0, "Xft/DPI");
    Number(144 * 1024, 4);
  }
  std::vector<uint8_t> bytes;

 private:
  void Number(uint32_t value, int size) {
    for (int i = 0; i < size; ++i) {
      bytes.push_back(uint8_t(value >> 8 * (big_ ? size - 1 - i : i)));
    }
  }
  void Head(uint8_t type, const std::string& name) {
    bytes.push_back(type);
    bytes.push_back(0);
    Number(uint32_t(name.size()), 2);
    for (char c : name) bytes.push_back(uint8_t(c));
    bytes.resize((bytes.size() + 3) / 4 * 4);
    Number(0, 4);
  }
  bool big_;
};

TEST(Scale, SettingsNameTheDots) {
  for (bool big : {false, true}) {
    const Settings s(big);
    EXPECT_EQ(DpiOfSettings(s.bytes.data(), s.bytes.size()), 144);
    for (size_t size = 0; size < s.bytes.size(); ++size) {
      const std::vector<uint8_t> cut(s.bytes.begin(), s.bytes.begin() + long(size));
      EXPECT_EQ(DpiOfSettings(cut.data(), cut.size()), 0) << size;
    }
    // Any single byte may be wrong; nothing worse than a wrong figure follows.
    for (size_t at = 0; at < s.bytes.size(); ++at) {
      std::vector<uint8_t> bad = s.bytes;
      bad[at] ^= 0xFF;
      DpiOfSettings(bad.data(), bad.size());
    }
  }
}

}  // namespace
}  // namespace platform::x11
