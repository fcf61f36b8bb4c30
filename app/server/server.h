// The print server as the console knows it. One worker thread makes every network call; the window
// asks and looks through this room and never waits.
//
// The worker keeps a connection for lists and for changes of jobs, and a second one while a file is
// sent, so that the queue stays alive. Every call has a deadline. When the server does
// not answer, the worker says so at once, gives up at the deadline, and tries again by itself after
// a while that doubles up to fifteen seconds. A file whose sending broke off is sent again when the
// server is back, unless the queue shows that it had arrived. A change of a job is sent once: when
// the connection breaks, those that are not yet answered are given up and told.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/model/notices.h"
#include "app/model/pending_changes.h"
#include "app/model/queue_verbs.h"
#include "app/model/queue_words.h"
#include "app/work/background_task.h"
#include "printserver/records.h"

namespace console {

// kRefused is away as well: somebody answers there who is not to be talked to.
enum class Link : uint8_t { kConnecting, kReady, kAway, kRefused };
inline bool IsAway(Link link) {
  return link == Link::kAway || link == Link::kRefused;
}

// A job that is to be changed. Its name was seen by who asked: the job itself may have left the
// queue since.
struct NamedJob {
  JobId id{};
  std::string document;
  std::string printer = "";  // where it was seen; "": that does not matter
};

// What is to be done to jobs.
struct JobChange {
  Verb verb = Verb::kHold;
  int number = 0;         // the priority, or the copies
  std::string name = "";  // of the media, the profile, or the printer to which they are moved
};

// What is to be set in a printer.
enum class PrinterSetting : uint8_t { kPause, kResume, kRefuseJobs, kTakeJobs, kPaperLoaded };

// A file to be printed. Texts are UTF-8, or whatever bytes the file system has.
struct PrintOrder {
  std::string path, document, owner;
  std::string printer, profile, media;  // empty: the server's choice
  int copies = 1, priority = 50;
  int32_t colour = -1;  // 0xRRGGBB, -1: none
  bool hold = false;
  int64_t size = 0;  // bytes, as far as they are known; what is sent is what the file has then
};

// What a transfer is doing.
using Sending = OutgoingState;
// An order on its way. It is gone when the queue shows it, and when it was cancelled.
struct Transfer {
  int number = 0;  // from 1 on
  PrintOrder order;
  Sending state = Sending::kWaiting;
  int64_t sent = 0, total = 0, size = 0;  // bytes; the total includes the ticket
  int64_t modified_ns = 0;                // of its file, as the size; 0: it is not opened yet
  int silent_s = 0;                       // whole seconds that its file has not answered
  int64_t started = 0;                    // seconds since 1970
  std::string text;                       // of a failed one, why
  int failures = 0;                       // how often its sending was given up
  int first = 0;    // the number of the first one that was ordered together with it
  int arrived = 0;  // of those, how many are at the server
};

// Something that a person should be told once.
struct Notice {
  Message message;
  int number = 0;         // from 1 on
  bool of_lists = false;  // answers what was asked of scanners and profiles
};

// A file that was sent, as it was then.
struct SentFile {
  std::string path;
  int64_t size = 0;         // bytes
  int64_t modified_ns = 0;  // since 1970; 0: it is not opened yet
};
inline SentFile FileOf(const Transfer& t) {
  return {t.order.path, t.size, t.modified_ns};
}

// A transfer that has become a job.
struct Arrival {
  int number;
  JobId id;
  std::string document;
  SentFile file;
};

// What is asked for now and then.
struct ServerLists {
  std::vector<NC_Scanner> scanners;
  std::vector<NC_Profile> profiles;
  std::vector<std::string> printers;  // of each profile, the only one that has it; "": any
};

// What is known. The lists stay when the server goes away.
struct ServerState {
  Link link = Link::kConnecting;
  int retry_ms = 0;     // away: until the next try, counted from when it went
  int away_times = 0;   // how often it has gone away
  int quiet_s = 0;      // whole seconds that the present call has been waiting for an answer
  std::string trouble;  // away: why, as what its name does: "does not answer"
  bool nothing_listens = false;  // away: the last try was refused by the computer itself
  bool listed = false;           // the lists have come once
  int64_t seen = 0;              // when the lists were true last, seconds since 1970; 0: never
  std::shared_ptr<const std::vector<NC_Job>> jobs;          // never null
  std::shared_ptr<const std::vector<NC_Printer>> printers;  // never null
  std::shared_ptr<const std::vector<NC_Profile>> profiles;  // never null
  std::shared_ptr<const ServerLists> lists;                 // null until they have come
  std::vector<Transfer> transfers;
  PendingChanges pending;
  ChangeProgress changing;        // that of jobs which is under way
  std::vector<Notice> notices;    // the last few
  std::vector<Arrival> arrivals;  // the last few
};

class Server {
 public:
  // Gets each new state on the main thread, between two events; of those that came while it was
  // busy the newest.
  using Show = std::function<void(ServerState)>;
  // `host` empty: localhost.
  Server(const std::string& host, Show show);
  // Cancels what is being sent and ends the worker, whatever it is waiting for. One that hangs in
  // reading a document is left to end by itself. Nothing is shown afterwards.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // Starts the worker, where it has not been: nothing is asked or sent before.
  void Begin();
  const std::string& host() const { return host_; }
  // Leaves this server for another one. The connections are closed; what was not sent, and changes
  // that were not answered, are given up: none of it goes to the other server. The state begins
  // again with empty lists, and is shown at once; numbers go on.
  void Use(const std::string& host);
  // How often the lists are asked for. A new period asks at once.
  void SetPeriod(int ms);
  // How far those in the state have come by now.
  void ShowProgress(std::vector<Transfer>* transfers) const;
  // To be called each second: a server that has been silent for another one is a new state.
  void Tick();
  // In this order, after those that wait already. The number of the last one as a transfer.
  int Send(std::vector<PrintOrder> orders);
  // Takes a transfer out, whatever its state; one that has arrived is removed as a job.
  void Cancel(int number);
  // Takes all out that have not been begun with.
  TakenBack CancelWaiting();
  // Tries a failed one again.
  void Retry(int number);
  // Does it to each of them, in this order, and tells what has come of it once. The state shows at
  // once that it is under way.
  void Change(const std::vector<NamedJob>& jobs, const JobChange& change);
  // Puts jobs before others, one step after the other.
  void Reorder(const std::vector<Reordering>& steps);
  // Sets something of a printer; a notice tells what has come of it.
  void ChangePrinter(const std::string& name, PrinterSetting setting);
  // Moves the jobs of a printer that have not ended to another one; told in the same way.
  void MoveJobs(const std::string& printer, const std::string& target);
  // Scanners and profiles, which come as `lists`.
  void AskLists();
  // Has the server start its scan server. There is no answer.
  void StartScan(const std::string& scanner);
  // Fetches the gamut file of a profile: of that printer ("": none), else the one for all. It is
  // saved in `folder` under the profile's name, with a number where that is taken. A notice tells
  // what has come of it.
  void SaveGamut(const std::string& profile, const std::string& printer, const std::string& folder);
  // Asks again now; when it is away: tries now.
  void Refresh();

  // What the worker and this side share (shared.h).
  struct Shared;

 private:
  void Stop();

  std::string host_;
  std::shared_ptr<Shared> shared_;
  BackgroundTask worker_;
};

}  // namespace console
