// The list that opens below the printer's field. It lies over other panes and hides their hits.
#include <algorithm>

#include "app/format/texts.h"
#include "app/window/console.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kRow = 22, kBorder = 4, kWidth = 280;

int Rows(const Console* c) {
  // As many as the window has room for.
  const int room = (c->layout.status.y - c->layout.printer.bottom() - 2 * kBorder - 8) / kRow;
  return std::clamp(int(c->state.printers->size()), 0, std::max(1, room));
}

Area ListArea(const Console* c) {
  const Area field = c->layout.printer;
  return {field.x, field.bottom() + 2, std::max(kWidth, field.w), Rows(c) * kRow + 2 * kBorder};
}

Area RowArea(const Console* c, int row) {
  const Area a = ListArea(c).Inset(kBorder, kBorder);
  return {a.x, a.y + row * kRow, a.w, kRow};
}

}  // namespace

void OpenPrinterList(Console* c) {
  if (c->state.printers->empty()) return;
  c->list_open = true;
  c->list_row = 0;
  const NC_Printer* chosen = ChosenPrinter(c);
  for (int i = 0; i < Rows(c); ++i)
    if (&(*c->state.printers)[size_t(i)] == chosen) c->list_row = i;
  c->damage |= kAllPanes;
}

void ClosePrinterList(Console* c) {
  c->list_open = false;
  c->damage |= kAllPanes;
}

void ChoosePrinter(Console* c, int row) {
  if (row >= 0 && row < Rows(c)) c->choice.printer = (*c->state.printers)[size_t(row)].name;
  ClosePrinterList(c);
}

bool PrinterListKey(Console* c, int type) {
  const int last = Rows(c) - 1;
  switch (type) {
    case XWE_UP:
      c->list_row = std::max(0, c->list_row - 1);
      break;
    case XWE_DOWN:
      c->list_row = std::min(last, c->list_row + 1);
      break;
    case XWE_HOME:
      c->list_row = 0;
      break;
    case XWE_END:
      c->list_row = last;
      break;
    case XWE_RETURN:
    case ' ':
      ChoosePrinter(c, c->list_row);
      break;
    case XWE_ESCAPE:
    case XWE_TAB:
      ClosePrinterList(c);
      break;
    default:
      return false;
  }
  c->damage |= kToolsPane;
  return true;
}

void DrawPrinterList(Console* c) {
  const Style& l = TheStyle();
  const Area a = ListArea(c);
  DrawShadow(a, 5);
  XwRoundBox(a.x, a.y, a.w, a.h, 5, l.document, l.line);
  const NC_Printer* chosen = ChosenPrinter(c);
  for (int i = 0; i < Rows(c); ++i) {
    const NC_Printer& p = (*c->state.printers)[size_t(i)];
    Area row = RowArea(c, i);
    const bool lit = i == c->list_row;
    if (lit) XwRoundBox(row.x, row.y, row.w, row.h, 3, l.accent, -1);
    if (&p == chosen) DrawTick(row.x + 4, row.y + 3, lit ? l.on_accent : l.ink);
    row.TakeLeft(24);
    row.TakeRight(8);
    std::string state = nc::PrinterStateText(p.state);
    if (p.jobs > 0) state += ", " + CountText(p.jobs, "job", "jobs");
    const int32_t ink = p.state == NC_PRINTER_PAPER_OUT ? l.bad : l.second;
    const int width = XwTextWidthUtf8(l.small_text, state.c_str()) + 12;
    DrawLabel(l.small_text, Align::kRight, row.TakeRight(width), state, lit ? l.on_accent : ink);
    DrawLabel(l.normal, Align::kLeft, row, Shown(p.name), lit ? l.on_accent : l.ink);
  }
}

bool ListHoldsPointer(const Console* c) {
  return ListArea(c).Holds(Inp.px, Inp.py);
}

void AddPrinterListHits(Console* c) {
  c->hits.Cover(ListArea(c));
  for (int i = 0; i < Rows(c); ++i) c->hits.Add({kPrinterList, 1, i}, RowArea(c, i));
}

}  // namespace console
