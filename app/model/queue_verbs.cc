#include "app/model/queue_verbs.h"

#include <algorithm>
#include <map>

#include "app/format/words.h"
#include "app/model/server_words.h"
#include "printserver/changes.h"

namespace console {
namespace {

// Why a verb is not possible for a job, and for several of which that is true.
struct Why {
  const char* one = "";
  const char* many = "";
  explicit operator bool() const { return *one != 0; }
  bool operator==(const Why& other) const { return one == other.one; }
};

constexpr Why kPossible{};
constexpr Why kAtPrinter{"The job is at the printer", "The jobs are at the printer"};
constexpr Why kPrinted{"The job is printed", "The jobs are printed"};
constexpr Why kFailed{"The job has failed", "The jobs have failed"};
constexpr Why kHeld{"The job is held already", "The jobs are held already"};
constexpr Why kNotHeld{"The job is not held", "None of the jobs is held"};
constexpr Why kNotPrinted{"The job has not been printed yet",
                          "None of the jobs has been printed yet"};
constexpr Why kNoDocument{"The server no longer has the job's document",
                          "The server no longer has the jobs' documents"};
constexpr Why kCancelled{"Its sending is being cancelled", "Their sending is being cancelled"};
constexpr Why kNotSent{"The document could not be sent", "The documents could not be sent"};
constexpr Why kToBeSent{"The document has not been sent yet",
                        "The documents have not been sent yet"};
constexpr Why kGone{"The job is not in the queue any more",
                    "The jobs are not in the queue any more"};
constexpr Why kAway{kServerAway, kServerAway};

constexpr char kOtherOrder[] =
    "Jobs are moved in Print Order only: choose it in View, Sort Queue By (O in the queue)";

Why WhyEnded(const NC_Job& job) {
  return job.state == NC_JOB_DONE ? kPrinted : job.state == NC_JOB_FAILED ? kFailed : kPossible;
}

Why WhyNotHold(const NC_Job& job) {
  return job.state == NC_JOB_HELD ? kHeld : WhyEnded(job);
}

Why WhyNotRelease(const NC_Job& job) {
  switch (job.state) {
    case NC_JOB_HELD:
    case NC_JOB_PAPER_OUT:
      return kPossible;
    case NC_JOB_FAILED:
      return job.kept ? kPossible : kNoDocument;
    case NC_JOB_DONE:
      return kPrinted;
    default:
      return kNotHeld;
  }
}

Why WhyNotPrintAgain(const NC_Job& job) {
  if (nc::CanPrintAgain(job)) return kPossible;
  return HasEnded(job.state) ? kNoDocument : kNotPrinted;
}

// What is set for the next time that it prints.
Why WhyNotSet(const NC_Job& job, bool at_printer_too) {
  if (IsAtPrinter(job.state) && !at_printer_too) return kAtPrinter;
  return job.state == NC_JOB_DONE && !job.kept ? kNoDocument : kPossible;
}

Why WhyNotReorder(const NC_Job& job) {
  return IsAtPrinter(job.state) ? kAtPrinter : WhyEnded(job);
}

Why WhyNot(Verb verb, const NC_Job& job) {
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
    case Verb::kMedia:
    case Verb::kProfile:
      return WhyNotSet(job, false);
    case Verb::kReorder:
      return WhyNotReorder(job);
    case Verb::kRemove:
      break;
  }
  return kPossible;
}

Why WhyNot(Verb verb, const Outgoing& out) {
  if (out.state == OutgoingState::kCancelling) return kCancelled;
  if (verb == Verb::kRemove) return kPossible;
  if (verb == Verb::kRelease && out.state == OutgoingState::kFailed) return kPossible;
  return out.state == OutgoingState::kFailed ? kNotSent : kToBeSent;
}

Why WhyNot(Verb verb, const QueueRows& rows, const QueueId& id, bool connected) {
  if (const Outgoing* out = rows.OutgoingOf(id)) return WhyNot(verb, *out);
  const NC_Job* job = rows.JobOf(id);
  if (!job) return kGone;
  if (!connected) return kAway;
  return WhyNot(verb, *job);
}

bool IsSoAlready(Verb verb, const NC_Job* job) {
  if (!job) return false;
  if (verb == Verb::kRelease) return job->state == NC_JOB_WAITING || job->state == NC_JOB_PRINTING;
  return verb == Verb::kHold && job->state == NC_JOB_HELD;
}

std::string TextOf(const Why& why, const QueueRows& rows, const QueueId& id) {
  const std::string name = why == kGone ? rows.NameOf(id) : "";
  return name.empty() ? why.one : Quoted(name) + " is not in the queue any more";
}

// Of several for each of which there is another reason.
std::string WhyNone(Verb verb) {
  // By Verb.
  constexpr const char* kDone[] = {"held",
                                   "released",
                                   "printed again",
                                   "removed",
                                   "given another priority",
                                   "given another number of copies",
                                   "given other media",
                                   "given another profile",
                                   "moved to another printer",
                                   "moved in the queue"};
  return std::string("None of the jobs can be ") + kDone[int(verb)];
}

std::string WhyWait(const QueueRows& rows, const std::vector<QueueId>& selected,
                    const PendingChanges& pending) {
  const auto changing = std::count_if(selected.begin(), selected.end(), [&](const QueueId& id) {
    return rows.JobOf(id) && pending.Of(id.job);
  });
  if (changing == 0) return "";
  if (selected.size() == 1) return "The job is still being changed";
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
  Why first;
  bool same = true;
  for (const QueueId& id : selected) {
    const Why why = WhyNot(verb, rows, id, connected);
    if (!why)
      check.on.push_back(id);
    else if (!IsSoAlready(verb, rows.JobOf(id)) && check.left_out++ == 0)
      check.why_left_out = TextOf(why, rows, id);
    if (!first) first = why;
    same &= why == first;
  }
  if (selected.empty()) check.why_not = "No job is selected";
  if (check.possible() || selected.empty()) return check;
  check.why_not = selected.size() == 1 ? TextOf(first, rows, selected[0])
                  : same               ? first.many
                                       : WhyNone(verb);
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
    return Reordering{id(row), id(before), rows.JobAt(row)->document, ""};
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
      steps.push_back({id(line.rows[n - 1]), id(line.rows[i]), rows.JobAt(line.rows[i])->document,
                       rows.JobAt(line.rows[n - 1])->document});
    else
      *why_not =
          "A job is put before another one, never behind the last: move the others up instead";
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
    const std::string why = WhyNot(Verb::kReorder, rows, id, true).one;
    if (row >= 0 && why.empty()) moved[size_t(row)] = true;
    if (why_not->empty()) *why_not = why;
  }
  std::map<std::string, PrinterLine> lines;
  for (int row = 0; row < rows.count(); ++row) {
    const NC_Job* job = rows.JobAt(row);
    if (!job || WhyNotReorder(*job)) continue;
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

namespace {

// With its number where another one has the same name.
std::string NameIn(const QueueRows& rows, const NC_Job& job) {
  const bool told_apart = job.number == 0 || rows.CountOf(job.document) < 2;
  return Quoted(job.document) + (told_apart ? "" : " (job " + std::to_string(job.number) + ")");
}

}  // namespace

std::optional<Question> RemovalQuestion(const QueueRows& rows, const std::vector<QueueId>& ids) {
  int all = 0, jobs = 0, at_printer = 0, others = 0;
  const NC_Job* first = nullptr;
  for (const QueueId& id : ids) {
    const NC_Job* job = rows.JobOf(id);
    all += job || rows.OutgoingOf(id);
    if (!job) continue;
    if (!first) first = job;
    ++jobs;
    at_printer += IsAtPrinter(job->state);
    others += !rows.IsMine(*job);
  }
  if (all < 2 && at_printer + others == 0) return std::nullopt;
  std::string text;
  if (all == 1) {
    text = "Remove " + NameIn(rows, *first) + "?";
    if (at_printer) text += " It is at the printer.";
    if (others && first->owner[0]) text += " It belongs to " + Quoted(first->owner) + ".";
    if (others && !first->owner[0]) text += " It is not one of yours.";
  } else {
    text = "Remove " + NumberText(all) + (jobs > 0 ? " jobs?" : " documents?");
    if (jobs == 0) text += " They are not at the server.";
    if (at_printer) text += " " + NumberOf(at_printer, "is", "are") + " at the printer.";
    if (others == all)
      text += all == 2 ? " Neither is yours." : " None is yours.";
    else if (others)
      text += " " + NumberOf(others, "is not yours", "are not yours") + ".";
  }
  return Question{text, "Keep", "Remove"};
}

}  // namespace console
