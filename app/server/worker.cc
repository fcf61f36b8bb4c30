// The worker's side: connections and lists.
#include "app/server/worker.h"

#include <cerrno>
#include <ctime>

#include "printserver/nc.h"
#include "printserver/read_lists.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kConnectMs = 3000, kCallMs = 5000;
constexpr int kFirstRetryMs = 1000, kLastRetryMs = 15000;

constexpr char kSilent[] = "does not answer";
constexpr char kClosed[] = "closed the connection";
constexpr char kStrange[] = "answers in a way this console does not understand";

// Why there is no connection, as what the server's name does.
const char* ConnectTrouble(int code, int error) {
  switch (code) {
    case NC_NO_HOST:
      if (error == EINVAL) return "has a port that is not a number from 1 to 65535";
      return error == ETIMEDOUT ? "was not found in time" : "is not known";
    case NC_REFUSED:
      return "refuses this console";
    case NC_NO_SERVER:
      if (error == ETIMEDOUT) return kSilent;
      return error == ECONNRESET || error == EPIPE ? kClosed : "runs no print server";
    default:
      return "cannot be asked: the system has no connection left";
  }
}

// Why a connection ended that was there.
const char* BreakTrouble(int error) {
  if (error == ETIMEDOUT) return kSilent;
  return error == EMSGSIZE ? kStrange : kClosed;
}

}  // namespace

Worker::Worker(Server::Shared* shared)
    : shared_(shared), list_(new uint8_t[NC_QUEUE_MAX]), jobs_(new NC_Job[NC_JOBS_MAX]) {}

Worker::~Worker() {
  Close(kLists);
  Close(kGamut);
}

int Worker::Connect(Which which, int ms) {
  const int fd = NC_ConnectStopN(shared_->host.c_str(), ms, shared_->stopped.get());
  if (fd < 0) return fd;
  NC_SetDeadline(fd, kCallMs);
  Locked lock(shared_);
  shared_->open[which] = fd;
  if (shared_->stop) shutdown(fd, SHUT_RDWR);
  return fd;
}

void Worker::Close(Which which) {
  Locked lock(shared_);
  if (shared_->open[which] >= 0) NC_Disconnect(shared_->open[which]);
  shared_->open[which] = -1;
}

bool Worker::Stopping() {
  Locked lock(shared_);
  return shared_->stop;
}

// The server is gone: says so, and when to try again. What refuses once will do so for a while.
void Worker::GoAway(Link link, const std::string& trouble, bool nothing_listens) {
  Close(kLists);
  retry_ms_ = retry_ms_ == 0 ? kFirstRetryMs : std::min(retry_ms_ * 2, kLastRetryMs);
  if (link == Link::kRefused) retry_ms_ = kLastRetryMs;
  Locked lock(shared_);
  shared_->state.link = link;
  shared_->state.trouble = trouble;
  shared_->state.nothing_listens = nothing_listens;
  shared_->retry_at = MonotonicMs() + retry_ms_;
  shared_->state.retry_ms = retry_ms_;
  ++shared_->state.away_times;
  shared_->call_began = 0;
  GiveUpChanges();
  shared_->Published();
}

bool Worker::TryToConnect(int ms) {
  {
    Locked lock(shared_);
    shared_->state.link = Link::kConnecting;
    shared_->retry_at = 0;
    shared_->Published();
  }
  Began();
  const int fd = Connect(kLists, ms);
  const int error = errno;
  Ended();
  if (fd < 0) {
    GoAway(fd == NC_REFUSED ? Link::kRefused : Link::kAway, ConnectTrouble(fd, error),
           fd == NC_NO_SERVER && error == ECONNREFUSED);
    return false;
  }
  next_poll_ = 0;
  ask_profiles_ = true;
  return true;
}

void Worker::Began() {
  Locked lock(shared_);
  shared_->call_began = MonotonicMs();
}

void Worker::Ended() {
  Locked lock(shared_);
  shared_->call_began = 0;
}

// Asks for both lists. What came is published only where it differs from the last.
bool Worker::Poll() {
  Began();
  const int fd = shared_->open[kLists];
  uint8_t status = 0;
  const int32_t printers = NC_GetPrinterListN(fd, &status, list_.get(), NC_LIST_MAX);
  if (printers < 0) return false;
  const std::string printer_bytes(reinterpret_cast<char*>(list_.get()), size_t(printers));
  const int64_t asked_ms = MonotonicMs();
  const int32_t queue = NC_GetPrintQueueN(fd, list_.get(), NC_QUEUE_MAX);
  if (queue < 0) return false;
  auto profiles = std::make_shared<std::vector<NC_Profile>>();
  if (ask_profiles_ && !nc::ReadProfiles(fd, "", profiles.get())) return false;
  Ended();
  const std::string_view queue_bytes(reinterpret_cast<char*>(list_.get()), size_t(queue));
  const bool new_jobs = queue_bytes != last_jobs_, new_printers = printer_bytes != last_printers_;
  std::shared_ptr<std::vector<NC_Job>> jobs;
  std::shared_ptr<std::vector<NC_Printer>> list;
  if (new_jobs) {
    last_jobs_ = queue_bytes;
    const int n = NC_ParseJobs(list_.get(), queue, jobs_.get(), NC_JOBS_MAX);
    jobs = std::make_shared<std::vector<NC_Job>>(jobs_.get(), jobs_.get() + n);
  }
  if (new_printers) {
    last_printers_ = printer_bytes;
    list = std::make_shared<std::vector<NC_Printer>>(size_t{NC_RECORDS_MAX});
    list->resize(
        size_t(NC_ParsePrinters(printer_bytes.data(), printers, list->data(), NC_RECORDS_MAX)));
  }
  retry_ms_ = 0;
  Locked lock(shared_);
  next_poll_ = MonotonicMs() + shared_->period_ms;
  ServerState& state = shared_->state;
  state.seen = time(nullptr);
  if (jobs) state.jobs = jobs;
  if (list) state.printers = list;
  if (ask_profiles_) state.profiles = profiles;
  if (state.pending.ListCame(asked_ms)) shared_->pending_changed = true;
  const bool changed = jobs || list || ask_profiles_ || state.link != Link::kReady ||
                       !state.listed || shared_->pending_changed;
  state.listed = true;
  state.link = Link::kReady;
  ask_profiles_ = false;
  if (changed && !hold_back_) shared_->Published();
  return true;
}

// Everything that is due on the connection for lists. Called also while a file is being sent.
void Worker::Serve(int connect_ms) {
  bool connected, due, refresh;
  {
    Locked lock(shared_);
    refresh = shared_->refresh;
    shared_->refresh = false;
    connected = shared_->open[kLists] >= 0;
    due = shared_->retry_at <= MonotonicMs();
    if (refresh) next_poll_ = 0;
    if (refresh) ask_profiles_ = true;
  }
  if (!connected) {
    if (!due && !refresh) return;
    if (refresh) retry_ms_ = 0;
    if (!TryToConnect(connect_ms)) return;
  }
  bool good = MakeChanges() && ChangePrinters() && AnswerRequests();
  if (good && next_poll_ <= MonotonicMs()) {
    good = Poll() && RemoveUnwanted();
  }
  if (!good) {
    const int error = errno;
    Ended();
    GoAway(Link::kAway, BreakTrouble(error));
  }
}

// Until something is asked for, or the next list or try is due.
void Worker::Wait() {
  Locked lock(shared_);
  const bool connected = shared_->open[kLists] >= 0;
  if (shared_->stop || shared_->refresh ||
      (connected &&
       !(shared_->steps.empty() && shared_->printer_changes.empty() && shared_->requests.empty())))
    return;
  const int64_t now = MonotonicMs();
  int64_t until = connected ? next_poll_ : shared_->retry_at;
  for (const Transfer& t : shared_->state.transfers)
    if (connected && t.state == Sending::kWaiting) until = std::min(until, next_send_);
  if (until <= now) return;
  timespec t;
  t.tv_sec = time_t(until / 1000);
  t.tv_nsec = long(until % 1000) * 1000000;
  pthread_cond_timedwait(&shared_->wake, &shared_->mutex, &t);
}

void Worker::Run() {
  while (!Stopping()) {
    Serve(kConnectMs);
    if (Ready()) SendNext();
    Wait();
  }
}

bool Worker::Ready() {
  Locked lock(shared_);
  return shared_->open[kLists] >= 0 && shared_->state.link == Link::kReady && !shared_->stop;
}

void RunWorker(Server::Shared* shared) {
  Worker worker(shared);
  worker.Run();
}

}  // namespace console
