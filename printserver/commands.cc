// The short commands: ids, removal, starting the layout and scan servers.
#include <errno.h>
#include <string.h>

#include "printserver/nc.h"
#include "printserver/wire.h"

namespace {

enum : uint8_t {
  kCreateRequestID = 5,
  kRemovePrintRequest = 6,
  kRemoveFile = 7,
  kStartLayoutServer = 8,
  kStartScanServer = 9,
};

using nc::Deadline;

// A text in a field of fixed size, zeros behind it; false if it does not fit with its end.
template <size_t kSize>
bool FillText(char (&field)[kSize], const char* text) {
  memset(field, 0, kSize);
  const size_t length = text ? strnlen(text, kSize) : kSize;
  if (length >= kSize) return false;
  memcpy(field, text, length);
  return true;
}

int32_t SendForStatus(int fd, uint8_t code, const void* data, size_t size) {
  const Deadline deadline = Deadline::Of(fd);
  const nc::Field field = {data, size};
  return nc::SendRequest(fd, code, &field, 1, deadline) ? nc::ReadStatus(fd, deadline) : -1;
}

}  // namespace

extern "C" {

int32_t NC_CreateRequestID(int fd, void* id) {
  if (!id) return nc::Refuse(EINVAL);
  const Deadline deadline = Deadline::Of(fd);
  if (!nc::SendRequest(fd, kCreateRequestID, nullptr, 0, deadline)) return -1;
  return nc::ReadAll(fd, id, NC_ID_SIZE, deadline) ? 1 : -1;
}

int32_t NC_RemovePrintRequest(int fd, const void* id) {
  if (!id) return nc::Refuse(EINVAL);
  return SendForStatus(fd, kRemovePrintRequest, id, NC_ID_SIZE);
}

int32_t NC_RemoveFile(int fd, const char* path) {
  char field[NC_PATH_SIZE];
  if (!FillText(field, path)) return nc::Refuse(path ? ENAMETOOLONG : EINVAL);
  return SendForStatus(fd, kRemoveFile, field, sizeof field);
}

int32_t NC_StartLayoutServer(int fd) {
  return nc::SendRequest(fd, kStartLayoutServer, nullptr, 0, Deadline::Of(fd)) ? 1 : -1;
}

int32_t NC_StartScanServer(int fd, const char* s1, const char* s2) {
  char texts[2][NC_SCAN_TEXT];
  if (!FillText(texts[0], s1) || !FillText(texts[1], s2)) return nc::Refuse(EINVAL);
  const nc::Field field = {texts, sizeof texts};
  return nc::SendRequest(fd, kStartScanServer, &field, 1, Deadline::Of(fd)) ? 1 : -1;
}

}  // extern "C"
