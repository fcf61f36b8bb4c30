#include "app/panes/facts.h"

#include <algorithm>

namespace console {
namespace {

constexpr int kMostLines = 4;

}  // namespace

std::vector<std::string> FactLines(std::string value, int width) {
  XwFont* font = TheStyle().view;
  width -= kFactName;
  std::vector<std::string> lines;
  while (int(lines.size()) + 1 < kMostLines && XwTextWidthUtf8(font, value.c_str()) > width) {
    // A line has at least one character, however wide.
    size_t fits = size_t(XwTextTrimUtf8(font, value.c_str(), width + 1, nullptr, 0));
    if (fits == 0) fits = 1;
    while (fits < value.size() && (value[fits] & 0xC0) == 0x80) ++fits;
    const size_t blank = value.rfind(' ', fits);
    if (blank != std::string::npos && blank > fits / 2) fits = std::min(blank + 1, value.size());
    lines.push_back(value.substr(0, fits));
    value.erase(0, fits);
  }
  lines.push_back(value);
  return lines;
}

int FactsHeight(const std::vector<Fact>& facts, int width) {
  int height = 0;
  for (const Fact& fact : facts)
    height += kFactLine + int(FactLines(fact.value, width).size() - 1) * kNextFactLine;
  return height;
}

void DrawFact(Area* a, const char* name, const std::string& value, int32_t ink, int line) {
  const Style& l = TheStyle();
  const bool low = line < kFactLine;
  const std::vector<std::string> lines =
      low ? std::vector{CutToWidth(l.view, value, a->w - kFactName)} : FactLines(value, a->w);
  Area row = a->TakeTop(line);
  DrawLabel(l.small_text, Align::kLeft, row.TakeLeft(kFactName), name, l.second);
  DrawLabel(l.view, Align::kLeft, row, lines[0], ink);
  for (size_t i = 1; i < lines.size(); ++i) {
    row = a->TakeTop(kNextFactLine);
    row.TakeLeft(kFactName);
    DrawLabel(l.view, Align::kLeft, row, lines[i], ink);
  }
}

void CoverFacts(const std::vector<Fact>& facts, Area a, Hits* hits, int line) {
  for (const Fact& fact : facts) {
    const Area row = a.TakeTop(line < kFactLine ? line : FactsHeight({fact}, a.w));
    hits->Cover(row, {XWA_LABEL, 0, fact.name, fact.value, line < kFactLine ? fact.value : ""});
  }
}

}  // namespace console
