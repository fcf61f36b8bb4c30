#include "app/window/queue_commands.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "app/format/folding.h"
#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/panes/queue_cells.h"
#include "app/window/print_options.h"
#include "app/window/side_commands.h"

namespace console {
namespace {

constexpr int kPriorities[] = {100, 90, 75, 50, 25, 10, 1};
constexpr int kCopies[] = {1, 2, 3, 4, 5, 6, 8, 10, 12, 15, 20, 25, 50, 100, 200, 500};

// In the order of the menu.
struct NamedOrder {
  QueueOrder order;
  const char* name;
};
constexpr NamedOrder kOrders[] = {
    {QueueOrder::kPrint, "Print Order"},       {QueueOrder::kNumber, "Number"},
    {QueueOrder::kName, "Document"},           {QueueOrder::kOwner, "Owner"},
    {QueueOrder::kPrinter, "Printer"},         {QueueOrder::kProfile, "Profile"},
    {QueueOrder::kState, "Progress"},          {QueueOrder::kSize, "Size"},
    {QueueOrder::kTime, "Time of Submission"}, {QueueOrder::kPriority, "Priority"},
};
// By QueueFilter::Part.
constexpr const char* kParts[] = {"All Jobs", "Active Jobs", "Ended Jobs"};

// The selected jobs that the server has.
std::vector<const NC_Job*> SelectedJobs(const Console* c) {
  std::vector<const NC_Job*> jobs;
  for (const QueueId& id : c->queue.Selected())
    if (const NC_Job* job = c->queue.rows.JobOf(id)) jobs.push_back(job);
  return jobs;
}

// What opens a window for any other number, behind them.
constexpr char kOther[] = "Other…";

// Checked where all selected jobs have it.
template <size_t n>
std::vector<CommandChoice> NumberChoices(const Console* c, const int (&numbers)[n],
                                         int32_t NC_Job::*field) {
  const std::vector<const NC_Job*> jobs = SelectedJobs(c);
  std::vector<CommandChoice> choices;
  for (const int number : numbers) {
    const bool all = !jobs.empty() && std::all_of(jobs.begin(), jobs.end(), [&](const NC_Job* job) {
      return job->*field == number;
    });
    choices.push_back({std::to_string(number), all});
  }
  choices.push_back({kOther});
  return choices;
}

// By name, in natural order.
std::vector<const NC_Printer*> PrintersByName(const Console* c) {
  std::vector<std::pair<std::string, const NC_Printer*>> keys;
  for (const NC_Printer& printer : *c->state.printers)
    keys.emplace_back(NaturalKey(printer.name), &printer);
  std::sort(keys.begin(), keys.end());
  std::vector<const NC_Printer*> printers;
  for (const auto& [key, printer] : keys) printers.push_back(printer);
  return printers;
}

std::string PrinterOf(const Console* c, const QueueId& id) {
  const NC_Job* job = c->queue.rows.JobOf(id);
  return job ? job->printer : "";
}

bool MayRemove(const Console* c, const std::vector<QueueId>& ids) {
  const std::optional<Question> q = RemovalQuestion(c->queue.rows, ids);
  if (!q) return true;
  XwPopupLocation(c->window, c->window->width / 2, c->window->height / 3);  // also asked by a key
  return XwConfirmUtf8("!", "Quorvik", q->text.c_str(), q->harmless.c_str(), q->act.c_str(),
                       nullptr) == 2;
}

// Tells which documents were removed before they were sent. Of one that is being sent this is told
// when the sending has stopped.
void TellTakenOut(Console* c, const std::vector<QueueId>& ids) {
  int n = 0;
  std::string name;
  for (const QueueId& id : ids) {
    const Outgoing* out = c->queue.rows.OutgoingOf(id);
    if (!out || out->state == OutgoingState::kSending) continue;
    name = out->document;
    ++n;
  }
  if (n > 0)
    Tell(c, true, "Removed: " + (n == 1 ? Quoted(name) : NumberOf(n, "document", "documents")));
}

void Reorder(Console* c, const std::vector<QueueId>& ids, int gap) {
  std::string why;
  const std::vector<Reordering> steps = PlanReordering(c->queue.rows, ids, gap, &why);
  if (steps.empty())
    return TellWhy(c, why, [](const Console* now) { return WhyNotChange(now, Verb::kReorder); });
  c->status.PassReason();
  for (const Reordering& step : steps) c->state.pending.Begin(step.job, Verb::kReorder, 0);
  c->server.Reorder(steps);
  c->damage |= kQueuePane;
}

}  // namespace

// --- Verbs

std::string WhyNotChange(const Console* c, Verb verb) {
  return c->queue.Check(verb).why_not;
}

void ChangeJobs(Console* c, const JobChange& change) {
  if (c->queue.Check(change.verb).possible()) ChangeThese(c, c->queue.Selected(), change);
}

void ChangeThese(Console* c, const std::vector<QueueId>& ids, const JobChange& change) {
  const VerbCheck check =
      CheckVerb(change.verb, c->queue.rows, ids, c->state.pending, c->state.link == Link::kReady);
  if (!check.possible()) return TellWhy(c, check.why_not);
  if (change.verb == Verb::kRemove && !MayRemove(c, check.on)) return;
  c->status.PassReason();
  if (change.verb == Verb::kRemove) TellTakenOut(c, check.on);
  std::vector<NamedJob> jobs;
  for (const QueueId& id : check.on) {
    if (!id.outgoing)
      jobs.push_back({id.job, c->queue.rows.NameOf(id), PrinterOf(c, id)});
    else if (change.verb == Verb::kRemove)
      c->server.Cancel(id.outgoing);
    else
      c->server.Retry(id.outgoing);
  }
  // The server's side tells the same a moment later.
  for (const NamedJob& job : jobs) c->state.pending.Begin(job.id, change.verb, 0);
  c->server.Change(jobs, change);
  if (check.left_out > 0)
    TellWhy(c, NumberText(check.left_out) + " of " + NumberOf(int64_t(ids.size()), "job", "jobs") +
                   (check.left_out == 1 ? " was" : " were") + " left out. " + check.why_left_out);
  if (change.verb == Verb::kPriority || change.verb == Verb::kMove) c->queue.FollowFocus();
  c->damage |= kQueuePane;
}

std::vector<CommandChoice> PriorityChoices(const Console* c) {
  return NumberChoices(c, kPriorities, &NC_Job::priority);
}
void ChoosePriority(Console* c, int choice) {
  if (choice == int(std::size(kPriorities))) return AskNumber(c, Verb::kPriority);
  if (choice < int(std::size(kPriorities))) ChangeJobs(c, {Verb::kPriority, kPriorities[choice]});
}

std::vector<CommandChoice> CopiesChoices(const Console* c) {
  return NumberChoices(c, kCopies, &NC_Job::copies);
}
void ChooseCopies(Console* c, int choice) {
  if (choice == int(std::size(kCopies))) return AskNumber(c, Verb::kCopies);
  if (choice < int(std::size(kCopies))) ChangeJobs(c, {Verb::kCopies, kCopies[choice]});
}

namespace {

// A text of all selected jobs; nothing when they differ.
std::optional<std::string> SharedText(const std::vector<const NC_Job*>& jobs,
                                      const std::function<std::string(const NC_Job*)>& text) {
  std::optional<std::string> shared;
  for (const NC_Job* job : jobs) {
    if (shared && *shared != text(job)) return std::nullopt;
    shared = text(job);
  }
  return shared;
}

// What all printers of the selected jobs have. One without a list has any, so that it leaves the
// choice to the others.
std::vector<std::string> MediaOfJobs(const Console* c) {
  std::set<std::string_view> printers;
  for (const NC_Job* job : SelectedJobs(c)) printers.insert(job->printer);
  std::optional<std::vector<std::string>> shared;
  for (const std::string_view printer : printers) {
    const PrinterRow* row = c->printers.Find(std::string(printer));
    if (!row) return {};
    const std::vector<std::string> media = MediaOf(row->printer);
    if (media.empty()) continue;
    if (!shared) shared = media;
    std::erase_if(*shared, [&media](const std::string& m) {
      return std::find(media.begin(), media.end(), m) == media.end();
    });
  }
  return shared.value_or(std::vector<std::string>());
}

}  // namespace

std::vector<CommandChoice> MediaChoices(const Console* c) {
  return NamedChoicesOrNone(
      "Usual", MediaOfJobs(c),
      SharedText(SelectedJobs(c), [](const NC_Job* job) { return job->media; }));
}

// The server refuses a profile that belongs to another printer.
std::vector<CommandChoice> ProfileChoices(const Console* c) {
  return NamedChoicesOrNone(
      "Usual", ProfileNames(c),
      SharedText(SelectedJobs(c), [](const NC_Job* job) { return job->profile; }));
}

std::vector<CommandChoice> PrinterChoices(const Console* c) {
  const std::vector<const NC_Job*> jobs = SelectedJobs(c);
  std::vector<CommandChoice> choices;
  for (const NC_Printer* printer : PrintersByName(c)) {
    const auto there = [&](const NC_Job* job) {
      return std::string_view(job->printer) == printer->name;
    };
    const bool all = !jobs.empty() && std::all_of(jobs.begin(), jobs.end(), there);
    choices.push_back(NamedChoice(printer->name, all));
    choices.back().enabled = printer->accepting && !all;
  }
  return choices;
}

void MoveJobs(Console* c, int by) {
  const QueueRows& rows = c->queue.rows;
  const std::vector<QueueId> ids = c->queue.Check(Verb::kReorder).on;
  if (ids.empty()) return;
  const NC_Job* edge = rows.JobOf(by < 0 ? ids.front() : ids.back());
  int row = rows.RowOf(by < 0 ? ids.front() : ids.back()) + by;
  // Others of its printer that can be passed.
  while (const NC_Job* other = rows.JobAt(row)) {
    const bool passes = std::string_view(other->printer) == edge->printer &&
                        !IsAtPrinter(other->state) && !HasEnded(other->state);
    if (passes) {
      Reorder(c, ids, by < 0 ? row : row + 1);
      return c->queue.FollowFocus();
    }
    row += by;
  }
  TellWhy(c, by < 0 ? "The job is the next one of its printer already"
                    : "The job is the last one of its printer already");
}

void DropJobs(Console* c, int gap) {
  Reorder(c, c->queue.Selected(), gap);
}

namespace {

// The selected ones but for those of this printer.
std::vector<QueueId> JobsNotOn(const Console* c, const std::string& printer) {
  std::vector<QueueId> jobs = c->queue.Selected();
  std::erase_if(jobs, [&](const QueueId& id) {
    const NC_Job* job = c->queue.rows.JobOf(id);
    return job && printer == job->printer;
  });
  return jobs;
}

}  // namespace

VerbCheck CheckMoveTo(const Console* c, const std::string& printer) {
  VerbCheck check;
  check.why_not = c->printers.WhyNotPrintOn(printer);
  if (!check.why_not.empty()) return check;
  const std::vector<QueueId> jobs = JobsNotOn(c, printer);
  if (!jobs.empty())
    return CheckVerb(Verb::kMove, c->queue.rows, jobs, c->state.pending,
                     c->state.link == Link::kReady);
  const bool one = c->queue.Selected().size() == 1;
  check.why_not = (one ? "The job is for " : "The jobs are for ") + Quoted(printer) + " already";
  return check;
}

void MoveJobsTo(Console* c, const std::string& printer) {
  const VerbCheck check = CheckMoveTo(c, printer);
  if (!check.possible()) return TellWhy(c, check.why_not);
  ChangeThese(c, JobsNotOn(c, printer), {Verb::kMove, 0, printer});
}

std::string WhyNotShowJob(const Console* c) {
  return c->queue.Selected().empty() ? "No job is selected" : "";
}

void ShowJobDetails(Console* c) {
  if (!ShowsDetails(c)) return ToggleDetails(c);
  const std::vector<QueueId> ids = c->queue.Selected();
  const std::string what = ids.size() == 1 ? Quoted(c->queue.rows.NameOf(ids[0]))
                                           : NumberText(int64_t(ids.size())) + " jobs";
  Tell(c, true, "The details of " + what + " stand on the right");
}

// --- What the queue shows

std::vector<CommandChoice> SortChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  for (const NamedOrder& o : kOrders) choices.push_back({o.name, c->queue.rows.order() == o.order});
  return choices;
}
void ChooseSort(Console* c, int choice) {
  if (size_t(choice) >= std::size(kOrders)) return;
  const QueueOrder order = kOrders[choice].order;
  // Once more turns it round.
  const QueueRows& rows = c->queue.rows;
  const bool again = rows.order() == order && order != QueueOrder::kPrint;
  c->queue.Sort(order, again && !rows.descending());
  c->damage |= kQueuePane;
}

std::vector<CommandChoice> PartChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  for (size_t i = 0; i < std::size(kParts); ++i)
    choices.push_back({kParts[i], c->queue.rows.filter().part == QueueFilter::Part(i)});
  return choices;
}
void ChoosePart(Console* c, int choice) {
  QueueFilter filter = c->queue.rows.filter();
  filter.part = QueueFilter::Part(std::min(choice, int(QueueFilter::kEnded)));
  FilterQueue(c, filter);
}

bool ShowsMine(const Console* c) {
  return c->queue.rows.filter().mine;
}
void ToggleMine(Console* c) {
  QueueFilter filter = c->queue.rows.filter();
  filter.mine = !filter.mine;
  FilterQueue(c, filter);
}

void GoToQueueFilter(Console* c) {
  SetFocusStop(c, FocusStop::kQueueFilter);
}

bool FilterHidesJobs(const Console* c) {
  return c->queue.rows.filter() != QueueFilter();
}
void ShowAllJobs(Console* c) {
  FilterQueue(c, {});
  if (c->stop == FocusStop::kShowAllJobs) SetFocusStop(c, FocusStop::kQueue);
}

void FilterQueue(Console* c, const QueueFilter& filter) {
  if (filter == c->queue.rows.filter()) return;
  c->queue.Filter(filter);
  c->damage |= kQueuePane | kDetailsPane | kStatusPane;
}

void UseQueueFilter(Console* c, int type, bool gained) {
  const XwWindow* box = c->queue.head.text;
  // The report that it has got the keyboard may wait behind its first keys.
  if (XwGetFocus(c->window) == box) SetFocusStop(c, FocusStop::kQueueFilter);
  if (type == XWE_EDIT_SELECT && gained) return;
  QueueFilter filter = c->queue.head.Filter();
  // The report of its Escape takes that key's place.
  if (type == XWE_EDIT_SELECT && XwGetKeyState(XWE_ESCAPE)) filter.text.clear();
  FilterQueue(c, filter);
  if (type == XWE_EDIT_DONE && c->queue.Selected().empty()) c->queue.table.Select(0);
  if (type != XWE_EDIT_CHANGED && c->stop == FocusStop::kQueueFilter && c->active &&
      XwGetFocus(c->window) != box)
    SetFocusStop(c, StopAfterBox(c, FocusStop::kQueue));
}

void UseQueueControl(Console* c, int id, int value) {
  if (id == kQueueOwnerControl || id == kQueuePartControl) FilterQueue(c, c->queue.head.Filter());
  const int column = c->queue.table.HeadOf(id);
  if (column >= 0) c->queue.SortByHead(column);
  const bool scrolled = c->queue.table.Scrolled(id, value);
  if (scrolled) c->queue.StayHere();
  if (column >= 0 || scrolled) c->damage |= kQueuePane;
}

}  // namespace console
