// Replies of a print server: the first byte chooses the command, the second the size of the buffer,
// the rest is what the server says before it closes. Results and buffers must keep their bounds.
#include <stdint.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <iterator>
#include <string>

#include "printserver/nc.h"

namespace {

constexpr int kGuard = 16;

struct Call {
  int fd;
  char* buf;
  uint32_t room;
  uint8_t status;
};

const std::string kField(128, 'f');

int32_t Bounded(int32_t result, uint32_t room) {
  if (result < -1 || (result > 0 && static_cast<uint32_t>(result) > room)) abort();
  return result;
}

int32_t IsStatus(int32_t result) {
  if (result < -1 || result > 255) abort();
  return result;
}

int32_t Queue(Call* c) {
  return Bounded(NC_GetPrintQueueN(c->fd, c->buf, c->room), c->room);
}
int32_t Printers(Call* c) {
  return Bounded(NC_GetPrinterListN(c->fd, &c->status, c->buf, c->room), c->room);
}
int32_t Scanners(Call* c) {
  return Bounded(NC_GetScannerListN(c->fd, &c->status, c->buf, c->room), c->room);
}
int32_t Profiles(Call* c) {
  return Bounded(NC_GetProfileListN(c->fd, kField.data(), c->buf, c->room), c->room / 48);
}
int32_t Print(Call* c) {
  return IsStatus(NC_WritePrintRequest(c->fd, kField.data(), kField.data(), 100));
}
int32_t Stream(Call* c) {
  return IsStatus(NC_WritePrintRequestN(c->fd, kField.data(), "hold=1", -1, 0, nullptr, nullptr));
}
int32_t NewId(Call* c) {
  return c->room < NC_ID_SIZE ? 0 : Bounded(NC_CreateRequestID(c->fd, c->buf), 1);
}
int32_t Remove(Call* c) {
  return IsStatus(NC_RemovePrintRequest(c->fd, kField.data()));
}
int32_t RemoveFile(Call* c) {
  return IsStatus(NC_RemoveFile(c->fd, "/a"));
}
int32_t Gamut(Call* c) {
  return Bounded(NC_CopyGamutFileN(c->fd, kField.data(), kField.data(), "/dev/null", c->room), 1);
}
int32_t GamutPlain(Call* c) {
  return Bounded(NC_CopyGamutFile(c->fd, kField.data(), kField.data(), "/dev/null"), 1);
}

using Command = int32_t (*)(Call*);

constexpr Command kCommands[] = {Queue, Printers, Scanners,   Profiles, Print,     Stream,
                                 NewId, Remove,   RemoveFile, Gamut,    GamutPlain};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > 60000) return 0;
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return 0;
  std::string buf(data[1] + kGuard, '#');
  const bool sent = send(ends[1], data + 2, size - 2, 0) == static_cast<ssize_t>(size - 2);
  shutdown(ends[1], SHUT_WR);
  Call call = {ends[0], buf.data(), data[1], 0};
  if (sent) kCommands[data[0] % std::size(kCommands)](&call);
  if (buf.substr(data[1]) != std::string(kGuard, '#')) abort();
  close(ends[0]);
  close(ends[1]);
  return 0;
}
