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
}  // namespace

Printer::Printer(const PrinterSettings& settings, int printed, bool no_paper)
    : settings_(settings),
      folder_(OpenSubfolder(printed, settings.folder, true)),
      no_paper_(no_paper),
      paper_(no_paper ? 0 : settings.paper) {
  if (no_paper_ && settings_.paper == 0) settings_.paper = 1;
  if (!folder_) Log("printer " + settings.name + ": folder not usable: " + strerror(errno));
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
  for (const std::string& name : NamesIn(folder_.get())) {
    if (name[0] == '.' && name.size() == 38) unlinkat(folder_.get(), name.c_str(), 0);
  }
}

void Printer::Fail(Job* job, Queue* queue, const std::string& why) {
  Log("printer " + settings_.name + ": " + job->ticket.document + ": " + why);
  queue->Finish(job, JobState::kFailed, why);
  Abandon();
}

void Printer::Abandon() {
  unlinkat(folder_.get(), PartName(current_).c_str(), 0);
  document_.Reset();
  output_.Reset();
  current_.clear();
  out_of_paper_ = false;
}

bool Printer::Begin(Job* job, int64_t now, Queue* queue) {
  current_ = job->id;
  job->state = JobState::kPrinting;
  job->printed = 0;
  job->paper_loaded = false;
  job->text.clear();
  queue->Touch();
  document_ = queue->OpenDocument(*job);
  if (!document_) {
    Fail(job, queue, std::string("the document cannot be read: ") + strerror(errno));
    return false;
  }
  unlinkat(folder_.get(), PartName(current_).c_str(), 0);
  output_ = CreateFileIn(folder_.get(), PartName(current_));
  if (!output_) {
    Fail(job, queue, std::string("the output cannot be written: ") + strerror(errno));
    return false;
  }
  if (no_paper_) paper_ = 0;
  has_sheet_ = out_of_paper_ = false;
  since_ = now;
  base_ = written_ = 0;
  return true;
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

bool Printer::CopyBytes(int64_t from, int64_t count) {
  static char buffer[1 << 18];
  while (count > 0) {
    const auto part = static_cast<size_t>(std::min<int64_t>(count, sizeof buffer));
    const ssize_t n = pread(document_.get(), buffer, part, from);
    if (n < 0 && errno == EINTR) continue;
    if (n == 0) errno = EIO;
    if (n <= 0 || !WriteAll(output_.get(), buffer, static_cast<size_t>(n))) return false;
    from += n;
    count -= n;
  }
  if (from - written_ >= kFlushEach) {
    sync_file_range(output_.get(), written_, from - written_, SYNC_FILE_RANGE_WRITE);
    written_ = from;
  }
  return true;
}

// Prints up to the byte `goal`, or to where the paper ends. False when the job has failed.
bool Printer::Print(Job* job, int64_t goal, Queue* queue) {
  while (job->printed < goal) {
    if (WantsSheet(*job) && !TakeSheet()) return true;
    const int64_t at = job->printed % job->size;
    const int64_t sheet_end =
        std::min(job->size, at - at % settings_.sheet_bytes + settings_.sheet_bytes);
    const int64_t count = std::min(goal - job->printed, sheet_end - at);
    if (job->printed < job->size && !CopyBytes(at, count)) {
      Fail(job, queue, std::string("the output cannot be written: ") + strerror(errno));
      return false;
    }
    job->printed += count;
    if (at + count == sheet_end) has_sheet_ = false;
    queue->Touch();
  }
  return true;
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

void Printer::TrimOutputs() {
  std::vector<std::string> names = NamesIn(folder_.get());
  names.erase(std::remove_if(names.begin(), names.end(),
                             [](const std::string& name) { return name[0] == '.'; }),
              names.end());
  std::sort(names.begin(), names.end());
  for (size_t i = 0; i + static_cast<size_t>(settings_.keep) < names.size(); ++i) {
    unlinkat(folder_.get(), names[i].c_str(), 0);
  }
}

void Printer::Complete(Job* job, Queue* queue) {
  if (fdatasync(output_.get()) != 0 || renameat(folder_.get(), PartName(current_).c_str(),
                                                folder_.get(), OutputName(*job).c_str()) != 0) {
    Fail(job, queue, std::string("the output cannot be written: ") + strerror(errno));
    return;
  }
  queue->Finish(job, JobState::kDone, "");
  document_.Reset();
  output_.Reset();
  current_.clear();
  TrimOutputs();
}

int Printer::Tick(int64_t now, Queue* queue) {
  Job* job = current_.empty() ? nullptr : queue->Find(current_);
  if (!current_.empty() && (!job || !job->AtPrinter())) Abandon();
  if (current_.empty()) {
    job = queue->Next(settings_.name);
    if (!job) return -1;
    if (!Begin(job, now, queue)) return 0;
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
  }
  int64_t goal = job->Total();
  if (settings_.rate > 0) {
    const double due = static_cast<double>(now - since_) * static_cast<double>(settings_.rate);
    goal = static_cast<int64_t>(
        std::min(static_cast<double>(goal), static_cast<double>(base_) + due / 1000));
  }
  const int64_t budget = job->printed + kBytesATick;
  if (!Print(job, std::min(goal, budget), queue)) return 0;
  if (WantsSheet(*job) && job->printed < std::max<int64_t>(goal, 1) && !TakeSheet()) {
    RunOut(job, now, queue);
    return Tick(now, queue);
  }
  if (job->printed >= job->Total()) {
    Complete(job, queue);
    return 0;
  }
  return goal > budget ? 0 : kTickMs;
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
