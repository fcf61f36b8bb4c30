// Opening and greeting connections.
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <charconv>
#include <string>

#include "os/final_path.h"
#include "printserver/nc.h"
#include "printserver/resolve.h"
#include "printserver/wire.h"

namespace {

constexpr uint8_t kGreeting[4] = {4, 3, 2, 1};
constexpr int32_t kUsualDeadline = 10000;

using nc::Deadline;

// A server's name and port. What is null or "" is left to those who look it up.
struct Place {
  std::string host;
  uint16_t port = NC_PORT;
};

// Take "HOST:PORT" apart; the host alone has the usual port. False when the port is none.
bool TakePort(const char* text, Place* place) {
  place->host = text ? text : "";
  const size_t colon = place->host.rfind(':');
  if (colon == std::string::npos) return true;
  const char* end = place->host.data() + place->host.size();
  const auto [last, error] = std::from_chars(place->host.data() + colon + 1, end, place->port);
  place->host.resize(colon);
  return error == std::errc() && last == end && place->port != 0;
}

// Open a socket and begin to connect it. 1: connected; 0: still connecting; below 0: the code.
int Begin(const Place& place, bool wait, Deadline deadline, os::Handle* socket_out) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(place.port);
  if (!nc::Resolve(place.host.c_str(), &address.sin_addr, deadline)) return NC_NO_HOST;
  os::Handle made(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | (wait ? 0 : SOCK_NONBLOCK), 0));
  if (!made) return NC_NO_SOCKET;
  // Requests are written whole: nothing is won by holding back their last bytes.
  const int on = 1;
  setsockopt(made.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  signal(SIGPIPE, SIG_IGN);
  const int result = connect(made.get(), reinterpret_cast<sockaddr*>(&address), sizeof address);
  if (result != 0 && errno != EINPROGRESS) return NC_NO_SERVER;
  *socket_out = std::move(made);
  return result == 0;
}

// Exchange the greeting: 0, or the code.
int Greet(int fd, Deadline deadline) {
  uint8_t accepted = 0;
  if (!nc::SendAll(fd, kGreeting, sizeof kGreeting, deadline)) return NC_NO_SERVER;
  if (!nc::ReadAll(fd, &accepted, 1, deadline)) return NC_NO_SERVER;
  return accepted ? 0 : NC_REFUSED;
}

bool FinishConnect(int fd, Deadline deadline) {
  const int ready = nc::WaitFor(fd, POLLOUT, deadline);
  if (ready == 0) errno = ETIMEDOUT;
  if (ready <= 0) return false;
  int error = 0;
  socklen_t size = sizeof error;
  if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0) return false;
  if (error) errno = error;
  return error == 0;
}

// A greeted connection with the deadline `ms`, made within `deadline`, or the code.
int ConnectWithin(const Place& place, int32_t ms, Deadline deadline) {
  os::Handle fd;
  const int began = Begin(place, false, deadline, &fd);
  if (began < 0) return began;
  if (began == 0 && !FinishConnect(fd.get(), deadline)) return NC_NO_SERVER;
  const int greeted = Greet(fd.get(), deadline);
  if (greeted < 0) return greeted;
  const int flags = fcntl(fd.get(), F_GETFL);
  if (flags < 0 || fcntl(fd.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) return NC_NO_SOCKET;
  if (NC_SetDeadline(fd.get(), ms) != 0) return NC_NO_SOCKET;
  return fd.Release();
}

bool IsWritable(int fd) {
  pollfd one = {fd, POLLOUT, 0};
  return poll(&one, 1, 0) > 0 && !(one.revents & POLLNVAL);
}

// What NC_Ready does; `connect_whole` makes the greeted connection, `begin` a fresh attempt.
template <typename Connect, typename Start>
int Ready(int* fd, Connect connect_whole, Start begin) {
  if (!fd) return 0;
  if (*fd >= 0) {
    if (!IsWritable(*fd)) return 0;
    close(*fd);
    *fd = connect_whole();
    if (*fd >= 0) return 1;
  }
  *fd = begin();
  return 0;
}

}  // namespace

extern "C" {

int NC_GetHostName(char* name) {
  return name ? gethostname(name, 64) : nc::Refuse(EINVAL);
}

void NC_GetHostAddr(char* dst) {
  if (dst) strcpy(dst, "127.0.0.1");
}

int NC_Connect(const char* host, int32_t blocking) {
  os::Handle fd;
  Place place;
  if (host) place.host = host;
  const int began = Begin(place, blocking != 0, Deadline::None(), &fd);
  if (began < 0) return began;
  const int greeted = blocking ? Greet(fd.get(), Deadline::None()) : 0;
  return greeted < 0 ? greeted : fd.Release();
}

int NC_ConnectN(const char* host, int32_t ms) {
  return NC_ConnectStopN(host, ms, -1);
}

int NC_ConnectStopN(const char* host, int32_t ms, int stop) {
  if (ms < 1) ms = kUsualDeadline;
  Place place;
  if (!TakePort(host, &place)) return nc::Refuse(EINVAL), NC_NO_HOST;
  const Deadline deadline = Deadline::In(ms, stop);
  const int fd = ConnectWithin(place, ms, deadline);
  return fd < 0 && deadline.Stopped() ? NC_CANCELLED : fd;
}

int NC_Ready(const char* host, int* fd) {
  return Ready(
      fd, [host] { return NC_Connect(host, 4); }, [host] { return NC_Connect(host, 0); });
}

int NC_ReadyN(const char* host, int* fd, int32_t ms) {
  if (ms < 1) ms = kUsualDeadline;
  const Deadline deadline = Deadline::In(ms);
  Place place;
  const bool good = TakePort(host, &place);
  const auto begin = [&] {
    os::Handle attempt;
    const int began = good ? Begin(place, false, deadline, &attempt) : NC_NO_HOST;
    return began < 0 ? began : attempt.Release();
  };
  return Ready(
      fd, [&] { return good ? ConnectWithin(place, ms, deadline) : NC_NO_HOST; }, begin);
}

}  // extern "C"
