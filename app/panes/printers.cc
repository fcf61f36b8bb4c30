#include "app/panes/printers.h"

#include <algorithm>

#include "app/look/style.h"

namespace console {
namespace {

constexpr int kCaption = 32, kSupplyLine = 18, kMostSupplies = 4, kSupplyTop = 7, kSupplyEnd = 8;
constexpr int kFigure = 36;  // "100 %"
constexpr int kLittle = 10;  // percent of a supply
constexpr int kLevel = 4, kLevelHeight = 12, kMostLevels = 8;
constexpr int kButton = 92;
constexpr char kPaperLoaded[] = "Paper Loaded";

int SupplyHeight(int lines) {
  return kSupplyTop + lines * kSupplyLine + kSupplyEnd;
}

int32_t ToneColor(Tone tone) {
  const Style& l = TheStyle();
  switch (tone) {
    case Tone::kBad:
      return l.bad;
    case Tone::kWarning:
      return l.warning;
    case Tone::kBusy:
      return l.accent;
    case Tone::kGood:
      return l.good;
    default:
      return l.line;
  }
}

bool IsLow(const Supply& supply) {
  return supply.percent >= 0 && supply.percent < kLittle;
}

int32_t SupplyColor(const Supply& supply, bool away) {
  const Style& l = TheStyle();
  const int32_t ink = supply.percent == 0 ? l.bad : IsLow(supply) ? l.warning : l.second;
  return away ? Dimmed(ink, l.side) : ink;
}

// What stands behind the state.
std::string MoreOf(const PrinterRow& row, bool mine) {
  std::string text;
  if (!row.jobs.empty()) text += ", " + row.jobs;
  if (!row.paper.empty() && !row.needs_paper) text += ", " + row.paper;  // the state says it
  if (mine) text += ", your default";
  return text;
}

// The first parts of a list that stand in the width as a whole: half a number says something else.
// One that no comma comes before stays in any case.
std::string PartsThatFit(XwFont* font, std::string text, int width) {
  while (XwTextWidthUtf8(font, text.c_str()) > width && text.find(", ") != std::string::npos)
    text.resize(text.rfind(", "));
  return text;
}

std::string LevelText(const Supply& supply) {
  return supply.percent < 0 ? "unknown" : std::to_string(supply.percent) + " %";
}

std::string SuppliesText(const PrinterRow& row) {
  std::string text;
  for (const Supply& s : row.supplies) text += ", " + s.name + " " + LevelText(s);
  return text;
}

// How a row is drawn.
struct RowLook {
  int32_t background;
  XwFont* name;
  bool strong, muted;  // white on the accent colour; pale

  int32_t Ink(int32_t colour) const {
    return strong ? TheStyle().on_accent : muted ? Dimmed(colour, background) : colour;
  }
};

int32_t BackgroundOf(bool at, bool muted, bool chosen, bool lit) {
  const Style& l = TheStyle();
  return at       ? muted ? l.inactive_selection : l.accent
         : chosen ? Mix(l.accent, l.side, 14)
         : lit    ? Mix(l.accent, l.side, 9)
                  : l.side;
}

// A small column for each supply, as full as it is.
void DrawLevels(const Area& a, const PrinterRow& row, const RowLook& look) {
  const int y = a.y + (a.h - kLevelHeight) / 2;
  int x = a.x;
  for (const Supply& s : row.supplies) {
    if (x + kLevel > a.right()) break;
    const int32_t ink = look.strong ? TheStyle().on_accent : SupplyColor(s, look.muted);
    const int32_t track = Mix(ink, look.background, 25);
    const int full = std::max(int(s.percent > 0), (s.percent * kLevelHeight + 50) / 100);
    if (s.percent < 0) {
      // Of one that nobody knows there is the outline alone.
      XwSetColor(Mix(ink, look.background, 45));
      XwDrawRect(x, y, kLevel, kLevelHeight);
    } else {
      XwBox(x, y, kLevel, kLevelHeight, track);
      Fill({x, y + kLevelHeight - full, kLevel, full}, ink);
    }
    x += kLevel + 2;
  }
}

// The name, and what stands behind it, which leaves it half at least; then the levels.
void DrawName(const PrinterRow& r, const std::string& behind, Area a, const RowLook& look) {
  const Style& l = TheStyle();
  const int levels = std::min(int(r.supplies.size()), kMostLevels) * (kLevel + 2);
  const Area level = a.TakeRight(levels);
  if (levels > 0) {
    a.TakeRight(6);
    DrawLevels(level, r, look);
  }
  const int room = std::max(a.w / 2, a.w - XwTextWidthUtf8(look.name, r.name.c_str()) - 1);
  const std::string more = PartsThatFit(l.small_text, behind, room);
  const std::string name =
      CutToWidth(look.name, r.name, a.w - XwTextWidthUtf8(l.small_text, more.c_str()));
  DrawLabel(look.name, Align::kLeft, a.TakeLeft(XwTextWidthUtf8(look.name, name.c_str())), name,
            look.Ink(l.ink));
  DrawLabel(l.small_text, Align::kLeft, a, more, look.Ink(l.second));
}

// The state, and what of the rest has room.
void DrawState(const PrinterRow& r, const std::string& rest, Area a, const RowLook& look) {
  const Style& l = TheStyle();
  const bool coloured = r.dot == Tone::kBad || r.dot == Tone::kWarning || r.dot == Tone::kBusy;
  const std::string state = PartsThatFit(l.small_text, r.state, a.w);
  DrawLabel(l.small_text, Align::kLeft,
            a.TakeLeft(XwTextWidthUtf8(l.small_text, state.c_str()) + 1), state,
            look.Ink(coloured ? ToneColor(r.dot) : l.second));
  DrawLabel(l.small_text, Align::kLeft, a, PartsThatFit(l.small_text, rest, a.w),
            look.Ink(l.second));
}

}  // namespace

void PrintersPane::MakeControls(XwWindow* window) {
  list.MakeControls(window, kPrintersControl, "Printers");
}

// As many for all printers, so that the list keeps its height.
int PrintersPane::SupplyLines() const {
  size_t lines = 0;
  for (const PrinterRow& row : printers.rows()) lines = std::max(lines, row.supplies.size());
  const int room = (layout.printers.h - kCaption - SupplyHeight(0) - 3 * kRowHeight) / kSupplyLine;
  return std::clamp(int(lines), 0, std::clamp(room, 0, kMostSupplies));
}

void PrintersPane::Place() {
  Area a = layout.printers;
  a.w -= 1;  // the line at the right
  a.TakeTop(kCaption);
  const int lines = SupplyLines();
  if (lines > 0) a.TakeBottom(SupplyHeight(lines));
  list.Place(a);
}

std::string PrintersPane::NameAt(int row) const {
  return row >= 0 && size_t(row) < printers.rows().size()
             ? printers.rows()[size_t(row)].printer->name
             : "";
}

void PrintersPane::Update() {
  if (!At()) at = printers.chosen();
  const PrinterRow* row = At();
  const int there = row ? int(row - printers.rows().data()) : -1;
  const bool first = list.rows() == 0;
  list.SetRows(int(printers.rows().size()), there);
  Place();
  if (first) list.GoTo(there);
}

void PrintersPane::GoTo(const std::string& name) {
  at = name;
  if (const PrinterRow* row = At()) list.GoTo(int(row - printers.rows().data()));
}

void PrintersPane::KeyMoved() {
  at = NameAt(list.at());
}

// The button of one without paper.
Area PrintersPane::MarkArea(int row) const {
  const PrinterRow& r = printers.rows()[size_t(row)];
  if (!r.needs_paper || away || !printers.WhyNot(PrinterVerb::kPaperLoaded, r).empty()) return {};
  const Area a = list.RowArea(row);
  return {a.right() - kButton - 8, a.y + 18, kButton, 17};
}

void PrintersPane::DrawRow(int row, const Area& a, const Hit& hover, bool at_it) const {
  const Style& l = TheStyle();
  const PrinterRow& r = printers.rows()[size_t(row)];
  const bool chosen = printers.chosen() == r.printer->name;
  const bool lit = hover == Hit{kPrinters, SideList::kRow, row};
  // The keyboard on another one than the chosen one frames it: it is not chosen yet.
  const bool filled = at_it && chosen;
  const RowLook look = {BackgroundOf(filled, away, chosen, lit), chosen ? l.view_bold : l.view,
                        filled && !away, away};
  const int32_t frame = at_it && !chosen ? l.accent : -1;
  if (look.background != l.side || frame >= 0)
    XwRoundBox(a.x + 4, a.y, a.w - 8, a.h - 1, 4, look.background, frame);
  if (takes_drop == r.printer->name) DrawDropFrame({a.x + 4, a.y, a.w - 8, a.h - 1});
  DrawDot(a.x + 14, a.y + 8, look.Ink(ToneColor(r.dot)));
  const std::string more = MoreOf(r, mine == r.printer->name);
  const Area button = MarkArea(row);
  const Area name{a.x + 30, a.y + 2, a.w - 42, 17};
  Area state{a.x + 30, a.y + 18, a.w - 42, 16};
  if (button.Empty()) {
    DrawName(r, "", name, look);
    return DrawState(r, more, state, look);
  }
  // It takes the room of the counts: they stand behind the name.
  DrawName(r, more, name, look);
  state.w = button.x - state.x - 6;
  DrawState(r, "", state, look);
  const bool over = hover == Hit{kPrinters, SideList::kMark, row};
  XwRoundBox(button.x, button.y, button.w, button.h, 4, over ? l.pressed : l.face, l.line);
  DrawLabel(l.small_text, Align::kCenter, button, kPaperLoaded, l.ink);
}

void PrintersPane::DrawSupplies(Area a) const {
  const Style& l = TheStyle();
  const PrinterRow* row = At();
  LineAtTop(a);
  if (!row) return;
  a.TakeTop(kSupplyTop);
  std::vector<Supply> supplies = row->supplies;
  // Where there is no room for all, the lowest come first.
  if (int(supplies.size()) > SupplyLines())
    std::stable_sort(supplies.begin(), supplies.end(), [](const Supply& one, const Supply& other) {
      return unsigned(one.percent) < unsigned(other.percent);  // the unknown ones last
    });
  for (const Supply& s : supplies) {
    Area line = a.TakeTop(kSupplyLine);
    if (line.h < kSupplyLine) return;
    const int32_t ink = SupplyColor(s, away);
    const Area name = line.TakeLeft(std::min(76, line.w * 2 / 5));
    DrawLabel(l.small_text, Align::kLeft, name, CutToWidth(l.small_text, s.name, name.w),
              away ? Dimmed(l.second, l.side) : l.second);
    line.TakeLeft(6);
    if (s.percent < 0) {
      DrawLabel(l.small_text, Align::kRight, line, LevelText(s), ink);
      continue;
    }
    DrawLabel(l.small_text, Align::kRight, line.TakeRight(kFigure), LevelText(s), ink);
    line.TakeRight(6);
    const Area bar{line.x, line.y + 5, line.w, 8};
    XwRoundBox(bar.x, bar.y, bar.w, bar.h, bar.h / 2, l.track, l.progress_line);
    const int full = bar.w * s.percent / 100;
    if (full > 0) XwRoundBox(bar.x, bar.y, std::max(full, bar.h), bar.h, bar.h / 2, ink, -1);
  }
}

void PrintersPane::Draw(const Hit& hover, bool active, bool focused) const {
  Area a = layout.printers;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtRight(a);
  a.w -= 1;
  LineAtTop(a);
  DrawCaption(a.Inset(12, 0), "PRINTERS");
  if (printers.rows().empty())
    DrawLabel(l.view, Align::kLeft, {a.x + 12, a.y + kCaption, a.w - 20, 20},
              printers.known() ? "The server has none" : "None is known yet", l.second);
  list.DrawRows([&](int row, const Area& area) {
    DrawRow(row, area, hover, active && focused && row == list.at());
  });
  // The row is grey while the server is away.
  if (active && focused && (away || !list.ShowsRow())) DrawFocusRing(list.area(), l.side);
  if (const int lines = SupplyLines(); lines > 0)
    DrawSupplies(a.TakeBottom(SupplyHeight(lines)).Inset(12, 0));
}

void PrintersPane::AddHits(Hits* hits, bool focused) const {
  list.AddHits(
      hits, focused,
      [this](int row) -> Words {
        const PrinterRow& r = printers.rows()[size_t(row)];
        const bool chosen = printers.chosen() == r.printer->name;
        const std::string how = r.state + MoreOf(r, mine == r.printer->name) + SuppliesText(r);
        return {XWA_ROW, chosen ? uint32_t{XWT_SELECTED} : 0, r.name, how, r.name + ": " + how};
      },
      [this, hits](int row) {
        if (const Area button = MarkArea(row); !button.Empty())
          hits->Add({kPrinters, SideList::kMark, row}, list.Visible(button),
                    {XWA_BUTTON, 0, kPaperLoaded, printers.rows()[size_t(row)].name});
      });
}

}  // namespace console
