#include "printserverd/queue.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "printserverd/log.h"

namespace printserverd {

namespace {

std::string DocumentName(const RequestId& id) {
  return HexOfId(id) + ".doc";
}
std::string RecordName(const RequestId& id) {
  return HexOfId(id) + ".job";
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Order in which jobs print: at a printer, waiting by priority and age, ended last first.
bool ListedBefore(const Job* a, const Job* b) {
  const auto group = [](const Job& job) { return job.AtPrinter() ? 0 : job.Ended() ? 2 : 1; };
  if (group(*a) != group(*b)) return group(*a) < group(*b);
  if (a->Ended() && a->finished != b->finished) return a->finished > b->finished;
  if (!a->Ended() && a->ticket.priority != b->ticket.priority) {
    return a->ticket.priority > b->ticket.priority;
  }
  return a->Ended() ? a->number > b->number : a->number < b->number;
}

}  // namespace

void Queue::Load() {
  const std::vector<std::string> names = NamesIn(folder_);
  for (const std::string& name : names) {
    if (!EndsWith(name, ".job")) continue;
    if (!LoadJob(name)) Log("jobs/" + name + " is not a job: left where it is");
  }
  for (const std::string& name : names) {
    RequestId id;
    const bool document = EndsWith(name, ".doc") && IdOfHex(name.substr(0, name.size() - 4), &id);
    const bool draft = EndsWith(name, ".job.new");
    if (draft || (document && !Find(id))) unlinkat(folder_, name.c_str(), 0);
  }
  CheckPrinters();
}

bool Queue::LoadJob(const std::string& name) {
  Job job;
  std::string text;
  if (!IdOfHex(name.substr(0, name.size() - 4), &job.id) || jobs_.size() >= kMaxJobs ||
      !ReadFileIn(folder_, name, kMaxTicket, &text) || !ParseJobRecord(text, &job)) {
    return false;
  }
  last_number_ = std::max(last_number_, job.number);
  if (job.AtPrinter()) job.state = JobState::kWaiting;
  if (job.state == JobState::kDone) {
    DropDocument(job.id);
    job.printed = job.Total();
  } else {
    const Fd document = OpenDocument(job);
    struct stat info;
    if (!document || fstat(document.get(), &info) != 0 || info.st_size != job.size) {
      job.state = JobState::kFailed;
      job.text = "the document is lost";
      job.finished = time(nullptr);
    }
    bytes_ += job.size;
  }
  jobs_.emplace(job.id, job);
  return true;
}

Job* Queue::Find(const RequestId& id) {
  const auto found = jobs_.find(id);
  return found == jobs_.end() ? nullptr : &found->second;
}

Fd Queue::CreateDocument(const RequestId& id) {
  return CreateFileIn(folder_, DocumentName(id));
}

void Queue::DropDocument(const RequestId& id) {
  unlinkat(folder_, DocumentName(id).c_str(), 0);
}

Fd Queue::OpenDocument(const Job& job) {
  return OpenFileIn(folder_, DocumentName(job.id));
}

bool Queue::Store(const Job& job, bool sync) {
  if (ReplaceFileIn(folder_, RecordName(job.id), JobRecord(job, true), sync) &&
      (!sync || fsync(folder_) == 0)) {
    return true;
  }
  LogRarely(std::string("cannot store a job: ") + strerror(errno));
  return false;
}

Status Queue::CheckNames(const Ticket& ticket) const {
  if (!settings_.FindPrinter(ticket.printer)) return Status::kUnknownName;
  if (!ticket.profile.empty() && !settings_.FindProfile(ticket.profile, ticket.printer)) {
    return Status::kUnknownName;
  }
  return Status::kDone;
}

Status Queue::CheckNew(Ticket* ticket) {
  if (ticket->printer.empty()) ticket->printer = settings_.printers.front().name;
  return CheckNames(*ticket);
}

// Makes room for one more job, of ended ones when need be.
bool Queue::MakeRoom() {
  if (jobs_.size() < kMaxJobs) return true;
  const Job* oldest = nullptr;
  for (const auto& [id, job] : jobs_) {
    if (job.Ended() && (!oldest || ListedBefore(oldest, &job))) oldest = &job;
  }
  if (oldest) Forget(RequestId(oldest->id));
  return oldest != nullptr;
}

Status Queue::Accept(const RequestId& id, const Ticket& ticket, int64_t size, int document) {
  // The configuration may have changed while the document came.
  if (CheckNames(ticket) != Status::kDone) return Status::kUnknownName;
  if (!MakeRoom()) return Status::kTooLarge;
  Job job;
  job.id = id;
  job.ticket = ticket;
  job.state = ticket.hold ? JobState::kHeld : JobState::kWaiting;
  job.submitted = time(nullptr);
  job.number = ++last_number_;
  job.size = size;
  if (fdatasync(document) != 0) {
    LogRarely(std::string("cannot store a document: ") + strerror(errno));
    return Status::kStorage;
  }
  if (!Store(job, true)) {
    unlinkat(folder_, RecordName(id).c_str(), 0);
    return Status::kStorage;
  }
  jobs_.emplace(id, std::move(job));
  Touch();
  return Status::kDone;
}

Status Queue::Change(Job* job, std::string_view text) {
  Job changed = *job;
  TicketKeys keys;
  const Status parsed = ParseTicket(text, &changed.ticket, &keys);
  if (parsed != Status::kDone) return parsed;
  if (job->state == JobState::kDone) return Status::kWrongState;
  const bool output = keys & (kPrinterKey | kProfileKey | kMediaKey | kCopiesKey);
  if (output && job->AtPrinter()) return Status::kWrongState;
  if (keys & (kPrinterKey | kProfileKey)) {
    const Status named = CheckNew(&changed.ticket);
    if (named != Status::kDone) return named;
  }
  if (keys & kHoldKey) {
    if (changed.ticket.hold) {
      changed.state = JobState::kHeld;
      changed.printed = 0;
    } else if (job->state == JobState::kPaperOut) {
      changed.paper_loaded = true;
    } else if (!job->AtPrinter()) {
      changed.state = JobState::kWaiting;
    }
    if (changed.state != job->state) changed.text.clear();
  }
  if (!Store(changed, true)) return Status::kStorage;
  *job = changed;
  CheckPrinters();
  Touch();
  return Status::kDone;
}

void Queue::Forget(const RequestId& id) {
  const Job* job = Find(id);
  if (job->state != JobState::kDone) bytes_ -= job->size;
  unlinkat(folder_, RecordName(id).c_str(), 0);
  DropDocument(id);
  jobs_.erase(id);
  Touch();
}

Status Queue::Remove(const RequestId& id) {
  if (!Find(id)) return Status::kUnknownId;
  Forget(RequestId(id));
  return fsync(folder_) == 0 ? Status::kDone : Status::kStorage;
}

void Queue::Finish(Job* job, JobState state, std::string_view text) {
  job->state = state;
  job->text = text.substr(0, kMaxText);
  job->finished = time(nullptr);
  if (state == JobState::kDone) {
    bytes_ -= job->size;
    job->printed = job->Total();
  }
  // Without waiting for the disk: after a crash of the machine the job may print once more.
  Store(*job, false);
  if (state == JobState::kDone) DropDocument(job->id);
  Touch();
}

Job* Queue::Next(std::string_view printer) {
  Job* next = nullptr;
  for (auto& [id, job] : jobs_) {
    if (job.state != JobState::kWaiting || job.ticket.printer != printer) continue;
    if (!next || ListedBefore(&job, next)) next = &job;
  }
  return next;
}

void Queue::Prune(int64_t now) {
  std::vector<const Job*> ended;
  for (const auto& [id, job] : jobs_) {
    if (job.Ended()) ended.push_back(&job);
  }
  std::sort(ended.begin(), ended.end(), ListedBefore);
  std::vector<RequestId> old;
  for (size_t i = 0; i < ended.size(); ++i) {
    const bool surplus = i >= static_cast<size_t>(settings_.done_keep);
    if (surplus || now - ended[i]->finished >= settings_.done_seconds) old.push_back(ended[i]->id);
  }
  for (const RequestId& id : old) Forget(id);
}

void Queue::CheckPrinters() {
  for (auto& [id, job] : jobs_) {
    if (job.state != JobState::kWaiting || settings_.FindPrinter(job.ticket.printer)) continue;
    Finish(&job, JobState::kFailed, "the printer is not configured any more");
  }
}

std::string Queue::List() const {
  std::vector<const Job*> order;
  order.reserve(jobs_.size());
  for (const auto& [id, job] : jobs_) order.push_back(&job);
  std::sort(order.begin(), order.end(), ListedBefore);
  std::string out;
  for (const Job* job : order) out += JobRecord(*job, false);
  return out;
}

}  // namespace printserverd
