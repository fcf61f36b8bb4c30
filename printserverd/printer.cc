#include "printserverd/printer.h"

#include <fcntl.h>
#include <sys/stat.h>
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
constexpr int64_t kBytesATick = 4 << 20;  // of one document, so that peers are heard in between
constexpr int64_t kFlushEach = 8 << 20;

std::string PartName(const RequestId& id) {
  return "." + HexOfId(id) + ".part";
}

std::string OutputName(const Job& job) {
  const time_t now = time(nullptr);
  tm parts{};
  gmtime_r(&now, &parts);
  char stamp[32];
  strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%S", &parts);
  return std::string(stamp) + "-" + HexOfId(job.id).substr(0, 8) + "-" +
         PlainNameOf(job.ticket.document, 200);
}
// From here on in the disk's thread.

std::string CannotWrite() {
  return std::string("the output cannot be written: ") + strerror(errno);
}

void OpenFiles(PrintRun* run, const std::function<Fd()>& open_document) {
  run->document = open_document();
  if (!run->document) {
    run->error = std::string("the document cannot be read: ") + strerror(errno);
    return;
  }
  unlinkat(run->folder->get(), run->part.c_str(), 0);
  run->output = CreateFileIn(run->folder->get(), run->part);
  if (!run->output) run->error = CannotWrite();
}

struct Stretch {
  int64_t from, count;
};

bool CopyBytes(PrintRun* run, Stretch stretch) {
  static char buffer[1 << 18];
  while (stretch.count > 0) {
    const auto part = static_cast<size_t>(std::min<int64_t>(stretch.count, sizeof buffer));
    const ssize_t n = pread(run->document.get(), buffer, part, stretch.from);
    if (n < 0 && errno == EINTR) continue;
    if (n == 0) errno = EIO;
    if (n <= 0 || !WriteAll(run->output.get(), buffer, static_cast<size_t>(n))) return false;
    stretch.from += n;
    stretch.count -= n;
    run->written += n;
  }
  return true;
}

void CopyAll(PrintRun* run, const std::vector<Stretch>& stretches) {
  const int64_t before = run->written - run->written % kFlushEach;
  for (const Stretch& stretch : stretches) {
    if (!CopyBytes(run, stretch)) {
      run->error = CannotWrite();
      return;
    }
  }
  if (run->written - before < kFlushEach) return;
  sync_file_range(run->output.get(), before, run->written - before, SYNC_FILE_RANGE_WRITE);
}

// Keeps the newest outputs.
void TrimOutputs(int folder, int64_t keep) {
  std::vector<std::string> names = NamesIn(folder);
  names.erase(std::remove_if(names.begin(), names.end(),
                             [](const std::string& name) { return name[0] == '.'; }),
              names.end());
  std::sort(names.begin(), names.end());
  for (size_t i = 0; i + static_cast<size_t>(keep) < names.size(); ++i) {
    unlinkat(folder, names[i].c_str(), 0);
  }
}

// The output is on the disk under its own name, or there is an error.
void FinishOutput(PrintRun* run, const std::string& name, int64_t keep) {
  const int folder = run->folder->get();
  if (!SyncFile(run->output.get()) ||
      renameat(folder, run->part.c_str(), folder, name.c_str()) != 0) {
    run->error = CannotWrite();
    return;
  }
  run->whole = true;
  TrimOutputs(folder, keep);
}
}  // namespace

Printer::Printer(const PrinterSettings& settings, int printed, Disk* disk, bool no_paper)
    : settings_(settings),
      folder_(std::make_shared<const Fd>(OpenSubfolder(printed, settings.folder, true))),
      disk_(disk),
      no_paper_(no_paper),
      paper_(no_paper ? 0 : settings.paper) {
  if (no_paper_ && settings_.paper == 0) settings_.paper = 1;
  if (!*folder_) Log("printer " + settings.name + ": folder not usable: " + strerror(errno));
}

void Printer::Set(const PrinterSettings& settings) {
  if (settings.paper != settings_.paper) paper_ = settings.paper;
  settings_ = settings;
}

void Printer::Stop(Queue* queue) {
  if (current_.empty()) return;
  Job* job = queue->Find(current_);
  if (job && job->AtPrinter()) {
    job->state = JobState::kWaiting;
    job->printed = 0;
    job->text.clear();
    queue->Touch();
  }
  Abandon();
}

void Printer::CleanUp() {
  disk_->Do([folder = folder_] {
    for (const std::string& name : NamesIn(folder->get())) {
      if (name[0] == '.' && name.size() == 38) unlinkat(folder->get(), name.c_str(), 0);
    }
  });
}

// Has something done with the files, then itself called again.
void Printer::Work(Queue* queue, std::function<void(PrintRun*)> work) {
  run_->busy = true;
  disk_->Do(
      [run = run_, work = std::move(work)] {
        if (run->error.empty()) work(run.get());
      },
      [run = run_, queue] {
        run->busy = false;
        queue->Touch();
      });
}

void Printer::Fail(Job* job, Queue* queue, const std::string& why) {
  Log("printer " + settings_.name + ": " + job->ticket.document + ": " + why);
  queue->Finish(job, JobState::kFailed, why);
  Abandon();
}

void Printer::Abandon() {
  disk_->Do([run = run_] {
    if (!run->whole) unlinkat(run->folder->get(), run->part.c_str(), 0);
  });
  run_.reset();
  current_.clear();
  out_of_paper_ = false;
}

void Printer::Begin(Job* job, int64_t now, Queue* queue) {
  current_ = job->id;
  job->state = JobState::kPrinting;
  job->printed = 0;
  job->paper_loaded = false;
  job->text.clear();
  run_ = std::make_shared<PrintRun>();
  run_->folder = folder_;
  run_->part = PartName(current_);
  Work(queue, [open = queue->DocumentOpener(*job)](PrintRun* run) { OpenFiles(run, open); });
  if (no_paper_) paper_ = 0;
  has_sheet_ = out_of_paper_ = false;
  since_ = next_ = now;
  base_ = 0;
  queue->Touch();
}

bool Printer::TakeSheet() {
  if (!HasPaper()) return false;
  if (settings_.paper != 0) --paper_;
  return has_sheet_ = true;
}

// Is the byte at which the job stands the first one of a sheet?
bool Printer::WantsSheet(const Job& job) const {
  if (has_sheet_) return false;
  return job.size == 0 || job.printed % job.size % settings_.sheet_bytes == 0;
}

// Prints up to the byte `goal`, or to where the paper ends.
void Printer::Print(Job* job, int64_t goal, Queue* queue) {
  std::vector<Stretch> stretches;
  while (job->printed < goal) {
    if (WantsSheet(*job) && !TakeSheet()) break;
    const int64_t at = job->printed % job->size;
    const int64_t sheet_end =
        std::min(job->size, at - at % settings_.sheet_bytes + settings_.sheet_bytes);
    const int64_t count = std::min(goal - job->printed, sheet_end - at);
    if (job->printed < job->size) stretches.push_back({at, count});
    job->printed += count;
    if (at + count == sheet_end) has_sheet_ = false;
    queue->Touch();
  }
  if (stretches.empty()) return;
  Work(queue, [stretches = std::move(stretches)](PrintRun* run) { CopyAll(run, stretches); });
}

void Printer::RunOut(Job* job, int64_t now, Queue* queue) {
  out_of_paper_ = true;
  since_ = now;
  job->state = JobState::kPaperOut;
  job->text = "out of paper";
  job->paper_loaded = false;
  queue->Touch();
  Log("printer " + settings_.name + ": out of paper");
}

void Printer::Complete(Job* job, Queue* queue) {
  Work(queue, [name = OutputName(*job), keep = settings_.keep](PrintRun* run) {
    FinishOutput(run, name, keep);
  });
}

int Printer::Tick(int64_t now, Queue* queue) {
  Job* job = current_.empty() ? nullptr : queue->Find(current_);
  if (run_ && (!job || !job->AtPrinter())) Abandon();
  if (run_ && run_->busy) return -1;
  if (run_ && run_->whole) {
    queue->Finish(job, JobState::kDone, "");
    run_.reset();
    current_.clear();
  } else if (run_ && !run_->error.empty()) {
    Fail(job, queue, std::string(run_->error));
  }
  if (!run_) {
    job = queue->Next(settings_.name);
    if (job) Begin(job, now, queue);
    return -1;
  }
  if (out_of_paper_) {
    const bool refill =
        settings_.refill_seconds > 0 && now - since_ >= settings_.refill_seconds * 1000;
    if (!job->paper_loaded && !refill) return settings_.refill_seconds > 0 ? kTickMs : -1;
    paper_ = settings_.paper;
    out_of_paper_ = job->paper_loaded = false;
    job->state = JobState::kPrinting;
    job->text.clear();
    since_ = now;
    base_ = job->printed;
    queue->Touch();
  } else if (now < next_) {
    return static_cast<int>(next_ - now);
  }
  return PrintOn(job, now, queue);
}

// Prints what is due.
int Printer::PrintOn(Job* job, int64_t now, Queue* queue) {
  int64_t goal = job->Total();
  if (settings_.rate > 0) {
    const double due = static_cast<double>(now - since_) * static_cast<double>(settings_.rate);
    goal = static_cast<int64_t>(
        std::min(static_cast<double>(goal), static_cast<double>(base_) + due / 1000));
  }
  const int64_t budget = job->printed + kBytesATick;
  next_ = goal > budget || goal == job->Total() ? now : now + kTickMs;
  Print(job, std::min(goal, budget), queue);
  if (run_->busy) return -1;
  if (WantsSheet(*job) && job->printed < std::max<int64_t>(goal, 1) && !TakeSheet()) {
    RunOut(job, now, queue);
    return Tick(now, queue);
  }
  if (job->printed >= job->Total()) {
    Complete(job, queue);
    return -1;
  }
  return static_cast<int>(next_ - now);
}

std::string Printer::Record(const Queue& queue, bool is_default) const {
  int64_t jobs = 0;
  for (const auto& [id, job] : queue.jobs()) {
    if (job.ticket.printer == settings_.name && !job.Ended()) ++jobs;
  }
  const std::string_view state = out_of_paper_      ? "paper-out"
                                 : current_.empty() ? "idle"
                                                    : "printing";
  std::string out;
  AppendField(&out, "name", settings_.name, kMaxName);
  AppendField(&out, "state", state, kMaxName);
  AppendField(&out, "default", is_default ? 1 : 0);
  AppendField(&out, "jobs", jobs);
  AppendField(&out, "paper", settings_.paper == 0 ? -1 : paper_);
  AppendField(&out, "media", settings_.media, kMaxMediaList);
  AppendField(&out, "text", settings_.text, kMaxText);
  out.push_back('\n');
  return out;
}

}  // namespace printserverd
