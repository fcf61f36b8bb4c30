// What the window's side and the worker share: everything under one mutex.
#pragma once
#include <pthread.h>

#include <algorithm>
#include <deque>

#include "app/server/server.h"
#include "os/final_path.h"
#include "os/os.h"

namespace console {

int64_t MonotonicMs();

struct Server::Shared {
  Shared();
  ~Shared();

  pthread_mutex_t mutex;
  pthread_cond_t wake;                   // on the monotonic clock
  ServerState state;                     // retry_ms and quiet_s are filled in when it is taken up
  int64_t change = 1;                    // counts what was published
  int64_t retry_at = 0, call_began = 0;  // MonotonicMs; 0: none
  std::deque<PendingChange> changes;     // not yet begun
  bool stop = false, refresh = false;
  int next_number = 1;
  int cancelled = 0;  // the transfer that is to be broken off
  // What ends the worker's waiting when it is to stop: its connections are shut down, and this
  // becomes readable for the one that is just being made.
  int open[2] = {-1, -1};
  os::Handle stopped;
  std::string host;
  // Each state that was published and not taken up: for a replay, which may have to take up one
  // that the next has replaced.
  bool keep = false;
  std::deque<ServerState> kept;

  // After a change of the state, under the mutex.
  void Published() {
    ++change;
    if (keep) kept.push_back(state);
    if (keep) state.notices.clear();
  }
};

// Owns the mutex as long as it lives.
class Locked {
 public:
  explicit Locked(Server::Shared* shared);
  ~Locked();
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  Server::Shared* shared_;
};

// The worker: until it is to stop.
void RunWorker(Server::Shared* shared);

}  // namespace console
