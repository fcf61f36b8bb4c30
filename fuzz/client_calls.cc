// Calls of the client, one after the other on one connection, against a scripted server whose
// answers come in pieces of any size with signals between them. A second reading of the protocol
// says what each call must send, give, and take of the answer. The input: how the answers are cut,
// then for each call what it is, the room of its buffer, and its answer.
#include <errno.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "fuzz/input.h"
#include "printserver/nc.h"

namespace {

constexpr size_t kGuard = 16;
const std::string kField(160, 'f');
const std::string kDocument(100, 'd');

std::string answer;  // what the client has not received yet
std::string cuts;
size_t next_cut = 0;

uint32_t IntegerAt(const std::string& text, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value |= uint32_t{static_cast<uint8_t>(text[at + i])} << 8 * i;
  return value;
}

std::string Header(char code) {
  return std::string("KRV") + code;
}

std::string Padded(const std::string& text, size_t size) {
  return text + std::string(size - text.size(), '\0');
}

struct Call {
  int fd;
  int document;
  char* buffer;
  uint32_t room;
};

// What is right: the result and how much of the answer is taken; below 0 that does not matter.
struct Right {
  int64_t result;
  size_t taken;
};

Right Bytes(const std::string& a, size_t head, uint64_t unit, uint32_t room) {
  if (a.size() < head + 4) return {-1, 0};
  const uint64_t count = IntegerAt(a, head);
  const uint64_t size = count * unit;
  if (size > room || size > INT32_MAX || a.size() - head - 4 < size) return {-1, 0};
  return {static_cast<int64_t>(count), head + 4 + size};
}
Right Listed(const std::string& a, uint32_t room) {
  return Bytes(a, 0, 1, room);
}
Right ListedAfterStatus(const std::string& a, uint32_t room) {
  if (!a.empty() && a[0] == 0) return {0, 1};
  return Bytes(a, 1, 1, room);
}
Right Profiles(const std::string& a, uint32_t room) {
  return Bytes(a, 0, 48, room);
}
Right Status(const std::string& a, uint32_t) {
  if (a.empty()) return {-1, 0};
  return {static_cast<uint8_t>(a[0]), 1};
}
Right Id(const std::string& a, uint32_t) {
  return a.size() < 16 ? Right{-1, 0} : Right{1, 16};
}
Right File(const std::string& a, uint32_t room) {
  const Right bytes = Bytes(a, 4, 1, room);
  return a.size() < 8 || bytes.result < 0 ? Right{-1, 0} : Right{0, bytes.taken};
}
Right Nothing(const std::string&, uint32_t) {
  return {1, 0};
}

struct Kind {
  int32_t (*run)(const Call& c);
  Right (*right)(const std::string& a, uint32_t room);
  std::string request;
};

const Kind kKinds[] = {
    {[](const Call& c) { return NC_GetPrintQueueN(c.fd, c.buffer, c.room); }, Listed, Header(1)},
    {[](const Call& c) { return NC_GetPrinterListN(c.fd, nullptr, c.buffer, c.room); },
     ListedAfterStatus, Header(2)},
    {[](const Call& c) { return NC_GetScannerListN(c.fd, nullptr, c.buffer, c.room); },
     ListedAfterStatus, Header(10)},
    {[](const Call& c) { return NC_GetProfileListN(c.fd, kField.data(), c.buffer, c.room); },
     Profiles, Header(11) + kField.substr(0, 80)},
    {[](const Call& c) { return NC_CreateRequestID(c.fd, c.buffer); }, Id, Header(5)},
    {[](const Call& c) { return NC_RemovePrintRequest(c.fd, kField.data()); }, Status,
     Header(6) + kField.substr(0, 16)},
    {[](const Call& c) { return NC_RemoveFile(c.fd, "/a"); }, Status,
     Header(7) + Padded("/a", 512)},
    {[](const Call& c) { return NC_WritePrintRequest(c.fd, kField.data(), kDocument.data(), 100); },
     Status, Header(3) + kField.substr(0, 16) + std::string("d\0\0\0", 4) + kDocument},
    {[](const Call& c) {
       lseek(c.document, 0, SEEK_SET);
       return NC_WritePrintRequestN(c.fd, kField.data(), "a=b", c.document, 100, nullptr, nullptr);
     },
     Status, Header(3) + kField.substr(0, 16) + std::string("i\0\0\0", 4) + "a=b\n\n" + kDocument},
    {[](const Call& c) {
       return NC_CopyGamutFileN(c.fd, kField.data(), kField.data(), "/dev/null", c.room);
     },
     File, Header(4) + kField.substr(0, 140)},
    {[](const Call& c) { return NC_StartLayoutServer(c.fd); }, Nothing, Header(8)},
    {[](const Call& c) { return NC_StartScanServer(c.fd, "s", "t"); }, Nothing,
     Header(9) + Padded("s", 80) + Padded("t", 80)},
};

// Make one call and compare; false when the connection is not good any more.
bool CallOnce(const Call& call, const Kind& kind, int server) {
  const std::string before = answer;
  std::string buffer(std::max<size_t>(call.room, 16) + kGuard, '#');
  Call mine = call;
  mine.buffer = buffer.data();
  const int32_t result = kind.run(mine);
  const Right right = kind.right(before, call.room);
  if (right.result < 0 ? result != -1 : result != right.result) abort();
  if (buffer.substr(buffer.size() - kGuard) != std::string(kGuard, '#')) abort();
  char request[4096];
  const ssize_t n = recv(server, request, sizeof request, MSG_DONTWAIT);
  if (n < 0 || std::string(request, static_cast<size_t>(n)) != kind.request) abort();
  if (result >= 0 && before.size() - answer.size() != right.taken) abort();
  return result >= 0;
}

int DocumentFile() {
  const int fd = memfd_create("document", MFD_CLOEXEC);
  if (fd < 0 || write(fd, kDocument.data(), kDocument.size()) != 100) abort();
  return fd;
}

}  // namespace

// What the client receives. The other end is the target's own.
int client_end = -1;
extern "C" ssize_t __real_recv(int fd, void* data, size_t size, int flags);
extern "C" ssize_t __wrap_recv(int fd, void* data, size_t size, int flags) {
  if (fd != client_end) return __real_recv(fd, data, size, flags);
  const uint8_t cut = cuts.empty() ? 0xFE : static_cast<uint8_t>(cuts[next_cut++ % cuts.size()]);
  // At every second cut at most, or it would never end.
  if (cut == 0xFF && next_cut % 2 == 0) {
    errno = EINTR;
    return -1;
  }
  const size_t n = std::min({size, answer.size(), size_t{cut} + 1});
  answer.copy(static_cast<char*>(data), n);
  answer.erase(0, n);
  return static_cast<ssize_t>(n);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int document = DocumentFile();
  if (size > 16384) return 0;
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return 0;
  client_end = ends[0];
  Input input(data, size);
  if (input.Byte() & 1) NC_SetDeadline(ends[0], 20000);
  cuts = input.Text(16);
  next_cut = 0;
  answer.clear();
  for (int calls = 0; !input.done() && calls < 40; ++calls) {
    const Kind& kind = kKinds[input.Byte() % std::size(kKinds)];
    const uint32_t room = input.Byte() * 4;
    answer += input.Text(1024);
    if (!CallOnce({ends[0], document, nullptr, room}, kind, ends[1])) answer.clear();
  }
  close(ends[0]);
  close(ends[1]);
  return 0;
}
