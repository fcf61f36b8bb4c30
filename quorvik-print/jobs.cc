// The commands that change jobs: hold, release, remove, change, again, move.
#include "quorvik-print/jobs.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "printserver/changes.h"
#include "printserver/nc.h"
#include "printserver/read_lists.h"
#include "printserver/words.h"

namespace cli {

namespace {

constexpr size_t kWholeId = 32;
constexpr size_t kLongestNumber = 9;

bool AllOf(const std::string& word, const char* characters) {
  return word.find_first_not_of(characters) == std::string::npos;
}

bool IsNumber(const std::string& word) {
  return !word.empty() && word.size() <= kLongestNumber && AllOf(word, "0123456789");
}

// The beginnings of ids may be written in capitals.
std::string InSmallLetters(std::string word) {
  for (char& c : word) {
    if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
  }
  return word;
}

// Tells what became of one job; the exit code.
int Report(const NC_Job& job, int32_t status, const char* done, const std::string& after = "") {
  if (status < 0) return Lost("; whether " + NameOf(job) + " was changed is not known" + after);
  if (status != NC_STATUS_DONE) {
    return Fail(kRefused, NameOf(job) + ": " + nc::RefusalText(status, nc::Asked::kJob) + after);
  }
  PrintLine(std::string(done) + " " + NameOf(job));
  return kGood;
}

// Does `act` to each job that is named, which gives an exit code; only a lost connection ends it.
template <typename Act>
int ForEachJob(Session& session, const Options& options, Act act) {
  std::vector<NC_Job> jobs;
  if (!nc::ReadJobs(session.fd(), &jobs)) return Lost();
  int first = kGood;
  for (const std::string& word : options.words) {
    const NC_Job* job = FindJob(jobs, word);
    const int code = job ? act(*job, jobs) : kRefused;
    Note(code, &first);
    if (code == kNoServer) break;
  }
  return first;
}

nc::Change ChangeOf(const Options& options) {
  nc::Change change;
  const struct {
    Option option;
    const std::string& value;
    std::optional<std::string>* to;
  } texts[] = {{kTitleOption, options.title, &change.document},
               {kOwnerOption, options.owner, &change.owner},
               {kPrinterOption, options.printer, &change.printer},
               {kProfileOption, options.profile, &change.profile},
               {kMediaOption, options.media, &change.media}};
  for (const auto& row : texts) {
    if (options.Has(row.option)) *row.to = row.value;
  }
  if (options.Has(kCopiesOption)) change.copies = static_cast<int32_t>(options.copies);
  if (options.Has(kPriorityOption)) change.priority = static_cast<int32_t>(options.priority);
  if (options.Has(kHoldOption)) change.hold = true;
  if (options.Has(kColourOption)) change.colour = options.colour;
  return change;
}

bool HasEnded(const NC_Job& job) {
  return job.state == NC_JOB_DONE || job.state == NC_JOB_FAILED;
}

int MoveOne(Session& session, const NC_Job& job, const nc::Change& change, const char* done) {
  const nc::Moved moved = nc::MoveJob(session.fd(), job, change);
  const char* const after = !moved.left_held   ? ""
                            : moved.status < 0 ? "; it may be held now: release it"
                                               : "; it is held now: release it";
  return Report(job, moved.status, done, after);
}

// Asks on the terminal; the caller has made sure that there is one, or that nobody need be asked.
bool MayRemove(const Options& options, size_t count) {
  if (options.Has(kYesOption)) return true;
  fprintf(stderr, "remove %zu %s? [y/N] ", count, count == 1 ? "job" : "jobs");
  char answer[16] = "";
  if (!fgets(answer, sizeof answer, stdin)) return false;
  return answer[0] == 'y' || answer[0] == 'Y';
}

int RemoveMany(Session& session, const Options& options) {
  std::vector<NC_Job> jobs;
  if (!nc::ReadJobs(session.fd(), &jobs)) return Lost();
  if (!options.Has(kAllOption)) {
    std::erase_if(jobs,
                  [owner = options.Owner()](const NC_Job& job) { return owner != job.owner; });
  }
  if (jobs.empty()) {
    PrintLine("no jobs");
    return kGood;
  }
  if (!MayRemove(options, jobs.size())) return Fail(kRefused, "nothing was removed");
  // The question may have lain there for long.
  if (const int code = session.Connect()) return code;
  int first = kGood;
  for (const NC_Job& job : jobs) {
    const int32_t status = NC_RemovePrintRequest(session.fd(), job.id);
    if (status == NC_STATUS_UNKNOWN_ID) continue;  // it went by itself
    const int code = Report(job, status, "removed");
    Note(code, &first);
    if (code == kNoServer) break;
  }
  return first;
}

}  // namespace

std::string IdText(const uint8_t* id) {
  char text[kWholeId + 1];
  NC_FormatId(id, text);
  return text;
}

std::string NameOf(const NC_Job& job) {
  const std::string number = job.number > 0 ? std::to_string(job.number) : IdText(job.id);
  return number + " " + job.document + (job.owner[0] ? ", " : "") + job.owner;
}

bool NamesJob(const std::string& word) {
  if (IsNumber(word)) return true;
  return word.size() >= 8 && word.size() <= kWholeId && AllOf(word, "0123456789abcdefABCDEF");
}

const NC_Job* FindJob(const std::vector<NC_Job>& jobs, const std::string& word) {
  const bool is_number = IsNumber(word);
  const int number = is_number ? std::stoi(word) : 0;
  const std::string beginning = InSmallLetters(word);
  const NC_Job* found = nullptr;
  int count = 0;
  for (const NC_Job& job : jobs) {
    const bool is_meant = is_number ? number > 0 && job.number == number
                                    : IdText(job.id).compare(0, word.size(), beginning) == 0;
    if (!is_meant) continue;
    found = &job;
    ++count;
  }
  if (count == 1) return found;
  Fail(kRefused, word + (count ? ": more than one job begins so" : ": no such job"));
  return nullptr;
}

int HoldOrRelease(Session& session, const Options& options) {
  const bool hold = options.command == "hold";
  nc::Change change;
  change.hold = hold;
  return ForEachJob(session, options, [&](const NC_Job& job, const auto&) {
    // A job that is done would be printed once more: that is a command of its own.
    const int32_t status = job.state == NC_JOB_DONE ? NC_STATUS_WRONG_STATE
                                                    : nc::ChangeJob(session.fd(), job.id, change);
    return Report(job, status, hold ? "held" : "released");
  });
}

int Remove(Session& session, const Options& options) {
  if (options.given & (kMineOption | kAllOption)) return RemoveMany(session, options);
  return ForEachJob(session, options, [&](const NC_Job& job, const auto&) {
    return Report(job, NC_RemovePrintRequest(session.fd(), job.id), "removed");
  });
}

int Change(Session& session, const Options& options) {
  nc::Change change = ChangeOf(options);
  return ForEachJob(session, options, [&](const NC_Job& job, const std::vector<NC_Job>& jobs) {
    if (options.Has(kBeforeOption)) {
      const NC_Job* before = FindJob(jobs, options.before);
      if (!before) return kRefused;
      change.before = IdText(before->id);
    }
    if (change.printer && !HasEnded(job)) return MoveOne(session, job, change, "changed");
    return Report(job, nc::ChangeJob(session.fd(), job.id, change), "changed");
  });
}

int Again(Session& session, const Options& options) {
  const nc::Change change = ChangeOf(options);
  return ForEachJob(session, options, [&](const NC_Job& job, const auto&) {
    if (!HasEnded(job)) return Fail(kRefused, NameOf(job) + ": it has not ended yet");
    if (!nc::CanPrintAgain(job)) {
      return Fail(kRefused, NameOf(job) + ": the server no longer has its document");
    }
    return Report(job, nc::PrintAgain(session.fd(), job, change), "printing again");
  });
}

int Move(Session& session, const Options& options) {
  const std::string &from = options.words[0], &to = options.words[1];
  std::vector<NC_Printer> printers;
  std::vector<NC_Job> jobs;
  if (!nc::ReadPrinters(session.fd(), &printers)) return Lost();
  if (!nc::ReadJobs(session.fd(), &jobs)) return Lost();
  std::erase_if(jobs, [&](const NC_Job& job) { return from != job.printer || HasEnded(job); });
  const auto is_known = [&](const std::string& name) {
    return std::any_of(printers.begin(), printers.end(),
                       [&](const NC_Printer& printer) { return name == printer.name; });
  };
  // Jobs may wait for a printer that is no longer there.
  if (!is_known(from) && jobs.empty()) return Fail(kRefused, from + ": no such printer");
  if (!is_known(to)) return Fail(kRefused, to + ": no such printer");
  if (jobs.empty()) PrintLine("no jobs");
  nc::Change change;
  change.printer = to;
  int first = kGood;
  for (const NC_Job& job : jobs) {
    const int code = MoveOne(session, job, change, "moved");
    Note(code, &first);
    if (code == kNoServer) break;
  }
  return first;
}

}  // namespace cli
