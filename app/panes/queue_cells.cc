#include "app/panes/queue_cells.h"

#include <algorithm>
#include <ctime>
#include <iterator>

#include "app/format/texts.h"
#include "app/format/words.h"

namespace console {
namespace {

constexpr int kDotRoom = 20, kSwatch = 10, kSwatchRoom = 16, kBar = 52, kBarGap = 10;

struct ColumnOrder {
  Column column;
  std::optional<QueueOrder> order;
};
// By QueueColumn.
const ColumnOrder kColumns[] = {
    {{"No.", 72, 0, Align::kLeft, true, 0, 12, kDotRoom}, QueueOrder::kNumber},
    {{"Document", 150, 4, Align::kLeft, true, 0, 9}, QueueOrder::kName},
    {{"Owner", 68, 1, Align::kLeft, true, 0, 9}, QueueOrder::kOwner},
    {{"Printer", 98, 1, Align::kLeft, true, 0, 9}, QueueOrder::kPrinter},
    {{"Profile", 110, 1, Align::kLeft, true, 2, 9}, QueueOrder::kProfile},
    {{"Progress", 190, 2, Align::kLeft, true, 0, 9}, QueueOrder::kState},
    {{"Size", 76, 0, Align::kRight, true, 0, 10}, QueueOrder::kSize},
    {{"Submitted", 90, 0, Align::kLeft, true, 0, 12}, QueueOrder::kTime},
    {{"Priority", 78, 0, Align::kRight, true, 1, 10}, QueueOrder::kPriority},
};

// One row of both kinds.
struct Cells {
  const RowWords& words;
  int number;      // 0: none
  int32_t colour;  // -1: none
  std::string document, owner, printer, profile;
  int64_t size, time;  // size -1: not known
  int priority, copies;
};

std::string CopiesText(const Cells& row) {
  return row.copies > 1 ? "  × " + NumberText(row.copies) : "";
}

// The longest way to say it that has room there; its tip has all of it.
const std::string& FittingProgress(const ProgressPart& progress, int width) {
  const int whole = XwTextWidthUtf8(TheStyle().small_text, progress.text.c_str());
  return whole > width && !progress.brief.empty() ? progress.brief : progress.text;
}

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
  a.TakeLeft(kBarGap);
  DrawLabel(l.small_text, Align::kLeft, a, FittingProgress(words.progress, a.w),
            words.tone == Tone::kPlain ? cell.second : ink);
}

void DrawNumber(const Cells& row, const CellLook& cell) {
  const Style& l = TheStyle();
  Area a = cell.area;
  const int y = a.y + (a.h - 9) / 2 + 1;
  // On the accent a ring sets it off, so that it keeps its colour.
  if (cell.selected) DrawRing(a.x, y, cell.ink);
  const int32_t own = DotOf(row.words.dot);
  const int32_t dot = cell.selected && own == l.accent ? l.dark_accent : own;
  DrawDot(a.x, y, cell.muted ? Dimmed(dot, cell.background) : dot);
  a.TakeLeft(kDotRoom);
  if (row.number > 0) DrawLabel(l.view, cell.align, a, std::to_string(row.number), cell.second);
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
  const std::string copies = CopiesText(row);
  const int room = std::max(0, a.w - XwTextWidthUtf8(font, copies.c_str()));
  const std::string name = CutToWidth(font, row.document, room);
  DrawLabel(font, cell.align, a.TakeLeft(XwTextWidthUtf8(font, name.c_str())), name, cell.ink);
  DrawLabel(font, cell.align, a, copies, cell.second);
}

void DrawCell(const Cells& row, QueueColumn column, const CellLook& cell) {
  XwFont* font = TheStyle().view;
  auto text = [&](const std::string& s) { DrawLabel(font, cell.align, cell.area, s, cell.ink); };
  auto name = [&](const std::string& s) { text(CutToWidth(font, s, cell.area.w)); };
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
      return text(row.size >= 0 ? SizeText(row.size) : "");
    case QueueColumn::kSubmitted:
      return text(HourText(row.time, time(nullptr)));
    case QueueColumn::kPriority:
      return text(NumberText(row.priority));
  }
}

Cells CellsOf(const NC_Job& job, const RowWords& words) {
  return {words,
          job.number,
          job.colour,
          Shown(job.document),
          Shown(job.owner),
          Shown(job.printer),
          Shown(job.profile),
          job.size,
          job.submitted,
          job.priority,
          job.copies};
}

Cells CellsOf(const Outgoing& out, const RowWords& words) {
  return {words,
          0,
          out.colour,
          Shown(out.document),
          Shown(out.owner),
          Shown(out.printer),
          Shown(out.profile),
          out.size > 0 ? out.size : -1,
          out.started,
          out.priority,
          out.copies};
}

// The whole text of a cell that has no room for it; "" where all of it shows.
std::string CutText(const Cells& row, QueueColumn column, int width) {
  XwFont* font = TheStyle().view;
  std::string text;
  switch (column) {
    case QueueColumn::kDocument:
      text = row.document;
      width -= XwTextWidthUtf8(font, CopiesText(row).c_str()) + (row.colour >= 0 ? kSwatchRoom : 0);
      break;
    case QueueColumn::kOwner:
      text = row.owner;
      break;
    case QueueColumn::kPrinter:
      text = row.printer;
      break;
    case QueueColumn::kProfile:
      text = row.profile;
      break;
    case QueueColumn::kProgress:
      text = row.words.ShownText();
      if (!row.words.HasBar()) break;
      font = TheStyle().small_text;
      width -= kBar + kBarGap;
      break;
    default:
      return "";
  }
  return XwTextWidthUtf8(font, text.c_str()) > width ? text : "";
}

std::vector<std::string> CutTexts(const Cells& row, const std::vector<int>& widths) {
  std::vector<std::string> texts;
  for (size_t i = 0; i < widths.size(); ++i)
    texts.push_back(widths[i] > 0 ? CutText(row, QueueColumn(i), widths[i]) : "");
  return texts;
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
  DrawCell(CellsOf(job, words), column, cell);
}

void DrawOutgoingCell(const Outgoing& out, QueueColumn column, const CellLook& cell) {
  const RowWords words = WordsOfOutgoing(out);
  DrawCell(CellsOf(out, words), column, cell);
}

std::vector<std::string> CutJobTexts(const NC_Job& job, const RowWords& words,
                                     const std::vector<int>& widths) {
  return CutTexts(CellsOf(job, words), widths);
}

std::vector<std::string> CutOutgoingTexts(const Outgoing& out, const std::vector<int>& widths) {
  const RowWords words = WordsOfOutgoing(out);
  return CutTexts(CellsOf(out, words), widths);
}

}  // namespace console
