#include "app/panes/facts.h"

#include <algorithm>

#include "app/format/cut.h"

namespace console {
namespace {

constexpr int kMostLines = 4;

std::vector<std::string> Wrapped(std::string text, int width) {
  XwFont* font = TheStyle().view;
  std::vector<std::string> lines;
  while (XwTextWidthUtf8(font, text.c_str()) > width) {
    // A line has at least one character, however wide.
    size_t fits = size_t(XwTextTrimUtf8(font, text.c_str(), width + 1, nullptr, 0));
    if (fits == 0) fits = 1;
    while (fits < text.size() && (text[fits] & 0xC0) == 0x80) ++fits;
    const size_t blank = text.rfind(' ', fits);
    if (blank != std::string::npos && blank > fits / 2) fits = std::min(blank + 1, text.size());
    lines.push_back(text.substr(0, fits));
    text.erase(0, fits);
  }
  if (lines.empty() || !text.empty()) lines.push_back(text);
  return lines;
}

}  // namespace

std::vector<std::string> FactLines(const std::string& value, int width) {
  width -= kFactName;
  return Wrapped(CutMiddleTo(value,
                             [width](const std::string& cut) {
                               return int(Wrapped(cut, width).size()) <= kMostLines;
                             }),
                 width);
}

int FactsHeight(const std::vector<Fact>& facts, int width) {
  int height = 0;
  for (const Fact& fact : facts)
    height += kFactLine + int(FactLines(fact.value, width).size() - 1) * kNextFactLine;
  return height;
}

void DrawFact(Area* a, const char* name, const std::string& value, int32_t ink) {
  const Style& l = TheStyle();
  const std::vector<std::string> lines = FactLines(value, a->w);
  Area block = a->TakeTop(kFactLine + int(lines.size() - 1) * kNextFactLine);
  Area row = block.TakeTop(kFactLine);
  DrawLabel(l.small_text, Align::kLeft, row.TakeLeft(kFactName), name, l.second);
  for (const std::string& line : lines) {
    // Without the blank at which it was broken, for which it may have no room.
    DrawLabel(l.view, Align::kLeft, row, line.substr(0, line.find_last_not_of(' ') + 1), ink);
    row.y += kNextFactLine;
  }
}

void CoverFacts(const std::vector<Fact>& facts, Area a, const ScrolledArea& scroll, Hits* hits) {
  for (const Fact& fact : facts) {
    std::string shown;
    for (const std::string& line : FactLines(fact.value, a.w)) shown += line;
    hits->Cover(scroll.Visible(a.TakeTop(FactsHeight({fact}, a.w))),
                {XWA_LABEL, 0, fact.name, fact.value, shown == fact.value ? "" : fact.value});
  }
}

}  // namespace console
