// What the print server reads of others: tickets, job files, its configuration.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "printserverd/queue.h"
#include "printserverd/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace printserverd;
  const std::string text(reinterpret_cast<const char*>(data), size);
  Job job;
  job.id.assign(16, 'x');
  TicketKeys keys;
  if (ParseTicket(text, &job.ticket, &keys) == Status::kDone) {
    // What was taken is listed within bounds, and is read back the same.
    const std::string record = JobRecord(job, true);
    Job again;
    if (record.size() > 2048 || !ParseJobRecord(record, &again)) abort();
    if (again.ticket.document != job.ticket.document || again.ticket.owner != job.ticket.owner ||
        again.ticket.copies != job.ticket.copies) {
      abort();
    }
  }
  Job stored;
  ParseJobRecord(text, &stored);
  Settings settings;
  std::string error;
  if (ParseSettings(text, &settings, &error) != error.empty()) abort();
  if (error.empty() && settings.printers.empty()) abort();
  PlainNameOf(text, 200);
  return 0;
}
