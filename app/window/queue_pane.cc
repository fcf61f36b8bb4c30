// The queue: transfers of our own first, then the server's jobs in the order in which they print.
#include <algorithm>
#include <ctime>

#include "app/format/texts.h"
#include "app/window/console.h"
#include "printserver/words.h"

namespace console {
namespace {

enum Cells { kDocument, kOwner, kPrinterName, kProfile, kProgress, kSize, kSubmitted, kPriority };

const NC_Job* JobOf(const Console* c, const QueueRow& row) {
  if (row.transfer) return nullptr;
  // Rows follow the list, so it is where it was, unless the list has changed since.
  const auto& jobs = *c->state.jobs;
  const size_t at = size_t(&row - c->rows.data()) - c->state.transfers.size();
  if (at < jobs.size() && IdOf(jobs[at]) == row.job) return &jobs[at];
  for (const NC_Job& job : jobs)
    if (IdOf(job) == row.job) return &job;
  return nullptr;
}

const Transfer* TransferOf(const Console* c, const QueueRow& row) {
  for (const Transfer& t : c->state.transfers)
    if (row.transfer == t.number) return &t;
  return nullptr;
}

const QueueRow* SelectedRow(const Console* c) {
  const int row = c->queue.selected();
  return row >= 0 && size_t(row) < c->rows.size() ? &c->rows[size_t(row)] : nullptr;
}

// What is being done to a job, null when nothing is.
const char* PendingText(const Console* c, const JobId& id) {
  static const char* const kTexts[] = {"holding…", "releasing…", "removing…"};
  for (const PendingChange& p : c->state.pending)
    if (p.id == id) return kTexts[int(p.action)];
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

std::string JobText(const Console* c, const NC_Job& job) {
  if (const char* pending = PendingText(c, IdOf(job))) return pending;
  if (job.state == NC_JOB_PRINTING) return PartText(job.printed, job.total);
  const std::string text = nc::JobStateText(job.state);
  return job.state == NC_JOB_FAILED && job.text[0] ? text + ": " + Shown(job.text) : text;
}

void DrawJobProgress(const Console* c, const NC_Job& job, const CellLook& cell) {
  const Style& l = TheStyle();
  const std::string text = JobText(c, job);
  if (PendingText(c, IdOf(job)))
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

void DrawJobCell(const Console* c, const NC_Job& job, int column, const CellLook& cell) {
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
      DrawJobProgress(c, job, cell);
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
std::string Summary(const Console* c) {
  const size_t unsent = c->state.transfers.size();
  const bool known = c->state.link == Link::kReady || !c->state.printers->empty();
  const std::string waits = unsent ? std::to_string(unsent) + " to be sent" : "";
  if (!known) return waits;
  int counts[6] = {};
  for (const NC_Job& job : *c->state.jobs) ++counts[job.state];
  std::string text = std::to_string(counts[NC_JOB_WAITING]) + " waiting, " +
                     std::to_string(counts[NC_JOB_PRINTING]) + " printing";
  for (NC_JobState state : {NC_JOB_HELD, NC_JOB_PAPER_OUT, NC_JOB_FAILED})
    if (counts[state]) text += ", " + std::to_string(counts[state]) + " " + nc::JobStateText(state);
  return unsent ? text + ", " + waits : text;
}

void DrawHead(const Console* c) {
  const Style& l = TheStyle();
  Area head = c->layout.queue_head;
  Fill(head, l.tool_bar);
  LineAtTop(head);
  LineAtBottom(head);
  head = head.Inset(12, 0);
  head.w = c->layout.hold_job.x - head.x - 12;
  DrawLabel(l.bold, Align::kLeft, head, "Queue", l.ink);
  head.TakeLeft(XwTextWidthUtf8(l.bold, "Queue") + 8);
  DrawLabel(l.small_text, Align::kLeft, head, Summary(c), l.second);
}

}  // namespace

void DrawQueuePane(Console* c) {
  c->queue.SetFocused(HasKeyboard(c, FocusStop::kQueue));
  c->queue.SetMuted(c->state.link != Link::kReady);
  c->queue.SetEmptyText(c->state.link == Link::kReady ? "Nothing is waiting"
                                                      : "The queue is not known yet");
  DrawHead(c);
  c->queue.Draw(c->hover);
}

void AddQueueHits(Console* c) {
  c->queue.AddHits(&c->hits, [c](int row) -> Words {
    const QueueRow& r = c->rows[size_t(row)];
    if (const Transfer* t = r.transfer ? TransferOf(c, r) : nullptr)
      return {XWA_ROW, 0, Shown(t->order.document), TransferText(*t)};
    const NC_Job* job = JobOf(c, r);
    return job ? Words{XWA_ROW, 0, Shown(job->document), JobText(c, *job)} : Words{};
  });
}

void DrawQueueCell(Console* c, int row, int column, const CellLook& cell) {
  const QueueRow& r = c->rows[size_t(row)];
  if (const Transfer* t = r.transfer ? TransferOf(c, r) : nullptr)
    DrawTransferCell(*t, column, cell);
  else if (const NC_Job* job = JobOf(c, r))
    DrawJobCell(c, *job, column, cell);
}

void FillQueue(Console* c) {
  const QueueRow* row = SelectedRow(c);
  QueueRow kept = row ? *row : c->missing;
  for (const Arrival& a : c->state.arrivals)
    if (kept.transfer == a.number) kept = {0, a.id};
  c->rows.clear();
  for (const Transfer& t : c->state.transfers) c->rows.push_back({t.number, {}});
  for (const NC_Job& job : *c->state.jobs) c->rows.push_back({0, IdOf(job)});
  c->queue.SetRows(int(c->rows.size()));
  // What is sent can be gone for a moment before the list that shows it as a job has come.
  if (kept == QueueRow{}) return c->queue.KeepSelected(-1);
  const auto it = std::find(c->rows.begin(), c->rows.end(), kept);
  const bool found = it != c->rows.end();
  c->queue.KeepSelected(found ? int(it - c->rows.begin()) : -1);
  c->missing = found ? QueueRow{} : kept;
}

bool CanChange(const Console* c, JobAction action) {
  const QueueRow* row = SelectedRow(c);
  if (!row) return false;
  if (const Transfer* t = row->transfer ? TransferOf(c, *row) : nullptr)
    return action == JobAction::kRemove
               ? t->state != Sending::kCancelling
               : action == JobAction::kRelease && t->state == Sending::kFailed;
  const NC_Job* job = JobOf(c, *row);
  if (!job || c->state.link == Link::kAway || PendingText(c, row->job)) return false;
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

void ChangeSelected(Console* c, JobAction action) {
  if (!CanChange(c, action)) return;
  const QueueRow row = *SelectedRow(c);
  if (!row.transfer)
    c->server.Change(row.job, action);
  else if (action == JobAction::kRemove)
    c->server.Cancel(row.transfer);
  else
    c->server.Retry(row.transfer);
}

}  // namespace console
