#include "printserverd/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "printserverd/disk.h"
#include "printserverd/log.h"

namespace printserverd {

namespace {

constexpr size_t kIdDigits = 8;
constexpr size_t kCounterDigits = 10;
constexpr size_t kPartSize = 38;

void Fail(PrintRun* run, Fault fault, std::string reason, const std::string& error) {
  run->fault = fault;
  run->reason = std::move(reason);
  run->error = error;
}

bool CopyBytes(PrintRun* run, Stretch stretch) {
  static char buffer[1 << 18];
  while (stretch.count > 0) {
    const auto part = static_cast<size_t>(std::min<int64_t>(stretch.count, sizeof buffer));
    const ssize_t n = pread(run->document.get(), buffer, part, stretch.from);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      Fail(run, Fault::kDocument, "document-unreadable",
           n == 0 ? std::string("the document is shorter than it was")
                  : std::string("the document cannot be read: ") + strerror(errno));
      return false;
    }
    if (!WriteAll(run->output.get(), buffer, static_cast<size_t>(n))) {
      FailOutput(run, errno);
      return false;
    }
    stretch.from += n;
    stretch.count -= n;
    run->written += n;
  }
  return true;
}

struct Old {
  int64_t counter;
  timespec modified;
  std::string name;
  bool operator<(const Old& other) const {
    if (counter != other.counter) return counter < other.counter;
    if (counter != 0) return name < other.name;
    if (modified.tv_sec != other.modified.tv_sec) return modified.tv_sec < other.modified.tv_sec;
    if (modified.tv_nsec != other.modified.tv_nsec) {
      return modified.tv_nsec < other.modified.tv_nsec;
    }
    return name < other.name;
  }
};

// Keeps the newest outputs. What has no name of an output is somebody else's.
void TrimOutputs(int folder, const std::string& subfolder, int64_t keep) {
  std::vector<Old> outputs;
  OutputParts parts;
  for (std::string& name : NamesIn(folder)) {
    if (ParseOutputName(name, &parts)) outputs.push_back({parts.counter, {}, std::move(name)});
  }
  if (outputs.size() <= static_cast<size_t>(keep)) return;
  const auto foreign = [folder](Old& output) {
    struct stat info;
    if (fstatat(folder, output.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) return true;
    output.modified = info.st_mtim;
    return !S_ISREG(info.st_mode);
  };
  outputs.erase(std::remove_if(outputs.begin(), outputs.end(), foreign), outputs.end());
  std::sort(outputs.begin(), outputs.end());
  for (size_t i = 0; i + static_cast<size_t>(keep) < outputs.size(); ++i) {
    if (unlinkat(folder, outputs[i].name.c_str(), 0) != 0) continue;
    Log("printed/" + subfolder + "/" + outputs[i].name + " removed: one too many");
  }
}

bool AllOf(std::string_view text, std::string_view allowed) {
  return text.find_first_not_of(allowed) == std::string_view::npos;
}

constexpr std::string_view kDecimal = "0123456789";
constexpr std::string_view kHex = "0123456789abcdef";

}  // namespace

Fd OpenOutputFolder(int root, const std::string& subfolder) {
  const Fd printed = OpenSubfolder(root, "printed", true);
  return printed ? OpenSubfolder(printed.get(), subfolder, true) : Fd();
}

std::string PartName(const RequestId& id) {
  return "." + HexOfId(id) + ".part";
}

void RemoveParts(int folder) {
  for (const std::string& name : NamesIn(folder)) {
    const bool part = name[0] == '.' && name.size() == kPartSize && name.ends_with(".part") &&
                      AllOf(std::string_view(name).substr(1, 32), kHex);
    if (part) unlinkat(folder, name.c_str(), 0);
  }
}

void FailOutput(PrintRun* run, int error) {
  const std::string text = std::string("the output cannot be written: ") + strerror(error);
  if (error == EFBIG || error == ENAMETOOLONG)
    return Fail(run, Fault::kDocument, "document-rejected", text);
  const bool full = error == ENOSPC || error == EDQUOT;
  Fail(run, Fault::kPrinter, full ? "disk-full" : "output-error", text);
}

void OpenRun(PrintRun* run, const std::function<Fd()>& open_document) {
  run->document = open_document();
  if (!run->document) {
    const bool short_of = errno == EMFILE || errno == ENFILE || errno == ENOMEM;
    return Fail(run, short_of ? Fault::kPrinter : Fault::kDocument,
                short_of ? "output-error" : "document-unreadable",
                std::string("the document cannot be read: ") + strerror(errno));
  }
  run->folder = OpenOutputFolder(run->root, run->subfolder);
  if (run->folder) run->output = CreateFileIn(run->folder.get(), run->part);
  if (!run->output) FailOutput(run, errno);
}

void CopyStretches(PrintRun* run, const std::vector<Stretch>& stretches) {
  const int64_t before = run->written - run->written % kFlushEach;
  for (const Stretch& stretch : stretches) {
    if (!CopyBytes(run, stretch)) return;
  }
  if (run->written - before < kFlushEach) return;
  sync_file_range(run->output.get(), before, run->written - before, SYNC_FILE_RANGE_WRITE);
}

void FinishRun(PrintRun* run, const std::string& name, int64_t keep) {
  const int folder = run->folder.get();
  if (!SyncFile(run->output.get()) ||
      renameat(folder, run->part.c_str(), folder, name.c_str()) != 0) {
    return FailOutput(run, errno);
  }
  // It is printed, whatever comes: a sync that fails here is found by the output's name.
  run->whole = true;
  if (!SyncFolder(folder)) LogRarely(std::string("cannot sync a folder: ") + strerror(errno));
  TrimOutputs(folder, run->subfolder, keep);
}

std::string OutputName(const Job& job, int64_t counter) {
  const time_t now = time(nullptr);
  tm parts{};
  gmtime_r(&now, &parts);
  char stamp[32];
  strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%S", &parts);
  std::string digits = std::to_string(counter);
  if (digits.size() < kCounterDigits) digits.insert(0, kCounterDigits - digits.size(), '0');
  return digits + "-" + stamp + "-" + HexOfId(job.id).substr(0, kIdDigits) + "-" +
         PlainNameOf(job.ticket.document, 200);
}

bool ParseOutputName(std::string_view name, OutputParts* parts) {
  *parts = OutputParts();
  const size_t dash = name.find('-');
  if (dash >= kCounterDigits && dash < 19 && AllOf(name.substr(0, dash), kDecimal)) {
    parts->counter = ParseNumber(name.substr(0, dash), 0, INT64_MAX).value_or(0);
    if (parts->counter == 0) return false;
    name.remove_prefix(dash + 1);
  }
  // 20260301T093000-0123abcd-N
  if (name.size() < 26 || name[8] != 'T' || name[15] != '-' || name[24] != '-') return false;
  parts->id = name.substr(16, kIdDigits);
  return AllOf(name.substr(0, 8), kDecimal) && AllOf(name.substr(9, 6), kDecimal) &&
         AllOf(parts->id, kHex);
}

bool SameContent(int a, int b) {
  std::vector<char> left(1 << 16), right(1 << 16);
  for (off_t at = 0;;) {
    const ssize_t n = pread(a, left.data(), left.size(), at);
    const ssize_t m = pread(b, right.data(), right.size(), at);
    if (n < 0 || n != m || memcmp(left.data(), right.data(), static_cast<size_t>(n)) != 0) {
      return false;
    }
    if (n == 0) return true;
    at += n;
  }
}

}  // namespace printserverd
