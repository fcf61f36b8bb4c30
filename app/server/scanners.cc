// Scanners, profiles and their gamut files: asked for by the window, fetched by the worker.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/format/words.h"
#include "app/model/crumbs.h"
#include "app/model/folder.h"
#include "app/server/worker.h"
#include "app/work/background_task.h"
#include "printserver/nc.h"
#include "printserver/read_lists.h"

namespace console {
namespace {

constexpr int kConnectMs = 3000;
// More printers are not asked for their profiles one by one.
constexpr size_t kMostAsked = 64;
constexpr uint32_t kMostGamut = 64 << 20;  // bytes
constexpr int kMostNames = 1000;
constexpr const char* kFallback = "/tmp";

void Push(Server::Shared* shared, ServerRequest request) {
  const Locked lock(shared);
  shared->requests.push_back(std::move(request));
  pthread_cond_broadcast(&shared->wake);
}

// A file that only its user can read; it goes with the object.
class Draft {
 public:
  Draft() {
    const char* folder = getenv("TMPDIR");
    path_ = std::string(folder && folder[0] == '/' ? folder : kFallback) + "/quorvik-XXXXXX";
    file_ = os::Handle(mkostemp(path_.data(), O_CLOEXEC));
  }
  ~Draft() {
    if (file_) unlink(path_.c_str());
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  bool made() const { return bool(file_); }
  const std::string& path() const { return path_; }
  int fd() const { return file_.get(); }
  int64_t size() const {
    struct stat s {};
    return fstat(file_.get(), &s) == 0 ? int64_t{s.st_size} : 0;
  }

 private:
  std::string path_;
  os::Handle file_;
};

bool Fill(char* field, size_t size, const std::string& text) {
  memset(field, 0, size);
  if (text.size() >= size || text.find('/') != std::string::npos) return false;
  memcpy(field, text.data(), text.size());
  return true;
}

// 0, or below 0 when the connection failed. A printer without a file has the one for all.
int FetchGamut(int fd, const ServerRequest& r, const Draft& draft) {
  char name[NC_GAMUT_A], folder[NC_GAMUT_B];
  if (!Fill(name, sizeof name, r.name)) return 0;  // no file has such a name
  for (const std::string& printer : {r.printer, std::string()}) {
    if (!Fill(folder, sizeof folder, printer)) continue;
    const int result = NC_CopyGamutFileN(fd, name, folder, draft.path().c_str(), kMostGamut);
    if (result != 0) return result < 0 ? result : -1;
    if (draft.size() > 0 || printer.empty()) break;
  }
  return 0;
}

bool CopyWhole(int from, int to) {
  char piece[65536];
  int64_t at = 0;
  for (;;) {
    const ssize_t n = pread(from, piece, sizeof piece, at);
    if (n < 0) return false;
    if (n == 0) return true;
    if (!os::WriteAll(to, piece, size_t(n))) return false;
    at += n;
  }
}

// "Coated 2.icc" of "Coated.icc". What stands behind a dot and begins with a letter is an ending;
// "v2.1" has none.
std::string Numbered(const std::string& name, int number) {
  size_t end = name.rfind('.');
  if (end == std::string::npos || end == 0 || end + 1 == name.size() || name[end + 1] < 'A')
    end = name.size();
  return name.substr(0, end) + " " + std::to_string(number) + name.substr(end);
}

// What came of it, as a notice. Nothing that is there is written over.
Message SaveDraft(const Draft& draft, const ServerRequest& r) {
  for (int i = 1; i <= kMostNames; ++i) {
    const std::string name = i == 1 ? r.name : Numbered(r.name, i);
    const std::string path = r.folder + "/" + name;
    const os::Handle file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!file && errno == EEXIST) continue;
    const bool saved = file && CopyWhole(draft.fd(), file.get());
    const int error = errno;
    struct stat s {};
    if (saved && fstat(draft.fd(), &s) == 0) {
      const timespec times[2] = {s.st_mtim, s.st_mtim};
      futimens(file.get(), times);
    }
    if (saved)
      return {Tone::kGood, "Saved in " + Quoted(CrumbsOf(r.folder).back().text) +
                               ": the gamut file " + Quoted(name)};
    if (file) unlink(path.c_str());
    return {Tone::kBad,
            "Not saved: " + Quoted(r.name) + ", " +
                (error == ENOENT ? "the folder is not there any more" : TroubleText(error))};
  }
  return {Tone::kBad, "Not saved: " + Quoted(r.name) + ", too many files have that name"};
}

}  // namespace

void Server::AskLists() {
  Push(shared_.get(), {});
}

void Server::StartScan(const std::string& scanner) {
  Push(shared_.get(), {ServerRequest::kScan, scanner});
}

void Server::SaveGamut(const std::string& profile, const std::string& printer,
                       const std::string& folder) {
  Push(shared_.get(), {ServerRequest::kGamut, profile, printer, folder});
}

bool Worker::NextRequest(ServerRequest* request) {
  const Locked lock(shared_);
  if (shared_->requests.empty()) return false;
  *request = std::move(shared_->requests.front());
  shared_->requests.pop_front();
  return true;
}

// False when the connection for lists broke, with errno.
bool Worker::AnswerRequests() {
  ServerRequest request;
  while (NextRequest(&request)) {
    Began();
    bool good = true;
    if (request.kind == ServerRequest::kLists) good = ReadServerLists();
    if (request.kind == ServerRequest::kScan) good = StartScan(request.name);
    if (request.kind == ServerRequest::kGamut) SaveGamut(request);
    const int error = errno;
    Ended();
    const Locked lock(shared_);
    shared_->Published();
    errno = error;
    if (!good) return false;
  }
  return true;
}

bool Worker::ReadServerLists() {
  const int fd = shared_->open[kLists];
  const auto lists = std::make_shared<ServerLists>();
  std::vector<NC_Printer> printers;
  if (!nc::ReadScanners(fd, &lists->scanners) || !nc::ReadProfiles(fd, "", &lists->profiles) ||
      !nc::ReadPrinters(fd, &printers))
    return false;
  // How many printers have each.
  std::vector<size_t> owners(lists->profiles.size());
  lists->printers.resize(lists->profiles.size());
  if (printers.size() > 1 && printers.size() <= kMostAsked) {
    for (const NC_Printer& printer : printers) {
      std::vector<NC_Profile> of_one;
      if (!nc::ReadProfiles(fd, printer.name, &of_one)) return false;
      for (size_t i = 0; i < owners.size(); ++i)
        for (const NC_Profile& p : of_one)
          if (strcmp(p.name, lists->profiles[i].name) == 0 && owners[i]++ == 0)
            lists->printers[i] = printer.name;
    }
  }
  for (size_t i = 0; i < owners.size(); ++i)
    if (owners[i] != 1) lists->printers[i].clear();
  const Locked lock(shared_);
  shared_->state.lists = lists;
  return true;
}

bool Worker::StartScan(const std::string& scanner) {
  const std::string user = std::string(OS_GetUserName()).substr(0, NC_SCAN_TEXT - 1);
  const bool sent = NC_StartScanServer(shared_->open[kLists], scanner.c_str(), user.c_str()) == 1;
  const int error = errno;
  const Locked lock(shared_);
  shared_->AddNotice(
      {sent ? Tone::kGood : Tone::kBad,
       (sent ? "The server was asked to scan with " : "Not started: ") + Quoted(scanner)},
      true);
  errno = error;
  return sent;
}

// Uses a separate connection, since a file that is too large breaks it. A separate thread writes
// the file, since its folder may not answer.
void Worker::SaveGamut(const ServerRequest& request) {
  const auto draft = std::make_shared<Draft>();
  const int fd = Connect(kGamut, kConnectMs);
  const int result = fd >= 0 && draft->made() ? FetchGamut(fd, request, *draft) : -1;
  const bool too_large = result < 0 && errno == EMSGSIZE;
  Close(kGamut);
  const auto tell = [](const std::shared_ptr<Server::Shared>& shared, const Message& message) {
    const Locked lock(shared.get());
    shared->AddNotice(message, true);
    shared->Published();
  };
  const auto shared = shared_->shared_from_this();
  if (result < 0)
    return tell(shared,
                {Tone::kBad, "Not fetched: the gamut file of " + Quoted(request.name) +
                                 (too_large ? ", it is too large" : ", the connection broke")});
  if (draft->size() == 0)
    return tell(shared, {Tone::kPlain, "The server has no gamut file for " + Quoted(request.name)});
  const BackgroundTask task(
      [shared, draft, request, tell] { tell(shared, SaveDraft(*draft, request)); });
  if (task.failed()) tell(shared, {Tone::kBad, "Not saved: too much waits for the disk already"});
}

}  // namespace console
