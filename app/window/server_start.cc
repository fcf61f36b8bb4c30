// The offer to start a print server on this computer, when the one here does not answer.
#include <mutex>

#include "app/window/console.h"
#include "app/work/local_server.h"

namespace console {

// The window and the task share it.
struct ServerStart {
  std::mutex lock;             // of `console` while the task runs
  Console* console = nullptr;  // null once nobody waits for it
  LocalServerResult result;
};

namespace {

constexpr char kStarting[] = "server start";  // of what takes a while

using Shared = std::shared_ptr<ServerStart>;

void Take(void* data, int taken) {
  const std::unique_ptr<Shared> start(static_cast<Shared*>(data));
  Console* c = (*start)->console;
  if (!taken || !c) return;
  c->server_start.reset();
  c->status.Progress(kStarting, "");
  Tell(c, (*start)->result.started, (*start)->result.message);
  c->server.Refresh();
  DrawConsole(c);
}

void Run(const Shared& start, const std::string& server) {
  start->result = StartLocalServer(server);
  const std::lock_guard<std::mutex> guard(start->lock);
  if (start->console) XwPost("server-start", "", Take, new Shared(start));
}

}  // namespace

bool IsServerAway(const Console* c) {
  return c->banner.shown;
}

void RetryServer(Console* c) {
  c->server.Refresh();
}

std::string WhyNotStartServer(const Console* c) {
  if (c->server_start) return "A print server is being started";
  // What refuses is a server already.
  if (c->state.link == Link::kReady || c->state.link == Link::kRefused)
    return "A print server runs there already";
  if (!IsLocalhost(c->server.host())) return "Only the server of localhost is started from here";
  // While it is tried once more the button stays.
  if (!c->banner.shown) return "It is not known yet whether a print server runs here";
  return c->state.nothing_listens ? "" : "Something answers at the server's address already";
}

bool CanStartServer(const Console* c) {
  return WhyNotStartServer(c).empty();
}

void StartServerByItself(Console* c) {
  if (c->state.link == Link::kReady) c->start_tried = false;
  if (!c->remembered.preferences.start_local_server || c->start_tried || !CanStartServer(c)) return;
  c->start_tried = true;
  StartServer(c);
}

void StartServer(Console* c) {
  const auto start = std::make_shared<ServerStart>();
  start->console = c;
  // Where only its usual address is wanted, its configuration may name others.
  const std::string host = c->server.host(), server = host == "localhost" ? "" : host;
  BackgroundTask task([start, server] { Run(start, server); });
  if (task.failed()) return Tell(c, false, "A print server cannot be started now");
  c->server_start = start;
  c->status.Progress(kStarting, "Starting a print server…");
  c->damage |= kStatusPane;
}

void ForgetServerStart(Console* c) {
  if (!c->server_start) return;
  const std::lock_guard<std::mutex> guard(c->server_start->lock);
  c->server_start->console = nullptr;
}

}  // namespace console
