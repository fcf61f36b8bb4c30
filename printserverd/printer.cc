#include "printserverd/printer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "printserverd/fields.h"
#include "printserverd/log.h"

namespace printserverd {

namespace {

constexpr int kTickMs = 50;
constexpr int64_t kRetryMs = 30000;
constexpr int64_t kBytesATick = 4 << 20;  // of one document, so that peers are heard in between

// Tells what has become of a job once its files are done with, whether or not the printer is still
// there.
void TellQueue(const PrintRun& run, const RequestId& id, const std::string& printer, Queue* queue) {
  const Job* job = queue->Find(id);
  if (run.abandoned || !job || !job->AtPrinter()) return;
  if (run.whole) return queue->Finish(id, JobState::kDone, "", "");
  if (run.fault == Fault::kNone) return;
  Log("printer " + printer + ": " + job->ticket.document + ": " + run.error);
  if (run.fault == Fault::kDocument) {
    queue->Finish(id, JobState::kFailed, run.reason, run.error);
  } else {
    queue->GiveBack(id, run.error);
  }
}

}  // namespace

Printer::Printer(const PrinterSettings& settings, const PrinterEntry& entry,
                 const PrinterUses& uses)
    : settings_(settings),
      entry_(entry),
      uses_(uses),
      outputs_to_fail_(uses.faults.disk_full + uses.faults.output_error) {
  if (uses_.faults.paper_out && settings_.paper == 0) settings_.paper = 1;
  paper_ = uses_.faults.paper_out ? 0 : settings_.paper;
  CheckFolder(true);
}

// Makes the folder when it is missing; with `clean`, removes what an earlier run left unfinished.
void Printer::CheckFolder(bool clean) {
  uses_.disk->Do([root = uses_.root, settings = settings_, clean] {
    const Fd folder = OpenOutputFolder(root, settings.folder);
    if (!folder) {
      Log("printer " + settings.name + ": folder not usable: " + strerror(errno));
    } else if (clean) {
      RemoveParts(folder.get());
    }
  });
}

void Printer::Set(const PrinterSettings& settings) {
  if (settings.paper != settings_.paper) paper_ = settings.paper;
  settings_ = settings;
  stopped_.clear();
  CheckFolder(false);
}

void Printer::SetEntry(const PrinterEntry& entry, bool resume) {
  entry_ = entry;
  if (resume) stopped_.clear();
  uses_.queue->SetPrinter(settings_.name, View());
}

void Printer::LoadPaper() {
  paper_ = settings_.paper;
  paper_loaded_ = true;
  uses_.queue->Touch();
}

void Printer::Stop() {
  if (current_.empty()) return;
  const Job* job = uses_.queue->Find(current_);
  // The disk is about to end an output: the job becomes what the disk makes of it.
  if (job && job->finishing && run_->busy) return;
  if (job && job->AtPrinter()) uses_.queue->GiveBack(current_, "");
  Abandon();
}

// Has something done with the files, then itself called again.
void Printer::Work(std::function<void(PrintRun*)> work) {
  run_->busy = true;
  uses_.disk->Do(
      [run = run_, work = std::move(work)] {
        if (run->fault == Fault::kNone) work(run.get());
      },
      [run = run_, id = current_, name = settings_.name, queue = uses_.queue] {
        run->busy = false;
        TellQueue(*run, id, name, queue);
        queue->Touch();
      });
}

void Printer::Abandon() {
  run_->abandoned = true;
  uses_.disk->Do([run = run_] {
    if (!run->whole && run->folder) unlinkat(run->folder.get(), run->part.c_str(), 0);
  });
  run_.reset();
  current_.clear();
  out_of_paper_ = false;
}

void Printer::Begin(const Job& job, int64_t now) {
  current_ = job.id;
  {
    Queue::Edit edit(uses_.queue, current_);
    edit->state = JobState::kPrinting;
    edit->started = time(nullptr);
    edit->printed = 0;
    edit->paper_loaded = false;
    edit->text.clear();
  }
  run_ = std::make_shared<PrintRun>();
  run_->root = uses_.root;
  run_->subfolder = settings_.folder;
  run_->part = PartName(current_);
  Work([open = uses_.queue->DocumentOpener(job)](PrintRun* run) { OpenRun(run, open); });
  if (uses_.faults.paper_out) paper_ = 0;
  has_sheet_ = out_of_paper_ = paper_loaded_ = false;
  since_ = next_ = now;
  base_ = 0;
}

bool Printer::TakeSheet() {
  if (!HasPaper()) return false;
  if (settings_.paper != 0) --paper_;
  return has_sheet_ = true;
}

// Is the byte at which a job of `size` bytes stands the first one of a sheet?
bool Printer::WantsSheet(int64_t size, int64_t printed) const {
  if (has_sheet_) return false;
  return size == 0 || printed % size % settings_.sheet_bytes == 0;
}

// Prints up to the byte `goal`, or to where the paper ends.
void Printer::Print(const Job& job, int64_t goal) {
  std::vector<Stretch> stretches;
  int64_t printed = job.printed;
  while (printed < goal) {
    if (WantsSheet(job.size, printed) && !TakeSheet()) break;
    const int64_t at = printed % job.size;
    const int64_t sheet_end =
        std::min(job.size, at - at % settings_.sheet_bytes + settings_.sheet_bytes);
    const int64_t count = std::min(goal - printed, sheet_end - at);
    if (printed < job.size) stretches.push_back({at, count});
    printed += count;
    if (at + count == sheet_end) has_sheet_ = false;
  }
  if (printed != job.printed) uses_.queue->SetPrinted(job.id, printed);
  if (stretches.empty()) return;
  Work([stretches = std::move(stretches)](PrintRun* run) { CopyStretches(run, stretches); });
}

void Printer::RunOut(const Job& job, int64_t now) {
  out_of_paper_ = true;
  paper_loaded_ = false;
  since_ = now;
  Queue::Edit edit(uses_.queue, job.id);
  edit->state = JobState::kPaperOut;
  edit->text = "out of paper";
  edit->paper_loaded = false;
  Log("printer " + settings_.name + ": out of paper");
}

void Printer::Complete(const Job& job) {
  Queue::Edit(uses_.queue, job.id)->finishing = true;
  if (outputs_to_fail_ > 0) {
    --outputs_to_fail_;
    const int error = uses_.faults.disk_full > 0 ? ENOSPC : EIO;
    return Work([error](PrintRun* run) { FailOutput(run, error); });
  }
  Work([name = OutputName(job, uses_.counters->NextOutput()),
        keep = settings_.keep](PrintRun* run) { FinishRun(run, name, keep); });
}

// Takes notice of what has become of the job at it.
void Printer::EndRun(int64_t now) {
  const bool whole = run_->whole;
  const bool stops = run_->fault == Fault::kPrinter;
  if (stops) {
    stopped_ = run_->reason;
    next_ = now + kRetryMs;
  }
  if (whole) {
    run_.reset();
    current_.clear();
  } else {
    Abandon();
  }
  if (stops) uses_.queue->SetPrinter(settings_.name, View());
}

// Begins the next job, if it may. As Tick.
int Printer::AwaitJob(int64_t now) {
  if (!stopped_.empty() && now < next_) return static_cast<int>(next_ - now);
  if (!stopped_.empty()) {
    stopped_.clear();
    uses_.queue->SetPrinter(settings_.name, View());
  }
  const Job* job = entry_.paused ? nullptr : uses_.queue->Next(settings_.name);
  if (job) Begin(*job, now);
  return -1;
}

// Whether there is paper again for the job that ran out of it.
bool Printer::AwaitPaper(const Job& job, int64_t now) {
  const bool refill =
      settings_.refill_seconds > 0 && now - since_ >= settings_.refill_seconds * 1000;
  if (!job.paper_loaded && !paper_loaded_ && !refill) return false;
  paper_ = settings_.paper;
  out_of_paper_ = paper_loaded_ = false;
  since_ = now;
  base_ = job.printed;
  Queue::Edit edit(uses_.queue, job.id);
  edit->paper_loaded = false;
  edit->state = JobState::kPrinting;
  edit->text.clear();
  return true;
}

int Printer::Tick(int64_t now) {
  const Job* job = current_.empty() ? nullptr : uses_.queue->Find(current_);
  const bool ended = run_ && !run_->busy && (run_->whole || run_->fault != Fault::kNone);
  if (ended) {
    EndRun(now);
  } else if (run_ && (!job || !job->AtPrinter())) {
    Abandon();
  }
  if (!run_) return AwaitJob(now);
  if (run_->busy) return -1;
  if (out_of_paper_) {
    if (!AwaitPaper(*job, now)) return settings_.refill_seconds > 0 ? kTickMs : -1;
  } else if (now < next_) {
    return static_cast<int>(next_ - now);
  }
  return PrintOn(*job, now);
}

// Prints what is due.
int Printer::PrintOn(const Job& job, int64_t now) {
  int64_t goal = job.Total();
  if (settings_.rate > 0) {
    const double due = static_cast<double>(now - since_) * static_cast<double>(settings_.rate);
    goal = static_cast<int64_t>(
        std::min(static_cast<double>(goal), static_cast<double>(base_) + due / 1000));
  }
  const int64_t budget = job.printed + kBytesATick;
  next_ = goal > budget || goal == job.Total() ? now : now + kTickMs;
  Print(job, std::min(goal, budget));
  if (run_->busy) return -1;
  if (WantsSheet(job.size, job.printed) && job.printed < std::max<int64_t>(goal, 1) &&
      !TakeSheet()) {
    RunOut(job, now);
    return Tick(now);
  }
  if (job.printed >= job.Total()) {
    Complete(job);
    return -1;
  }
  return static_cast<int>(next_ - now);
}

Queue::PrinterView Printer::View() const {
  Queue::PrinterView view;
  view.accepting = entry_.accepting;
  view.sheet_bytes = settings_.sheet_bytes;
  const auto add = [&view](bool holds, std::string_view keyword) {
    if (!holds) return;
    if (!view.reasons.empty()) view.reasons.push_back(',');
    view.reasons += keyword;
  };
  add(entry_.paused, "printer-paused");
  add(!entry_.accepting, "printer-refuses");
  add(!stopped_.empty(), stopped_);
  return view;
}

std::string Printer::Record(bool is_default) const {
  const std::string_view state = out_of_paper_      ? "paper-out"
                                 : current_.empty() ? "idle"
                                                    : "printing";
  std::string out;
  AppendField(&out, "name", settings_.name, kMaxName);
  AppendField(&out, "state", state, kMaxName);
  AppendField(&out, "default", is_default ? 1 : 0);
  AppendField(&out, "jobs", uses_.queue->Live(settings_.name));
  AppendField(&out, "paper", settings_.paper == 0 ? -1 : paper_);
  AppendField(&out, "media", settings_.media, kMaxMediaList);
  AppendField(&out, "text", settings_.text, kMaxText);
  AppendField(&out, "id", HexOfId(entry_.id), 32);
  AppendField(&out, "paused", entry_.paused ? 1 : 0);
  AppendField(&out, "accepting", entry_.accepting ? 1 : 0);
  AppendField(&out, "reasons", stopped_, kMaxText);
  AppendField(&out, "supplies", settings_.supplies, kMaxMediaList);
  out.push_back('\n');
  return out;
}

}  // namespace printserverd
