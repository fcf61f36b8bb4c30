#include "printserverd/queue.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "printserverd/log.h"

namespace printserverd {

std::string DocumentName(const RequestId& id) {
  return HexOfId(id) + ".doc";
}
std::string RecordName(const RequestId& id) {
  return HexOfId(id) + ".job";
}

namespace {

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

bool StoreRecord(int folder, const std::string& name, const std::string& record, bool wait) {
  if (ReplaceFileIn(folder, name, record, true) && (!wait || SyncFolder(folder))) return true;
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

bool UnlinkIn(int folder, const std::string& name) {
  return unlinkat(folder, name.c_str(), 0) == 0 || errno == ENOENT;
}

// The record goes first, with `wait` for good: a document without one was never accepted. 0 or
// errno.
int UnlinkJob(int folder, const RequestId& id, bool wait) {
  const bool gone = UnlinkIn(folder, RecordName(id)) && (!wait || SyncFolder(folder)) &&
                    UnlinkIn(folder, DocumentName(id));
  if (gone) return 0;
  const int error = errno;
  LogRarely("cannot remove the job " + HexOfId(id) + ": " + strerror(error));
  return error;
}

}  // namespace

bool ListedBefore::operator()(const Job* a, const Job* b) const {
  const auto group = [](const Job& job) { return job.AtPrinter() ? 0 : job.Ended() ? 2 : 1; };
  if (group(*a) != group(*b)) return group(*a) < group(*b);
  if (a->Ended()) {
    if (a->finished != b->finished) return a->finished > b->finished;
  } else {
    if (a->ticket.priority != b->ticket.priority) return a->ticket.priority > b->ticket.priority;
    if (a->place != b->place) return a->place < b->place;
  }
  if (a->number != b->number) return a->Ended() ? a->number > b->number : a->number < b->number;
  return a->id < b->id;
}

const Job* Queue::Find(const RequestId& id) const {
  const auto found = jobs_.find(id);
  return found == jobs_.end() ? nullptr : &found->second;
}

Queue::Edit::Edit(Queue* queue, const RequestId& id)
    : queue_(queue), job_(&queue->jobs_.at(id)), before_(job_->state) {
  queue_->Unlink(job_);
}

Queue::Edit::~Edit() {
  if (job_->state != before_) job_->since = time(nullptr);
  queue_->Link(job_);
  queue_->Touch();
}

// Everything that is counted or ordered by a job's fields takes it in here, and out in Unlink.
void Queue::Link(const Job* job) {
  order_.insert(job);
  if (job->kept) bytes_ += job->size;
  if (job->state == JobState::kDone) {
    ++done_;
    if (job->kept) done_bytes_ += job->size;
  }
  if (job->Ended()) return;
  Lane& lane = lanes_[job->ticket.printer];
  ++lane.live;
  if (job->state == JobState::kWaiting) lane.waiting.insert(job);
}

void Queue::Unlink(const Job* job) {
  order_.erase(job);
  if (job->kept) bytes_ -= job->size;
  if (job->state == JobState::kDone) {
    --done_;
    if (job->kept) done_bytes_ -= job->size;
  }
  if (job->Ended()) return;
  const auto lane = lanes_.find(job->ticket.printer);
  lane->second.waiting.erase(job);
  if (--lane->second.live == 0) lanes_.erase(lane);
}

DocumentRef Queue::CreateDocument(const RequestId& id) {
  auto document = std::make_shared<Document>(id);
  uses_.disk->Do([document, folder = uses_.jobs] {
    document->file = CreateFileIn(folder, DocumentName(document->id));
    if (document->file) return;
    document->error = errno;
    LogRarely(std::string("cannot store a document: ") + strerror(errno));
  });
  return document;
}

void Queue::Write(const DocumentRef& document, std::shared_ptr<const std::vector<char>> buffer,
                  std::string_view bytes, Disk::Call done) {
  document->pending += bytes.size();
  uses_.disk->Do(
      [document, buffer = std::move(buffer), bytes] { WriteDocument(document.get(), bytes); },
      [document, size = bytes.size(), done = std::move(done)] {
        document->pending -= size;
        done();
      });
}

void Queue::Drop(const DocumentRef& document) {
  uses_.disk->Do([document, folder = uses_.jobs] { DropFile(folder, document.get()); });
}

void Queue::DropDocument(const RequestId& id) {
  uses_.disk->Do(
      [folder = uses_.jobs, name = DocumentName(id)] { unlinkat(folder, name.c_str(), 0); });
}

std::function<Fd()> Queue::DocumentOpener(const Job& job) const {
  return [folder = uses_.jobs, name = DocumentName(job.id)] { return OpenFileIn(folder, name); };
}

void Queue::Store(const Job& job, std::function<void(bool)> done) {
  const auto stored = std::make_shared<bool>(false);
  Disk::Call after;
  if (done) after = [stored, done] { done(*stored); };
  uses_.disk->Do(
      [stored, folder = uses_.jobs, name = RecordName(job.id), record = StoredRecord(job),
       wait = done != nullptr] { *stored = StoreRecord(folder, name, record, wait); },
      std::move(after));
}

// The done job that ended first (with its document), of those that nobody wants to change.
const Job* Queue::OldestDone(bool kept) const {
  if (done_ == 0) return nullptr;
  for (auto job = order_.rbegin(); job != order_.rend() && (*job)->Ended(); ++job) {
    if ((*job)->state != JobState::kDone || (*job)->removing) continue;
    if ((!kept || (*job)->kept) && changing_.count((*job)->id) == 0) return *job;
  }
  return nullptr;
}

// Makes room for one more job, of done ones when need be.
bool Queue::MakeRoom() {
  if (uses_.counters->last_number() >= kMaxNumber) return false;  // no number is left
  if (jobs_.size() + accepting_ < kMaxJobs) return true;
  const Job* oldest = OldestDone(false);
  if (!oldest) return false;
  Forget(RequestId(oldest->id));
  return true;
}

bool Queue::MakeBytes(int64_t count) {
  while (bytes_ + count > uses_.settings.spool_limit) {
    const Job* oldest = OldestDone(true);
    if (!oldest) return false;
    DropKept(RequestId(oldest->id));
  }
  return true;
}

// A done job's document goes, the job stays listed.
void Queue::DropKept(const RequestId& id) {
  Edit(this, id)->kept = false;
  DropDocument(id);
}

void Queue::Accept(const DocumentRef& document, const Ticket& ticket, int64_t size,
                   std::string peer, Answer answer) {
  Job job;
  job.id = document->id;
  job.ticket = ticket;
  job.state = ticket.hold ? JobState::kHeld : JobState::kWaiting;
  job.submitted = job.since = time(nullptr);
  job.size = size;
  // The configuration may have changed while the document came.
  Status refused = CheckNames(ticket, true);
  if (refused == Status::kDone && !MakeRoom()) refused = Status::kTooLarge;
  if (refused != Status::kDone) {
    Drop(document);
    bytes_ -= size;
    return answer(refused);
  }
  job.number = uses_.counters->NextNumber();
  job.place = PlaceOf(job.number);
  job.outputs = uses_.counters->last_output();
  ++accepting_;
  const auto stored = std::make_shared<bool>(false);
  uses_.disk->Do(
      [stored, document, folder = uses_.jobs, record = StoredRecord(job)] {
        *stored = StoreJob(folder, document.get(), record);
      },
      [this, stored, job, peer = std::move(peer), answer] {
        Accepted(job, *stored, peer, answer);
      });
}

void Queue::Accepted(const Job& job, bool stored, const std::string& peer, const Answer& answer) {
  --accepting_;
  bytes_ -= job.size;  // as one that arrives
  if (stored) {
    Link(&jobs_.emplace(job.id, job).first->second);
    Touch();
    uses_.log->Tell("accepted", peer, job);
  }
  answer(stored ? Status::kDone : Status::kStorage);
}

// A done job leaves the list. Should its files stay, it is a done job again after a restart.
void Queue::Forget(const RequestId& id) {
  const Job* job = Find(id);
  uses_.counters->KeepNumber(job->number);
  uses_.log->Tell("forgotten", "", *job);
  uses_.disk->Do([folder = uses_.jobs, id] { UnlinkJob(folder, id, false); });
  Unlink(job);
  jobs_.erase(id);
  Touch();
}

void Queue::Remove(const RequestId& id, std::string peer, Answer answer) {
  if (!Find(id)) return answer(Status::kUnknownId);
  auto& answers = removing_[id];
  answers.push_back(std::move(answer));
  if (answers.size() > 1) return;
  {
    Edit job(this, id);
    job->removing = true;
    if (!job->Ended()) job->state = JobState::kHeld;
  }
  uses_.counters->KeepNumber(Find(id)->number);
  const auto error = std::make_shared<int>(0);
  uses_.disk->Do([error, folder = uses_.jobs, id] { *error = UnlinkJob(folder, id, true); },
                 [this, error, id, peer = std::move(peer)] { Removed(id, *error, peer); });
}

void Queue::Removed(const RequestId& id, int error, const std::string& peer) {
  const auto answers = std::make_shared<std::vector<Answer>>(std::move(removing_[id]));
  removing_.erase(id);
  if (error == 0) {
    const Job* job = Find(id);
    uses_.log->Tell("removed", peer, *job);
    Unlink(job);
    jobs_.erase(id);
    Touch();
    for (size_t i = 0; i < answers->size(); ++i) {
      answers->at(i)(i == 0 ? Status::kDone : Status::kUnknownId);
    }
    return;
  }
  Edit job(this, id);
  job->removing = false;
  if (!job->Ended()) job->ticket.hold = 1;
  job->reasons = "not-removed";
  job->text = std::string("it could not be removed: ") + strerror(error);
  // The record is perhaps gone from the disk.
  Store(*job, [answers](bool) {
    for (const Answer& answer : *answers) answer(Status::kStorage);
  });
}

void Queue::Finish(const RequestId& id, JobState state, std::string_view reason,
                   std::string_view text) {
  {
    Edit job(this, id);
    job->state = state;
    job->finishing = false;
    job->reasons = reason;
    job->text = text.substr(0, kMaxText);
    job->finished = time(nullptr);
    if (state == JobState::kDone) job->printed = job->Total();
  }
  const Job& job = *Find(id);
  Store(job, nullptr);
  uses_.log->Tell(state == JobState::kDone ? "printed" : "failed", "", job);
  TrimDone();
}

void Queue::SetPrinted(const RequestId& id, int64_t printed) {
  jobs_.at(id).printed = printed;
  Touch();
}

void Queue::GiveBack(const RequestId& id, std::string_view text) {
  Edit job(this, id);
  job->state = JobState::kWaiting;
  job->finishing = false;
  job->printed = 0;
  job->text = text.substr(0, kMaxText);
}

void Queue::SetPrinters(std::map<std::string, PrinterView> printers) {
  printers_.clear();
  for (auto& [name, view] : printers) printers_.emplace(name, std::move(view));
  Touch();
}

void Queue::SetPrinter(const std::string& name, PrinterView view) {
  printers_[name] = std::move(view);
  Touch();
}

const Job* Queue::Next(std::string_view printer) const {
  const auto lane = lanes_.find(printer);
  if (lane == lanes_.end()) return nullptr;
  for (const Job* job : lane->second.waiting) {
    if (changing_.count(job->id) == 0) return job;
  }
  return nullptr;
}

int64_t Queue::Live(std::string_view printer) const {
  const auto lane = lanes_.find(printer);
  return lane == lanes_.end() ? 0 : lane->second.live;
}

// Documents of done jobs go until the rest is no larger than it may be.
void Queue::TrimDone() {
  while (done_bytes_ > uses_.settings.done_bytes) {
    const Job* oldest = OldestDone(true);
    if (!oldest) return;
    DropKept(RequestId(oldest->id));
  }
}

void Queue::Prune(int64_t now) {
  std::vector<RequestId> old;
  int64_t left = done_;
  for (auto at = order_.rbegin(); left > 0 && at != order_.rend() && (*at)->Ended(); ++at) {
    const Job& job = **at;
    if (job.state != JobState::kDone) continue;
    const bool surplus = left-- > uses_.settings.done_keep;
    if (!surplus && now - job.finished < uses_.settings.done_seconds) continue;
    if (!job.removing && changing_.count(job.id) == 0) old.push_back(job.id);
  }
  for (const RequestId& id : old) Forget(id);
  TrimDone();
}

Shown Queue::ShownOf(const Job& job) const {
  Shown shown;
  shown.reasons = job.reasons;
  const auto printer = printers_.find(job.ticket.printer);
  if (printer != printers_.end()) shown.sheet_bytes = printer->second.sheet_bytes;
  if (job.state != JobState::kWaiting) return shown;
  const std::string_view more =
      printer == printers_.end() ? "printer-unknown" : std::string_view(printer->second.reasons);
  if (!shown.reasons.empty() && !more.empty()) shown.reasons.push_back(',');
  shown.reasons += more;
  return shown;
}

std::string Queue::List() const {
  std::string out;
  out.reserve(jobs_.size() * 320);
  for (const Job* job : order_) AppendListed(&out, *job, ShownOf(*job));
  return out;
}

}  // namespace printserverd
