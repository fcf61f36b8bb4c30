// A print server whose answers depend on nothing but what it was asked: ids are counted, times are
// none, a job waits until it is held or removed. It runs in a process of its own.
//
// The name of a document can ask for trouble: "breaks..." is accepted, but the connection ends
// before the server has said so; "alone..." is accepted, and all other connections end; "loses..."
// is changed, but the connection ends before the answer; "waits..." is changed when the test says
// so. Copies count up with each change.
#pragma once
#include <sys/types.h>

#include <string>

namespace scripted {

class Server {
 public:
  // Listens on that loopback address. Without `listening` nobody answers there before Listen.
  explicit Server(const std::string& address, bool listening = true);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  void Listen();
  // One change of what waits is made.
  void GoOn();

 private:
  int listener_ = -1;
  int gate_[2] = {-1, -1};
  pid_t pid_ = 0;
};

}  // namespace scripted
