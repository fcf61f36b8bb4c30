// What the window's side and the worker share: everything under one mutex.
#pragma once
#include <pthread.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <string>

#include "app/server/server.h"
#include "os/final_path.h"
#include "os/os.h"

namespace console {

int64_t MonotonicMs();

// A change of one job, in the worker's line; those of one batch are told of together.
struct JobStep {
  JobId job{};
  JobChange change;
  JobId before{};                 // of kReorder
  std::string document = "";      // the job's, as who asked for the change has seen it
  std::string seen_on = "";       // its printer, likewise; "": that does not matter
  std::string passed = "";        // as in a Reordering
  int batch = 0, batch_size = 0;  // the size in steps
};

// A change of a printer that has not begun.
struct PrinterChange {
  std::string name;
  PrinterSetting setting;
};

// What is asked for beside changes (scanners.cc).
struct ServerRequest {
  enum Kind : uint8_t { kLists, kScan, kGamut } kind = kLists;
  std::string name = "";  // of the scanner, of the profile
  std::string printer = "", folder = "";
};

struct Server::Shared : std::enable_shared_from_this<Shared> {
  Shared();
  ~Shared();

  pthread_mutex_t mutex;
  pthread_cond_t wake;                   // on the monotonic clock
  ServerState state;                     // quiet_s is filled in when it is published
  int64_t retry_at = 0, call_began = 0;  // MonotonicMs; 0: none
  std::deque<JobStep> steps;             // not yet begun
  std::deque<PrinterChange> printer_changes;
  std::deque<ServerRequest> requests;
  bool stop = false, refresh = false;
  int next_number = 1, next_notice = 1, next_batch = 1;
  // What is pending has changed: jobs that look the same may be others.
  bool pending_changed = false;
  int period_ms = 2000;  // between two questions for the lists
  int cancelled = 0;     // the transfer that is to be broken off
  // What ends the worker's waiting when it is to stop: its connections are shut down, and this
  // becomes readable for the one that is just being made.
  int open[3] = {-1, -1, -1};
  os::Handle stopped;
  std::string host;
  Show show;  // the main thread's; null once the server has ended

  // After a change of the state, under the mutex.
  void Published();
  // The same for a change of how long the server has been silent, if there is one.
  void PublishQuiet();
  void AddNotice(Message message, bool of_lists = false);
  // Puts steps at the end of the line, as one batch.
  void Add(std::vector<JobStep> steps);

 private:
  int QuietSeconds() const;
  // Words that tell the state from others, as far as a person would see a difference. How far a
  // transfer has come, and how long its file has been silent, are left out: they depend on the
  // network and the disk alone.
  std::string Detail();
  // Of what was published last.
  std::string detail_;
  std::shared_ptr<const std::vector<NC_Job>> jobs_;
  uint64_t lists_ = 0;  // what the lists add to the words
  const void* hashed_[3] = {};
};

// Owns the mutex as long as it lives.
class Locked {
 public:
  explicit Locked(Server::Shared* shared);
  ~Locked();
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  Server::Shared* shared_;
};

// The worker: until it is to stop.
void RunWorker(Server::Shared* shared);

}  // namespace console
