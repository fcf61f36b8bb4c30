// The window's side.
#include "app/server.h"

#include <sys/socket.h>

#include <ctime>

#include "app/server_shared.h"

namespace console {

int64_t MonotonicMs() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1000000;
}

Server::Shared::Shared() {
  OS_CreateMutex(&mutex);
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&wake, &attributes);
  pthread_condattr_destroy(&attributes);
  state.jobs = std::make_shared<std::vector<NC_Job>>();
  state.printers = std::make_shared<std::vector<NC_Printer>>();
}

Server::Shared::~Shared() {
  pthread_cond_destroy(&wake);
  OS_DestroyMutex(&mutex);
}

Locked::Locked(Server::Shared* shared) : shared_(shared) {
  OS_ReserveMutex(&shared->mutex);
}
Locked::~Locked() {
  OS_ReleaseMutex(&shared_->mutex);
}

Server::Server(const std::string& host)
    : host_(host.empty() ? "localhost" : host), shared_(std::make_unique<Shared>()) {
  shared_->host = host_;
  thread_ = OS_StartThread(RunWorker, shared_.get());
  if (thread_ < 0) {
    shared_->state.link = Link::kAway;
    shared_->state.trouble = "no thread could be started";
  }
}

Server::~Server() {
  {
    Locked lock(shared_.get());
    shared_->stop = true;
    for (int fd : shared_->open)
      if (fd >= 0) shutdown(fd, SHUT_RDWR);
    pthread_cond_broadcast(&shared_->wake);
  }
  if (thread_ > 0) OS_WaitThread(thread_);
}

bool Server::TakeUp(ServerState* state) {
  Locked lock(shared_.get());
  Shared& s = *shared_;
  const int64_t now = MonotonicMs();
  const int quiet = s.call_began ? int((now - s.call_began) / 1000) : 0;
  if (s.change == seen_ && quiet == seen_quiet_) return false;
  seen_ = s.change;
  seen_quiet_ = quiet;
  *state = s.state;
  state->retry_ms = int(std::max<int64_t>(0, s.retry_at - now));
  state->quiet_s = quiet;
  s.state.notices.clear();
  return true;
}

int Server::Send(PrintOrder order) {
  Locked lock(shared_.get());
  Transfer t;
  t.number = shared_->next_number++;
  t.order = std::move(order);
  t.started = time(nullptr);
  shared_->state.transfers.push_back(std::move(t));
  ++shared_->change;
  pthread_cond_broadcast(&shared_->wake);
  return shared_->next_number - 1;
}

void Server::Cancel(int number) {
  Locked lock(shared_.get());
  Shared& s = *shared_;
  for (Transfer& t : s.state.transfers) {
    if (t.number != number || t.state != Sending::kSending) continue;
    t.state = Sending::kCancelling;
    s.cancelled = number;
  }
  for (const Arrival& a : s.state.arrivals)
    if (a.number == number) Change(a.id, JobAction::kRemove);
  if (s.cancelled != number)
    std::erase_if(s.state.transfers, [number](const Transfer& t) { return t.number == number; });
  ++s.change;
}

void Server::Retry(int number) {
  Locked lock(shared_.get());
  for (Transfer& t : shared_->state.transfers) {
    if (t.number != number || t.state != Sending::kFailed) continue;
    t.state = Sending::kWaiting;
    t.text.clear();
    ++shared_->change;
  }
  pthread_cond_broadcast(&shared_->wake);
}

void Server::Change(const JobId& id, JobAction action) {
  Locked lock(shared_.get());
  shared_->changes.push_back({id, action});
  shared_->state.pending.push_back({id, action});
  ++shared_->change;
  pthread_cond_broadcast(&shared_->wake);
}

void Server::Refresh() {
  Locked lock(shared_.get());
  shared_->refresh = true;
  pthread_cond_broadcast(&shared_->wake);
}

}  // namespace console
