#include "printserver/wire.h"

#include <errno.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "printserver/nc.h"

namespace nc {

namespace {

constexpr int64_t kNanosecondsPerMs = 1000000;

int64_t Now() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000000000LL + now.tv_nsec;
}

// After a call on the socket gave nothing: whether to try again.
bool MayRetry(int fd, short events, Deadline deadline) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN || deadline.none()) return false;
  const int ready = WaitFor(fd, events, deadline);
  if (ready == 0) errno = ETIMEDOUT;
  return ready > 0;
}

// As send: how many bytes went before it ended, and the result that ended it.
ssize_t SendSome(int fd, const char* data, size_t n, Deadline deadline, size_t* done) {
  const int flags = MSG_NOSIGNAL | (deadline.none() ? 0 : MSG_DONTWAIT);
  while (*done < n) {
    const ssize_t sent = send(fd, data + *done, n - *done, flags);
    if (sent > 0) {
      *done += sent;
    } else if (sent == 0) {
      return 0;
    } else if (deadline.none() || !MayRetry(fd, POLLOUT, deadline)) {
      return -1;
    }
  }
  return 1;
}

}  // namespace

Deadline Deadline::In(int32_t ms, int stop) {
  return Deadline(Now() + ms * kNanosecondsPerMs, stop);
}

bool Deadline::Stopped() const {
  pollfd one = {stop_, POLLIN, 0};
  return stop_ >= 0 && poll(&one, 1, 0) > 0;
}

Deadline Deadline::Of(int fd) {
  const int32_t ms = NC_GetDeadline(fd);
  return ms > 0 ? In(ms) : None();
}

int Deadline::Left() const {
  if (none()) return -1;
  const int64_t left = end_ - Now();
  return left <= 0 ? 0 : static_cast<int>((left + kNanosecondsPerMs - 1) / kNanosecondsPerMs);
}

int WaitFor(int fd, short events, Deadline deadline) {
  for (;;) {
    // A descriptor below 0 is passed over.
    pollfd both[] = {{fd, events, 0}, {deadline.stop(), POLLIN, 0}};
    const int ready = poll(both, 2, deadline.Left());
    if (ready > 0 && both[1].revents) return Refuse(ECANCELED);
    if (ready >= 0 || errno != EINTR) return ready;
  }
}

bool SendAll(int fd, const void* data, size_t n, Deadline deadline) {
  size_t done = 0;
  return SendSome(fd, static_cast<const char*>(data), n, deadline, &done) > 0;
}

bool ReadAll(int fd, void* data, size_t n, Deadline deadline) {
  auto* to = static_cast<char*>(data);
  const int flags = deadline.none() ? 0 : MSG_DONTWAIT;
  for (size_t done = 0; done < n;) {
    const ssize_t got = recv(fd, to + done, n - done, flags);
    if (got > 0) {
      done += got;
    } else if (got == 0) {
      errno = ECONNRESET;
      return false;
    } else if (!MayRetry(fd, POLLIN, deadline)) {
      return false;
    }
  }
  return true;
}

bool SendRequest(int fd, uint8_t code, const Field* fields, size_t count, Deadline deadline) {
  uint8_t request[1024] = {'K', 'R', 'V', code};
  size_t size = 4;
  for (size_t i = 0; i < count; ++i) {
    if (fields[i].size > sizeof request - size) return Refuse(EMSGSIZE), false;
    memcpy(request + size, fields[i].data, fields[i].size);
    size += fields[i].size;
  }
  return SendAll(fd, request, size, deadline);
}

void PutInteger(uint8_t* to, uint32_t value) {
  for (int i = 0; i < 4; ++i) to[i] = static_cast<uint8_t>(value >> (8 * i));
}

bool ReadInteger(int fd, uint32_t* value, Deadline deadline) {
  uint8_t bytes[4];
  if (!ReadAll(fd, bytes, sizeof bytes, deadline)) return false;
  *value = 0;
  for (int i = 0; i < 4; ++i) *value |= static_cast<uint32_t>(bytes[i]) << (8 * i);
  return true;
}

int32_t ReadStatus(int fd, Deadline deadline) {
  uint8_t status;
  return ReadAll(fd, &status, 1, deadline) ? status : -1;
}

int32_t Refuse(int error) {
  errno = error;
  return -1;
}

}  // namespace nc

extern "C" {

int NC_SetDeadline(int fd, int32_t ms) {
  if (ms < 0) return nc::Refuse(EINVAL);
  const timeval limit = {ms / 1000, (ms % 1000) * 1000};
  if (setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) != 0) return -1;
  return setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

int32_t NC_GetDeadline(int fd) {
  timeval limit = {};
  socklen_t size = sizeof limit;
  if (getsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, &size) != 0) return 0;
  const int64_t ms = limit.tv_sec * 1000LL + (limit.tv_usec + 999) / 1000;
  return static_cast<int32_t>(std::min<int64_t>(ms, INT32_MAX));
}

int32_t NC_Write(int fd, const void* buf, int32_t n) {
  if (!buf || n < 0) return nc::Refuse(EINVAL);
  size_t done = 0;
  const ssize_t last =
      nc::SendSome(fd, static_cast<const char*>(buf), n, nc::Deadline::Of(fd), &done);
  if (n == 0) return 0;
  return last > 0 ? n : static_cast<int32_t>(last);
}

int32_t NC_Read(int fd, void* buf, int32_t n) {
  if (!buf || n < 1) return nc::Refuse(EINVAL);
  return nc::ReadAll(fd, buf, n, nc::Deadline::Of(fd)) ? n : -1;
}

int NC_Disconnect(int fd) {
  return close(fd);
}

int32_t NC_SendCommand(int fd, uint8_t code) {
  const uint8_t header[4] = {'K', 'R', 'V', code};
  return NC_Write(fd, header, sizeof header);
}

}  // extern "C"
