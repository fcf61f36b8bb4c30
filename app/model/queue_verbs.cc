#include "app/model/queue_verbs.h"

#include <algorithm>
#include <map>

#include "app/format/words.h"
#include "printserver/changes.h"

namespace console {
namespace {

constexpr char kAtPrinter[] = "The job is at the printer";
constexpr char kPrinted[] = "The job is printed";
constexpr char kFailed[] = "The job has failed";
constexpr char kOtherOrder[] =
    "Jobs can be moved only while the queue stands in the order in which it prints";
constexpr char kNoDocument[] = "The server no longer has its document";

// "" when it is possible.
const char* WhyNotHold(const NC_Job& job) {
  if (job.state == NC_JOB_HELD) return "The job is held already";
  return job.state == NC_JOB_DONE ? kPrinted : job.state == NC_JOB_FAILED ? kFailed : "";
}

const char* WhyNotRelease(const NC_Job& job) {
  switch (job.state) {
    case NC_JOB_HELD:
    case NC_JOB_PAPER_OUT:
      return "";
    case NC_JOB_FAILED:
      return job.kept ? "" : kNoDocument;
    case NC_JOB_DONE:
      return kPrinted;
    default:
      return "The job is not held";
  }
}

const char* WhyNotPrintAgain(const NC_Job& job) {
  if (nc::CanPrintAgain(job)) return "";
  return HasEnded(job.state) ? kNoDocument : "The job has not been printed yet";
}

// What is set for the next time that it prints.
const char* WhyNotSet(const NC_Job& job, bool at_printer_too) {
  if (IsAtPrinter(job.state) && !at_printer_too) return kAtPrinter;
  return job.state == NC_JOB_DONE && !job.kept ? kNoDocument : "";
}

const char* WhyNotReorder(const NC_Job& job) {
  if (IsAtPrinter(job.state)) return kAtPrinter;
  return job.state == NC_JOB_DONE ? kPrinted : job.state == NC_JOB_FAILED ? kFailed : "";
}

const char* WhyNot(Verb verb, const NC_Job& job) {
  switch (verb) {
    case Verb::kHold:
      return WhyNotHold(job);
    case Verb::kRelease:
      return WhyNotRelease(job);
    case Verb::kPrintAgain:
      return WhyNotPrintAgain(job);
    case Verb::kPriority:
    case Verb::kMove:  // is held before it is moved
      return WhyNotSet(job, true);
    case Verb::kCopies:
      return WhyNotSet(job, false);
    case Verb::kReorder:
      return WhyNotReorder(job);
    case Verb::kRemove:
      break;
  }
  return "";
}

const char* WhyNot(Verb verb, const Outgoing& out) {
  if (out.state == OutgoingState::kCancelling) return "Its sending is being cancelled";
  if (verb == Verb::kRemove) return "";
  if (verb == Verb::kRelease && out.state == OutgoingState::kFailed) return "";
  return out.state == OutgoingState::kFailed ? "It was not sent" : "It is still to be sent";
}

}  // namespace

namespace {

std::string NameOf(const QueueRows& rows, const QueueId& id) {
  const std::string name = rows.NameOf(id);
  return name.empty() ? "The job" : Quoted(name);
}

}  // namespace

namespace {

std::string WhyWait(const QueueRows& rows, const std::vector<QueueId>& selected,
                    const PendingChanges& pending) {
  const auto changing = std::count_if(selected.begin(), selected.end(), [&](const QueueId& id) {
    return rows.JobOf(id) && pending.Of(id.job);
  });
  if (changing == 0) return "";
  if (selected.size() == 1) return "A change of the job is under way";
  return NumberOf(changing, "job is", "jobs are") + " still being changed";
}

}  // namespace

VerbCheck CheckVerb(Verb verb, const QueueRows& rows, const std::vector<QueueId>& selected,
                    const PendingChanges& pending, bool connected) {
  VerbCheck check;
  if (verb == Verb::kReorder && !rows.InPrintOrder()) {
    check.why_not = kOtherOrder;
    return check;
  }
  if (connected) check.why_not = WhyWait(rows, selected, pending);
  if (!check.why_not.empty()) return check;
  for (const QueueId& id : selected) {
    std::string why;
    const NC_Job* job = rows.JobOf(id);
    if (const Outgoing* out = rows.OutgoingOf(id))
      why = WhyNot(verb, *out);
    else if (!job)
      why = NameOf(rows, id) + " is not in the queue any more";
    else if (!connected)
      why = "The server is away";
    else
      why = WhyNot(verb, *job);
    if (why.empty())
      check.on.push_back(id);
    else if (check.why_not.empty())
      check.why_not = why;
  }
  if (check.possible()) check.why_not.clear();
  if (selected.empty()) check.why_not = "No job is selected";
  return check;
}

namespace {

// The jobs that can stand before each other: those of a printer, none at it, by their rows.
struct PrinterLine {
  std::vector<int> rows;
  int moved = 0;
};

// What a drag asks of one line.
std::vector<Reordering> PlanLine(const QueueRows& rows, const PrinterLine& line,
                                 const std::vector<bool>& moved, int gap, std::string* why_not) {
  auto id = [&](int row) { return rows.IdAt(row).job; };
  auto step = [&](int row, int before) {
    return Reordering{id(row), id(before), rows.JobAt(row)->document};
  };
  const size_t n = line.rows.size();
  int target = -1;
  std::vector<int> stays_behind(n, -1);  // the first row behind each one that is not moved
  for (size_t i = n, next = n; i-- > 0;) {
    stays_behind[i] = next == n ? -1 : line.rows[next];
    if (moved[size_t(line.rows[i])]) continue;
    next = i;
    if (line.rows[i] >= gap) target = line.rows[i];
  }
  std::vector<Reordering> steps;
  for (size_t i = 0; i < n; ++i) {
    if (!moved[size_t(line.rows[i])]) continue;
    // As long as none was moved, those that stand before the target do so already.
    if (target >= 0 && (!steps.empty() || stays_behind[i] != target))
      steps.push_back(step(line.rows[i], target));
    if (target >= 0 || stays_behind[i] < 0) continue;
    // Behind the last one: that one goes before it.
    if (line.moved == 1 && i + 2 == n)
      steps.push_back(step(line.rows[n - 1], line.rows[i]));
    else
      *why_not = "A job can be put before another one, not behind the last: drag the others up";
  }
  return steps;
}

}  // namespace

std::vector<Reordering> PlanReordering(const QueueRows& rows, const std::vector<QueueId>& dragged,
                                       int gap, std::string* why_not) {
  why_not->clear();
  if (!rows.InPrintOrder()) {
    *why_not = kOtherOrder;
    return {};
  }
  std::vector<bool> moved(size_t(rows.count()));
  for (const QueueId& id : dragged) {
    const int row = rows.RowOf(id);
    const NC_Job* job = rows.JobAt(row);
    const std::string why = job ? WhyNotReorder(*job) : "It is still to be sent";
    if (row >= 0 && why.empty()) moved[size_t(row)] = true;
    if (why_not->empty()) *why_not = why;
  }
  std::map<std::string, PrinterLine> lines;
  for (int row = 0; row < rows.count(); ++row) {
    const NC_Job* job = rows.JobAt(row);
    if (!job || *WhyNotReorder(*job)) continue;
    lines[job->printer].rows.push_back(row);
    lines[job->printer].moved += moved[size_t(row)];
  }
  std::vector<Reordering> steps;
  for (const auto& [printer, line] : lines) {
    if (line.moved == 0) continue;
    const std::vector<Reordering> more = PlanLine(rows, line, moved, gap, why_not);
    steps.insert(steps.end(), more.begin(), more.end());
  }
  if (!steps.empty()) why_not->clear();
  return steps;
}

std::optional<Question> RemovalQuestion(const QueueRows& rows, const std::vector<QueueId>& ids) {
  int jobs = 0, at_printer = 0, others = 0;
  const NC_Job* first = nullptr;
  for (const QueueId& id : ids) {
    const NC_Job* job = rows.JobOf(id);
    if (!job) continue;
    if (!first) first = job;
    ++jobs;
    at_printer += IsAtPrinter(job->state);
    others += !rows.IsMine(*job);
  }
  if (jobs == 0 || (jobs == 1 && at_printer + others == 0)) return std::nullopt;
  std::string text;
  if (jobs == 1) {
    text = "Remove " + Quoted(first->document) + "?";
    if (at_printer) text += " It is at the printer.";
    if (others && first->owner[0]) text += " It belongs to " + Quoted(first->owner) + ".";
    if (others && !first->owner[0]) text += " It is not one of yours.";
  } else {
    text = "Remove " + NumberText(jobs) + " jobs?";
    if (at_printer) text += " " + NumberOf(at_printer, "is", "are") + " at the printer.";
    if (others) text += " " + NumberOf(others, "is not yours", "are not yours") + ".";
  }
  return Question{text, "Keep", "Remove"};
}

}  // namespace console
