// What the print server reads of others: tickets, job files, its configuration.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "printserverd/output.h"
#include "printserverd/queue.h"
#include "printserverd/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace printserverd;
  const std::string text(reinterpret_cast<const char*>(data), size);
  Job job;
  job.id.assign(16, 'x');
  Given given;
  if (ParseTicket(text, &job.ticket, &given) == Status::kDone) {
    // What was taken is listed within bounds, and is read back the same.
    std::string listed;
    AppendListed(&listed, job, {std::string(127, 'r'), 1});
    Job again;
    if (listed.size() > 2048 || !ParseStoredRecord(StoredRecord(job), &again)) abort();
    if (again.ticket.colour != job.ticket.colour || again.ticket.document != job.ticket.document ||
        again.ticket.owner != job.ticket.owner || again.ticket.copies != job.ticket.copies) {
      abort();
    }
  }
  PrinterTicket printer;
  ParsePrinterTicket(text, &printer);
  OutputParts parts;
  ParseOutputName(text, &parts);
  Job stored;
  ParseStoredRecord(text, &stored);
  Settings settings;
  std::string error;
  if (ParseSettings(text, &settings, &error) != error.empty()) abort();
  if (error.empty() && settings.printers.empty()) abort();
  PlainNameOf(text, 200);
  return 0;
}
