// The worker's side: changes of jobs. Each is sent once. When the connection breaks, nobody knows
// whether the one that had been sent was made, and those behind it are not sent any more.
#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/printers.h"
#include "app/server/worker.h"
#include "printserver/changes.h"
#include "printserver/nc.h"

namespace console {
namespace {

// After so long the lists come first, so that a long line of changes is seen to go on.
constexpr int kChangesMs = 300;
constexpr size_t kMostUnwanted = 64;

nc::Change TicketOfStep(const JobStep& step) {
  nc::Change change;
  switch (step.change.verb) {
    case Verb::kHold:
      change.hold = true;
      break;
    case Verb::kRelease:
      change.hold = false;
      break;
    case Verb::kPriority:
      change.priority = step.change.number;
      break;
    case Verb::kCopies:
      change.copies = step.change.number;
      break;
    case Verb::kMedia:
      change.media = step.change.name;
      break;
    case Verb::kProfile:
      change.profile = step.change.name;
      break;
    case Verb::kMove:
      change.printer = step.change.name;
      break;
    case Verb::kReorder: {
      char id[33];
      NC_FormatId(step.before.data(), id);
      change.before = id;
      break;
    }
    case Verb::kPrintAgain:
    case Verb::kRemove:
      break;
  }
  return change;
}

}  // namespace

bool Worker::FindJob(const JobId& id, NC_Job* out) {
  Locked lock(shared_);
  for (const NC_Job& job : *shared_->state.jobs) {
    if (QueueIdOf(job).job != id) continue;
    *out = job;
    return true;
  }
  return false;
}

// Somebody else may have moved jobs since the last list: before the moves of a batch a new one
// tells where they stand. It also tells which priorities the batch before has brought.
bool Worker::LooksFirst() {
  Locked lock(shared_);
  if (shared_->steps.empty()) return false;
  const JobStep& next = shared_->steps.front();
  return next.batch != batch_ && (next.change.verb == Verb::kMove || !placed_.empty());
}

// The next one in the line, which is in nobody's hands any more then.
bool Worker::NextStep(JobStep* out) {
  Locked lock(shared_);
  if (shared_->steps.empty()) return false;
  *out = std::move(shared_->steps.front());
  shared_->steps.pop_front();
  return true;
}

// The server's status byte, below 0 when the connection broke. Of a move to a printer or in the
// queue, and of a second print, *job is how the job was before, as far as the list has it.
int Worker::Make(const JobStep& step, NC_Job* job, bool* left_held) {
  const int fd = shared_->open[kLists];
  switch (step.change.verb) {
    case Verb::kRemove:
      return NC_RemovePrintRequest(fd, step.job.data());
    case Verb::kPrintAgain:
      return FindJob(step.job, job) ? nc::PrintAgain(fd, *job, {}) : NC_STATUS_UNKNOWN_ID;
    case Verb::kMove: {
      if (!FindJob(step.job, job)) return NC_STATUS_UNKNOWN_ID;
      const nc::Moved moved = nc::MoveJob(fd, *job, TicketOfStep(step));
      *left_held = moved.left_held;
      return moved.status;
    }
    case Verb::kReorder:
      FindJob(step.job, job);
      [[fallthrough]];
    default:
      return nc::ChangeJob(fd, step.job.data(), TicketOfStep(step));
  }
}

// Nothing more of the batch is to come, and its outcome can be told.
bool Worker::EndsBatch(int status) {
  Locked lock(shared_);
  return batch_ && status >= 0 && shared_->steps.empty();
}

// Carries out what was asked for, one after the other, for a while. False when the connection
// broke, with errno.
bool Worker::MakeChanges() {
  const int64_t until = MonotonicMs() + kChangesMs;
  int status = NC_STATUS_DONE, error = 0;
  JobStep step;
  do {
    if (LooksFirst() && !Poll()) return false;
    if (!NextStep(&step)) break;
    bool left_held = false;
    NC_Job job{};
    Began();
    status = Make(step, &job, &left_held);
    error = errno;
    Ended();
    next_poll_ = 0;
    Answered(step, status, job, left_held);
  } while (status >= 0 && MonotonicMs() < until);
  const bool ends = EndsBatch(status);
  // The list shows the new places in the same moment in which they are told.
  const bool held_back = std::exchange(hold_back_, true);
  const bool lost = ends && !placed_.empty() && !Poll();
  hold_back_ = held_back;
  if (lost) return false;
  Locked lock(shared_);
  if (ends) TellOutcome();
  if (ends || shared_->pending_changed) shared_->Published();
  errno = error;
  return status >= 0;
}

void Worker::Answered(const JobStep& step, int status, const NC_Job& before, bool left_held) {
  Locked lock(shared_);
  if (batch_ != step.batch) TellOutcome();
  batch_ = step.batch;
  outcome_.verb = step.change.verb;
  shared_->state.pending.Answered(step.job, status, MonotonicMs());
  shared_->pending_changed = true;
  ChangeProgress& progress = shared_->state.changing;
  progress = {step.change.verb, outcome_.done + outcome_.refused + 1, step.batch_size};
  const bool done = status == NC_STATUS_DONE;
  if (done && outcome_.done++ == 0) outcome_.document = step.document;
  if (done && step.change.verb == Verb::kMove) NoteMove(step, before);
  if (done && step.change.verb == Verb::kReorder && before.priority > 0)
    placed_.push_back({step.job, before.priority, step.passed});
  if (done) return;
  Message refusal = AnswerMessage(step.change.verb, status, step.document);
  if (left_held && status >= 0) refusal.text += "; it is held now";
  if (outcome_.refused++ == 0) outcome_.refusal = std::move(refusal);
}

// Where a job went, where somebody else had moved it before, and what it asks for that is not
// there. Under the mutex.
void Worker::NoteMove(const JobStep& step, const NC_Job& before) {
  const std::string& printer = step.change.name;
  outcome_.printer = printer;
  const bool crossed = !step.seen_on.empty() && step.seen_on != before.printer;
  if (crossed && printer != before.printer) outcome_.was_on = before.printer;
  if (!before.media[0]) return;
  for (const NC_Printer& p : *shared_->state.printers)
    if (p.name == printer && !HasMedia(p, before.media)) outcome_.lacks = before.media;
}

// What the list says of the priorities of those that were put before others. Under the mutex.
void Worker::NoteNewPriorities() {
  if (placed_.empty()) return;
  std::map<JobId, const Placed*> placed;
  for (const Placed& p : placed_) placed.emplace(p.job, &p);
  ChangeOutcome& o = outcome_;
  for (const NC_Job& job : *shared_->state.jobs) {
    const auto it = placed.find(QueueIdOf(job).job);
    if (it == placed.end() || job.priority == it->second->priority) continue;
    const bool same = o.with_new_priority++ == 0 || o.new_priority == job.priority;
    o.new_priority = same ? job.priority : -1;
    if (!it->second->passed.empty()) o.passed = it->second->passed;
  }
  placed_.clear();
}

// Of the batch that has ended, if there is one. Under the mutex.
void Worker::TellOutcome() {
  NoteNewPriorities();
  if (batch_) shared_->AddNotice(OutcomeMessage(outcome_));
  batch_ = 0;
  outcome_ = {};
  shared_->state.changing = {};
}

// The connection has broken. Under the mutex.
void Worker::GiveUpChanges() {
  const auto left = int64_t(shared_->steps.size());
  shared_->steps.clear();
  if (left > 0) {
    Message& told = outcome_.refusal;
    told.tone = Tone::kBad;
    told.text += (told.text.empty() ? "" : "; ") + NumberOf(left, "change was", "changes were") +
                 " not made: the connection to the server broke";
    if (outcome_.refused == 0) outcome_.refused = 1;
    if (batch_ == 0) batch_ = shared_->next_batch++;
  }
  TellOutcome();
  if (shared_->state.pending.Lose() > 0) shared_->pending_changed = true;
}

// --- Transfers that nobody wants any more

void Worker::RemoveLater(const JobId& job) {
  if (unwanted_.size() == kMostUnwanted) unwanted_.erase(unwanted_.begin());
  unwanted_.push_back(job);
}

// One that broke off and was cancelled then.
void Worker::ForgetBroken() {
  if (!broken_.has_id || sending_ == broken_.number) return;
  Locked lock(shared_);
  for (const Transfer& t : shared_->state.transfers)
    if (t.number == broken_.number) return;
  RemoveLater(broken_.id);
  broken_ = {};
}

// Those that have arrived all the same are removed. False when the connection broke, with errno.
bool Worker::RemoveUnwanted() {
  ForgetBroken();
  NC_Job job;
  for (size_t i = 0; i < unwanted_.size();) {
    const JobId id = unwanted_[i];
    if (!FindJob(id, &job)) {
      ++i;
      continue;
    }
    Began();
    const int status = NC_RemovePrintRequest(shared_->open[kLists], id.data());
    if (status < 0) return false;
    Ended();
    unwanted_.erase(unwanted_.begin() + std::ptrdiff_t(i));
    next_poll_ = 0;
    Locked lock(shared_);
    shared_->state.pending.Answered(id, status, MonotonicMs());
    shared_->pending_changed = true;
    if (status != NC_STATUS_DONE && status != NC_STATUS_UNKNOWN_ID)
      shared_->AddNotice(AnswerMessage(Verb::kRemove, status, job.document));
    shared_->Published();
  }
  return true;
}

}  // namespace console
