#include "app/format/cut.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include "app/format/folding.h"
#include "printserver/visible.h"

namespace console {
namespace {

constexpr char kGap[] = "…";
constexpr int kShortest = 3;
// What an ending has beside it at least: "…7.pdf" is told from "…8.pdf".
constexpr int kBeforeEnding = 3;

// What stands on the character before it. Sorted.
constexpr struct {
  uint32_t first, last;
} kMarks[] = {
    {0x300, 0x36f},     {0x483, 0x489},     {0x591, 0x5bd},   {0x5bf, 0x5c7},   {0x610, 0x61a},
    {0x64b, 0x65f},     {0x670, 0x670},     {0x6d6, 0x6dc},   {0x6df, 0x6e8},   {0x6ea, 0x6ed},
    {0x730, 0x74a},     {0x8d3, 0x903},     {0x93a, 0x93c},   {0x93e, 0x94f},   {0x951, 0x957},
    {0x962, 0x963},     {0x981, 0x983},     {0x9bc, 0x9bc},   {0x9be, 0x9cd},   {0xa01, 0xa03},
    {0xa3c, 0xa51},     {0xa81, 0xa83},     {0xabc, 0xabc},   {0xabe, 0xacd},   {0xb01, 0xb03},
    {0xb3c, 0xb3c},     {0xb3e, 0xb57},     {0xbbe, 0xbcd},   {0xc00, 0xc04},   {0xc3e, 0xc56},
    {0xc81, 0xc83},     {0xcbc, 0xcbc},     {0xcbe, 0xcd6},   {0xd00, 0xd03},   {0xd3b, 0xd3c},
    {0xd3e, 0xd4d},     {0xdca, 0xddf},     {0xe31, 0xe31},   {0xe34, 0xe3a},   {0xe47, 0xe4e},
    {0xeb1, 0xeb1},     {0xeb4, 0xebc},     {0xec8, 0xecd},   {0x1ab0, 0x1aff}, {0x1dc0, 0x1dff},
    {0x20d0, 0x20f0},   {0x302a, 0x302f},   {0x3099, 0x309a}, {0xfe00, 0xfe0f}, {0xfe20, 0xfe2f},
    {0x1f3fb, 0x1f3ff}, {0xe0100, 0xe01ef},
};
constexpr uint32_t kJoiner = 0x200d;

bool IsMark(uint32_t code) {
  const auto* at = std::partition_point(std::begin(kMarks), std::end(kMarks),
                                        [code](const auto& m) { return m.last < code; });
  return at != std::end(kMarks) && at->first <= code;
}

// Where each character begins, and the end of the text.
std::vector<size_t> Starts(std::string_view text) {
  std::vector<size_t> starts;
  std::string_view left = text;
  bool joined = false;
  while (!left.empty()) {
    const size_t at = text.size() - left.size();
    const uint32_t code = nc::TakeCharacter(&left);
    const bool more = joined || code == kJoiner || IsMark(code);
    joined = code == kJoiner;
    if (!more || starts.empty()) starts.push_back(at);
  }
  starts.push_back(text.size());
  return starts;
}

std::string Cut(std::string_view text, const std::vector<size_t>& starts, int most) {
  const int count = int(starts.size()) - 1;
  if (count <= most) return std::string(text);
  const int kept = std::max(most, kShortest) - 1;
  const int most_tail = kept * 2 / 3;
  int tail = kept / 3;
  const int ending = CharacterCount(EndingOf(text)) + 1;
  if (ending > 1 && ending <= most_tail)
    tail = std::max(tail, std::min(ending + kBeforeEnding, most_tail));
  tail = std::max(tail, 1);
  std::string out(text.substr(0, starts[size_t(kept - tail)]));
  out += kGap;
  out += text.substr(starts[size_t(count - tail)]);
  return out;
}

}  // namespace

int CharacterCount(std::string_view utf8) {
  return int(Starts(utf8).size()) - 1;
}

std::string CutMiddle(std::string_view utf8, int most) {
  return Cut(utf8, Starts(utf8), std::max(most, kShortest));
}

std::string CutMiddleTo(std::string_view utf8,
                        const std::function<bool(const std::string&)>& fits) {
  const std::string whole(utf8);
  if (fits(whole)) return whole;
  const std::vector<size_t> starts = Starts(utf8);
  int low = kShortest, high = int(starts.size()) - 2;
  while (low < high) {
    const int middle = (low + high + 1) / 2;
    if (fits(Cut(utf8, starts, middle)))
      low = middle;
    else
      high = middle - 1;
  }
  return Cut(utf8, starts, low);
}

}  // namespace console
