// The command that shows the queue.
#include <cstdio>
#include <ctime>

#include "printserver/nc.h"
#include "printserver/read_lists.h"
#include "quorvik-print/jobs.h"
#include "quorvik-print/table.h"

namespace cli {

namespace {

// Nothing for one that is not known.
std::string TimeText(int64_t seconds) {
  if (seconds < 1) return "";
  const time_t when = static_cast<time_t>(seconds);
  tm parts;
  char text[32];
  if (!localtime_r(&when, &parts)) return "-";
  if (strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts) == 0) return "-";
  return text;
}

std::string KnownTime(int64_t seconds) {
  return seconds > 0 ? std::to_string(seconds) : "";
}

std::string ColourText(int32_t colour) {
  char text[16] = "";
  if (colour >= 0) snprintf(text, sizeof text, "%06x", static_cast<unsigned>(colour));
  return text;
}

// How much of a job at a printer, or that has left it, is printed.
std::string DoneText(const NC_Job& job) {
  if (job.state != NC_JOB_PRINTING && job.state != NC_JOB_PAPER_OUT) return "";
  if (job.pages > 0 && job.pages_printed >= 0) {
    return std::to_string(job.pages_printed) + "/" + std::to_string(job.pages);
  }
  if (job.total < 1) return "";
  const double part = static_cast<double>(job.printed) / static_cast<double>(job.total);
  return std::to_string(static_cast<int>(100 * part)) + "%";
}

bool Wanted(const Options& options, const NC_Job& job) {
  if (options.Has(kPrinterOption) && options.printer != job.printer) return false;
  if (options.Has(kStateOption) && options.state != NC_JobStateWord(job.state)) return false;
  return !(options.given & (kOwnerOption | kMineOption)) || options.Owner() == job.owner;
}

const std::vector<Column> kJobColumns = {
    {"number", "NUMBER", Kind::kNumber},
    {"state", "STATE"},
    {nullptr, "DONE"},
    {"priority", "PRIORITY", Kind::kNumber},
    {"copies", "COPIES", Kind::kNumber},
    {"size", "SIZE", Kind::kNumber},
    {nullptr, "SUBMITTED"},
    {nullptr, "STARTED"},
    {nullptr, "SINCE"},
    {"owner", "OWNER"},
    {"printer", "PRINTER"},
    {"document", "DOCUMENT"},
    {nullptr, "REMARK"},
    {"id", "ID"},
    {"profile", nullptr},
    {"media", nullptr},
    {"hold", nullptr, Kind::kFlag},
    {"submitted", nullptr, Kind::kNumber},
    {"total", nullptr, Kind::kNumber},
    {"printed", nullptr, Kind::kNumber},
    {"pages", nullptr, Kind::kNumber},
    {"pages-printed", nullptr, Kind::kNumber},
    {"colour", nullptr},
    {"kept", nullptr, Kind::kFlag},
    {"reasons", nullptr, Kind::kWords},
    {"text", nullptr},
    {"started", nullptr, Kind::kNumber},
    {"since", nullptr, Kind::kNumber},
};

std::vector<std::string> RowOf(const NC_Job& job) {
  return {job.number > 0 ? std::to_string(job.number) : "",
          NC_JobStateWord(job.state),
          DoneText(job),
          std::to_string(job.priority),
          std::to_string(job.copies),
          std::to_string(job.size),
          TimeText(job.submitted),
          TimeText(job.started),
          TimeText(job.since),
          job.owner,
          job.printer,
          job.document,
          RemarkCell(job.reasons, job.text),
          IdText(job.id),
          job.profile,
          job.media,
          job.hold ? "1" : "0",
          std::to_string(job.submitted),
          std::to_string(job.total),
          std::to_string(job.printed),
          NumberCell(job.pages),
          NumberCell(job.pages_printed),
          ColourText(job.colour),
          job.kept ? "1" : "0",
          job.reasons,
          job.text,
          KnownTime(job.started),
          KnownTime(job.since)};
}

}  // namespace

int ShowQueue(Session& session, const Options& options) {
  std::vector<NC_Job> jobs;
  if (!nc::ReadJobs(session.fd(), &jobs)) return Lost();
  int code = kGood;
  std::vector<std::vector<std::string>> rows;
  for (const std::string& word : options.words) {
    const NC_Job* job = FindJob(jobs, word);
    if (!job) Note(kRefused, &code);
    if (job && Wanted(options, *job)) rows.push_back(RowOf(*job));
  }
  if (code != kGood && rows.empty()) return code;
  for (const NC_Job& job : jobs) {
    if (options.words.empty() && Wanted(options, job)) rows.push_back(RowOf(job));
  }
  ShowTable(options, kJobColumns, rows, "no jobs");
  return code;
}

}  // namespace cli
