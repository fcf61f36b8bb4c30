// The print queue: jobs, their tickets and their files in the spool's `jobs` folder.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "printserverd/disk.h"
#include "printserverd/fields.h"
#include "printserverd/folder.h"
#include "printserverd/settings.h"
#include "printserverd/wire.h"

namespace printserverd {

struct Ticket {
  std::string document;
  std::string owner;
  std::string printer;
  std::string profile;
  std::string media;
  int64_t copies = 1;
  int64_t priority = 50;
  int64_t hold = 0;
};

// Which keys of a ticket were given, a bit each in the order of Ticket's fields.
using TicketKeys = uint32_t;
constexpr TicketKeys kPrinterKey = 4, kProfileKey = 8, kMediaKey = 16, kCopiesKey = 32,
                     kHoldKey = 128;

// Sets what the record `text` names in `ticket`, leaves the rest, tells which keys it named.
// kDone, or kBadTicket with `ticket` in any state.
Status ParseTicket(std::string_view text, Ticket* ticket, TicketKeys* keys);

enum class JobState { kWaiting, kHeld, kPrinting, kPaperOut, kDone, kFailed };

struct Job {
  RequestId id;
  Ticket ticket;
  JobState state = JobState::kWaiting;
  int64_t submitted = 0;  // seconds since 1970
  int64_t finished = 0;   // the same, of an ended job
  int64_t number = 0;     // order of acceptance
  int64_t size = 0;       // bytes of the document
  int64_t printed = 0;
  bool paper_loaded = false;  // the operator released it while it was out of paper
  std::string text;

  int64_t Total() const { return size * ticket.copies; }
  bool AtPrinter() const { return state == JobState::kPrinting || state == JobState::kPaperOut; }
  bool Ended() const { return state == JobState::kDone || state == JobState::kFailed; }
};

// A job's key=value lines and the empty line: what the queue list and, with `stored`, the job
// file hold.
std::string JobRecord(const Job& job, bool stored);

// Fills a job from the record of a job file; false when it is none. The id is not set.
bool ParseJobRecord(std::string_view text, Job* job);

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

// What jobs are is decided at once; their files follow on the disk's thread in the same order.
class Queue {
 public:
  // `jobs` is the folder, kept by the caller; `settings` may change under the queue.
  Queue(int jobs, const Settings& settings, Disk* disk)
      : folder_(jobs), settings_(settings), disk_(disk) {}

  // Takes the jobs of an earlier run from the folder and removes what was never accepted.
  void Load();

  // Null when there is none.
  Job* Find(const RequestId& id);
  const std::unordered_map<RequestId, Job>& jobs() const { return jobs_; }

  // The calls for a document that arrives. A failure is seen in it later.
  DocumentRef CreateDocument(const RequestId& id);
  void Write(const DocumentRef& document, std::string bytes, Disk::Call done);
  void Drop(const DocumentRef& document);
  // How the disk's thread opens the document of a job; empty on failure, errno set.
  std::function<Fd()> DocumentOpener(const Job& job) const;

  // Checks the ticket of a new job and fills in the default printer.
  Status CheckNew(Ticket* ticket);

  // Makes a job of a document that is whole, of `size` bytes. It is in the queue once it is
  // accepted; the document is gone otherwise.
  void Accept(const DocumentRef& document, const Ticket& ticket, int64_t size, Answer answer);

  // Applies the record `text` to a job, after what others want to change in the same one.
  void Change(const RequestId& id, std::string text, Answer answer);

  // Removes the job with its files.
  void Remove(const RequestId& id, Answer answer);

  // The job is at its printer no more.
  void Finish(Job* job, JobState state, std::string_view text);

  // The next job for a printer, null when none waits.
  Job* Next(std::string_view printer);

  // Forgets ended jobs that are old or too many.
  void Prune(int64_t now);

  // Holds back what no printer is there for (after the configuration changed).
  void CheckPrinters();

  // Something in the list has changed.
  void Touch() { ++generation_; }
  uint64_t generation() const { return generation_; }
  std::string List() const;

  // Bytes of all documents, those that arrive included.
  int64_t bytes() const { return bytes_; }
  void AddBytes(int64_t n) { bytes_ += n; }

 private:
  struct Wish {
    std::string text;
    Answer answer;
  };
  bool LoadJob(const std::string& name);
  void DropDocument(const RequestId& id);
  // Writes a job's record; `done` is told whether it is on the disk. Null: without waiting for it.
  void Store(const Job& job, std::function<void(bool)> done);
  bool MakeRoom();
  void Accepted(const Job& job, bool stored, const Answer& answer);
  Status Changed(const Job& job, std::string_view text, Job* changed);
  void NextChange(RequestId id);
  void StoreChange(const RequestId& id, const Job& changed);
  bool ChangeStored(const RequestId& id, const std::string& record, bool stored);
  void EndChange(const RequestId& id, Status status);
  void Forget(const RequestId& id);
  Status CheckNames(const Ticket& ticket) const;

  int folder_;
  const Settings& settings_;
  Disk* disk_;
  std::unordered_map<RequestId, Job> jobs_;
  std::unordered_map<RequestId, std::deque<Wish>> changing_;  // the first of each is being stored
  size_t accepting_ = 0;                                      // jobs that are being stored
  int64_t last_number_ = 0;
  int64_t bytes_ = 0;
  uint64_t generation_ = 1;
};

}  // namespace printserverd
