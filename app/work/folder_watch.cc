#include "app/work/folder_watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/vfs.h>

#include <cerrno>
#include <chrono>
#include <mutex>

#include "app/work/folder_reader.h"
#include "os/final_path.h"
#include "toolkit/xw.h"

namespace console {
namespace {

constexpr int kLookMs = 1000;
// Changes that follow each other this fast are one.
constexpr int kTogetherMs = 150;
constexpr int kStopMs = 50;
constexpr uint32_t kEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                             IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

// Of file systems whose changes may be made on other machines: the system does not tell of those.
constexpr long kRemote[] = {0x6969 /* NFS */,
                            0x517B /* SMB */,
                            int(0xFF534D42) /* CIFS */,
                            int(0xFE534D42) /* SMB 2 */,
                            0x65735546 /* FUSE */,
                            0x5346414F /* AFS */,
                            0x01021997 /* 9P */};

bool IsRemote(const std::string& path) {
  struct statfs s {};
  if (statfs(path.c_str(), &s) != 0) return true;
  for (const long type : kRemote)
    if (int(s.f_type) == int(type)) return true;
  return false;
}

int64_t Now() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace

struct FolderWatch::Shared : std::enable_shared_from_this<Shared> {
  std::mutex lock;  // of what follows
  std::string path;
  FolderStamp since;
  int order = 0;  // counts what is to be watched
  int told = 0;   // of which order the change has been told
  bool stop = false;
  int64_t look_began = 0;  // 0: it does not look just now
  Changed on_change;       // the main thread's; null at the end
  os::Handle wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  os::Handle events{inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};

  void Run();
  void Tell();

 private:
  // The thread's alone.
  int watched_ = -1;  // of inotify
  bool looks_ = true;
  std::string path_;
  FolderStamp since_;
  int order_ = 0;

  bool TakeOrder();
  void Renew();
  bool WaitForEvents();
  void Began(bool on) {
    const std::lock_guard<std::mutex> guard(lock);
    look_began = on ? Now() : 0;
  }
};

// With the lock.
void FolderWatch::Shared::Tell() {
  told = order;
  XwPost(
      "changed", nullptr,
      [](void* data, int taken) {
        const std::unique_ptr<std::shared_ptr<Shared>> posted(
            static_cast<std::shared_ptr<Shared>*>(data));
        Shared& s = **posted;
        if (taken && s.on_change) s.on_change();
        // A folder does not change again for a replay: it has one at hand whenever its turn comes.
        if (!taken || !XwReplaying()) return;
        const std::lock_guard<std::mutex> guard(s.lock);
        s.Tell();
      },
      new std::shared_ptr<Shared>(shared_from_this()));
}

// False when it is to end.
bool FolderWatch::Shared::TakeOrder() {
  eventfd_t count;
  eventfd_read(wake.get(), &count);
  const std::lock_guard<std::mutex> guard(lock);
  order_ = order;
  since_ = since;
  if (path_ != path && watched_ >= 0) {
    inotify_rm_watch(events.get(), watched_);
    watched_ = -1;
  }
  path_ = path;
  return !stop;
}

void FolderWatch::Shared::Renew() {
  if (watched_ >= 0 || !events) return;
  watched_ = inotify_add_watch(events.get(), path_.c_str(), kEvents);
  looks_ = watched_ < 0 || IsRemote(path_);
}

// Until there is something to look at: true when the system tells of a change.
bool FolderWatch::Shared::WaitForEvents() {
  pollfd waits[] = {{wake.get(), POLLIN, 0}, {events.get(), POLLIN, 0}};
  poll(waits, events ? 2 : 1, looks_ ? kLookMs : -1);
  if (!events || !(waits[1].revents & POLLIN)) return false;
  poll(waits, 1, kTogetherMs);
  alignas(inotify_event) char bytes[4096];
  bool changed = false;
  for (ssize_t n; (n = read(events.get(), bytes, sizeof bytes)) > 0;) {
    for (ssize_t at = 0; at < n;) {
      const auto* e = reinterpret_cast<const inotify_event*>(bytes + at);
      at += ssize_t(sizeof *e + e->len);
      if (e->wd != watched_ && e->wd >= 0) continue;
      changed = true;
      if (e->mask & IN_IGNORED) watched_ = -1;
    }
  }
  if (watched_ < 0) looks_ = true;
  return changed;
}

void FolderWatch::Shared::Run() {
  bool changed = false;
  while (TakeOrder()) {
    Began(true);
    Renew();
    changed = changed || StampOf(path_) != since_;
    Began(false);
    {
      const std::lock_guard<std::mutex> guard(lock);
      if (changed && order == order_ && told != order) {
        Tell();
        changed = false;
      }
    }
    // What comes before the next order counts for that one.
    if (WaitForEvents()) changed = true;
  }
}

FolderWatch::FolderWatch(Changed changed) : shared_(std::make_shared<Shared>()) {
  shared_->on_change = std::move(changed);
}

FolderWatch::~FolderWatch() {
  shared_->on_change = nullptr;
  {
    const std::lock_guard<std::mutex> guard(shared_->lock);
    shared_->stop = true;
  }
  eventfd_write(shared_->wake.get(), 1);
  if (task_.started()) task_.WaitFor(kStopMs);
}

void FolderWatch::Watch(const std::string& path, const FolderStamp& since) {
  const std::lock_guard<std::mutex> guard(shared_->lock);
  shared_->path = path;
  shared_->since = since;
  const bool first = shared_->order++ == 0;
  if (XwReplaying()) {
    if (first) shared_->Tell();
    return;
  }
  if (!task_.started()) task_ = BackgroundTask([shared = shared_] { shared->Run(); });
  eventfd_write(shared_->wake.get(), 1);
}

int FolderWatch::SilentSeconds() const {
  const std::lock_guard<std::mutex> guard(shared_->lock);
  return shared_->look_began ? int((Now() - shared_->look_began) / 1000) : 0;
}

}  // namespace console
