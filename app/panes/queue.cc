#include "app/panes/queue.h"

#include <algorithm>
#include <ctime>
#include <string_view>

#include "app/format/texts.h"
#include "app/look/controls.h"
#include "app/panes/ids.h"
#include "printserver/words.h"

namespace console {
namespace {

enum Cells { kDocument, kOwner, kPrinterName, kProfile, kProgress, kSize, kSubmitted, kPriority };

const NC_Job* JobOf(const QueuePane* p, const QueueRow& row) {
  if (row.transfer) return nullptr;
  // Rows follow the list, so it is where it was, unless the list has changed since.
  const auto& jobs = *p->state.jobs;
  const size_t at = size_t(&row - p->rows.data()) - p->state.transfers.size();
  if (at < jobs.size() && IdOf(jobs[at]) == row.job) return &jobs[at];
  for (const NC_Job& job : jobs)
    if (IdOf(job) == row.job) return &job;
  return nullptr;
}

const Transfer* TransferOf(const QueuePane* p, const QueueRow& row) {
  for (const Transfer& t : p->state.transfers)
    if (row.transfer == t.number) return &t;
  return nullptr;
}

// What is being done to a job, null when nothing is.
const char* PendingText(const QueuePane* p, const JobId& id) {
  static const char* const kTexts[] = {"holding…", "releasing…", "removing…"};
  for (const PendingChange& change : p->state.pending)
    if (change.id == id) return kTexts[int(change.action)];
  return nullptr;
}

struct StateStyle {
  int32_t Style::*ink;
  int32_t Style::*dot;
};
// By NC_JobState.
constexpr StateStyle kStates[] = {
    {&Style::ink, &Style::line}, {&Style::warning, &Style::warning}, {&Style::ink, &Style::accent},
    {&Style::bad, &Style::bad},  {&Style::good, &Style::good},       {&Style::bad, &Style::bad},
};

void DrawBarAndText(const CellLook& cell, int64_t part, int64_t whole, const std::string& text) {
  Area a = cell.area;
  const Area bar = a.TakeLeft(64);
  DrawProgress({bar.x, bar.y + (bar.h - 10) / 2, bar.w, 10}, part, whole, cell.muted);
  a.TakeLeft(10);
  DrawLabel(TheStyle().small_text, Align::kLeft, a, text, cell.second);
}

void DrawWord(const CellLook& cell, const char* text, int32_t colour) {
  DrawLabel(TheStyle().view, cell.align, cell.area, text, CellColor(cell, colour));
}

std::string TransferText(const Transfer& t) {
  switch (t.state) {
    case Sending::kWaiting:
      return "to be sent";
    case Sending::kCancelling:
      return "cancelling…";
    case Sending::kFailed:
      return "not sent: " + Shown(t.text);
    case Sending::kSending:
      break;
  }
  return t.silent_s > 0 ? "file: no answer for " + std::to_string(t.silent_s) + " s"
                        : "sending " + PartText(t.sent, t.total);
}

void DrawTransferProgress(const Transfer& t, const CellLook& cell) {
  const Style& l = TheStyle();
  const std::string text = TransferText(t);
  if (t.state == Sending::kSending && t.silent_s <= 0)
    DrawBarAndText(cell, t.sent, t.total, text);
  else
    DrawWord(cell, text.c_str(),
             t.state == Sending::kFailed    ? l.bad
             : t.state == Sending::kSending ? l.warning
                                            : l.second);
}

std::string JobText(const QueuePane* p, const NC_Job& job) {
  if (const char* pending = PendingText(p, IdOf(job))) return pending;
  if (job.state == NC_JOB_PRINTING) return PartText(job.printed, job.total);
  const std::string text = nc::JobStateText(job.state);
  return job.state == NC_JOB_FAILED && job.text[0] ? text + ": " + Shown(job.text) : text;
}

void DrawJobProgress(const QueuePane* p, const NC_Job& job, const CellLook& cell) {
  const Style& l = TheStyle();
  const std::string text = JobText(p, job);
  if (PendingText(p, IdOf(job)))
    DrawWord(cell, text.c_str(), l.second);
  else if (job.state == NC_JOB_PRINTING)
    DrawBarAndText(cell, job.printed, job.total, text);
  else
    DrawWord(cell, text.c_str(), l.*kStates[job.state].ink);
}

void DrawDocument(const CellLook& cell, const std::string& name, int32_t dot) {
  Area a = cell.area;
  DrawDot(a.x, a.y + (a.h - 9) / 2, CellColor(cell, dot));
  a.TakeLeft(20);
  DrawLabel(TheStyle().view, cell.align, a, name, cell.ink);
}

void DrawTransferCell(const Transfer& t, int column, const CellLook& cell) {
  const Style& l = TheStyle();
  auto text = [&](const std::string& s) { DrawLabel(l.view, cell.align, cell.area, s, cell.ink); };
  switch (column) {
    case kDocument:
      DrawDocument(cell, Shown(t.order.document),
                   t.state == Sending::kSending  ? l.accent
                   : t.state == Sending::kFailed ? l.bad
                                                 : l.line);
      break;
    case kOwner:
      text(Shown(t.order.owner));
      break;
    case kPrinterName:
      text(Shown(t.order.printer));
      break;
    case kProgress:
      DrawTransferProgress(t, cell);
      break;
    case kSize:
      if (t.size > 0) text(SizeText(t.size));
      break;
    case kSubmitted:
      text(HourText(t.started, time(nullptr)));
      break;
    case kPriority:
      text(std::to_string(t.order.priority));
      break;
    default:
      break;
  }
}

void DrawJobCell(const QueuePane* p, const NC_Job& job, int column, const CellLook& cell) {
  const Style& l = TheStyle();
  auto text = [&](const std::string& s) { DrawLabel(l.view, cell.align, cell.area, s, cell.ink); };
  switch (column) {
    case kDocument:
      DrawDocument(cell, Shown(job.document), l.*kStates[job.state].dot);
      break;
    case kOwner:
      text(Shown(job.owner));
      break;
    case kPrinterName:
      text(Shown(job.printer));
      break;
    case kProfile:
      text(Shown(job.profile));
      break;
    case kProgress:
      DrawJobProgress(p, job, cell);
      break;
    case kSize:
      text(SizeText(job.size));
      break;
    case kSubmitted:
      text(HourText(job.submitted, time(nullptr)));
      break;
    case kPriority:
      text(std::to_string(job.priority));
      break;
    default:
      break;
  }
}

// "5 waiting, 1 printing", and what needs someone.
std::string Summary(const QueuePane* p) {
  const size_t unsent = p->state.transfers.size();
  const bool known = p->state.link == Link::kReady || !p->state.printers->empty();
  const std::string waits = unsent ? std::to_string(unsent) + " to be sent" : "";
  if (!known) return waits;
  int counts[6] = {};
  for (const NC_Job& job : *p->state.jobs) ++counts[job.state];
  std::string text = std::to_string(counts[NC_JOB_WAITING]) + " waiting, " +
                     std::to_string(counts[NC_JOB_PRINTING]) + " printing";
  for (NC_JobState state : {NC_JOB_HELD, NC_JOB_PAPER_OUT, NC_JOB_FAILED})
    if (counts[state]) text += ", " + std::to_string(counts[state]) + " " + nc::JobStateText(state);
  return unsent ? text + ", " + waits : text;
}

void DrawHead(const QueuePane* p) {
  const Style& l = TheStyle();
  Area head = p->layout.queue_head;
  Fill(head, l.tool_bar);
  LineAtTop(head);
  LineAtBottom(head);
  head = head.Inset(12, 0);
  head.w = p->layout.hold_job.x - head.x - 12;
  DrawLabel(l.bold, Align::kLeft, head, "Queue", l.ink);
  head.TakeLeft(XwTextWidthUtf8(l.bold, "Queue") + 8);
  DrawLabel(l.small_text, Align::kLeft, head, Summary(p), l.second);
}

void DrawCell(const QueuePane* p, int row, int column, const CellLook& cell) {
  const QueueRow& r = p->rows[size_t(row)];
  if (const Transfer* t = r.transfer ? TransferOf(p, r) : nullptr)
    DrawTransferCell(*t, column, cell);
  else if (const NC_Job* job = JobOf(p, r))
    DrawJobCell(p, *job, column, cell);
}

std::vector<Column> Columns() {
  return {{"Document", 180, 4, Align::kLeft, false, 0, 14, 20},
          {"Owner", 74, 1, Align::kLeft, false, 0, 8},
          {"Printer", 112, 1, Align::kLeft, false, 0, 8},
          {"Profile", 110, 1, Align::kLeft, false, 2, 8},
          {"Progress", 216, 1, Align::kLeft, false, 0, 8},
          {"Size", 82, 0, Align::kRight, false, 0, 8},
          {"Submitted", 102, 0, Align::kLeft, false, 0, 14},
          {"Priority", 72, 0, Align::kRight, false, 1, 14}};
}

}  // namespace

QueuePane::QueuePane(const Layout& layout_of_all, const ServerState& state_now)
    : layout(layout_of_all),
      state(state_now),
      table(
          kQueue, Columns(),
          [this](int row, int column, const CellLook& cell) { DrawCell(this, row, column, cell); },
          &selection) {}

void QueuePane::MakeControls(XwWindow* w) {
  constexpr uint32_t kShown = XWC_ENABLED | XWC_VISIBLE;
  table.MakeControls(w, kQueueControls, "Queue");
  hold = XwButton(w, "Hold", kHoldCommand, 0, 0, 9, 9, kShown, 0);
  release = XwButton(w, "Release", kReleaseCommand, 0, 0, 9, 9, kShown, 0);
  remove = XwButton(w, "Remove", kRemoveCommand, 0, 0, 9, 9, kShown, 0);
  XwDescribeControl(hold, "Hold Job");
}

void QueuePane::Place() {
  table.Place(layout.queue);
  PlaceControl(hold, layout.hold_job);
  PlaceControl(release, layout.release_job);
  PlaceControl(remove, layout.remove_job);
}

void QueuePane::AddHits(Hits* hits) const {
  table.AddHits(hits, [this](int row) -> Words {
    const QueueRow& r = rows[size_t(row)];
    if (const Transfer* t = r.transfer ? TransferOf(this, r) : nullptr)
      return {XWA_ROW, 0, Shown(t->order.document), TransferText(*t)};
    const NC_Job* job = JobOf(this, r);
    return job ? Words{XWA_ROW, 0, Shown(job->document), JobText(this, *job)} : Words{};
  });
}

void QueuePane::Draw(const Hit& hover, bool focused) {
  table.SetFocused(focused);
  table.SetMuted(state.link != Link::kReady);
  table.SetEmptyText(state.link == Link::kReady ? "Nothing is waiting"
                                                : "The queue is not known yet");
  DrawHead(this);
  table.Draw(hover);
}

size_t QueueRowHash::operator()(const QueueRow& row) const {
  return std::hash<std::string_view>()(
             {reinterpret_cast<const char*>(row.job.data()), row.job.size()}) ^
         size_t(row.transfer);
}

int QueueRowList::RowOf(const QueueRow& id) const {
  const auto it = std::find(rows.begin(), rows.end(), id);
  return it == rows.end() ? -1 : int(it - rows.begin());
}

bool QueueRowList::Has(const QueueRow& id) const {
  return RowOf(id) >= 0 || std::find(expected.begin(), expected.end(), id) != expected.end();
}

void QueuePane::Fill() {
  list.expected.clear();
  for (const Arrival& a : state.arrivals) {
    selection.Rename({a.number, {}}, {0, a.id});
    list.expected.push_back({0, a.id});
  }
  rows.clear();
  for (const Transfer& t : state.transfers) rows.push_back({t.number, {}});
  for (const NC_Job& job : *state.jobs) rows.push_back({0, IdOf(job)});
  selection.Renew();
  table.SetRows(int(rows.size()));
}

namespace {

bool CanChangeRow(const QueuePane* p, const QueueRow& row, JobAction action) {
  if (const Transfer* t = row.transfer ? TransferOf(p, row) : nullptr)
    return action == JobAction::kRemove
               ? t->state != Sending::kCancelling
               : action == JobAction::kRelease && t->state == Sending::kFailed;
  const NC_Job* job = JobOf(p, row);
  if (!job || IsAway(p->state.link) || PendingText(p, row.job)) return false;
  switch (action) {
    case JobAction::kHold:
      return job->state == NC_JOB_WAITING || job->state == NC_JOB_PRINTING ||
             job->state == NC_JOB_PAPER_OUT;
    case JobAction::kRelease:
      return job->state == NC_JOB_HELD || job->state == NC_JOB_PAPER_OUT ||
             job->state == NC_JOB_FAILED;
    default:
      return true;
  }
}

}  // namespace

bool QueuePane::CanChange(JobAction action) const {
  for (int row = 0; row < list.count(); ++row)
    if (table.IsSelected(row) && CanChangeRow(this, rows[size_t(row)], action)) return true;
  return false;
}

void QueuePane::Change(JobAction action, Server* server) const {
  for (const QueueRow& row : selection.Ids()) {
    if (!CanChangeRow(this, rows[size_t(list.RowOf(row))], action)) continue;
    if (!row.transfer)
      server->Change(row.job, action);
    else if (action == JobAction::kRemove)
      server->Cancel(row.transfer);
    else
      server->Retry(row.transfer);
  }
}

}  // namespace console
