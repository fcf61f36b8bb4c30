#include "platform/desktop/signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/events/raw_event.h"
#include "platform/events/sources.h"

namespace platform {
namespace {

// A signal writes one byte into a pipe that every wait watches.
struct Signals {
  int pipe[2] = {-1, -1};
  volatile sig_atomic_t pending = 0;  // spares a read when nothing has come
  struct sigaction before {};
};
Signals signals;

void OnSignal(int) {
  int saved = errno;
  char byte = 1;
  [[maybe_unused]] ssize_t written = write(signals.pipe[1], &byte, 1);
  // Behind the byte: another thread may run this while the main one takes it.
  signals.pending = 1;
  errno = saved;
}

void Descriptors(PollList* list) {
  list->push_back({signals.pipe[0], POLLIN, 0});
}

void Take() {
  if (!signals.pending) return;
  signals.pending = 0;
  char bytes[64];
  if (read(signals.pipe[0], bytes, sizeof bytes) <= 0) return;
  RawEvent raw;
  raw.type = RawEvent::kQuit;
  PostRawEvent(raw);
}

constexpr WaitSource kSource{Descriptors, Take};

}  // namespace

void InitSignals() {
  if (signals.pipe[0] >= 0 || pipe2(signals.pipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, &signals.before);
  AddWaitSource(kSource);
}

void FinishSignals() {
  if (signals.pipe[0] < 0) return;
  sigaction(SIGTERM, &signals.before, nullptr);
  RemoveWaitSource(kSource);
  close(signals.pipe[0]);
  close(signals.pipe[1]);
  signals = Signals{};
}

}  // namespace platform
