// The window's side.
#include "app/server/server.h"

#include <sys/eventfd.h>
#include <sys/socket.h>

#include <cstdio>
#include <ctime>
#include <iterator>
#include <map>
#include <string_view>

#include "app/server/shared.h"
#include "toolkit/xw.h"

namespace console {

int64_t MonotonicMs() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1000000;
}

namespace {

// Nothing that the worker waits for outlasts the request to stop.
constexpr int kStopMs = 200;
constexpr size_t kNotices = 16;

// Texts and numbers, one after the other, as one number.
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
  uint64_t value() const { return value_; }

 private:
  uint64_t value_ = 0xCBF29CE484222325u;
};

uint64_t DigestOfLists(const ServerState& s) {
  Digest d;
  d << int64_t(s.jobs->size()) << int64_t(s.printers->size());
  for (const NC_Job& j : *s.jobs)
    d << j.document << j.owner << j.printer << j.text << int(j.state) << j.priority << j.copies
      << j.size << j.printed;
  for (const NC_Printer& p : *s.printers)
    d << p.name << int(p.state) << p.jobs << p.paper << p.paused << p.accepting << p.is_default
      << p.reasons << p.supplies;
  for (const NC_Profile& p : *s.profiles) d << p.name;
  return d.value();
}

// A state on its way to the main thread.
struct Posted {
  std::shared_ptr<Server::Shared> shared;
  ServerState state;
};

void Take(void* data, int taken) {
  const std::unique_ptr<Posted> posted(static_cast<Posted*>(data));
  if (taken && posted->shared->show) posted->shared->show(std::move(posted->state));
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

int Server::Shared::QuietSeconds() const {
  return call_began ? int((MonotonicMs() - call_began) / 1000) : 0;
}

std::string Server::Shared::Detail() {
  // The lists may be long, and most states have those of the one before.
  const void* lists[] = {state.jobs.get(), state.printers.get(), state.profiles.get()};
  if (!std::equal(std::begin(lists), std::end(lists), hashed_)) {
    std::copy(std::begin(lists), std::end(lists), hashed_);
    lists_ = DigestOfLists(state);
  }
  Digest d;
  d << int64_t(lists_) << int(state.link) << state.trouble;
  for (const Transfer& t : state.transfers)
    d << t.number << int(t.state) << t.failures << t.size << t.modified_ns << t.text;
  d << int64_t(state.pending.size());
  if (state.lists) {
    for (const NC_Scanner& s : state.lists->scanners) d << s.name << s.text << s.away;
    for (const std::string& printer : state.lists->printers) d << printer;
  }
  char text[100];
  snprintf(text, sizeof text, "%016llx quiet %d retry %d notices %d",
           static_cast<unsigned long long>(d.value()), state.quiet_s, state.retry_ms,
           next_notice - 1);
  return text;
}

void Server::Shared::Published() {
  if (stop) return;  // nobody waits for it, and it would take the place of another server's state
  state.quiet_s = QuietSeconds();
  std::string detail = Detail();
  // Jobs that look the same may be others.
  if (detail == detail_ && jobs_ == state.jobs && !pending_changed) return;
  detail_ = std::move(detail);
  pending_changed = false;
  jobs_ = state.jobs;
  XwPost("server", detail_.c_str(), Take, new Posted{shared_from_this(), state});
}

void Server::Shared::PublishQuiet() {
  if (QuietSeconds() != state.quiet_s) Published();
}

void Server::Shared::AddNotice(Message message, bool of_lists) {
  if (message.text.empty()) return;
  auto& all = state.notices;
  all.push_back({std::move(message), next_notice++, of_lists});
  if (all.size() > kNotices) all.erase(all.begin());
}

void Server::Shared::Add(std::vector<JobStep> added) {
  if (added.empty()) return;
  if (IsAway(state.link)) {
    AddNotice({Tone::kWarning, "Nothing was changed: the server is away"});
    return Published();
  }
  for (JobStep& step : added) {
    step.batch = next_batch;
    step.batch_size = int(added.size());
    state.pending.Begin(step.job, step.change.verb, MonotonicMs());
    steps.push_back(std::move(step));
  }
  ++next_batch;
  pending_changed = true;
  Published();
  pthread_cond_broadcast(&wake);
}

Server::Server(const std::string& host, Show show)
    : host_(host.empty() ? "localhost" : host), shared_(std::make_shared<Shared>()) {
  shared_->host = host_;
  shared_->show = std::move(show);
}

void Server::Begin() {
  if (worker_.started()) return;
  worker_ = BackgroundTask([shared = shared_] { RunWorker(shared.get()); });
  if (!worker_.failed()) return;
  Locked lock(shared_.get());
  shared_->state.link = Link::kAway;
  shared_->state.trouble = "cannot be asked now: the computer is too busy";
  shared_->Published();
}

void Server::Stop() {
  shared_->show = nullptr;
  Locked lock(shared_.get());
  shared_->stop = true;
  for (int fd : shared_->open)
    if (fd >= 0) shutdown(fd, SHUT_RDWR);
  eventfd_write(shared_->stopped.get(), 1);
  pthread_cond_broadcast(&shared_->wake);
}

Server::~Server() {
  Stop();
  worker_.WaitFor(kStopMs);
}

void Server::Use(const std::string& host) {
  const std::shared_ptr<Shared> old = shared_;
  Show show = old->show;
  Stop();
  worker_.Drop();  // it ends by itself
  host_ = host.empty() ? "localhost" : host;
  shared_ = std::make_shared<Shared>();
  shared_->host = host_;
  shared_->show = show;
  {
    const Locked lock(old.get());
    shared_->next_number = old->next_number;
    shared_->next_notice = old->next_notice;
    shared_->period_ms = old->period_ms;
    shared_->state.away_times = old->state.away_times;
  }
  show(shared_->state);
  Begin();
}

void Server::SetPeriod(int ms) {
  const Locked lock(shared_.get());
  if (shared_->period_ms == ms) return;
  shared_->period_ms = ms;
  shared_->refresh = true;
  pthread_cond_broadcast(&shared_->wake);
}

void Server::ShowProgress(std::vector<Transfer>* transfers) const {
  Locked lock(shared_.get());
  for (const Transfer& now : shared_->state.transfers)
    for (Transfer& t : *transfers)
      if (t.number == now.number) t.sent = now.sent, t.total = now.total, t.silent_s = now.silent_s;
}

void Server::Tick() {
  Locked lock(shared_.get());
  Shared& s = *shared_;
  if (s.steps.empty() && s.state.pending.Expire(MonotonicMs()) > 0) {
    s.pending_changed = true;
    s.Published();
  }
  s.PublishQuiet();
}

int Server::Send(std::vector<PrintOrder> orders) {
  Locked lock(shared_.get());
  const int first = shared_->next_number;
  for (PrintOrder& order : orders) {
    Transfer t;
    t.number = shared_->next_number++;
    t.order = std::move(order);
    t.size = t.order.size;
    t.first = first;
    t.started = time(nullptr);
    shared_->state.transfers.push_back(std::move(t));
  }
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
    if (a.number == number) s.Add({{a.id, {Verb::kRemove}, {}, a.document}});
  if (s.cancelled != number)
    std::erase_if(s.state.transfers, [number](const Transfer& t) { return t.number == number; });
  s.Published();
}

TakenBack Server::CancelWaiting() {
  Locked lock(shared_.get());
  TakenBack back;
  std::map<int, int> arrived;  // of those that were ordered together, by the first one's number
  std::vector<Transfer>& all = shared_->state.transfers;
  for (const Transfer& t : all)
    if (t.state == Sending::kWaiting) arrived[t.first] = t.arrived, ++back.waiting;
  for (const auto& [first, n] : arrived) back.arrived += n;
  for (const Transfer& t : all) {
    if (!arrived.contains(t.first)) continue;
    back.sending += t.state == Sending::kSending;
    back.failed += t.state == Sending::kFailed;
  }
  std::erase_if(all, [](const Transfer& t) { return t.state == Sending::kWaiting; });
  shared_->Published();
  return back;
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

void Server::Change(const std::vector<NamedJob>& jobs, const JobChange& change) {
  std::vector<JobStep> steps;
  for (const NamedJob& job : jobs) steps.push_back({job.id, change, {}, job.document, job.printer});
  Locked lock(shared_.get());
  shared_->Add(std::move(steps));
}

void Server::Reorder(const std::vector<Reordering>& reorderings) {
  std::vector<JobStep> steps;
  for (const Reordering& r : reorderings)
    steps.push_back({r.job, {Verb::kReorder}, r.before, r.document, "", r.passed});
  Locked lock(shared_.get());
  shared_->Add(std::move(steps));
}

void Server::Refresh() {
  Locked lock(shared_.get());
  shared_->refresh = true;
  pthread_cond_broadcast(&shared_->wake);
}

}  // namespace console
