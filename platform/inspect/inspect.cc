#include "platform/inspect/inspect.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <list>
#include <optional>
#include <utility>

#include "platform/access/access.h"
#include "platform/events/queue.h"
#include "platform/events/sources.h"
#include "platform/inspect/requests.h"
#include "platform/inspect/socket.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr size_t kMostClients = 8;
// Seconds. A request waits until the program is at rest, or has been busy for so long.
constexpr double kBusyPatience = 1;
// Seconds between two checks of a client's wait, and before accepting again after a failure.
constexpr double kLookPeriod = 0.02, kAcceptPause = 1;

struct Waiting {
  NodeWait wait;
  double deadline;
};

struct Client {
  Connection connection;
  std::optional<Waiting> waiting;
  std::optional<Typing> typing;
  double since = -1;  // when its next request came; -1: there is none
  explicit Client(int fd) : connection(fd) {}
};

struct Inspector {
  ListeningSocket socket;
  std::list<Client> clients;  // the one whose turn it is first
  TreeListener listener;
  bool listens = false;  // for changes of the tree, from the first client on
  bool changed = false;  // the tree has changed since the last check of the waits
  size_t handled = 0;    // where the queue was then
  int timer = -1;
  pid_t process = 0;
  double accept_again = 0, look_again = 0;
};
Inspector* inspector = nullptr;

// Real time: the display's clock may be stepped.
double Now() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

void AcceptClients(double now) {
  Inspector& i = *inspector;
  bool more = true;
  while (now >= i.accept_again) {
    const int fd = i.socket.Accept(&more);
    if (!more) i.accept_again = now + kAcceptPause;
    if (fd < 0) return;
    i.clients.emplace_back(fd);
    if (i.clients.size() > kMostClients) {
      i.clients.back().connection.Send(Failure("there are too many clients"));
      i.clients.back().connection.Move();
      i.clients.pop_back();
      continue;
    }
    if (i.listens) continue;
    i.listens = true;
    i.listener = {[](void*, uint64_t, Change) { inspector->changed = true; }, nullptr};
    AddTreeListener(&i.listener);
  }
}

// Whether all input is handled and everything that it has changed is drawn.
bool AtRest() {
  return main_event_queue.empty() && !DrawEventWaits();
}

void TypeMore(Client* c) {
  const std::string answer = TypeOn(&*c->typing);
  if (answer.empty()) return;
  c->typing.reset();
  c->connection.Send(answer);
  c->connection.Move();
}

void Serve(Client* c, double now) {
  Connection& connection = c->connection;
  std::string_view line;
  if (!connection.TakeLine(&line)) return;
  Answer answer = Perform(line);
  if (!answer.line.empty()) connection.Send(answer.line);
  if (answer.hang_up) connection.HangUp();
  if (answer.wait) c->waiting = {*answer.wait, now + answer.wait->ms / 1000.0};
  c->typing = std::move(answer.typing);
  connection.Move();
}

// Serves one request or a piece of one, of the client that has waited longest for its turn.
void ServeNext(double now) {
  Inspector& i = *inspector;
  auto ready = [](const Client& c) {
    return c.typing || (c.connection.HasLine() && c.connection.idle() && !c.waiting);
  };
  for (Client& c : i.clients) {
    if (!ready(c))
      c.since = -1;
    else if (c.since < 0)
      c.since = now;
  }
  const bool rest = AtRest();
  const auto next = std::find_if(i.clients.begin(), i.clients.end(), [&](const Client& c) {
    return ready(c) && (rest || now - c.since >= kBusyPatience);
  });
  if (next == i.clients.end()) return;
  i.clients.splice(i.clients.end(), i.clients, next);
  Client& c = i.clients.back();
  c.typing ? TypeMore(&c) : Serve(&c, now);
  c.since = -1;
  // More requests may be in memory already, which no descriptor shows.
  intake_hints.ReportWaits();
}

// Most changes are reported; handling an event may have made others.
bool MayHaveChanged() {
  return inspector->changed || inspector->handled != main_event_queue.head;
}

void LookAtWaits(double now) {
  Inspector& i = *inspector;
  const bool fresh = MayHaveChanged() && now >= i.look_again;
  bool looked = false;
  for (Client& c : i.clients) {
    if (!c.waiting) continue;
    const bool late = now >= c.waiting->deadline;
    if (!fresh && !late) continue;
    looked = true;
    const std::string answer = LookAt(c.waiting->wait, late);
    if (answer.empty()) continue;
    c.waiting.reset();
    c.connection.Send(answer);
    c.connection.Move();
    if (c.connection.HasLine()) intake_hints.ReportWaits();
  }
  if (!looked) return;
  i.changed = false;
  i.handled = main_event_queue.head;
  i.look_again = Now() + kLookPeriod;
}

// A client that has only closed its sending side still gets its answers.
bool IsOver(Client& c) {
  Connection& connection = c.connection;
  if (connection.too_long()) {
    connection.Send(Failure("the line is too long"));
    connection.HangUp();
    connection.Move();
  }
  return connection.over() || (connection.ended() && connection.idle() && !c.waiting && !c.typing);
}

// The loop wakes up when a look is due.
void SetTimer(double now) {
  Inspector& i = *inspector;
  double due = -1;
  auto by = [&due](double when) { due = due < 0 ? when : std::min(due, when); };
  for (const Client& c : i.clients) {
    if (!c.waiting) continue;
    by(c.waiting->deadline);
    if (MayHaveChanged()) by(i.look_again);
  }
  if (i.accept_again > now) by(i.accept_again);
  if (due < 0 && i.timer < 0) return;
  if (i.timer < 0) i.timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
  itimerspec when{};
  if (due >= 0) {
    when.it_value.tv_sec = time_t(due);
    when.it_value.tv_nsec = long((due - double(time_t(due))) * 1e9) + 1;
    if (when.it_value.tv_nsec > 999999999) when.it_value.tv_nsec = 999999999;
  }
  timerfd_settime(i.timer, TFD_TIMER_ABSTIME, &when, nullptr);
}

void Take() {
  const double now = Now();
  AcceptClients(now);
  for (Client& c : inspector->clients) c.connection.Move();
  LookAtWaits(now);
  ServeNext(now);
  inspector->clients.remove_if(IsOver);
  SetTimer(Now());
}

void Descriptors(PollList* list) {
  const Inspector& i = *inspector;
  if (Now() >= i.accept_again) list->push_back({i.socket.descriptor(), POLLIN, 0});
  if (i.timer >= 0) list->push_back({i.timer, POLLIN, 0});
  for (const Client& c : i.clients)
    list->push_back({c.connection.descriptor(), c.connection.events(), 0});
}

constexpr WaitSource kSource = {Descriptors, Take};

// One that the program does not catch ends it, and the socket with it.
constexpr int kEndingSignals[] = {SIGINT, SIGHUP};

void OnEndingSignal(int signal) {
  if (inspector && getpid() == inspector->process) inspector->socket.Close();
  raise(signal);
}

void CatchEndingSignals() {
  for (int s : kEndingSignals) {
    struct sigaction action {};
    if (sigaction(s, nullptr, &action) || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = OnEndingSignal;
    action.sa_flags = SA_RESETHAND;
    sigaction(s, &action, nullptr);
  }
}

void LeaveEndingSignals() {
  for (int s : kEndingSignals) {
    struct sigaction action {};
    if (!sigaction(s, nullptr, &action) && action.sa_handler == OnEndingSignal) signal(s, SIG_DFL);
  }
}

void CloseAtExit() {
  static bool asked = false;
  if (!asked)
    atexit([] {
      if (inspector && getpid() == inspector->process) inspector->socket.Close();
    });
  asked = true;
}

}  // namespace

void InitInspect(const char* program) {
  const char* path = getenv("XW_INSPECT");
  if (!path || !*path || inspector) return;
  inspector = new Inspector;
  inspector->process = getpid();
  if (std::string why = inspector->socket.Open(path); !why.empty()) {
    fprintf(stderr, "%s: %s: %s; nobody can inspect this program\n", program, path, why.c_str());
    FinishInspect();
    return;
  }
  CloseAtExit();
  CatchEndingSignals();
  AddWaitSource(kSource);
}

void FinishInspect() {
  if (!inspector) return;
  LeaveEndingSignals();
  RemoveWaitSource(kSource);
  if (inspector->listens) RemoveTreeListener(&inspector->listener);
  if (inspector->timer >= 0) close(inspector->timer);
  delete inspector;
  inspector = nullptr;
}

}  // namespace platform
