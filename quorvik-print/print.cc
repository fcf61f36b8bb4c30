// The command that sends documents, and waits for them to be printed.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "os/os.h"
#include "printserver/changes.h"
#include "printserver/nc.h"
#include "printserver/read_lists.h"
#include "printserver/words.h"
#include "quorvik-print/document.h"
#include "quorvik-print/jobs.h"

namespace cli {

namespace {

using Id = std::array<uint8_t, NC_ID_SIZE>;

constexpr int kPollMs = 500;
// How often the queue is looked at for a job whose answer was lost, and a server that is away is
// tried again while its jobs are waited for.
constexpr int kTries = 20;

const NC_Job* JobOf(const std::vector<NC_Job>& jobs, const Id& id) {
  for (const NC_Job& job : jobs) {
    if (std::equal(id.begin(), id.end(), job.id)) return &job;
  }
  return nullptr;
}

// How much has gone, shown on a terminal.
struct Progress {
  bool terminal = isatty(STDERR_FILENO) != 0;
  int shown = -1;
  int64_t sent = 0, total = 1;
};

int ShowProgress(void* context, int64_t sent, int64_t total) {
  auto* progress = static_cast<Progress*>(context);
  progress->sent = sent;
  progress->total = total;
  const int percent = total > 0 ? static_cast<int>(100 * sent / total) : 100;
  if (progress->terminal && percent != progress->shown) fprintf(stderr, "\r%3d%%", percent);
  progress->shown = percent;
  return 0;
}

// After the connection broke with everything sent: whether the job is there all the same.
bool HasArrived(Session& session, const Id& id) {
  for (int i = 0; i < kTries; ++i) {
    std::vector<NC_Job> jobs;
    if (session.Connect(true) == kGood && nc::ReadJobs(session.fd(), &jobs) && JobOf(jobs, id)) {
      return true;
    }
    OS_Sleep(kPollMs);
  }
  return false;
}

// What the exit code of a request without a status byte is.
int AfterLoss(Session& session, const Id& id, const std::string& name, const Progress& progress) {
  const std::string why = nc::FailureText(errno);
  if (progress.sent < progress.total) {
    return Fail(kNoServer, name + ": not accepted, the connection to the server failed: " + why);
  }
  if (HasArrived(session, id)) return kGood;
  return Fail(kNoServer, name + ": the connection to the server failed: " + why +
                             "; it may have been accepted all the same: look for " +
                             IdText(id.data()) + " in the queue before you send it again");
}

int Send(Session& session, const Document& document, const std::string& ticket,
         const std::string& name, Id* id) {
  if (NC_CreateRequestID(session.fd(), id->data()) < 0) return Lost();
  Progress progress;
  const int32_t status =
      NC_WritePrintRequestN(session.fd(), id->data(), ticket.c_str(), document.fd(),
                            document.size(), ShowProgress, &progress);
  const int error = errno;
  if (progress.terminal) fputs("\r    \r", stderr);
  errno = error;
  if (status == NC_STATUS_DONE) return kGood;
  if (status >= 0) {
    return Fail(kRefused, name + ": refused: " + nc::RefusalText(status, nc::Asked::kPrint));
  }
  if (status == NC_BAD_REQUEST) return Fail(kNoFile, name + ": too large to be printed");
  if (status != NC_UNREADABLE) return AfterLoss(session, *id, name, progress);
  const int code = Fail(kNoFile, name + ": cannot be read, or became shorter");
  session.Connect(true);  // the server still waits for the rest
  return code;
}

std::string TitleOf(const std::string& path, const Options& options) {
  if (options.Has(kTitleOption)) return options.title;
  return path == "-" ? "standard input" : path.substr(path.rfind('/') + 1);
}

int PrintFile(Session& session, const std::string& path, const Options& options, Id* id) {
  Document document;
  if (const int code = document.Open(path)) return code;
  // The server does not wait for ever between two requests; and the last file may have cost it.
  if (document.copied() || session.fd() < 0) {
    if (const int code = session.Connect()) return code;
  }
  nc::Order order;
  order.document = TitleOf(path, options);
  order.owner = options.Owner();
  order.printer = options.printer;
  order.profile = options.profile;
  order.media = options.media;
  order.copies = static_cast<int32_t>(options.copies);
  order.priority = static_cast<int32_t>(options.priority);
  order.hold = options.Has(kHoldOption);
  order.colour = options.colour;
  const std::string ticket = nc::TicketOf(order);
  if (ticket.empty()) return Fail(kUsage, path + ": the options are too long");
  const std::string name = path == "-" ? "standard input" : path;
  if (const int code = Send(session, document, ticket, name, id)) return code;
  std::vector<NC_Job> jobs;
  const NC_Job* job = nc::ReadJobs(session.fd(), &jobs) ? JobOf(jobs, *id) : nullptr;
  const std::string sent = order.document + ", " + order.owner;
  PrintLine(IdText(id->data()) + " " + (job && job->number > 0 ? NameOf(*job) : "- " + sent));
  return kGood;
}

// --- Waiting

struct Waited {
  Id id;
  NC_JobState state = NC_JOB_WAITING;
  std::string name;
  bool ended = false;
  std::string told;  // why it does not go on
};

// What a new list says of one job; an exit code. `printed_stay`: jobs that were done before this
// one ended are still listed, so it would be listed as well if it were done.
int TakeNews(const std::vector<NC_Job>& jobs, bool printed_stay, Waited* waited) {
  const NC_Job* job = JobOf(jobs, waited->id);
  if (job) {
    waited->state = job->state;
    waited->name = NameOf(*job);
    waited->ended = job->state == NC_JOB_DONE || job->state == NC_JOB_FAILED;
    std::string why = nc::ReasonsText(job->reasons);
    if (job->state == NC_JOB_PAPER_OUT) why = nc::JobStateText(job->state);
    if (job->state != NC_JOB_FAILED) {
      if (!why.empty() && why != waited->told) Fail(kGood, waited->name + ": " + why);
      waited->told = why;
      return kGood;
    }
    return Fail(kRefused, waited->name + ": failed: " + (why.empty() ? job->text : why));
  }
  waited->ended = true;
  if (printed_stay || waited->state == NC_JOB_HELD) {
    return Fail(kRefused, waited->name + ": removed");
  }
  return Fail(kUnknownEnd, waited->name + ": no longer listed, and its end is not known");
}

// Reads the queue, over a new connection when that is needed.
bool ReadQueue(Session& session, std::vector<NC_Job>* jobs) {
  for (int i = 0; i < kTries; ++i) {
    if (nc::ReadJobs(session.fd(), jobs)) return true;
    while (session.Connect(true) != kGood && ++i < kTries) OS_Sleep(kPollMs);
  }
  return false;
}

std::vector<Id> PrintedOf(const std::vector<NC_Job>& jobs) {
  std::vector<Id> printed;
  for (const NC_Job& job : jobs) {
    if (job.state == NC_JOB_DONE) printed.push_back(std::to_array(job.id));
  }
  std::sort(printed.begin(), printed.end());
  return printed;
}

int Wait(Session& session, std::vector<Waited>* all) {
  int first = kGood;
  std::vector<Id> printed_before;
  for (;;) {
    std::vector<NC_Job> jobs;
    if (!ReadQueue(session, &jobs)) {
      return Lost("; what was sent is accepted, and its end is not known");
    }
    std::vector<Id> printed = PrintedOf(jobs), stayed;
    std::set_intersection(printed.begin(), printed.end(), printed_before.begin(),
                          printed_before.end(), std::back_inserter(stayed));
    for (Waited& waited : *all) {
      if (!waited.ended) Note(TakeNews(jobs, !stayed.empty(), &waited), &first);
    }
    if (std::all_of(all->begin(), all->end(), [](const Waited& one) { return one.ended; })) {
      return first;
    }
    printed_before = std::move(printed);
    OS_Sleep(kPollMs);
  }
}

}  // namespace

int PrintFiles(Session& session, const Options& options) {
  int first = kGood;
  std::vector<Waited> sent;
  std::vector<std::string> paths = options.words;
  if (paths.empty()) paths = {"-"};
  for (const std::string& path : paths) {
    Id id;
    const int code = PrintFile(session, path, options, &id);
    Note(code, &first);
    if (code == kNoServer) break;
    if (code != kGood) continue;
    sent.push_back({id, options.Has(kHoldOption) ? NC_JOB_HELD : NC_JOB_WAITING, IdText(id.data()),
                    false, ""});
  }
  if (options.Has(kWaitOption) && !sent.empty()) Note(Wait(session, &sent), &first);
  return first;
}

}  // namespace cli
