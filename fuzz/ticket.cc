// What the print server reads of others: tickets of jobs and of printers, job files, names of
// outputs.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "printserverd/job.h"
#include "printserverd/output.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace printserverd;
  const std::string text(reinterpret_cast<const char*>(data), size);
  Job job;
  job.id.assign(16, 'x');
  Given given;
  if (ParseTicket(text, &job.ticket, &given) == Status::kDone) {
    // What was taken is listed within bounds, and is read back from its file the same.
    std::string listed;
    AppendListed(&listed, job, {std::string(127, 'r'), 1});
    Job again;
    if (listed.size() > 2048 || !ParseStoredRecord(StoredRecord(job), &again)) abort();
    const Ticket& a = job.ticket;
    const Ticket& b = again.ticket;
    const bool same = a.document == b.document && a.owner == b.owner && a.printer == b.printer &&
                      a.profile == b.profile && a.media == b.media && a.copies == b.copies &&
                      a.priority == b.priority && a.colour == b.colour;
    if (!same) abort();
  }
  Job stored;
  if (ParseStoredRecord(text, &stored)) {
    Job again;
    if (!ParseStoredRecord(StoredRecord(stored), &again)) abort();
    if (StoredRecord(again) != StoredRecord(stored)) abort();
  }
  PrinterTicket printer;
  ParsePrinterTicket(text, &printer);
  OutputParts parts;
  if (ParseOutputName(text, &parts) && (parts.id.size() != 8 || parts.counter < 0)) abort();
  const std::string name = PlainNameOf(text, 200);
  if (!IsPlainName(name) || name[0] == '.' || name.size() > 200) abort();
  return 0;
}
