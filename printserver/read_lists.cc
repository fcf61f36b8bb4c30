#include "printserver/read_lists.h"

#include <errno.h>
#include <string.h>

#include <memory>

#include "printserver/nc.h"
#include "printserver/wire.h"

namespace nc {

namespace {

// `ask` reads a list into a buffer of `size` bytes, `parse` takes it apart.
template <typename Record, typename Ask, typename Parse>
bool ReadList(uint32_t size, int32_t most, Ask ask, Parse parse, std::vector<Record>* out) {
  // Not filled with zeros first: the limits are far above what is usual.
  const std::unique_ptr<char[]> list(new char[size]);
  const int32_t length = ask(list.get(), size);
  if (length < 0) return false;
  const std::unique_ptr<Record[]> records(new Record[static_cast<size_t>(most)]);
  const int32_t count = parse(list.get(), length, records.get(), most);
  out->assign(records.get(), records.get() + count);
  return true;
}

}  // namespace

bool ReadJobs(int fd, std::vector<NC_Job>* out) {
  const auto ask = [fd](char* list, uint32_t size) { return NC_GetPrintQueueN(fd, list, size); };
  return ReadList(NC_QUEUE_MAX, NC_JOBS_MAX, ask, NC_ParseJobs, out);
}

bool ReadPrinters(int fd, std::vector<NC_Printer>* out) {
  const auto ask = [fd](char* list, uint32_t size) {
    return NC_GetPrinterListN(fd, nullptr, list, size);
  };
  return ReadList(NC_LIST_MAX, NC_RECORDS_MAX, ask, NC_ParsePrinters, out);
}

bool ReadScanners(int fd, std::vector<NC_Scanner>* out) {
  const auto ask = [fd](char* list, uint32_t size) {
    return NC_GetScannerListN(fd, nullptr, list, size);
  };
  return ReadList(NC_LIST_MAX, NC_RECORDS_MAX, ask, NC_ParseScanners, out);
}

bool ReadProfiles(int fd, const std::string& printer, std::vector<NC_Profile>* out) {
  char key[NC_PROFILE_KEY] = {};
  if (printer.size() >= sizeof key) return Refuse(ENAMETOOLONG), false;
  memcpy(key, printer.data(), printer.size());
  const auto ask = [fd, &key](char* list, uint32_t size) {
    return NC_GetProfileListN(fd, key, list, size);
  };
  return ReadList(NC_RECORDS_MAX * NC_PROFILE_SIZE, NC_RECORDS_MAX, ask, NC_ParseProfiles, out);
}

}  // namespace nc
