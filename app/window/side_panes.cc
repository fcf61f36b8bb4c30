// Left: places to go. Right: what is selected, and the printer that it would go to.
#include <ctime>

#include "app/format/texts.h"
#include "app/window/console.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kCaption = 32, kPlaceHeight = 22, kFooter = 28, kNameLines = 4;
constexpr int kFactName = 64, kNextLine = 16;

Area PlaceArea(const Console* c, int i) {
  const Area a = c->layout.places;
  return {a.x + 4, a.y + kCaption + i * kPlaceHeight, a.w - 9, kPlaceHeight - 1};
}

// The place that the folder lies deepest in, -1 none. Everything lies in the root: that says
// nothing.
int PlaceAround(const Console* c) {
  int best = -1;
  size_t length = 1;
  for (int i = 0; i < int(c->places.size()); ++i) {
    const std::string& path = c->places[size_t(i)].path;
    if (path.size() <= length || (c->folder.path() + "/").rfind(path + "/", 0) != 0) continue;
    best = i;
    length = path.size();
  }
  return best;
}

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

void DrawCaption(const Area& a, const char* text) {
  DrawLabel(TheStyle().caption, Align::kLeft, {a.x, a.y + 9, a.w, 16}, text, TheStyle().second);
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

void DrawSelected(const Console* c, Area a) {
  const Style& l = TheStyle();
  const int row = c->files.selected();
  if (row < 0) {
    DrawLabel(l.view, Align::kLeft, a.TakeTop(20), "Nothing is selected", l.second);
    return;
  }
  const FolderEntry e = c->folder.At(row);
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

void DrawPrinter(const Console* c, Area a) {
  const Style& l = TheStyle();
  const NC_Printer* p = ChosenPrinter(c->choice, c->state);
  if (!p) {
    DrawLabel(l.view, Align::kLeft, a.TakeTop(20),
              c->state.link == Link::kReady ? "The server has none" : "None is known yet",
              l.second);
    return;
  }
  const bool away = c->state.link == Link::kAway;
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

// Those that everyone has come first, and are not looked for.
void FindPlaces(Console* c) {
  c->places = {{"Root", "/"}, {"Home", OS_GetPathName(OS_FOLDER_HOME)}};
  c->finder.Find({{"Desktop", OS_GetPathName(OS_FOLDER_DESKTOP)},
                  {"Documents", OS_GetPathName(OS_FOLDER_DOCUMENTS)},
                  {"Shared", OS_GetPathName(OS_FOLDER_SHARED)}},
                 [c](const std::vector<Place>& found) {
                   c->places.insert(c->places.end(), found.begin(), found.end());
                   c->damage |= kPlacesPane;
                   DrawConsole(c);
                 });
}

void DrawPlacesPane(Console* c) {
  Area a = c->layout.places;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtRight(a);
  DrawCaption(a.Inset(12, 0), "PLACES");
  const int around = PlaceAround(c);
  for (int i = 0; i < int(c->places.size()); ++i) {
    const Place& place = c->places[size_t(i)];
    const Area row = PlaceArea(c, i);
    const bool here = place.path == c->folder.path(), lit = c->hover == Hit{kPlaces, 1, i};
    const bool lights = here && c->active;
    int32_t background = l.side;
    if (here || lit || i == around) {
      background = lights                ? l.accent
                   : here || i == around ? l.inactive_selection
                                         : Mix(l.accent, l.side, 9);
      XwRoundBox(row.x, row.y, row.w, row.h, 4, background, -1);
    }
    DrawFileIcon(FileKind::kFolder, row.x + 8, row.y + 2, background, 100);
    Area text = row;
    text.TakeLeft(31);
    DrawLabel(l.view, Align::kLeft, text, place.name, lights ? l.on_accent : l.ink);
  }
  Area foot = a.TakeBottom(kFooter);
  foot.w -= 1;
  Fill(foot, l.status);
  LineAtTop(foot);
  DrawLabel(l.small_text, Align::kLeft, foot.Inset(12, 0), c->free_text, l.second);
}

void AddPlacesHits(Console* c) {
  if (c->layout.places.Empty()) return;
  for (int i = 0; i < int(c->places.size()); ++i) {
    const Place& place = c->places[size_t(i)];
    const uint32_t state = place.path == c->folder.path() ? XWT_SELECTED : 0;
    c->hits.Add({kPlaces, 1, i}, PlaceArea(c, i), {XWA_ROW, state, place.name, ""});
  }
}

void DrawDetailsPane(Console* c) {
  Area a = c->layout.details;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtLeft(a);
  a = a.Inset(16, 0);
  Area printer = a.TakeBottom(kCaption + 4 * 20 + 10);
  DrawCaption(a, "DOCUMENT");
  a.TakeTop(kCaption + 6);
  DrawSelected(c, a);
  DrawCaption(printer, "PRINTER");
  printer.TakeTop(kCaption);
  DrawPrinter(c, printer);
}

}  // namespace console
