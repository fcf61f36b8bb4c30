// What the server does before it serves: limits, spool, socket, signals, printers.
#include <arpa/inet.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "printserverd/log.h"
#include "printserverd/server.h"

namespace printserverd {

namespace {

constexpr size_t kMaxPeers = 2048;

// As many peers as open files allow: each may have a document open, and some are for the rest.
size_t PeersAllowed() {
  rlimit limit;
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 64;
  const rlim_t wanted = std::min<rlim_t>(2 * kMaxPeers + 512, limit.rlim_max);
  if (limit.rlim_cur < wanted) {
    limit.rlim_cur = wanted;
    setrlimit(RLIMIT_NOFILE, &limit);
    getrlimit(RLIMIT_NOFILE, &limit);
  }
  const rlim_t files = std::max<rlim_t>(limit.rlim_cur, 300);
  return std::min<size_t>(kMaxPeers, (files - 256) / 2);
}

constexpr const char* kSpoolFolders[] = {"jobs", "printed", "files", "gamut"};

// Whether a folder is a spool or may become one. The folder of something else, named by mistake,
// would be closed to everyone who uses it.
bool IsSpool(int root) {
  const std::vector<std::string> names = NamesIn(root);
  return std::count(names.begin(), names.end(), "lock") > 0 ||
         std::all_of(names.begin(), names.end(), [](const std::string& name) {
           return std::count(std::begin(kSpoolFolders), std::end(kSpoolFolders), name) > 0;
         });
}

std::string TextOf(const sockaddr_in& address) {
  char text[INET_ADDRSTRLEN];
  inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  return std::string(text) + ":" + std::to_string(ntohs(address.sin_port));
}

bool IsLoopback(const sockaddr_in& address) {
  return ntohl(address.sin_addr.s_addr) >> 24 == 127;
}

}  // namespace

Server::Server(const Options& options, Settings settings)
    : options_(options), settings_(std::move(settings)), buffer_(1 << 18) {}

Server::~Server() {
  for (const auto& peer : peers_) DropUpload(&peer->upload);
  disk_.reset();  // what was asked of it is done first
}

bool Server::OpenSpool(std::string* error) {
  const auto fail = [&](const std::string& what) {
    *error = "spool " + options_.spool + ": " + what;
    return false;
  };
  spool_.root = OpenOwnFolder(options_.spool);
  if (!spool_.root) return fail(strerror(errno));
  const int root = spool_.root.get();
  if (!IsSpool(root)) return fail("it holds other files");
  if (fchmod(root, 0700) != 0) return fail(strerror(errno));
  spool_.lock = Fd(openat(root, "lock", O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!spool_.lock) return fail(std::string("lock: ") + strerror(errno));
  if (flock(spool_.lock.get(), LOCK_EX | LOCK_NB) != 0) {
    return fail("another printserverd uses it");
  }
  Fd* const opened[] = {&spool_.jobs, &spool_.printed, &spool_.files, &spool_.gamut};
  for (size_t i = 0; i < std::size(opened); ++i) {
    *opened[i] = OpenSubfolder(root, kSpoolFolders[i], true);
    if (!*opened[i]) return fail(std::string(kSpoolFolders[i]) + ": " + strerror(errno));
  }
  return true;
}

bool Server::Listen(std::string* error) {
  sockaddr_in address = options_.listen;
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  listener_ = Fd(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  const int one = 1;
  if (!listener_ || setsockopt(listener_.get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one) != 0 ||
      bind(listener_.get(), generic, sizeof address) != 0 ||
      listen(listener_.get(), SOMAXCONN) != 0) {
    *error = "cannot listen on " + TextOf(address) + ": " + strerror(errno);
    return false;
  }
  socklen_t size = sizeof options_.listen;
  getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&options_.listen), &size);
  return true;
}

bool Server::WatchSignals() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);  // a limit on file sizes is a failed write, not the end
  sigset_t set;
  sigemptyset(&set);
  for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) sigaddset(&set, number);
  if (sigprocmask(SIG_BLOCK, &set, nullptr) != 0) return false;
  signals_ = Fd(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
  epoll_ = Fd(epoll_create1(EPOLL_CLOEXEC));
  if (!signals_ || !epoll_) return false;
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.ptr = &signals_;
  if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, signals_.get(), &event) != 0) return false;
  event.data.ptr = disk_.get();
  if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, disk_->fd(), &event) != 0) return false;
  event.data.ptr = &listener_;
  return epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, listener_.get(), &event) == 0;
}

// Printers that stay keep their job and their paper.
void Server::MakePrinters() {
  std::vector<std::unique_ptr<Printer>> before = std::move(printers_);
  printers_.clear();
  for (const PrinterSettings& wanted : settings_.printers) {
    const auto same = [&](const std::unique_ptr<Printer>& printer) {
      return printer && printer->settings().name == wanted.name &&
             printer->settings().folder == wanted.folder;
    };
    const auto found = std::find_if(before.begin(), before.end(), same);
    if (found != before.end()) {
      (*found)->Set(wanted);
      printers_.push_back(std::move(*found));
    } else {
      printers_.push_back(std::make_unique<Printer>(wanted, spool_.printed.get(), disk_.get(),
                                                    options_.faults.paper_out));
      printers_.back()->CleanUp();
    }
  }
  for (const auto& printer : before) {
    if (printer) printer->Stop(queue_.get());
  }
  queue_->CheckPrinters();
  queue_->Touch();
}

void Server::Reload() {
  Settings settings;
  std::string error;
  if (!LoadSettings(options_, true, &settings, &error)) {
    Log(error + "; the configuration stays as it was");
    return;
  }
  settings_ = std::move(settings);
  MakePrinters();
  Log("configuration read again, printers: " + std::to_string(printers_.size()));
}

bool Server::Start(std::string* error) {
  max_peers_ = PeersAllowed();
  if (!OpenSpool(error) || !Listen(error)) return false;
  SlowSyncs(static_cast<int>(options_.faults.slow_disk));
  disk_ = std::make_unique<Disk>();
  if (!disk_->Start() || !WatchSignals()) {
    *error = strerror(errno);
    return false;
  }
  queue_ = std::make_unique<Queue>(spool_.jobs.get(), settings_, disk_.get());
  queue_->Load();
  MakePrinters();
  Log("listening on " + TextOf(options_.listen) + ", spool " + options_.spool + ", printers: " +
      std::to_string(printers_.size()) + ", jobs: " + std::to_string(queue_->jobs().size()));
  if (!IsLoopback(options_.listen)) {
    Log("everyone who reaches this address can print, and change and remove jobs");
  }
  return true;
}

}  // namespace printserverd
