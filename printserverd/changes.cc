// Changes of jobs: what a ticket makes of one, and how it gets to the disk before it counts.
#include <algorithm>
#include <ctime>
#include <iterator>

#include "printserverd/queue.h"

namespace printserverd {

Status Queue::CheckNames(const Ticket& ticket, bool arrives) const {
  if (!uses_.settings.FindPrinter(ticket.printer)) return Status::kUnknownName;
  if (!ticket.profile.empty() && !uses_.settings.FindProfile(ticket.profile, ticket.printer)) {
    return Status::kUnknownName;
  }
  const auto view = printers_.find(ticket.printer);
  const bool refuses = arrives && view != printers_.end() && !view->second.accepting;
  return refuses ? Status::kWrongState : Status::kDone;
}

Status Queue::CheckNew(Ticket* ticket) const {
  if (ticket->printer.empty()) ticket->printer = uses_.settings.printers.front().name;
  return CheckNames(*ticket, true);
}

// Whether the job's state allows what the ticket names. Fills in the default printer.
Status Queue::CheckChange(const Job& job, TicketKeys keys, Job* changed) const {
  if (job.removing) return Status::kUnknownId;
  const bool hold = (keys & kHoldKey) && changed->ticket.hold;
  if (job.state == JobState::kDone && (!job.kept || hold)) return Status::kWrongState;
  if (job.finishing && hold) return Status::kWrongState;
  const bool output = keys & (kPrinterKey | kProfileKey | kMediaKey | kCopiesKey);
  if (output && job.AtPrinter()) return Status::kWrongState;
  if (!(keys & (kPrinterKey | kProfileKey))) return Status::kDone;
  Ticket& ticket = changed->ticket;
  if (ticket.printer.empty()) ticket.printer = uses_.settings.printers.front().name;
  return CheckNames(ticket, ticket.printer != job.ticket.printer);
}

// The job is held or released.
void Queue::ApplyHold(const Job& job, Job* changed) {
  if (changed->ticket.hold) {
    changed->state = JobState::kHeld;
    changed->printed = 0;
  } else if (job.state == JobState::kPaperOut) {
    changed->paper_loaded = true;
  } else if (!job.AtPrinter()) {
    changed->state = JobState::kWaiting;
    if (job.Ended()) changed->printed = changed->finished = 0;
  }
  if (changed->state == job.state) return;
  changed->since = time(nullptr);
  changed->text.clear();
  changed->reasons.clear();
}

// What a change makes of a job.
Status Queue::Changed(const Job& job, PendingChange* change, Job* changed) {
  *changed = job;
  Given given;
  Status status = ParseTicket(change->text, &changed->ticket, &given);
  if (status == Status::kDone) status = CheckChange(job, given.keys, changed);
  if (status != Status::kDone) return status;
  if (given.keys & kHoldKey) ApplyHold(job, changed);
  if (changed->state == JobState::kDone) changed->printed = changed->Total();
  const bool again = job.state == JobState::kDone && changed->state == JobState::kWaiting;
  if (again) {
    // An earlier output is not this one's.
    if (change->outputs < 0) change->outputs = uses_.counters->last_output();
    changed->outputs = change->outputs;
  }
  if (given.keys & kBeforeKey) return PlaceBefore(given.before, change, changed);
  if (again) {
    if (change->place < 0) change->place = LastPlace(changed->ticket.priority);
    changed->place = change->place;
  } else if (given.keys & kPriorityKey) {
    changed->place = PlaceOf(job.number);
  }
  return Status::kDone;
}

Status Queue::PlaceBefore(const RequestId& before, PendingChange* change, Job* changed) {
  const Job* target = Find(before);
  if (!target || target->removing) return Status::kUnknownId;
  if (target->id == changed->id || !target->Waits() || !changed->Waits() ||
      target->ticket.printer != changed->ticket.printer) {
    return Status::kWrongState;
  }
  changed->ticket.priority = target->ticket.priority;
  if (change->place < 0) change->place = PlaceBetween(target);
  if (change->place < 0) {
    SpreadPlaces(target->ticket.priority);
    change->place = PlaceBetween(target);
  }
  changed->place = change->place;
  return Status::kDone;
}

// The place in the middle between a job and the one before it; -1 when there is none left. No job
// that stands by its number comes to stand between, whenever it gets this priority.
int64_t Queue::PlaceBetween(const Job* target) const {
  int64_t low = PlaceOf(NumberBefore(target->place - 1));
  const auto at = order_.find(target);
  if (at != order_.begin()) {
    const Job& previous = **std::prev(at);
    const bool same = previous.Waits() && previous.ticket.priority == target->ticket.priority;
    if (same) low = std::max(low, previous.place);
  }
  const int64_t place = low + (target->place - low) / 2;
  return place > low ? place : -1;
}

// Behind every job of a priority that waits, before the next one that is accepted.
int64_t Queue::LastPlace(int64_t priority) const {
  int64_t last = PlaceOf(uses_.counters->last_number());
  for (const Job* job : order_) {
    if (job->Waits() && job->ticket.priority == priority) last = std::max(last, job->place);
  }
  return last + 1;
}

// Gives the moved jobs of a priority even distances between the numbers around them.
void Queue::SpreadPlaces(int64_t priority) {
  std::map<int64_t, std::vector<RequestId>> moved;  // by the number before them
  for (const Job* job : order_) {
    if (!job->Waits() || job->ticket.priority != priority) continue;
    if (job->place != PlaceOf(job->number)) moved[NumberBefore(job->place)].push_back(job->id);
  }
  for (const auto& [number, ids] : moved) {
    const int64_t step = PlaceOf(1) / static_cast<int64_t>(ids.size() + 1);
    int64_t place = PlaceOf(number);
    for (const RequestId& id : ids) {
      Edit(this, id)->place = place += step;
      Store(*Find(id), [](bool) {});
    }
  }
  for (auto& [id, pending] : changing_) {
    for (PendingChange& change : pending) change.place = -1;
  }
}

void Queue::Change(const RequestId& id, std::string text, std::string peer, Answer answer) {
  auto& pending = changing_[id];
  pending.push_back({std::move(text), std::move(peer), std::move(answer)});
  if (pending.size() == 1) NextChange(id);
}

// Answers what cannot be, up to the first change that can, which is stored.
void Queue::NextChange(RequestId id) {
  while (!changing_[id].empty()) {
    const Job* job = Find(id);
    Job changed;
    const Status status =
        job ? Changed(*job, &changing_[id].front(), &changed) : Status::kUnknownId;
    if (status == Status::kDone) return StoreChange(id, changed);
    EndChange(id, status);
  }
  changing_.erase(id);
  Touch();  // its printer may begin it now
}

void Queue::StoreChange(const RequestId& id, const Job& changed) {
  Store(changed, [this, id, record = StoredRecord(changed)](bool stored) {
    if (!ChangeStored(id, record, stored)) return;
    NextChange(id);
  });
}

// The job may have gone on in the meantime. What it has become is what counts, and what is stored.
// False when that is being stored now.
bool Queue::ChangeStored(const RequestId& id, const std::string& record, bool stored) {
  const Job* job = Find(id);
  Job changed;
  Status status = !job ? Status::kUnknownId : !stored ? Status::kStorage : Status::kDone;
  if (status == Status::kDone) {
    status = Changed(*job, &changing_[id].front(), &changed);
    if (status == Status::kDone && StoredRecord(changed) != record) {
      StoreChange(id, changed);
      return false;
    }
    if (status == Status::kDone) *Edit(this, id) = changed;
  }
  // The disk may hold what did not come to be.
  if (job && !job->removing && status != Status::kDone) Store(*job, nullptr);
  EndChange(id, status);
  return true;
}

void Queue::EndChange(const RequestId& id, Status status) {
  auto& pending = changing_[id];
  const PendingChange change = std::move(pending.front());
  pending.pop_front();
  if (status == Status::kDone) uses_.log->Tell("changed", change.peer, *Find(id));
  Touch();
  change.answer(status);
}

}  // namespace printserverd
