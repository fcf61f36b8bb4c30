// The commands that do something: print, hold, release, remove, gamut.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "os/os.h"
#include "printserver/nc.h"
#include "printserver/records.h"
#include "quorvik-print/cli.h"
#include "quorvik-print/jobs.h"

namespace cli {

namespace {

constexpr int32_t kTicketSize = 4096;

int Lost() {
  return Fail(kNoServer, std::string("the connection to the server failed: ") + strerror(errno));
}

// Keeps the first failure.
void Note(int code, int* first) {
  if (*first == kGood) *first = code;
}

std::string BaseName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

bool MakeTicket(const std::string& path, const Options& options, char* ticket) {
  ticket[0] = '\0';
  const std::string owner = options.owner.empty() ? OS_GetUserName() : options.owner;
  const std::pair<const char*, std::string> texts[] = {
      // A name that is too long for the server is still worth printing.
      {"document", BaseName(path).substr(0, NC_DOCUMENT_TEXT - 1)},
      {"owner", owner},
      {"printer", options.printer},
      {"profile", options.profile},
      {"media", options.media},
  };
  const std::pair<const char*, int64_t> numbers[] = {
      {"copies", options.copies}, {"priority", options.priority}, {"hold", options.hold ? 1 : 0}};
  bool fits = true;
  for (const auto& [key, value] : texts) {
    if (value.empty()) continue;
    fits = fits && NC_AddTicketText(ticket, kTicketSize, key, value.c_str());
  }
  for (const auto& [key, value] : numbers) {
    fits = fits && NC_AddTicketNumber(ticket, kTicketSize, key, value);
  }
  return fits;
}

// Shows on a terminal how much of a file has gone.
int ShowProgress(void* context, int64_t sent, int64_t total) {
  auto* shown = static_cast<int*>(context);
  const int percent = total > 0 ? static_cast<int>(100 * sent / total) : 100;
  if (percent != *shown) fprintf(stderr, "\r%3d%%", percent);
  *shown = percent;
  return 0;
}

// `lost` tells whether the connection can be used no more.
int PrintFile(int fd, const std::string& path, const Options& options, bool* lost) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return Fail(kNoFile, path + ": " + strerror(errno));
  struct stat info;
  char ticket[kTicketSize];
  int code = kGood;
  if (fstat(file, &info) != 0 || !S_ISREG(info.st_mode)) {
    code = Fail(kNoFile, path + ": not a file that can be printed");
  } else if (!MakeTicket(path, options, ticket)) {
    code = Fail(kUsage, path + ": the options are too long");
  }
  uint8_t id[NC_ID_SIZE];
  if (code == kGood && NC_CreateRequestID(fd, id) < 0) code = Lost();
  if (code == kGood) {
    const bool terminal = isatty(STDERR_FILENO);
    int shown = -1;
    const int32_t status = NC_WritePrintRequestN(fd, id, ticket, file, info.st_size,
                                                 terminal ? ShowProgress : nullptr, &shown);
    if (terminal) fputs("\r    \r", stderr);
    if (status == NC_STATUS_DONE) {
      char text[33];
      NC_FormatId(id, text);
      printf("%s %s\n", text, Shown(path).c_str());
    } else if (status >= 0) {
      code = Fail(kRefused, path + ": refused: " + NC_StatusText(status));
    } else if (status == NC_BAD_REQUEST) {
      code = Fail(kNoFile, path + ": too large to be printed");
    } else if (status == NC_UNREADABLE) {
      code = Fail(kNoFile, path + ": cannot be read, or became shorter");
      *lost = true;
    } else {
      code = Lost();
    }
  }
  close(file);
  return code;
}

// The id that a word means: the whole of it, or the beginning of one in the queue. kGood, or a
// failure that has been told.
int FindId(int fd, const std::string& word, uint8_t* id) {
  if (NC_ParseId(word.c_str(), id)) return kGood;
  std::vector<NC_Job> jobs;
  if (!ReadJobs(fd, &jobs)) return kNoServer;
  int found = 0;
  for (const NC_Job& job : jobs) {
    char text[33];
    NC_FormatId(job.id, text);
    if (word.empty() || strncmp(text, word.c_str(), word.size()) != 0) continue;
    memcpy(id, job.id, sizeof job.id);
    ++found;
  }
  if (found == 1) return kGood;
  return Fail(kRefused, word + (found ? ": more than one job begins so" : ": no such job"));
}

// Does `act` to each job that is named; it returns the server's status byte, or below 0.
template <typename Act>
int ForEachJob(int fd, const Options& options, Act act) {
  int first = kGood;
  for (const std::string& word : options.words) {
    uint8_t id[NC_ID_SIZE];
    int code = FindId(fd, word, id);
    if (code == kGood) {
      const int32_t status = act(id);
      if (status < 0) {
        code = Lost();
      } else if (status != NC_STATUS_DONE) {
        code = Fail(kRefused, word + ": " + NC_StatusText(status));
      }
    }
    Note(code, &first);
    if (code == kNoServer) break;
  }
  return first;
}

// Whether a new file may take the place of what is there. A device or a link stays what it is.
bool MayReplace(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) != 0 || S_ISREG(info.st_mode);
}

}  // namespace

int Print(int fd, const Options& options) {
  int first = kGood;
  for (const std::string& path : options.words) {
    bool lost = false;
    const int code = PrintFile(fd, path, options, &lost);
    Note(code, &first);
    if (lost || code == kNoServer) break;
  }
  return first;
}

int HoldOrRelease(int fd, const Options& options) {
  const char* ticket = options.command == "hold" ? "hold=1" : "hold=0";
  return ForEachJob(fd, options, [&](const uint8_t* id) {
    return NC_WritePrintRequestN(fd, id, ticket, -1, 0, nullptr, nullptr);
  });
}

int Remove(int fd, const Options& options) {
  return ForEachJob(fd, options, [&](const uint8_t* id) { return NC_RemovePrintRequest(fd, id); });
}

int Gamut(int fd, const Options& options) {
  const std::string& name = options.words[0];
  char a[NC_GAMUT_A] = {};
  char b[NC_GAMUT_B] = {};
  if (name.size() >= sizeof a || options.folder.size() >= sizeof b) {
    return Fail(kUsage, "the name is too long");
  }
  memcpy(a, name.data(), name.size());
  memcpy(b, options.folder.data(), options.folder.size());
  const std::string output = options.output.empty() ? BaseName(name) : options.output;
  if (output.empty() || output.back() == '/') return Fail(kUsage, "--output wants a file");
  if (!MayReplace(output)) return Fail(kNoFile, output + ": not a file that can be replaced");
  // Beside its place first: what is there stays until the new one is whole, and whether the server
  // had the file shows in whether this one came to be.
  const std::string draft = output + "." + std::to_string(getpid()) + ".part";
  const int32_t result = NC_CopyGamutFileN(fd, a, b, draft.c_str(), INT32_MAX);
  if (result < 0) {
    const int error = errno;
    unlink(draft.c_str());
    errno = error;
    return Lost();
  }
  if (result > 0) {
    unlink(draft.c_str());
    return Fail(kNoFile, output + ": cannot be written");
  }
  if (rename(draft.c_str(), output.c_str()) == 0) return kGood;
  if (errno == ENOENT) return Fail(kRefused, name + ": the server has no such gamut file");
  const int error = errno;
  unlink(draft.c_str());
  return Fail(kNoFile, output + ": " + strerror(error));
}

}  // namespace cli
