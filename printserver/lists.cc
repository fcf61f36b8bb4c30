// Lists of the server: the queue, the printers, the scanners, the profiles.
#include <errno.h>

#include "printserver/nc.h"
#include "printserver/wire.h"

namespace {

enum : uint8_t { kPrintQueue = 1, kPrinterList = 2, kScannerList = 10, kProfileList = 11 };

using nc::Deadline;

// Read a count and as many records of `unit` bytes, at most `room` bytes: the count, or -1.
int32_t ReadRecords(int fd, void* buf, uint64_t unit, uint32_t room, Deadline deadline) {
  uint32_t count;
  if (!nc::ReadInteger(fd, &count, deadline)) return -1;
  const uint64_t size = count * unit;
  if (size > room || size > INT32_MAX) return nc::Refuse(EMSGSIZE);
  return nc::ReadAll(fd, buf, size, deadline) ? static_cast<int32_t>(count) : -1;
}

// A list that the server's status byte introduces.
int32_t ReadStatusList(int fd, uint8_t code, uint8_t* status, void* buf, uint32_t room) {
  if (!buf) return nc::Refuse(EINVAL);
  const Deadline deadline = Deadline::Of(fd);
  if (!nc::SendRequest(fd, code, nullptr, 0, deadline)) return -1;
  const int32_t answer = nc::ReadStatus(fd, deadline);
  if (answer < 0) return -1;
  if (status) *status = static_cast<uint8_t>(answer);
  return answer == 0 ? 0 : ReadRecords(fd, buf, 1, room, deadline);
}

}  // namespace

extern "C" {

int32_t NC_GetPrintQueue(int fd, void* buf) {
  return NC_GetPrintQueueN(fd, buf, INT32_MAX);
}

int32_t NC_GetPrintQueueN(int fd, void* buf, uint32_t size) {
  if (!buf) return nc::Refuse(EINVAL);
  const Deadline deadline = Deadline::Of(fd);
  if (!nc::SendRequest(fd, kPrintQueue, nullptr, 0, deadline)) return -1;
  return ReadRecords(fd, buf, 1, size, deadline);
}

int32_t NC_GetPrinterList(int fd, uint8_t* status, void* buf) {
  return ReadStatusList(fd, kPrinterList, status, buf, INT32_MAX);
}

int32_t NC_GetPrinterListN(int fd, uint8_t* status, void* buf, uint32_t size) {
  return ReadStatusList(fd, kPrinterList, status, buf, size);
}

int32_t NC_GetScannerList(int fd, uint8_t* status, void* buf) {
  return ReadStatusList(fd, kScannerList, status, buf, INT32_MAX);
}

int32_t NC_GetScannerListN(int fd, uint8_t* status, void* buf, uint32_t size) {
  return ReadStatusList(fd, kScannerList, status, buf, size);
}

int32_t NC_GetProfileList(int fd, const void* key, void* buf) {
  return NC_GetProfileListN(fd, key, buf, INT32_MAX);
}

int32_t NC_GetProfileListN(int fd, const void* key, void* buf, uint32_t size) {
  if (!key || !buf) return nc::Refuse(EINVAL);
  const Deadline deadline = Deadline::Of(fd);
  const nc::Field field = {key, NC_PROFILE_KEY};
  if (!nc::SendRequest(fd, kProfileList, &field, 1, deadline)) return -1;
  return ReadRecords(fd, buf, NC_PROFILE_SIZE, size, deadline);
}

}  // extern "C"
