#include "app/work/local_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <string_view>
#include <vector>

#include "app/work/spawn.h"
#include "app/work/user_folders.h"
#include "os/final_path.h"
#include "os/os.h"
#include "printserver/visible.h"

namespace console {
namespace {

constexpr const char* kProgram = "printserverd";
constexpr off_t kMostLog = 1 << 20;  // bytes: past that the log begins again
constexpr int kLookMs = 20;

// Servers that this program has started. Those that have ended are noted before the next start, so
// that no more than a few ended ones wait for it.
struct Started {
  std::mutex lock;
  std::vector<Child> all;

  void Reap() {
    int status = 0;
    std::erase_if(all, [&status](Child& child) { return child.HasEnded(&status); });
  }
};
Started& TheStarted() {
  static auto* started = new Started;
  return *started;
}

// The log, and where in it the messages of this start begin.
class Log {
 public:
  bool Open(const std::string& folder) {
    if (folder.empty() || !MakeUserFolder(folder)) return false;
    path_ = folder + "/printserverd.log";
    file_ = os::Handle(open(
        path_.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    struct stat s {};
    if (!file_ || fstat(file_.get(), &s) != 0 || !S_ISREG(s.st_mode)) return false;
    if (s.st_size > kMostLog && ftruncate(file_.get(), 0) == 0) s.st_size = 0;
    begin_ = s.st_size;
    return true;
  }
  int fd() const { return file_.get(); }
  const std::string& path() const { return path_; }
  // What the server has said since, whole lines only.
  std::string Read() const {
    char text[8192];
    const ssize_t got = pread(file_.get(), text, sizeof text, begin_);
    const std::string_view said(text, got > 0 ? size_t(got) : 0);
    return std::string(said.substr(0, said.rfind('\n') + 1));
  }

 private:
  std::string path_;
  os::Handle file_;
  off_t begin_ = 0;
};

// What stands between two texts; "" when they are not there.
std::string Between(const std::string& text, const std::string& before, const std::string& after) {
  const size_t found = text.find(before);
  if (found == std::string::npos) return "";
  const size_t begin = found + before.size(), end = text.find(after, begin);
  return end == std::string::npos ? "" : text.substr(begin, end - begin);
}

std::string SpoolIn(const std::string& said) {
  return said.find("listening on ") == std::string::npos
             ? ""
             : Between(said, ", spool ", ", printers: ");
}

// Why it ended, from its messages.
std::string TroubleIn(const std::string& said, const std::string& log) {
  if (said.find("cannot listen on ") != std::string::npos)
    return "The print server did not start: another program uses its address, " +
           nc::VisibleName(Between(said, "cannot listen on ", ": "));
  const std::string spool = Between(said, "spool ", ": another printserverd uses it");
  if (!spool.empty())
    return "The print server did not start: another one uses the spool " + nc::VisibleName(spool);
  if (said.find("printserverd.conf") != std::string::npos)
    return "The print server did not start: its configuration has a mistake, which " +
           nc::VisibleName(log) + " tells";
  return "The print server did not start; its messages are in " + nc::VisibleName(log);
}

LocalServerResult Refused(const std::string& why, const std::string& log = "") {
  LocalServerResult result;
  result.message = why;
  result.log = log;
  return result;
}

// "" is this computer, as it is for those who connect.
std::string HostIn(const std::string& server) {
  return server.substr(0, server.find(':'));
}

Program ProgramFor(const std::string& path, const std::string& server, const Log& log) {
  Program program;
  program.words = {path};
  const std::string host = HostIn(server).empty() ? "localhost" : "";
  if (!server.empty()) program.words.insert(program.words.end(), {"--listen", host + server});
  const std::string config =
      UserFolder("XDG_CONFIG_HOME", "/.config") + "/quorvik/printserverd.conf";
  struct stat s {};
  if (config[0] == '/' && stat(config.c_str(), &s) == 0)
    program.words.insert(program.words.end(), {"--config", config});
  program.error = log.fd();
  program.place = Program::kOwnSession;
  return program;
}

// Until it says that it listens, has ended, or time has run out.
LocalServerResult AwaitListening(Child* child, const Log& log, int ms) {
  LocalServerResult result;
  result.log = log.path();
  int status = 0;
  for (int waited = 0;; waited += kLookMs) {
    const bool ended = child->HasEnded(&status);
    result.spool = SpoolIn(log.Read());
    result.started = !ended && !result.spool.empty();
    if (result.started)
      result.message = "A print server was started; its spool is " + nc::VisibleName(result.spool);
    else if (ended)
      result.message = TroubleIn(log.Read(), log.path());
    else if (waited >= ms)
      result.message =
          "The print server was started, but does not answer yet; its messages are in " +
          nc::VisibleName(log.path());
    if (!result.message.empty()) break;
    OS_Sleep(kLookMs);
  }
  if (!result.started) result.spool.clear();
  result.pid = child->pid();
  return result;
}

bool IsLoopback(const std::string& server) {
  in_addr address{};
  return IsLocalhost(server) || (inet_pton(AF_INET, HostIn(server).c_str(), &address) == 1 &&
                                 ntohl(address.s_addr) >> 24 == 127);
}

}  // namespace

bool IsLocalhost(const std::string& server) {
  const std::string host = HostIn(server);
  return host.empty() || host == "localhost" || host == "127.0.0.1";
}

LocalServerResult StartLocalServer(const std::string& server, int ms) {
  const std::lock_guard<std::mutex> guard(TheStarted().lock);
  TheStarted().Reap();
  if (!IsLoopback(server)) return Refused("Only a server on this computer can be started");
  const std::string path = FindProgram(kProgram);
  if (path.empty()) return Refused("No print server is installed here: printserverd is missing");
  const std::string state = UserFolder("XDG_STATE_HOME", "/.local/state");
  Log log;
  if (!log.Open(state.empty() ? "" : state + "/quorvik"))
    return Refused("The print server was not started: its log cannot be written in " +
                   nc::VisibleName(state.empty() ? "the home folder" : state + "/quorvik"));
  Child child = Start(ProgramFor(path, server, log));
  if (!child.running()) return Refused("The print server could not be started", log.path());
  const LocalServerResult result = AwaitListening(&child, log, ms);
  if (child.running()) TheStarted().all.push_back(child);
  return result;
}

}  // namespace console
