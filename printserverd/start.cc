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
#include <map>

#include "printserverd/log.h"
#include "printserverd/server.h"

namespace printserverd {

namespace {

constexpr size_t kMaxPeers = 2048;

// Open files: of the daemon itself, of a printer that prints, of a peer with its document.
constexpr size_t kOwnFiles = 64, kPrinterFiles = 3, kPeerFiles = 2;
constexpr size_t kFewestPeers = 16;

// How many files may be open, after the limit was raised as far as it goes.
size_t FilesAllowed() {
  rlimit limit;
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
  const rlim_t now = limit.rlim_cur;
  limit.rlim_cur = limit.rlim_max;
  return setrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : now;
}

constexpr const char* kSpoolFolders[] = {"jobs", "printed", "files", "gamut", "aside"};
constexpr const char* kSpoolFiles[] = {"counters", "printers", "counters.new", "printers.new"};

// Whether a folder is a spool or may become one. The folder of something else, named by mistake,
// would be closed to everyone who uses it.
bool IsSpool(int root) {
  const std::vector<std::string> names = NamesIn(root);
  return std::count(names.begin(), names.end(), "lock") > 0 ||
         std::all_of(names.begin(), names.end(), [](const std::string& name) {
           return std::count(std::begin(kSpoolFolders), std::end(kSpoolFolders), name) > 0 ||
                  std::count(std::begin(kSpoolFiles), std::end(kSpoolFiles), name) > 0;
         });
}

bool IsLoopback(const sockaddr_in& address) {
  return ntohl(address.sin_addr.s_addr) >> 24 == 127;
}

}  // namespace

std::string TextOf(const sockaddr_in& address) {
  char text[INET_ADDRSTRLEN];
  inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  return std::string(text) + ":" + std::to_string(ntohs(address.sin_port));
}

Server::Server(const Options& options, Settings settings)
    : options_(options), settings_(std::move(settings)) {
  TakeBuffer();
}

Server::~Server() {
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
  Fd* const opened[] = {&spool_.jobs, &spool_.printed, &spool_.files, &spool_.gamut, &spool_.aside};
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

// How many peers the open files allow beside so many printers.
bool Server::CountPeers(size_t printers, std::string* error) {
  const size_t files = FilesAllowed();
  const size_t wanted = kOwnFiles + kPrinterFiles * printers + kPeerFiles * kFewestPeers;
  if (files < wanted) {
    *error = "too few open files allowed: " + std::to_string(files) + ", and " +
             std::to_string(printers) + " printers need " + std::to_string(wanted);
    return false;
  }
  const size_t peers = (files - kOwnFiles - kPrinterFiles * printers) / kPeerFiles;
  max_peers_ = std::min(kMaxPeers, peers);
  return true;
}

// Printers that stay keep their job and their paper.
void Server::MakePrinters() {
  std::vector<std::unique_ptr<Printer>> before = std::move(printers_);
  printers_.clear();
  for (const PrinterSettings& printer : settings_.printers) entries_->Add(printer.name);
  entries_->StoreAdded();
  const PrinterUses uses = {spool_.root.get(), disk_.get(), queue_.get(), counters_.get(),
                            options_.faults};
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
      printers_.push_back(std::make_unique<Printer>(wanted, entries_->Of(wanted.name), uses));
    }
  }
  for (const auto& printer : before) {
    if (printer) printer->Stop();
  }
  std::map<std::string, Queue::PrinterView> views;
  for (const auto& printer : printers_) views.emplace(printer->settings().name, printer->View());
  queue_->SetPrinters(std::move(views));
}

void Server::Reload() {
  Settings settings;
  std::string error;
  if (!LoadSettings(options_, true, &settings, &error) ||
      !CountPeers(settings.printers.size(), &error)) {
    Log(error + "; the configuration stays as it was");
    return;
  }
  settings_ = std::move(settings);
  if (!log_->Open(settings_.access_log)) {
    Log("access log " + settings_.access_log + ": " + strerror(errno) + "; it stays where it was");
  }
  MakePrinters();
  Log("configuration read again, printers: " + std::to_string(printers_.size()));
}

// Takes over what an earlier run has stored. What cannot be understood is set aside; what cannot be
// read may be good, and nothing is to take its place.
bool Server::LoadSpool(std::string* error) {
  const int root = spool_.root.get();
  counters_ = std::make_unique<Counters>(root, disk_.get());
  entries_ = std::make_unique<PrinterEntries>(root, disk_.get());
  const auto aside = [&](const std::string& name) {
    const std::string as = MoveAside(root, name, spool_.aside.get());
    Log(name + (as.empty() ? " cannot be understood: it will be replaced"
                           : " cannot be understood: set aside as aside/" + as));
  };
  const auto load = [&](const std::string& name, auto* records) {
    if (records->Load()) return true;
    const int code = errno;
    if (code == 0) aside(name);
    if (code != 0) *error = name + " of the spool: " + strerror(code);
    return code == 0;
  };
  if (!load("counters", counters_.get()) || !load("printers", entries_.get())) return false;
  queue_ = std::make_unique<Queue>(QueueUses{root, spool_.jobs.get(), spool_.aside.get(), settings_,
                                             disk_.get(), counters_.get(), log_.get()});
  queue_->Load();
  MakePrinters();
  return true;
}

bool Server::Start(std::string* error) {
  if (!CountPeers(settings_.printers.size(), error)) return false;
  if (!OpenSpool(error) || !Listen(error)) return false;
  SimulateSyncs(static_cast<int>(options_.faults.slow_disk), options_.faults.sync_error);
  disk_ = std::make_unique<Disk>();
  if (!disk_->Start() || !WatchSignals()) {
    *error = strerror(errno);
    return false;
  }
  log_ = std::make_unique<AccessLog>(disk_.get());
  if (!log_->Open(settings_.access_log)) {
    *error = "access log " + settings_.access_log + ": " + strerror(errno);
    return false;
  }
  if (!LoadSpool(error)) return false;
  Log("listening on " + TextOf(options_.listen) + ", spool " + options_.spool + ", printers: " +
      std::to_string(printers_.size()) + ", jobs: " + std::to_string(queue_->size()));
  if (!IsLoopback(options_.listen)) {
    Log("everyone who reaches this address can print, and change and remove jobs");
  }
  return true;
}

}  // namespace printserverd
