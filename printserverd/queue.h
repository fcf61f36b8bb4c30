// The print queue: jobs, their order, and their files in the spool's `jobs` folder.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "printserverd/access_log.h"
#include "printserverd/disk.h"
#include "printserverd/folder.h"
#include "printserverd/job.h"
#include "printserverd/settings.h"
#include "printserverd/spool_records.h"

namespace printserverd {

// The document of a request that arrives. Its file is the disk's alone.
struct Document {
  explicit Document(RequestId of) : id(std::move(of)) {}
  const RequestId id;
  std::atomic<int> error{0};  // of the first thing that failed
  size_t pending = 0;         // bytes that wait for the disk
  Fd file;
  int64_t size = 0, flushed = 0;
};
using DocumentRef = std::shared_ptr<Document>;

// Called with a request's result when what it has changed is on the disk; perhaps at once.
using Answer = std::function<void(Status)>;

// The folders and helpers that the queue uses; they outlive it.
struct QueueUses {
  int root;   // of the spool
  int jobs;   // its folder of job files
  int aside;  // where goes what cannot be understood
  const Settings& settings;
  Disk* disk;
  Counters* counters;
  AccessLog* log;
};

// Whether `a` stands before `b` in the list: at a printer, then by priority and place, and those
// that have ended last, the latest first.
struct ListedBefore {
  bool operator()(const Job* a, const Job* b) const;
};

// What jobs are is decided at once; their files follow on the disk's thread in the same order.
class Queue {
 public:
  // `settings` may change under the queue.
  explicit Queue(const QueueUses& uses) : uses_(uses) {}

  // Takes the jobs of an earlier run from the folder, sets aside what is no job, and removes what
  // was never accepted. Jobs whose output the earlier run had finished are done.
  void Load();

  // Null when there is none.
  const Job* Find(const RequestId& id) const;
  size_t size() const { return jobs_.size(); }

  // A job to change; its place in the list follows when this goes.
  class Edit {
   public:
    Edit(Queue* queue, const RequestId& id);
    ~Edit();
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;
    Job* operator->() const { return job_; }
    Job& operator*() const { return *job_; }

   private:
    Queue* queue_;
    Job* job_;
    JobState before_;
  };

  // The calls for a document that arrives. A failure is seen in it later.
  DocumentRef CreateDocument(const RequestId& id);
  // `bytes` lie in `buffer`, which nothing changes before `done`.
  void Write(const DocumentRef& document, std::shared_ptr<const std::vector<char>> buffer,
             std::string_view bytes, Disk::Call done);
  void Drop(const DocumentRef& document);
  // How the disk's thread opens the document of a job; empty on failure, errno set.
  std::function<Fd()> DocumentOpener(const Job& job) const;

  // Checks the ticket of a new job and fills in the default printer.
  Status CheckNew(Ticket* ticket) const;

  // Makes a job of a document that is whole, of `size` bytes, for the client `peer`. It is in the
  // queue once it is accepted; the document is gone otherwise.
  void Accept(const DocumentRef& document, const Ticket& ticket, int64_t size, std::string peer,
              Answer answer);

  // Applies the record `text` to a job, after what others want to change in the same one.
  void Change(const RequestId& id, std::string text, std::string peer, Answer answer);

  // Removes the job with its files.
  void Remove(const RequestId& id, std::string peer, Answer answer);

  // The job is at its printer no more: done, or failed with a keyword and a text.
  void Finish(const RequestId& id, JobState state, std::string_view reason, std::string_view text);
  void SetPrinted(const RequestId& id, int64_t printed);
  // The job at its printer waits again, from its beginning.
  void GiveBack(const RequestId& id, std::string_view text);

  // What the queue knows of a printer that is configured. Others are unknown to it.
  struct PrinterView {
    bool accepting = true;
    std::string reasons;  // that its waiting jobs show
    int64_t sheet_bytes = 0;
  };
  void SetPrinters(std::map<std::string, PrinterView> printers);
  void SetPrinter(const std::string& name, PrinterView view);

  // The next job for a printer, null when none waits.
  const Job* Next(std::string_view printer) const;
  // How many jobs wait for a printer or are at it.
  int64_t Live(std::string_view printer) const;

  // Forgets done jobs that are old or too many, and documents of done jobs that are too large.
  void Prune(int64_t now);

  // Something in the list has changed.
  void Touch() { ++generation_; }
  uint64_t generation() const { return generation_; }
  std::string List() const;

  // Bytes of all documents, those that arrive included.
  int64_t bytes() const { return bytes_; }
  void AddBytes(int64_t n) { bytes_ += n; }
  // Drops documents of done jobs until `count` more bytes fit; false when they never do.
  bool MakeBytes(int64_t count);

 private:
  struct PendingChange {
    std::string text;
    std::string peer;
    Answer answer;
    int64_t place = -1, outputs = -1;  // what was found for the job when it was looked at first
  };
  using Ordered = std::set<const Job*, ListedBefore>;
  // What waits for one printer, and how many jobs are not at their end.
  struct Lane {
    Ordered waiting;
    int64_t live = 0;
  };

  // load.cc
  bool LoadJob(const std::string& name);
  void CheckDocument(Job* job);
  bool SetJobAside(const std::string& name);
  void Sweep(const std::vector<std::string>& names);
  void FinishPrinted();
  void FinishPrintedAt(const PrinterSettings& printer, const Lane& lane);

  // queue.cc
  void Link(const Job* job);
  void Unlink(const Job* job);
  void DropDocument(const RequestId& id);
  // Writes a job's record; `done` is told whether it is on the disk, and may be null.
  void Store(const Job& job, std::function<void(bool)> done);
  const Job* OldestDone(bool kept) const;
  bool MakeRoom();
  void Accepted(const Job& job, bool stored, const std::string& peer, const Answer& answer);
  void DropKept(const RequestId& id);
  void TrimDone();
  void Forget(const RequestId& id);
  void Removed(const RequestId& id, int error, const std::string& peer);
  Shown ShownOf(const Job& job) const;

  // changes.cc
  Status CheckNames(const Ticket& ticket, bool arrives) const;
  Status Changed(const Job& job, PendingChange* change, Job* changed);
  Status CheckChange(const Job& job, TicketKeys keys, Job* changed) const;
  static void ApplyHold(const Job& job, Job* changed);
  Status PlaceBefore(const RequestId& before, PendingChange* change, Job* changed);
  int64_t PlaceBetween(const Job* target) const;
  int64_t LastPlace(int64_t priority) const;
  void SpreadPlaces(int64_t priority);
  void NextChange(RequestId id);
  void StoreChange(const RequestId& id, const Job& changed);
  bool ChangeStored(const RequestId& id, const std::string& record, bool stored);
  void EndChange(const RequestId& id, Status status);

  const QueueUses uses_;
  std::unordered_map<RequestId, Job> jobs_;
  Ordered order_;                                   // all jobs
  std::map<std::string, Lane, std::less<>> lanes_;  // by printer
  std::map<std::string, PrinterView, std::less<>> printers_;
  std::unordered_map<RequestId, std::deque<PendingChange>>
      changing_;  // the first of each is being stored
  std::unordered_map<RequestId, std::vector<Answer>> removing_;
  size_t accepting_ = 0;  // jobs that are being stored
  int64_t done_ = 0;      // done jobs, and the bytes of their documents
  int64_t done_bytes_ = 0;
  int64_t bytes_ = 0;
  uint64_t generation_ = 1;
};

// Names in the spool's folder of jobs.
std::string DocumentName(const RequestId& id);
std::string RecordName(const RequestId& id);

}  // namespace printserverd
