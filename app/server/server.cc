// The window's side.
#include "app/server/server.h"

#include <sys/eventfd.h>
#include <sys/socket.h>

#include <cstdio>
#include <ctime>
#include <string_view>

#include "app/server/shared.h"

namespace console {

int64_t MonotonicMs() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1000000;
}

namespace {

constexpr int kPatienceMs = 20000;
// Nothing that the worker waits for outlasts the request to stop.
constexpr int kStopMs = 200;

// What a person would see of the state, as one number. How far a transfer has come, and how long
// its file has been silent, are left out: they depend on the network and the disk alone.
class Digest {
 public:
  Digest& operator<<(std::string_view text) {
    for (char c : text) value_ = (value_ ^ uint8_t(c)) * 0x100000001B3u;
    return *this << int64_t(text.size());
  }
  Digest& operator<<(int64_t number) {
    for (int i = 0; i < 64; i += 8) value_ = (value_ ^ uint8_t(number >> i)) * 0x100000001B3u;
    return *this;
  }
  std::string Text() const {
    char text[32];
    snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value_));
    return text;
  }

 private:
  uint64_t value_ = 0xCBF29CE484222325u;
};

std::string DigestOf(const ServerState& s) {
  Digest d;
  d << int(s.link) << s.trouble << int64_t(s.jobs->size()) << int64_t(s.printers->size());
  for (const NC_Job& j : *s.jobs)
    d << j.document << j.owner << j.printer << j.text << int(j.state) << j.priority << j.copies
      << j.size << j.printed;
  for (const NC_Printer& p : *s.printers) d << p.name << int(p.state) << p.jobs << p.paper;
  for (const NC_Profile& p : *s.profiles) d << p.name;
  for (const Transfer& t : s.transfers) d << t.number << int(t.state) << t.text;
  for (const PendingChange& p : s.pending) d << int(p.action);
  return d.Text();
}

}  // namespace

Server::Shared::Shared() : stopped(eventfd(0, EFD_CLOEXEC)) {
  OS_CreateMutex(&mutex);
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&wake, &attributes);
  pthread_condattr_destroy(&attributes);
  state.jobs = std::make_shared<std::vector<NC_Job>>();
  state.printers = std::make_shared<std::vector<NC_Printer>>();
  state.profiles = std::make_shared<std::vector<NC_Profile>>();
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

Server::Server(const std::string& host, bool replaying)
    : host_(host.empty() ? "localhost" : host), shared_(std::make_shared<Shared>()) {
  shared_->host = host_;
  shared_->keep = replaying;
  if (replaying) shared_->kept.push_back(shared_->state);
  worker_ = BackgroundTask([shared = shared_] { RunWorker(shared.get()); });
  if (worker_.failed()) {
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
    eventfd_write(shared_->stopped.get(), 1);
    pthread_cond_broadcast(&shared_->wake);
  }
  worker_.WaitFor(kStopMs);
}

std::string Server::News() {
  Locked lock(shared_.get());
  const Shared& s = *shared_;
  const int64_t now = MonotonicMs();
  const int quiet = s.call_began ? int((now - s.call_began) / 1000) : 0;
  if (s.change == seen_ && quiet == seen_quiet_) return "";
  offered_ = s.state;
  offered_change_ = s.change;
  const int64_t retry = std::max<int64_t>(0, s.retry_at - now);
  char text[100];
  snprintf(text, sizeof text, "%s quiet %d retry %d notices %zu", DigestOf(offered_).c_str(), quiet,
           int(retry), offered_.notices.size());
  return text;
}

// Takes states out of those that were kept, up to the one with this digest and so many notices.
bool Server::TakeKept(const char* digest, size_t notices, ServerState* state) {
  Locked lock(shared_.get());
  auto& kept = shared_->kept;
  while (!(seen_digest_ == digest && state->notices.size() >= notices) && !kept.empty()) {
    std::vector<Notice> all = std::move(state->notices);
    all.insert(all.end(), kept.front().notices.begin(), kept.front().notices.end());
    *state = std::move(kept.front());
    state->notices = std::move(all);
    kept.pop_front();
    seen_digest_ = DigestOf(*state);
  }
  if (kept.empty()) seen_ = shared_->change;
  return seen_digest_ == digest && state->notices.size() >= notices;
}

void Server::TakeUp(const std::string& news, ServerState* state) {
  char digest[32] = "";
  int quiet = 0, retry = 0;
  size_t notices = 0;
  sscanf(news.c_str(), "%31s quiet %d retry %d notices %zu", digest, &quiet, &retry, &notices);
  state->notices.clear();
  if (shared_->keep) {
    const int64_t give_up = MonotonicMs() + kPatienceMs;
    while (!TakeKept(digest, notices, state) && MonotonicMs() < give_up) OS_Sleep(1);
    if (seen_digest_ != digest)
      fprintf(stderr, "replay: the server did not come to %s\n", news.c_str());
  } else {
    Locked lock(shared_.get());
    seen_ = offered_change_;
    auto& all = shared_->state.notices;
    all.erase(all.begin(), all.begin() + ptrdiff_t(offered_.notices.size()));
    *state = std::move(offered_);
  }
  seen_quiet_ = state->quiet_s = quiet;
  state->retry_ms = retry;
}

void Server::StopKeeping() {
  Locked lock(shared_.get());
  if (!shared_->keep) return;
  shared_->keep = false;
  std::vector<Notice> notices;
  for (const ServerState& s : shared_->kept)
    notices.insert(notices.end(), s.notices.begin(), s.notices.end());
  shared_->kept.clear();
  shared_->state.notices = std::move(notices);
  seen_ = 0;
}

int Server::Send(PrintOrder order) {
  Locked lock(shared_.get());
  Transfer t;
  t.number = shared_->next_number++;
  t.order = std::move(order);
  t.started = time(nullptr);
  shared_->state.transfers.push_back(std::move(t));
  shared_->Published();
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
  s.Published();
}

void Server::Retry(int number) {
  Locked lock(shared_.get());
  for (Transfer& t : shared_->state.transfers) {
    if (t.number != number || t.state != Sending::kFailed) continue;
    t.state = Sending::kWaiting;
    t.text.clear();
    shared_->Published();
  }
  pthread_cond_broadcast(&shared_->wake);
}

void Server::Change(const JobId& id, JobAction action) {
  Locked lock(shared_.get());
  shared_->changes.push_back({id, action});
  shared_->state.pending.push_back({id, action});
  shared_->Published();
  pthread_cond_broadcast(&shared_->wake);
}

void Server::Refresh() {
  Locked lock(shared_.get());
  shared_->refresh = true;
  pthread_cond_broadcast(&shared_->wake);
}

}  // namespace console
