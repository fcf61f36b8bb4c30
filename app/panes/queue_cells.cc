#include "app/panes/queue_cells.h"

#include <algorithm>
#include <ctime>
#include <iterator>

#include "app/format/texts.h"
#include "app/format/words.h"

namespace console {
namespace {

constexpr int kDotRoom = 20, kSwatch = 10, kSwatchRoom = 16, kBar = 52;

struct ColumnOrder {
  Column column;
  std::optional<QueueOrder> order;
};
// By QueueColumn.
const ColumnOrder kColumns[] = {
    {{"No.", 72, 0, Align::kLeft, true, 0, 12, kDotRoom}, QueueOrder::kNumber},
    {{"Document", 150, 4, Align::kLeft, true, 0, 8}, QueueOrder::kName},
    {{"Owner", 68, 1, Align::kLeft, true, 0, 8}, QueueOrder::kOwner},
    {{"Printer", 98, 1, Align::kLeft, true, 0, 8}, QueueOrder::kPrinter},
    {{"Profile", 110, 1, Align::kLeft, true, 2, 8}, QueueOrder::kProfile},
    {{"Progress", 190, 2, Align::kLeft, true, 0, 8}, QueueOrder::kState},
    {{"Size", 76, 0, Align::kRight, true, 0, 8}, QueueOrder::kSize},
    {{"Submitted", 90, 0, Align::kLeft, true, 0, 12}, QueueOrder::kTime},
    {{"Priority", 78, 0, Align::kRight, true, 1, 8}, QueueOrder::kPriority},
};

// One row of both kinds.
struct Cells {
  const RowWords& words;
  int number;      // 0: none
  int32_t colour;  // -1: none
  std::string document, owner, printer, profile;
  int64_t size, time;
  int priority, copies;
};

void DrawProgressCell(const RowWords& words, const CellLook& cell) {
  const Style& l = TheStyle();
  const int32_t ink = CellColor(cell, InkOf(words.tone));
  if (!words.HasBar()) return DrawLabel(l.view, cell.align, cell.area, words.text, ink);
  Area a = cell.area;
  const Area bar = a.TakeLeft(kBar);
  DrawProgress({bar.x, bar.y + (bar.h - 10) / 2, bar.w, 10}, words.progress.part,
               words.progress.whole,
               cell.selected ? BarGround::kAccent
               : cell.muted  ? BarGround::kMuted
                             : BarGround::kPlain);
  a.TakeLeft(10);
  DrawLabel(l.small_text, Align::kLeft, a, words.progress.text,
            words.tone == Tone::kPlain ? cell.second : ink);
}

void DrawNumber(const Cells& row, const CellLook& cell) {
  Area a = cell.area;
  DrawDot(a.x, a.y + (a.h - 9) / 2, CellColor(cell, DotOf(row.words.dot)));
  a.TakeLeft(kDotRoom);
  if (row.number > 0)
    DrawLabel(TheStyle().view, cell.align, a, std::to_string(row.number), cell.second);
}

void DrawDocument(const Cells& row, const CellLook& cell) {
  Area a = cell.area;
  if (row.colour >= 0) {
    const Area swatch{a.x, a.y + (a.h - kSwatch) / 2, kSwatch, kSwatch};
    XwRoundBox(swatch.x, swatch.y, swatch.w, swatch.h, 2, FromRgb(row.colour),
               cell.selected ? cell.ink : TheStyle().line);
    a.TakeLeft(kSwatchRoom);
  }
  XwFont* font = TheStyle().view;
  const std::string copies = row.copies > 1 ? "  × " + NumberText(row.copies) : "";
  const int room = std::max(0, a.w - XwTextWidthUtf8(font, copies.c_str()));
  const std::string name = CutToWidth(font, row.document, room);
  DrawLabel(font, cell.align, a.TakeLeft(XwTextWidthUtf8(font, name.c_str())), name, cell.ink);
  DrawLabel(font, cell.align, a, copies, cell.second);
}

void DrawCell(const Cells& row, QueueColumn column, const CellLook& cell) {
  auto text = [&](const std::string& s) {
    DrawLabel(TheStyle().view, cell.align, cell.area, s, cell.ink);
  };
  auto name = [&](const std::string& s) {
    text(CutToWidth(TheStyle().view, Shown(s), cell.area.w));
  };
  switch (column) {
    case QueueColumn::kNumber:
      return DrawNumber(row, cell);
    case QueueColumn::kDocument:
      return DrawDocument(row, cell);
    case QueueColumn::kOwner:
      return name(row.owner);
    case QueueColumn::kPrinter:
      return name(row.printer);
    case QueueColumn::kProfile:
      return name(row.profile);
    case QueueColumn::kProgress:
      return DrawProgressCell(row.words, cell);
    case QueueColumn::kSize:
      return text(row.size > 0 ? SizeText(row.size) : "");
    case QueueColumn::kSubmitted:
      return text(HourText(row.time, time(nullptr)));
    case QueueColumn::kPriority:
      return text(NumberText(row.priority));
  }
}

}  // namespace

std::vector<Column> QueueColumns() {
  std::vector<Column> columns;
  for (const ColumnOrder& c : kColumns) columns.push_back(c.column);
  return columns;
}

std::optional<QueueOrder> OrderOf(QueueColumn column) {
  const auto at = size_t(column);
  return at < std::size(kColumns) ? kColumns[at].order : std::nullopt;
}

int ColumnOf(QueueOrder order) {
  for (size_t i = 0; i < std::size(kColumns); ++i)
    if (kColumns[i].order == order) return int(i);
  return -1;
}

Outgoing OutgoingOf(const Transfer& t) {
  Outgoing out;
  out.number = t.number;
  out.document = t.order.document;
  out.owner = t.order.owner;
  out.printer = t.order.printer;
  out.profile = t.order.profile;
  out.colour = t.order.colour;
  out.state = t.state;
  out.sent = t.sent, out.total = t.total, out.size = t.size;
  out.silent_s = t.silent_s;
  out.started = t.started;
  out.priority = t.order.priority;
  out.copies = t.order.copies;
  out.media = t.order.media;
  out.trouble = t.text;
  return out;
}

int32_t InkOf(Tone tone) {
  const Style& l = TheStyle();
  switch (tone) {
    case Tone::kMuted:
      return l.second;
    case Tone::kBusy:
      return l.accent;
    case Tone::kGood:
      return l.good;
    case Tone::kWarning:
      return l.warning;
    case Tone::kBad:
      return l.bad;
    case Tone::kPlain:
      break;
  }
  return l.ink;
}

int32_t DotOf(Tone tone) {
  return tone == Tone::kMuted || tone == Tone::kPlain ? TheStyle().line : InkOf(tone);
}

void DrawJobCell(const NC_Job& job, const RowWords& words, QueueColumn column,
                 const CellLook& cell) {
  DrawCell({words, job.number, job.colour, Shown(job.document), job.owner, job.printer, job.profile,
            job.size, job.submitted, job.priority, job.copies},
           column, cell);
}

void DrawOutgoingCell(const Outgoing& out, QueueColumn column, const CellLook& cell) {
  const RowWords words = WordsOfOutgoing(out);
  DrawCell({words, 0, out.colour, Shown(out.document), out.owner, out.printer, out.profile,
            out.size, out.started, out.priority, out.copies},
           column, cell);
}

}  // namespace console
