#include "platform/desktop/requests.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <vector>

#include "platform/input/record.h"
#include "platform/input/translate.h"

namespace platform {
namespace {

std::vector<RequestSource>& Sources() {
  static auto* sources = new std::vector<RequestSource>;
  return *sources;
}

// A signal writes one byte into a pipe that every wait watches.
int signal_pipe[2] = {-1, -1};
volatile sig_atomic_t signal_pending = 0;  // spares a read when nothing has come

void OnSignal(int) {
  int saved = errno;
  signal_pending = 1;
  char byte = 1;
  [[maybe_unused]] ssize_t written = write(signal_pipe[1], &byte, 1);
  errno = saved;
}

int SignalDescriptor() {
  return signal_pipe[0];
}

bool NextSignal(RawEvent* out) {
  if (!signal_pending) return false;
  signal_pending = 0;
  char bytes[64];
  if (read(signal_pipe[0], bytes, sizeof bytes) <= 0) return false;
  out->type = RawEvent::kQuit;
  return true;
}

}  // namespace

void AddRequestSource(const RequestSource& source) {
  Sources().push_back(source);
}

void InstallSignalSource() {
  if (signal_pipe[0] >= 0 || pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);
  AddRequestSource({SignalDescriptor, NextSignal});
}

int DesktopDescriptors(pollfd* out, int max) {
  int n = 0;
  for (const RequestSource& s : Sources()) {
    int fd = s.file_descriptor();
    if (fd >= 0 && n < max) out[n++] = {fd, s.events ? s.events() : short(POLLIN), 0};
  }
  return n;
}

void TakeDesktopRequests() {
  for (size_t i = 0; i < Sources().size(); ++i) {
    RawEvent raw;
    while (Sources()[i].next(&raw)) {
      TakeReport(raw);
      raw = RawEvent();
    }
  }
}

}  // namespace platform
