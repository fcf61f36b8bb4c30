// The commands that show something: list, queue, profiles, scanners.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "printserver/nc.h"
#include "printserver/records.h"
#include "quorvik-print/cli.h"
#include "quorvik-print/jobs.h"

namespace cli {

namespace {

using Row = std::vector<std::string>;

// Rows in columns, two spaces apart. Bytes of UTF-8 that continue a character take no place.
void ShowTable(const std::vector<Row>& rows) {
  const auto width = [](const std::string& text) {
    return std::count_if(text.begin(), text.end(),
                         [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; });
  };
  std::vector<long> widths;
  for (const Row& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max<long>(widths[i], width(row[i]));
  }
  for (const Row& row : rows) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      line += Shown(row[i]);
      line.append(static_cast<size_t>(widths[i] - width(row[i]) + 2), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    puts(line.c_str());
  }
}

int Lost() {
  return Fail(kNoServer, std::string("the connection to the server failed: ") + strerror(errno));
}

std::string JobStateText(const NC_Job& job) {
  static const char* const kWords[] = {"waiting",      "held", "printing",
                                       "out of paper", "done", "failed"};
  std::string text = kWords[job.state];
  if (job.state == NC_JOB_PRINTING && job.total > 0) {
    text += " " +
            std::to_string(static_cast<int>(100.0 * static_cast<double>(job.printed) /
                                            static_cast<double>(job.total))) +
            "%";
  }
  if (job.state == NC_JOB_FAILED && job.text[0]) text += std::string(": ") + job.text;
  return text;
}

std::string TimeText(int64_t seconds) {
  const time_t when = static_cast<time_t>(seconds);
  tm parts;
  char text[32];
  if (!localtime_r(&when, &parts)) return "-";
  if (strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts) == 0) return "-";
  return text;
}

}  // namespace

bool ReadJobs(int fd, std::vector<NC_Job>* jobs) {
  std::vector<char> list(NC_QUEUE_MAX);
  const int32_t size = NC_GetPrintQueueN(fd, list.data(), NC_QUEUE_MAX);
  if (size < 0) {
    Lost();
    return false;
  }
  jobs->resize(NC_JOBS_MAX);
  jobs->resize(static_cast<size_t>(NC_ParseJobs(list.data(), size, jobs->data(), NC_JOBS_MAX)));
  return true;
}

int ShowQueue(int fd, const Options&) {
  std::vector<NC_Job> jobs;
  if (!ReadJobs(fd, &jobs)) return kNoServer;
  if (jobs.empty()) {
    puts("no jobs");
    return kGood;
  }
  std::vector<Row> rows = {
      {"ID", "STATE", "PRIORITY", "COPIES", "SIZE", "SUBMITTED", "OWNER", "PRINTER", "DOCUMENT"}};
  for (const NC_Job& job : jobs) {
    char id[33];
    NC_FormatId(job.id, id);
    rows.push_back({id, JobStateText(job), std::to_string(job.priority), std::to_string(job.copies),
                    std::to_string(job.size), TimeText(job.submitted), job.owner, job.printer,
                    job.document});
  }
  ShowTable(rows);
  return kGood;
}

int List(int fd, const Options&) {
  std::vector<char> list(NC_LIST_MAX);
  uint8_t status;
  const int32_t size = NC_GetPrinterListN(fd, &status, list.data(), NC_LIST_MAX);
  if (size < 0) return Lost();
  std::vector<NC_Printer> printers(NC_RECORDS_MAX);
  const int count = NC_ParsePrinters(list.data(), size, printers.data(), NC_RECORDS_MAX);
  if (count == 0) {
    puts("no printers");
    return kGood;
  }
  static const char* const kStates[] = {"idle", "printing", "out of paper"};
  std::vector<Row> rows = {{"NAME", "STATE", "JOBS", "PAPER", "MEDIA", "DEFAULT", "REMARK"}};
  for (int i = 0; i < count; ++i) {
    const NC_Printer& printer = printers[static_cast<size_t>(i)];
    rows.push_back({printer.name, kStates[printer.state], std::to_string(printer.jobs),
                    printer.paper < 0 ? "-" : std::to_string(printer.paper), printer.media,
                    printer.is_default ? "yes" : "", printer.text});
  }
  ShowTable(rows);
  return kGood;
}

int Profiles(int fd, const Options& options) {
  char key[NC_PROFILE_KEY] = {};
  if (!options.words.empty()) {
    if (options.words[0].size() >= sizeof key) return Fail(kUsage, "the name is too long");
    strcpy(key, options.words[0].c_str());
  }
  std::vector<char> records(NC_RECORDS_MAX * NC_PROFILE_SIZE);
  const int32_t count =
      NC_GetProfileListN(fd, key, records.data(), static_cast<uint32_t>(records.size()));
  if (count < 0) return Lost();
  std::vector<NC_Profile> profiles(NC_RECORDS_MAX);
  profiles.resize(static_cast<size_t>(
      NC_ParseProfiles(records.data(), count, profiles.data(), NC_RECORDS_MAX)));
  if (profiles.empty()) {
    puts("no profiles");
    return kGood;
  }
  std::vector<Row> rows = {{"NAME", "MEDIA", "DPI"}};
  for (const NC_Profile& profile : profiles) {
    rows.push_back({profile.name, profile.media,
                    std::to_string(profile.dpi_across) + "x" + std::to_string(profile.dpi_along)});
  }
  ShowTable(rows);
  return kGood;
}

int Scanners(int fd, const Options&) {
  std::vector<char> list(NC_LIST_MAX);
  uint8_t status;
  const int32_t size = NC_GetScannerListN(fd, &status, list.data(), NC_LIST_MAX);
  if (size < 0) return Lost();
  std::vector<NC_Scanner> scanners(NC_RECORDS_MAX);
  const int count = NC_ParseScanners(list.data(), size, scanners.data(), NC_RECORDS_MAX);
  if (count == 0) {
    puts("no scanners");
    return kGood;
  }
  std::vector<Row> rows = {{"NAME", "STATE", "REMARK"}};
  for (int i = 0; i < count; ++i) {
    const NC_Scanner& scanner = scanners[static_cast<size_t>(i)];
    rows.push_back({scanner.name, scanner.away ? "away" : "ready", scanner.text});
  }
  ShowTable(rows);
  return kGood;
}

}  // namespace cli
