// Lists of a server, as the client reads them: jobs, printers, scanners, profiles.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "printserver/records.h"
#include "printserver/words.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static NC_Job jobs[8];
  static NC_Printer printers[8];
  static NC_Scanner scanners[8];
  static NC_Profile profiles[8];
  // A copy of its own size, so that one byte too many is seen.
  const std::unique_ptr<uint8_t[]> list(new uint8_t[size]);
  if (size > 0) memcpy(list.get(), data, size);
  const auto length = static_cast<int32_t>(size);
  const int32_t count = NC_ParseJobs(list.get(), length, jobs, 8);
  for (int32_t i = 0; i < count; ++i) {
    const NC_Job& job = jobs[i];
    const bool good = job.copies >= 1 && job.copies <= 999 && job.printed >= 0 &&
                      job.printed <= job.total && job.number >= 0 && job.colour >= -1 &&
                      job.colour <= 0xffffff && (job.kept == 0 || job.kept == 1) &&
                      nc::ReasonsText(job.reasons).size() < 8 * sizeof job.reasons &&
                      memchr(job.document, 0, sizeof job.document) != nullptr &&
                      memchr(job.text, 0, sizeof job.text) != nullptr;
    if (!good) abort();
    char ticket[1024] = "";
    NC_AddTicketText(ticket, sizeof ticket, "document", job.document);
    NC_AddTicketText(ticket, sizeof ticket, "owner", job.owner);
    if (strstr(ticket, "\n\n")) abort();
  }
  NC_ParsePrinters(list.get(), length, printers, 8);
  NC_ParseScanners(list.get(), length, scanners, 8);
  NC_ParseProfiles(list.get(), length / 48, profiles, 8);
  return 0;
}
