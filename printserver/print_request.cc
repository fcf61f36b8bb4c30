// Print requests: from memory, and in pieces from a ticket and a document.
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "printserver/nc.h"
#include "printserver/wire.h"

namespace {

constexpr uint8_t kWritePrintRequest = 3;
constexpr size_t kPiece = 256 * 1024;
constexpr int kSliceMs = 100;

using nc::Deadline;

void PutHead(uint8_t (&head)[24], const void* id, uint32_t len) {
  memcpy(head, "KRV", 3);
  head[3] = kWritePrintRequest;
  memcpy(head + 4, id, NC_ID_SIZE);
  nc::PutInteger(head + 20, len);
}

// One request on its way. The steps below return 0 to go on, else the code that ends it.
struct Transfer {
  int fd;
  int64_t total;
  NC_ProgressFunc progress;
  void* context;
  int64_t sent = 0;
  Deadline deadline = Deadline::None();

  int Report() { return progress && progress(context, sent, total) ? NC_CANCELLED : 0; }

  int Advance(int64_t n) {
    sent += n;
    deadline = Deadline::Of(fd);
    return Report();
  }

  // Wait a moment for a descriptor; the caller tries again.
  int Wait(int on, short events) {
    const int left = deadline.Left();
    if (left == 0) {
      errno = ETIMEDOUT;
      return NC_ERROR;
    }
    pollfd one = {on, events, 0};
    poll(&one, 1, left < 0 ? kSliceMs : std::min(left, kSliceMs));
    return Report();
  }
};

// Send bytes of memory; those of the head do not count as progress.
int SendBytes(Transfer* transfer, const void* data, size_t n, bool counts) {
  const auto* from = static_cast<const char*>(data);
  while (n > 0) {
    const ssize_t sent = send(transfer->fd, from, std::min(n, kPiece), MSG_DONTWAIT | MSG_NOSIGNAL);
    int code = 0;
    if (sent > 0) {
      from += sent;
      n -= sent;
      code = transfer->Advance(counts ? sent : 0);
    } else if (sent < 0 && errno == EAGAIN) {
      code = transfer->Wait(transfer->fd, POLLOUT);
    } else if (sent == 0 || errno != EINTR) {
      return NC_ERROR;
    }
    if (code != 0) return code;
  }
  return 0;
}

// The document through a buffer, for descriptors that the system cannot send by itself.
int SendThroughBuffer(Transfer* transfer, int document, int64_t left) {
  std::vector<char> piece(std::min<int64_t>(left, kPiece));
  while (left > 0) {
    pollfd one = {document, POLLIN, 0};
    if (poll(&one, 1, 0) <= 0) {
      if (const int code = transfer->Wait(document, POLLIN)) return code;
      continue;
    }
    const ssize_t got = read(document, piece.data(), std::min<int64_t>(left, piece.size()));
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (got <= 0) return NC_UNREADABLE;
    if (const int code = SendBytes(transfer, piece.data(), got, true)) return code;
    left -= got;
  }
  return 0;
}

int SendDocument(Transfer* transfer, int document, int64_t left) {
  while (left > 0) {
    const ssize_t sent = sendfile(transfer->fd, document, nullptr, std::min<int64_t>(left, kPiece));
    int code = 0;
    if (sent > 0) {
      left -= sent;
      code = transfer->Advance(sent);
    } else if (sent == 0) {
      return NC_UNREADABLE;
    } else if (errno == EAGAIN) {
      code = transfer->Wait(transfer->fd, POLLOUT);
    } else if (errno == EINVAL || errno == ENOSYS || errno == ESPIPE) {
      return SendThroughBuffer(transfer, document, left);
    } else if (errno == EBADF || errno == EIO || errno == EISDIR) {
      return NC_UNREADABLE;
    } else if (errno != EINTR) {
      return NC_ERROR;
    }
    if (code != 0) return code;
  }
  return 0;
}

int32_t AwaitStatus(Transfer* transfer) {
  transfer->deadline = Deadline::Of(transfer->fd);
  for (;;) {
    uint8_t status;
    const ssize_t got = recv(transfer->fd, &status, 1, MSG_DONTWAIT);
    if (got == 1) return status;
    if (got == 0) return nc::Refuse(ECONNRESET);
    if (errno == EINTR) continue;
    if (errno != EAGAIN) return NC_ERROR;
    if (const int code = transfer->Wait(transfer->fd, POLLIN)) return code;
  }
}

// Lines, none of them empty: an empty one would end the ticket early.
bool IsTicket(const char* ticket) {
  return ticket && ticket[0] != '\n' && !strstr(ticket, "\n\n");
}

}  // namespace

extern "C" {

int32_t NC_WritePrintRequest(int fd, const void* id, const void* data, uint32_t len) {
  if (!id || (!data && len > 0)) return nc::Refuse(EINVAL);
  if (len > INT32_MAX) return nc::Refuse(EMSGSIZE);
  const Deadline deadline = Deadline::Of(fd);
  uint8_t head[24];
  PutHead(head, id, len);
  if (!nc::SendAll(fd, head, sizeof head, deadline)) return -1;
  if (len > 0 && !nc::SendAll(fd, data, len, deadline)) return -1;
  return nc::ReadStatus(fd, deadline);
}

int32_t NC_WritePrintRequestN(int fd, const void* id, const char* ticket, int document,
                              int64_t size, NC_ProgressFunc progress, void* context) {
  if (!id || !IsTicket(ticket) || size < 0) return nc::Refuse(EINVAL), NC_BAD_REQUEST;
  std::string text = ticket;
  if (!text.empty() && text.back() != '\n') text += '\n';
  text += '\n';
  if (text.size() > INT32_MAX || size > static_cast<int64_t>(INT32_MAX - text.size())) {
    return nc::Refuse(EMSGSIZE), NC_BAD_REQUEST;
  }
  const int flags = fcntl(fd, F_GETFL);
  if (flags < 0 || fcntl(fd, F_SETFL, flags | O_NONBLOCK) != 0) return NC_ERROR;
  signal(SIGPIPE, SIG_IGN);
  Transfer transfer = {fd, static_cast<int64_t>(text.size()) + size, progress, context};
  transfer.deadline = Deadline::Of(fd);
  uint8_t head[24];
  PutHead(head, id, static_cast<uint32_t>(transfer.total));
  int32_t result = SendBytes(&transfer, head, sizeof head, false);
  if (result == 0) result = SendBytes(&transfer, text.data(), text.size(), true);
  if (result == 0) result = SendDocument(&transfer, document, size);
  if (result == 0) result = AwaitStatus(&transfer);
  const int error = errno;
  fcntl(fd, F_SETFL, flags);
  errno = error;
  return result;
}

}  // extern "C"
