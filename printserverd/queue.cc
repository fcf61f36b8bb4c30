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

// The disk is set to work while the rest arrives, so that the sync at the end is short.
constexpr int64_t kFlushEach = 8 << 20;

// From here on in the disk's thread.

void WriteDocument(Document* document, std::string_view bytes) {
  if (document->error != 0) return;
  if (!WriteAll(document->file.get(), bytes.data(), bytes.size())) {
    document->error = errno;
    LogRarely(std::string("cannot store a document: ") + strerror(errno));
    return;
  }
  document->size += static_cast<int64_t>(bytes.size());
  if (document->size - document->flushed < kFlushEach) return;
  sync_file_range(document->file.get(), document->flushed, document->size - document->flushed,
                  SYNC_FILE_RANGE_WRITE);
  document->flushed = document->size;
}

bool StoreRecord(int folder, const std::string& name, const std::string& record, bool sync) {
  if (ReplaceFileIn(folder, name, record, sync) && (!sync || SyncFolder(folder))) return true;
  LogRarely(std::string("cannot store a job: ") + strerror(errno));
  return false;
}

// A document that was not accepted goes.
void DropFile(int folder, Document* document) {
  if (!document->file) return;
  unlinkat(folder, DocumentName(document->id).c_str(), 0);
  document->file.Reset();
}

// Document and record are on the disk, or neither is there.
bool StoreJob(int folder, Document* document, const std::string& record) {
  bool stored = document->error == 0;
  if (stored && !SyncFile(document->file.get())) {
    LogRarely(std::string("cannot store a document: ") + strerror(errno));
    stored = false;
  }
  const std::string name = RecordName(document->id);
  if (stored && !StoreRecord(folder, name, record, true)) {
    unlinkat(folder, name.c_str(), 0);
    stored = false;
  }
  if (!stored) DropFile(folder, document);
  document->file.Reset();
  return stored;
}

// To here.

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
    const Fd document = OpenFileIn(folder_, DocumentName(job.id));
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

DocumentRef Queue::CreateDocument(const RequestId& id) {
  auto document = std::make_shared<Document>(id);
  disk_->Do([document, folder = folder_] {
    document->file = CreateFileIn(folder, DocumentName(document->id));
    if (document->file) return;
    document->error = errno;
    LogRarely(std::string("cannot store a document: ") + strerror(errno));
  });
  return document;
}

void Queue::Write(const DocumentRef& document, std::string bytes, Disk::Call done) {
  const size_t size = bytes.size();
  document->pending += size;
  disk_->Do([document, bytes = std::move(bytes)] { WriteDocument(document.get(), bytes); },
            [document, size, done = std::move(done)] {
              document->pending -= size;
              done();
            });
}

void Queue::Drop(const DocumentRef& document) {
  disk_->Do([document, folder = folder_] { DropFile(folder, document.get()); });
}

void Queue::DropDocument(const RequestId& id) {
  disk_->Do([folder = folder_, name = DocumentName(id)] { unlinkat(folder, name.c_str(), 0); });
}

std::function<Fd()> Queue::DocumentOpener(const Job& job) const {
  return [folder = folder_, name = DocumentName(job.id)] { return OpenFileIn(folder, name); };
}

void Queue::Store(const Job& job, std::function<void(bool)> done) {
  const auto stored = std::make_shared<bool>(false);
  Disk::Call after;
  if (done) after = [stored, done] { done(*stored); };
  disk_->Do([stored, folder = folder_, name = RecordName(job.id), record = JobRecord(job, true),
             sync = done != nullptr] { *stored = StoreRecord(folder, name, record, sync); },
            std::move(after));
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
  if (jobs_.size() + accepting_ < kMaxJobs) return true;
  const Job* oldest = nullptr;
  for (const auto& [id, job] : jobs_) {
    if (job.Ended() && (!oldest || ListedBefore(oldest, &job))) oldest = &job;
  }
  if (oldest) Forget(RequestId(oldest->id));
  return oldest != nullptr;
}

void Queue::Accept(const DocumentRef& document, const Ticket& ticket, int64_t size, Answer answer) {
  Job job;
  job.id = document->id;
  job.ticket = ticket;
  job.state = ticket.hold ? JobState::kHeld : JobState::kWaiting;
  job.submitted = time(nullptr);
  job.size = size;
  // The configuration may have changed while the document came.
  Status refused = CheckNames(ticket);
  if (refused == Status::kDone && !MakeRoom()) refused = Status::kTooLarge;
  if (refused != Status::kDone) {
    Drop(document);
    bytes_ -= size;
    return answer(refused);
  }
  job.number = ++last_number_;
  ++accepting_;
  const auto stored = std::make_shared<bool>(false);
  disk_->Do([stored, document, folder = folder_,
             record = JobRecord(job, true)] { *stored = StoreJob(folder, document.get(), record); },
            [this, stored, job, answer] { Accepted(job, *stored, answer); });
}

void Queue::Accepted(const Job& job, bool stored, const Answer& answer) {
  --accepting_;
  if (stored) {
    jobs_.emplace(job.id, job);
    CheckPrinters();
    Touch();
  } else {
    bytes_ -= job.size;
  }
  answer(stored ? Status::kDone : Status::kStorage);
}

// What `text` makes of a job.
Status Queue::Changed(const Job& job, std::string_view text, Job* changed) {
  *changed = job;
  TicketKeys keys;
  const Status parsed = ParseTicket(text, &changed->ticket, &keys);
  if (parsed != Status::kDone) return parsed;
  if (job.state == JobState::kDone) return Status::kWrongState;
  const bool output = keys & (kPrinterKey | kProfileKey | kMediaKey | kCopiesKey);
  if (output && job.AtPrinter()) return Status::kWrongState;
  if (keys & (kPrinterKey | kProfileKey)) {
    const Status named = CheckNew(&changed->ticket);
    if (named != Status::kDone) return named;
  }
  if (keys & kHoldKey) {
    if (changed->ticket.hold) {
      changed->state = JobState::kHeld;
      changed->printed = 0;
    } else if (job.state == JobState::kPaperOut) {
      changed->paper_loaded = true;
    } else if (!job.AtPrinter()) {
      changed->state = JobState::kWaiting;
    }
    if (changed->state != job.state) changed->text.clear();
  }
  return Status::kDone;
}

void Queue::Change(const RequestId& id, std::string text, Answer answer) {
  auto& wishes = changing_[id];
  wishes.push_back({std::move(text), std::move(answer)});
  if (wishes.size() == 1) NextChange(id);
}

// Answers what cannot be, up to the first change that can, which is stored.
void Queue::NextChange(RequestId id) {
  while (!changing_[id].empty()) {
    const Job* job = Find(id);
    Job changed;
    const Status status =
        job ? Changed(*job, changing_[id].front().text, &changed) : Status::kUnknownId;
    if (status == Status::kDone) return StoreChange(id, changed);
    EndChange(id, status);
  }
  changing_.erase(id);
}

void Queue::StoreChange(const RequestId& id, const Job& changed) {
  Store(changed, [this, id, record = JobRecord(changed, true)](bool stored) {
    if (!ChangeStored(id, record, stored)) return;
    NextChange(id);
  });
}

// The job may have gone on meanwhile. What it has become is what counts, and what is stored. False
// when that is being stored now.
bool Queue::ChangeStored(const RequestId& id, const std::string& record, bool stored) {
  Job* job = Find(id);
  Job changed;
  Status status = !job ? Status::kUnknownId : !stored ? Status::kStorage : Status::kDone;
  if (status == Status::kDone) {
    status = Changed(*job, changing_[id].front().text, &changed);
    if (status != Status::kDone) {
      Store(*job, nullptr);
    } else if (JobRecord(changed, true) != record) {
      StoreChange(id, changed);
      return false;
    } else {
      *job = changed;
    }
  }
  EndChange(id, status);
  return true;
}

void Queue::EndChange(const RequestId& id, Status status) {
  auto& wishes = changing_[id];
  const Answer answer = std::move(wishes.front().answer);
  wishes.pop_front();
  CheckPrinters();
  Touch();
  answer(status);
}

void Queue::Forget(const RequestId& id) {
  const Job* job = Find(id);
  if (job->state != JobState::kDone) bytes_ -= job->size;
  disk_->Do([folder = folder_, name = RecordName(id)] { unlinkat(folder, name.c_str(), 0); });
  DropDocument(id);
  jobs_.erase(id);
  Touch();
}

void Queue::Remove(const RequestId& id, Answer answer) {
  if (!Find(id)) return answer(Status::kUnknownId);
  Forget(RequestId(id));
  const auto synced = std::make_shared<bool>(false);
  disk_->Do([synced, folder = folder_] { *synced = SyncFolder(folder); },
            [synced, answer] { answer(*synced ? Status::kDone : Status::kStorage); });
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
  Store(*job, nullptr);
  if (state == JobState::kDone) DropDocument(job->id);
  Touch();
}

Job* Queue::Next(std::string_view printer) {
  Job* next = nullptr;
  for (auto& [id, job] : jobs_) {
    if (job.state != JobState::kWaiting || job.ticket.printer != printer) continue;
    if (changing_.count(id) > 0) continue;
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
