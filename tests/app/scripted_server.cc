#include "tests/app/scripted_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include "printserver/nc.h"
#include "printserver/records.h"

namespace scripted {
namespace {

struct Job {
  std::string id, document, printer;
  bool held = false;
  size_t size = 0;
  int changes = 0;
};

// All connections share them; one answers at a time.
std::mutex mutex;
std::vector<Job> jobs;
std::vector<int> connections;
int ids = 0, gate = -1;

bool Put(int fd, const std::string& bytes) {
  return NC_Write(fd, bytes.data(), int32_t(bytes.size())) == int32_t(bytes.size());
}

std::string Length(size_t n) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += char(n >> (8 * i));
  return bytes;
}

std::string Value(const std::string& ticket, const std::string& key) {
  const size_t at = ("\n" + ticket).find("\n" + key + "=");
  if (at == std::string::npos) return "";
  const size_t from = at + key.size() + 1;
  return ticket.substr(from, ticket.find('\n', from) - from);
}

std::string Queue() {
  std::string list;
  for (const Job& job : jobs) {
    char id[33];
    NC_FormatId(reinterpret_cast<const uint8_t*>(job.id.data()), id);
    list += std::string("id=") + id + "\nstate=" + (job.held ? "held" : "waiting") +
            "\ndocument=" + job.document + "\nowner=mia\nprinter=" + job.printer +
            "\nsize=" + std::to_string(job.size) + "\ncopies=" + std::to_string(job.changes + 1) +
            "\n\n";
  }
  return list;
}

// False: the connection ends before the answer.
bool Write(const std::string& id, const std::string& request) {
  const size_t end = request.find("\n\n");
  const std::string ticket = request.substr(0, end);
  for (Job& job : jobs) {
    if (job.id != id) continue;
    char one;
    if (job.document.rfind("waits", 0) == 0 && read(gate, &one, 1) != 1) return false;
    job.held = Value(ticket, "hold") == "1";
    ++job.changes;
    return job.document.rfind("loses", 0) != 0;
  }
  if (end == std::string::npos || end + 2 >= request.size()) return true;
  jobs.push_back({id, Value(ticket, "document"), Value(ticket, "printer"),
                  Value(ticket, "hold") == "1", request.size() - end - 2});
  return true;
}

// What the newest job's name asks for. False: the connection ends.
bool AfterArrival(int fd) {
  const std::string& name = jobs.back().document;
  if (name.rfind("breaks", 0) == 0) return false;
  if (name.rfind("alone", 0) != 0) return true;
  for (int other : connections)
    if (other != fd) shutdown(other, SHUT_RDWR);
  return true;
}

bool Answer(int fd) {
  char head[4];
  if (NC_Read(fd, head, 4) != 4 || memcmp(head, "KRV", 3) != 0) return false;
  std::string id(16, 0), request;
  if (head[3] == 11) request.resize(NC_PROFILE_KEY);
  if (head[3] == 3 || head[3] == 6)
    if (NC_Read(fd, id.data(), 16) != 16) return false;
  if (head[3] == 3) {
    uint8_t n[4];
    if (NC_Read(fd, n, 4) != 4) return false;
    request.resize(size_t(n[0] | n[1] << 8 | n[2] << 16 | n[3] << 24));
    if (!request.empty() && NC_Read(fd, request.data(), int32_t(request.size())) < 0) return false;
  }
  const std::lock_guard<std::mutex> lock(mutex);
  switch (head[3]) {
    case 1:
      return Put(fd, Length(Queue().size()) + Queue());
    case 2: {
      const std::string list = "name=Proof printer\ndefault=1\n\nname=Office\n\n";
      return Put(fd, "\1" + Length(list.size()) + list);
    }
    case 3: {
      const size_t before = jobs.size();
      if (!Write(id, request)) return false;
      return (jobs.size() == before || AfterArrival(fd)) && Put(fd, "\1");
    }
    case 11:  // profiles: there are none
      return NC_Read(fd, request.data(), NC_PROFILE_KEY) == NC_PROFILE_KEY && Put(fd, Length(0));
    case 5: {
      std::string fresh(16, 0);
      fresh[0] = char(++ids);
      return Put(fd, fresh);
    }
    case 6:
      std::erase_if(jobs, [&](const Job& job) { return job.id == id; });
      return Put(fd, "\1");
    default:
      return false;
  }
}

void Serve(int fd) {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    connections.push_back(fd);
  }
  char greeting[4];
  if (NC_Read(fd, greeting, 4) == 4 && Put(fd, "\1"))
    while (Answer(fd)) {
    }
  const std::lock_guard<std::mutex> lock(mutex);
  std::erase(connections, fd);
  close(fd);
}

[[noreturn]] void Run(int listener) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  signal(SIGPIPE, SIG_IGN);
  for (;;) {
    const int fd = accept(listener, nullptr, nullptr);
    if (fd >= 0)
      std::thread(Serve, fd).detach();
    else
      usleep(1000);  // it does not listen yet
  }
}

}  // namespace

Server::Server(const std::string& address, bool listening)
    : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int on = 1;
  setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in at{};
  at.sin_family = AF_INET;
  at.sin_port = htons(NC_PORT);
  inet_pton(AF_INET, address.c_str(), &at.sin_addr);
  EXPECT_EQ(bind(listener_, reinterpret_cast<const sockaddr*>(&at), sizeof at), 0);
  if (listening) Listen();
  EXPECT_EQ(pipe(gate_), 0);
  gate = gate_[0];
  pid_ = fork();
  if (pid_ == 0) Run(listener_);
}

void Server::Listen() {
  EXPECT_EQ(listen(listener_, 16), 0);
}

void Server::GoOn() {
  EXPECT_EQ(write(gate_[1], "x", 1), 1);
}

Server::~Server() {
  for (const int fd : {listener_, gate_[0], gate_[1]}) close(fd);
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

}  // namespace scripted
