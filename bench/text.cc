// What a text of every script costs: twenty Latin characters by the UTF-8 call beside the 8-bit
// call, twenty Chinese ones, warm, beside pixman's compositing of the same masks, and laying out a
// long line. The two of a pair take turns; a ratio is that of their fastest rounds.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "bench/draw_floors.h"
#include "tests/support/canvas.h"

namespace {

constexpr int kRounds = 400, kCalls = 500;
constexpr int kSize = 13;
const char* const kLatin = "Quick wafting zephyr";
const char32_t kChinese[] = U"你好世界印刷清样文件颜色校准打机队列纸张";

double Seconds(const std::function<void(int)>& call) {
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < kCalls; ++i) call(i);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

struct Pair {
  double ours = 1e9, floor = 1e9;
  double ratio() const { return ours / floor; }
};

Pair Compare(const std::function<void(int)>& ours, const std::function<void(int)>& floor) {
  Pair fastest;
  for (int i = 0; i < kRounds; ++i) {
    fastest.ours = std::min(fastest.ours, Seconds(ours));
    fastest.floor = std::min(fastest.floor, Seconds(floor));
  }
  return fastest;
}

std::string Utf8(const std::u32string& text) {
  std::string utf8;
  for (char32_t c : text)
    for (int byte : {0xE0 | int(c >> 12), 0x80 | int(c >> 6 & 63), 0x80 | int(c & 63)})
      utf8 += char(byte);
  return utf8;
}

void Tell(const char* name, const Pair& pair) {
  printf("%-8s %8.1f ns each, floor %8.1f, ratio %.2f\n", name, pair.ours / kCalls * 1e9,
         pair.floor / kCalls * 1e9, pair.ratio());
}

}  // namespace

int main() {
  testkit::Canvas canvas(800, 600);
  XwFont* font = LoadFont("DejaVu Sans", kSize, 0);
  const floors::Buffer buffer{canvas.surface().pixels, 800, 600, canvas.surface().stride};
  auto x = [](int i) { return i * 37 % 400; };
  auto y = [](int i) { return 10 + i * 53 % 500; };
  const Pair latin =
      Compare([&](int i) { XwDrawTextUtf8(font, 0, x(i), y(i), 0, 0, kLatin, 0x101010, -1); },
              [&](int i) { XwDrawText(font, 0, x(i), y(i), 0, 0, kLatin, 0x101010, -1); });
  const std::u32string characters = kChinese;
  const std::string chinese = Utf8(characters);
  floors::Glyphs glyphs(buffer, platform::FindFont("DejaVu Sans"), kSize, characters);
  std::string places;
  for (size_t i = 1; i <= characters.size(); ++i) places += char(i);
  const Pair cjk = Compare(
      [&](int i) { XwDrawTextUtf8(font, 0, x(i), y(i), 0, 0, chinese.c_str(), 0x101010, -1); },
      [&](int i) { glyphs.Draw(x(i), y(i) + 12, places); });
  Tell("latin", latin);
  Tell("cjk", cjk);
  std::string line;
  while (line.size() < 1 << 20) line += chinese;
  const double once = [&] {
    const auto begin = std::chrono::steady_clock::now();
    XwTextWidthUtf8(font, line.c_str());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }();
  printf("text latin_ratio=%.2f cjk_ratio=%.2f layout_ns_per_byte=%.2f\n", latin.ratio(),
         cjk.ratio(), once / double(line.size()) * 1e9);
}
