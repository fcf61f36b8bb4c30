// The print server as the console knows it. One worker thread makes every network call; the window
// asks and looks through this room and never waits.
//
// The worker keeps a connection for lists and for changes of jobs, and a second one while a file is
// sent, so that the queue stays alive. Every call has a deadline. When the server does
// not answer, the worker says so at once, gives up at the deadline, and tries again by itself after
// a while that doubles up to fifteen seconds. A file whose sending broke off is sent again when the
// server is back, unless the queue shows that it had arrived.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/work/background_task.h"
#include "printserver/records.h"

namespace console {

enum class Link : uint8_t { kConnecting, kReady, kAway };
enum class JobAction : uint8_t { kHold, kRelease, kRemove };

using JobId = std::array<uint8_t, 16>;
inline JobId IdOf(const NC_Job& job) {
  return std::to_array(job.id);
}

// A file to be printed. Texts are UTF-8, or whatever bytes the file system has.
struct PrintOrder {
  std::string path, document, owner;
  std::string printer, profile;  // empty: the server's choice
  int copies = 1, priority = 50;
  bool hold = false;
};

enum class Sending : uint8_t { kWaiting, kSending, kCancelling, kFailed };
// An order on its way. It is gone when the queue shows it, and when it was cancelled.
struct Transfer {
  int number = 0;  // from 1 on
  PrintOrder order;
  Sending state = Sending::kWaiting;
  int64_t sent = 0, total = 0, size = 0;  // bytes; the total includes the ticket
  int silent_s = 0;                       // whole seconds that its file has not answered
  int64_t started = 0;                    // seconds since 1970
  std::string text;                       // of a failed one, why
};

// Something that a person should be told once.
struct Notice {
  bool good = true;
  std::string text;  // UTF-8
};

// A transfer that has become a job.
struct Arrival {
  int number;
  JobId id;
};

// A change that the server has not yet answered.
struct PendingChange {
  JobId id;
  JobAction action;
};

// What is known. The lists stay when the server goes away.
struct ServerState {
  Link link = Link::kConnecting;
  int retry_ms = 0;     // away: until the next try, counted from when the state came
  int quiet_s = 0;      // whole seconds that the present call has been waiting for an answer
  std::string trouble;  // away: why, in a few words
  std::shared_ptr<const std::vector<NC_Job>> jobs;          // never null
  std::shared_ptr<const std::vector<NC_Printer>> printers;  // never null
  std::shared_ptr<const std::vector<NC_Profile>> profiles;  // never null
  std::vector<Transfer> transfers;
  std::vector<PendingChange> pending;
  std::vector<Notice> notices;    // since the last look
  std::vector<Arrival> arrivals;  // the last few
};

class Server {
 public:
  // Starts the worker. `host` empty: localhost.
  // `replaying`: keeps each state until it is taken up.
  explicit Server(const std::string& host, bool replaying = false);
  // Cancels what is being sent and ends the worker, whatever it is waiting for. One that hangs in
  // reading a document is left to end by itself.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  const std::string& host() const { return host_; }
  // Words that tell the newest state from others, when something has changed since it was last
  // taken up; else empty.
  std::string News();
  // Takes up the state that these words tell of. Usually that of the last News(); in a replay the
  // worker may be ahead of it or behind, and is then waited for.
  void TakeUp(const std::string& news, ServerState* state);
  // The replay is over: from now on the newest state counts.
  void StopKeeping();
  // The order's number as a transfer.
  int Send(PrintOrder order);
  // Takes a transfer out, whatever its state; one that has arrived is removed as a job.
  void Cancel(int number);
  // Tries a failed one again.
  void Retry(int number);
  void Change(const JobId& id, JobAction action);
  // Asks again now; when it is away: tries now.
  void Refresh();

  // What the worker and this side share (shared.h).
  struct Shared;

 private:
  bool TakeKept(const char* digest, size_t notices, ServerState* state);

  std::string host_;
  std::shared_ptr<Shared> shared_;
  BackgroundTask worker_;
  // What the last News() told of: the worker may have published more since.
  ServerState offered_;
  int64_t offered_change_ = 0;
  int64_t seen_ = 0;
  int seen_quiet_ = 0;
  std::string seen_digest_;
};

}  // namespace console
