#include "app/panes/details.h"

#include <algorithm>
#include <ctime>

#include "app/format/texts.h"
#include "app/look/style.h"
#include "app/panes/tools.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kCaption = 32, kNameLines = 4;
constexpr int kFactName = 64, kNextLine = 16;

void DrawFact(Area* a, const char* name, const std::string& value) {
  const Style& l = TheStyle();
  Area row = a->TakeTop(20);
  DrawLabel(l.small_text, Align::kLeft, row.TakeLeft(kFactName), name, l.second);
  DrawLabel(l.view, Align::kLeft, row, value, l.ink);
}

// A name in as many lines as it needs, up to a few: broken after blanks where that leaves lines
// that are more than half full. The last one holds all that remains.
std::vector<std::string> LinesOf(XwFont* font, std::string name, int width) {
  std::vector<std::string> lines;
  while (int(lines.size()) + 1 < kNameLines && XwTextWidthUtf8(font, name.c_str()) > width) {
    // A line has at least one character, however wide.
    size_t fits = size_t(XwTextTrimUtf8(font, name.c_str(), width + 1, nullptr, 0));
    if (fits == 0) fits = 1;
    while (fits < name.size() && (name[fits] & 0xC0) == 0x80) ++fits;
    const size_t blank = name.rfind(' ', fits);
    if (blank != std::string::npos && blank > fits / 2) fits = std::min(blank + 1, name.size());
    lines.push_back(name.substr(0, fits));
    name.erase(0, fits);
  }
  lines.push_back(name);
  return lines;
}

void DrawName(Area* a, const std::vector<std::string>& lines) {
  const Style& l = TheStyle();
  DrawFact(a, "Name", lines[0]);
  for (size_t i = 1; i < lines.size(); ++i) {
    Area row = a->TakeTop(kNextLine);
    row.TakeLeft(kFactName);
    DrawLabel(l.view, Align::kLeft, row, lines[i], l.ink);
  }
}

// A sheet with a soft shadow, and the ending of the name where a page has its title.
void DrawSheet(const Area& a, const FolderEntry& e, FileKind kind) {
  const Style& l = TheStyle();
  for (int i = 4; i > 0; --i)
    XwRoundBox(a.x - i, a.y - i + 2, a.w + 2 * i, a.h + 2 * i, i + 1,
               Mix(l.line, l.side, 36 - 8 * i), -1);
  Fill(a, l.document);
  XwSetColor(l.hairline);
  XwDrawRect(a.x, a.y, a.w, a.h);
  const int32_t inks[] = {l.accent, l.bad, l.good, l.second, l.line};
  Area page = a.Inset(18, 18);
  Fill(page.TakeTop(page.h / 3), Mix(inks[int(kind)], l.document, 14));
  Fill({page.x, page.y - 3, page.w, 3}, inks[int(kind)]);
  const std::string name = e.name;
  const size_t dot = name.rfind('.');
  std::string ending = dot == std::string::npos || dot == 0 ? "" : Shown(name.substr(dot + 1));
  for (char& ch : ending)
    if (ch >= 'a' && ch <= 'z') ch = char(ch - 32);
  page.TakeTop(14);
  DrawLabel(l.heading, Align::kLeft, page.TakeTop(24), ending.empty() ? "FILE" : ending,
            Mix(inks[int(kind)], l.ink, 70));
  page.TakeTop(6);
  for (int i = 0; i < 4 && page.h > 6; ++i) {
    Fill({page.x, page.y, page.w * (i == 3 ? 45 : 92 - 7 * (i % 2)) / 100, 3}, l.track);
    page.TakeTop(11);
  }
}

void DrawSelected(const DetailsPane* p, Area a) {
  const Style& l = TheStyle();
  const int row = p->selected;
  if (row < 0) {
    DrawLabel(l.view, Align::kLeft, a.TakeTop(20), "Nothing is selected", l.second);
    return;
  }
  const FolderEntry e = p->folder.At(row);
  const FileKind kind = e.folder ? FileKind::kFolder : KindOf(e.name);
  const auto name = LinesOf(TheStyle().view, Shown(e.name), a.w - kFactName);
  const int facts = 5 * 20 + int(name.size() - 1) * kNextLine;
  const int sheet = std::min(220, a.h - facts - 16);
  if (!e.folder && sheet >= 120) {
    DrawSheet({a.x + (a.w - sheet * 10 / 14) / 2, a.y, sheet * 10 / 14, sheet}, e, kind);
    a.TakeTop(sheet + 16);
  }
  DrawName(&a, name);
  DrawFact(&a, "Kind", KindText(kind));
  if (!e.folder) DrawFact(&a, "Size", SizeText(e.size));
  DrawFact(&a, "Modified", DayText(e.time, time(nullptr)));
}

void DrawPrinter(const DetailsPane* pane, Area a) {
  const Style& l = TheStyle();
  const NC_Printer* p = ChosenPrinter(pane->choice, pane->state);
  if (!p) {
    DrawLabel(l.view, Align::kLeft, a.TakeTop(20),
              pane->state.link == Link::kReady ? "The server has none" : "None is known yet",
              l.second);
    return;
  }
  const bool away = pane->state.link == Link::kAway;
  DrawFact(&a, "Name", Shown(p->name));
  Area row = a.TakeTop(20);
  DrawLabel(l.small_text, Align::kLeft, row.TakeLeft(kFactName), "State", l.second);
  const int32_t ink = p->state == NC_PRINTER_PAPER_OUT  ? l.bad
                      : p->state == NC_PRINTER_PRINTING ? l.accent
                                                        : l.good;
  DrawLabel(l.view, Align::kLeft, row, nc::PrinterStateText(p->state),
            away ? Dimmed(ink, l.side) : ink);
  DrawFact(&a, "Jobs", std::to_string(p->jobs));
  DrawFact(&a, "Paper", p->paper < 0 ? "enough" : CountText(p->paper, "sheet", "sheets"));
}

}  // namespace

void DetailsPane::Draw() const {
  Area a = layout.details;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtLeft(a);
  a = a.Inset(16, 0);
  Area printer = a.TakeBottom(kCaption + 4 * 20 + 10);
  DrawCaption(a, "DOCUMENT");
  a.TakeTop(kCaption + 6);
  DrawSelected(this, a);
  DrawCaption(printer, "PRINTER");
  printer.TakeTop(kCaption);
  DrawPrinter(this, printer);
}

}  // namespace console
