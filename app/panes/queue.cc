#include "app/panes/queue.h"

#include <algorithm>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/style.h"
#include "app/panes/ids.h"
#include "app/panes/queue_cells.h"
#include "os/os.h"

namespace console {
namespace {

RowWords WordsOfJobIn(const QueuePane* p, const NC_Job& job) {
  return WordsOfJob(job, p->state.pending.Of(QueueIdOf(job).job));
}

void DrawCell(const QueuePane* p, int row, int column, const CellLook& cell) {
  if (const NC_Job* job = p->rows.JobAt(row))
    DrawJobCell(*job, WordsOfJobIn(p, *job), QueueColumn(column), cell);
  else if (const Outgoing* out = p->rows.OutgoingAt(row))
    DrawOutgoingCell(*out, QueueColumn(column), cell);
}

Words WordsOfRow(const QueuePane* p, int row) {
  if (const Outgoing* out = p->rows.OutgoingAt(row))
    return {XWA_ROW, 0, Shown(out->document), WordsOfOutgoing(*out).ShownText()};
  const NC_Job* job = p->rows.JobAt(row);
  if (!job) return {};
  const RowWords words = WordsOfJobIn(p, *job);
  return {XWA_ROW, 0, Shown(job->document), words.ShownText()};
}

std::vector<std::string> CutTextsIn(const QueuePane* p, int row, const std::vector<int>& widths) {
  if (const NC_Job* job = p->rows.JobAt(row))
    return CutJobTexts(*job, WordsOfJobIn(p, *job), widths);
  const Outgoing* out = p->rows.OutgoingAt(row);
  return out ? CutOutgoingTexts(*out, widths) : std::vector<std::string>();
}

}  // namespace

QueuePane::QueuePane(const Layout& layout_of_all, const ServerState& state_now)
    : layout(layout_of_all),
      state(state_now),
      rows(OS_GetUserName()),
      table(
          kQueue, QueueColumns(),
          [this](int row, int column, const CellLook& cell) { DrawCell(this, row, column, cell); },
          &selection) {}

void QueuePane::MakeControls(XwWindow* w) {
  table.MakeControls(w, kQueueControls, "Queue");
  table.SetCarries(true, rows.InPrintOrder());
  head.MakeControls(w);
  show_all = XwButton(w, "Show All", kShowAllJobsCommand, 0, 0, 9, 9, XWC_ENABLED | XWC_VARIANT, 0);
  XwDescribeControl(show_all, "Show All Jobs");
}

void QueuePane::Place() {
  table.Place(layout.queue);
  head.Place(layout.queue_head);
}

void QueuePane::Enable(bool on) {
  table.Enable(on);
  head.Enable(on);
}

void QueuePane::SetTakesDrop(bool on) {
  takes_drop = on;
  table.SetFramed(on);
}

void QueuePane::Update() {
  table.SetNote(rows.NoteText());
  PlaceControl(show_all, rows.leaves_out() ? table.NoteButton() : Area{});
}

std::string QueuePane::SummaryShown() const {
  const int room = head.SummaryArea(layout.queue_head).w;
  return rows.Summary([room](const std::string& text) {
    return XwTextWidthUtf8(TheStyle().small_text, text.c_str()) <= room;
  });
}

void QueuePane::AddHits(Hits* hits) const {
  const std::string summary = rows.Summary();
  hits->Cover(head.SummaryArea(layout.queue_head),
              {XWA_LABEL, 0, "Queue Summary", summary, SummaryShown() == summary ? "" : summary});
  table.AddHits(
      hits, [this](int row) { return WordsOfRow(this, row); },
      [this](int row, const std::vector<int>& widths) { return CutTextsIn(this, row, widths); });
}

void QueuePane::Draw(const Hit& hover, bool focused) {
  table.SetFocused(focused);
  // Jobs are what the server said last. A document that waits to be sent is known here, and stays
  // as true as it was.
  table.SetMuted(state.link != Link::kReady,
                 [this](int row) { return rows.OutgoingAt(row) != nullptr; });
  head.Draw(layout.queue_head, SummaryShown());
  table.Draw(hover);
  if (!takes_drop) return;
  const Area& rows_area = layout.queue;
  const Area& bar = layout.queue_head;
  DrawDropFrame({rows_area.x, bar.y, rows_area.w, rows_area.bottom() - bar.y});
}

std::vector<Outgoing> QueuePane::OutgoingNow() const {
  std::vector<Outgoing> all;
  for (const Transfer& t : state.transfers) all.push_back(OutgoingOf(t));
  return all;
}

void QueuePane::Fill() {
  // What is sent can be gone for a moment before the list that shows it as a job has come.
  for (const Arrival& a : state.arrivals) {
    const QueueId sent{a.number, {}};
    if (!rows.Has(sent)) continue;
    rows.Expect(a.id);
    selection.Rename(sent, {0, a.id});
  }
  rows.Show(state.listed ? state.jobs : nullptr, OutgoingNow());
  Renewed();
  ShowFollowed();
  ShowSent();
}

void QueuePane::FollowFocus() {
  followed_row_ = table.focus();
  if (followed_row_ >= 0) followed_ = rows.IdAt(followed_row_);
}

// Until its change has been answered, or the keyboard has gone to another row.
void QueuePane::ShowFollowed() {
  if (followed_row_ < 0) return;
  const int row = table.focus();
  const bool stays = row >= 0 && rows.IdAt(row) == followed_;
  if (stays && row != followed_row_) table.Reveal(row);
  followed_row_ = stays && state.pending.Of(followed_.job) ? row : -1;
}

void QueuePane::FollowSent(int first) {
  if (!next_sent_) next_sent_ = first;
}

// The last of those that have become jobs: when it comes, and when its state is another. What is
// selected stays where it is.
void QueuePane::ShowSent() {
  if (!next_sent_) return;
  for (const Arrival& a : state.arrivals) {
    if (a.number < next_sent_ || !rows.JobOf({0, a.id})) continue;
    next_sent_ = a.number + 1;
    sent_ = {0, a.id};
    sent_state_.reset();
  }
  const NC_Job* job = rows.JobOf(sent_);
  if (!job || job->state == sent_state_) return;
  sent_state_ = job->state;
  if (!selection.Any()) table.Reveal(rows.RowOf(sent_));
  if (HasEnded(job->state)) sent_ = {};
}

void QueuePane::StayHere() {
  next_sent_ = 0;
  sent_ = {};
}

void QueuePane::ShowProgress() {
  rows.Show(state.listed ? state.jobs : nullptr, OutgoingNow());
}

void QueuePane::Renewed() {
  selection.Renew();
  table.SetRows(rows.count());
  // Documents that the server does not have stand first; then those that print, which stay there.
  int first = 0;
  while (rows.OutgoingAt(first)) ++first;
  const NC_Job* job = nullptr;
  while ((job = rows.JobAt(first)) && IsAtPrinter(job->state)) ++first;
  table.SetFirstGap(first);
}

void QueuePane::Sort(QueueOrder order, bool descending) {
  rows.Sort(order, descending);
  table.SetSort(ColumnOf(order), descending);
  table.SetCarries(true, rows.InPrintOrder());
  Renewed();
  table.Reveal(table.focus());
}

void QueuePane::SortByHead(int column) {
  const std::optional<QueueOrder> order = OrderOf(QueueColumn(column));
  if (!order) return;
  if (rows.order() != *order)
    Sort(*order, false);
  else if (!rows.descending())
    Sort(*order, true);
  else
    Sort(QueueOrder::kPrint, false);
}

void QueuePane::Filter(const QueueFilter& filter) {
  rows.Filter(filter);
  head.ShowFilter(filter);
  Renewed();
  table.Reveal(table.focus());
}

std::string QueuePane::SelectionText() const {
  const size_t n = Selected().size();
  const std::string jobs = CountText(rows.count(), "job", "jobs");
  if (n > 0) return NumberText(int64_t(n)) + " of " + jobs + " selected";
  return rows.count() > 0 ? jobs : "";
}

VerbCheck QueuePane::Check(Verb verb) const {
  return CheckVerb(verb, rows, Selected(), state.pending, state.link == Link::kReady);
}

}  // namespace console
