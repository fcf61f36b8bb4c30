// What an earlier run has left in the spool.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "printserverd/log.h"
#include "printserverd/output.h"
#include "printserverd/queue.h"

namespace printserverd {

namespace {

std::string_view BaseOf(std::string_view name) {
  return name.substr(0, name.rfind('.'));
}

}  // namespace

void Queue::Load() {
  const std::vector<std::string> names = NamesIn(uses_.jobs);
  if (errno != 0) {
    Log(std::string("cannot read all of the folder of jobs: ") + strerror(errno) +
        "; what is missing is left where it is");
  }
  bool aside = false;
  for (const std::string& name : names) {
    if (name.ends_with(".job") && !LoadJob(name)) aside = SetJobAside(name) || aside;
  }
  if (aside && (!SyncFolder(uses_.aside) || !SyncFolder(uses_.jobs))) {
    Log(std::string("cannot sync the spool: ") + strerror(errno));
  }
  Sweep(names);
  FinishPrinted();
  Touch();
}

bool Queue::LoadJob(const std::string& name) {
  Job job;
  std::string text;
  const bool read = ReadFileIn(uses_.jobs, name, kMaxTicket, &text);
  if (!read && !IsForeign(errno)) {
    Log("jobs/" + name + " cannot be read: " + strerror(errno) + "; it is left where it is");
    return true;
  }
  const bool whole = read && ParseStoredRecord(text, &job);
  uses_.counters->SawNumber(job.number);  // whether or not the rest can be used
  if (!whole || !IdOfHex(BaseOf(name), &job.id) || jobs_.size() >= kMaxJobs) return false;
  if (job.number == 0) {
    job.number = uses_.counters->NextNumber();
    job.place = PlaceOf(job.number);
  }
  if (job.AtPrinter()) {
    job.state = JobState::kWaiting;
    job.since = 0;
  }
  CheckDocument(&job);
  Link(&jobs_.emplace(job.id, job).first->second);
  return true;
}

void Queue::CheckDocument(Job* job) {
  const Fd document = OpenFileIn(uses_.jobs, DocumentName(job->id));
  struct stat info;
  const bool there = document && fstat(document.get(), &info) == 0;
  job->kept = there && info.st_size == job->size;
  if (job->state == JobState::kDone) job->printed = job->Total();
  if (job->kept || job->Ended()) return;
  job->state = JobState::kFailed;
  job->reasons = "document-lost";
  job->text = there ? "the document is not whole" : "the document is lost";
  job->finished = job->since = time(nullptr);
  Store(*job, nullptr);
}

// The document first: one that is left without its record would be taken for one that was never
// accepted. Where that fails nothing is touched.
bool Queue::SetJobAside(const std::string& name) {
  const std::string document = std::string(BaseOf(name)) + ".doc";
  const std::string document_as = MoveAside(uses_.jobs, document, uses_.aside);
  const bool no_document = document_as.empty() && errno == ENOENT;
  std::string record_as;
  if (!document_as.empty() || no_document) {
    record_as = MoveAside(uses_.jobs, name, uses_.aside);
    const int error = errno;
    if (record_as.empty() && !no_document) {
      renameat(uses_.aside, document_as.c_str(), uses_.jobs, document.c_str());
    }
    errno = error;
  }
  const std::string what = "jobs/" + name + " is not a job";
  if (record_as.empty()) {
    Log(what + " and cannot be set aside: " + strerror(errno) + "; it is left where it is");
    return false;
  }
  Log(what + ": set aside as aside/" + record_as +
      (no_document ? std::string() : ", its document as aside/" + document_as));
  return true;
}

// Removes what was never accepted: documents without any record, drafts of records.
void Queue::Sweep(const std::vector<std::string>& names) {
  int64_t removed = 0;
  for (const std::string& name : names) {
    RequestId id;
    struct stat info;
    if (name.ends_with(".job.new")) unlinkat(uses_.jobs, name.c_str(), 0);
    if (!name.ends_with(".doc") || !IdOfHex(BaseOf(name), &id) || Find(id)) continue;
    const bool record =
        fstatat(uses_.jobs, RecordName(id).c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
    if (record || errno != ENOENT) continue;
    if (unlinkat(uses_.jobs, name.c_str(), 0) == 0) ++removed;
  }
  if (removed > 0) Log(std::to_string(removed) + " documents that were never accepted removed");
}

// A run that was cut off between the end of an output and the record of its job has left the
// output: printing it once more would be once too often.
void Queue::FinishPrinted() {
  for (const PrinterSettings& printer : uses_.settings.printers) {
    const auto lane = lanes_.find(printer.name);
    FinishPrintedAt(printer, lane == lanes_.end() ? Lane() : lane->second);
  }
  for (auto& [id, job] : jobs_) {
    if (job.outputs < 0) job.outputs = uses_.counters->last_output();
  }
}

void Queue::FinishPrintedAt(const PrinterSettings& printer, const Lane& lane) {
  const Fd printed = OpenSubfolder(uses_.root, "printed", false);
  const Fd folder = printed ? OpenSubfolder(printed.get(), printer.folder, false) : Fd();
  if (!folder) return;
  std::multimap<std::string, const Job*> waiting;
  for (const Job* job : lane.waiting) {
    if (job->outputs >= 0) waiting.emplace(HexOfId(job->id).substr(0, 8), job);
  }
  std::vector<RequestId> done;
  for (const std::string& name : NamesIn(folder.get())) {
    OutputParts parts;
    if (!ParseOutputName(name, &parts) || parts.counter == 0) continue;
    uses_.counters->SawOutput(parts.counter);
    const auto [first, last] = waiting.equal_range(std::string(parts.id));
    for (auto at = first; at != last; ++at) {
      const Job& job = *at->second;
      if (parts.counter <= job.outputs) continue;
      const Fd output = OpenFileIn(folder.get(), name);
      const Fd document = OpenFileIn(uses_.jobs, DocumentName(job.id));
      if (output && document && SameContent(output.get(), document.get())) done.push_back(job.id);
    }
  }
  for (const RequestId& id : done) {
    if (!Find(id)->Ended()) Finish(id, JobState::kDone, "", "");
  }
}

}  // namespace printserverd
