// Changes of printers: asked for by the window, carried out by the worker.
#include <cerrno>

#include "app/format/words.h"
#include "app/server/worker.h"
#include "printserver/changes.h"
#include "printserver/nc.h"
#include "printserver/words.h"

namespace console {
namespace {

struct VerbRow {
  const char* key;
  int value;
  const char *done, *not_done;  // behind the name
};
// By PrinterSetting.
constexpr VerbRow kVerbs[] = {
    {"paused", 1, "is paused", "was not paused"},
    {"paused", 0, "is resumed", "was not resumed"},
    {"accepting", 0, "takes no new jobs now", "takes new jobs as before"},
    {"accepting", 1, "takes new jobs again", "still takes no new jobs"},
    {"paper-loaded", 1, "has paper", "was not told of its paper"},
};

}  // namespace

void Server::ChangePrinter(const std::string& name, PrinterSetting setting) {
  Locked lock(shared_.get());
  shared_->printer_changes.push_back({name, setting});
  pthread_cond_broadcast(&shared_->wake);
}

void Server::MoveJobs(const std::string& printer, const std::string& target) {
  Locked lock(shared_.get());
  std::vector<JobStep> steps;
  for (const NC_Job& job : *shared_->state.jobs)
    if (job.printer == printer && !HasEnded(job.state))
      steps.push_back({QueueIdOf(job).job, {Verb::kMove, 0, target}, {}, job.document});
  shared_->Add(std::move(steps));
}

// The next change with the printer as it is listed. False when there is none.
bool Worker::NextPrinterChange(PrinterChange* change, NC_Printer* printer) {
  Locked lock(shared_);
  if (shared_->printer_changes.empty()) return false;
  *change = std::move(shared_->printer_changes.front());
  shared_->printer_changes.pop_front();
  for (const NC_Printer& p : *shared_->state.printers)
    if (p.name == change->name) *printer = p;
  return true;
}

int Worker::SetPrinter(const PrinterChange& change, const NC_Printer& printer) {
  const VerbRow& verb = kVerbs[int(change.setting)];
  const int status = nc::ChangePrinter(shared_->open[kLists], printer, verb.key, verb.value);
  const int error = errno;
  const bool done = status == NC_STATUS_DONE;
  std::string text = Quoted(change.name) + " " + (done ? verb.done : verb.not_done);
  if (!done && status >= 0)
    text += std::string(": ") + nc::RefusalText(status, nc::Asked::kPrinter);
  if (status < 0) text += ": the connection broke";
  Locked lock(shared_);
  shared_->AddNotice({done ? Tone::kGood : Tone::kBad, text});
  errno = error;
  return status;
}

// False when the connection broke, with errno.
bool Worker::ChangePrinters() {
  PrinterChange change;
  for (NC_Printer printer{}; NextPrinterChange(&change, &printer); printer = {}) {
    Began();
    const int status = SetPrinter(change, printer);
    const int error = errno;
    Ended();
    next_poll_ = 0;
    {
      Locked lock(shared_);
      shared_->Published();
    }
    errno = error;
    if (status < 0) return false;
  }
  return true;
}

}  // namespace console
