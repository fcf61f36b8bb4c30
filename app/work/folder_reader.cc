#include "app/work/folder_reader.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <mutex>

#include "app/work/unread_entries.h"
#include "toolkit/xw.h"

namespace console {

FolderStamp StampOf(const std::string& path) {
  struct stat s {};
  if (stat(path.c_str(), &s) != 0) return {};
  return {s.st_mtim.tv_sec, s.st_mtim.tv_nsec};
}

namespace {

constexpr int kTypes = OS_LIST_FOLDERS | OS_LIST_FILES | OS_LIST_HIDDEN | OS_LIST_ALL_FOLDERS;

// 0, or the error.
int List(const std::string& path, FolderReading* r) {
  // Before it is read: what changes until then is seen by the watch.
  r->stamp = StampOf(path);
  FolderListing listing;
  listing.path = path;
  listing.stamp = r->stamp;
  listing.entries.reset(OS_ListDirN(path.c_str(), nullptr, &listing.count, kTypes, 0));
  if (listing.count < 0) return errno;
  const UnreadEntries unread =
      CountUnreadEntries(path.c_str(), listing.entries.get(), listing.count);
  r->content = FolderContent::Of(std::move(listing), unread);
  return 0;
}

int ListUpwards(std::string path, FolderReading* r) {
  for (;;) {
    const int error = List(path, r);
    if (error == 0 || path == "/") return error;
    r->select = LastName(path);
    path = ParentPath(path);
  }
}

// Whether it is a folder; counts it among the documents else, or as missing.
bool LookAt(const std::string& path, FolderReading* r) {
  struct stat s {};
  if (stat(path.c_str(), &s) == 0) {
    if (S_ISDIR(s.st_mode)) return true;
    S_ISREG(s.st_mode) ? void(++r->documents) : r->devices.push_back(LastName(path));
  } else if (errno == ENOENT || errno == ENOTDIR) {
    r->missing.push_back(LastName(path));
  }
  return false;
}

int ListAroundDocument(FolderReading* r) {
  const std::string& path = r->request.path;
  const bool folder = LookAt(path, r);
  for (const std::string& other : r->request.others) r->folders += LookAt(other, r);
  if (folder) return List(path, r);
  // Where none of them is, the folder that is shown is as good as any.
  if (r->documents + r->folders == 0 && r->devices.empty() && !r->missing.empty()) return ENOENT;
  r->select = LastName(path);
  return List(ParentPath(path), r);
}

void ReadFolder(FolderReading* r) {
  const FolderRequest& w = r->request;
  r->select = w.select;
  r->error = w.kind == FolderRequest::kUp         ? ListUpwards(w.path, r)
             : w.kind == FolderRequest::kDocument ? ListAroundDocument(r)
                                                  : List(w.path, r);
  struct statvfs s {};
  if (r->error != 0 || statvfs(r->content->path().c_str(), &s) != 0) return;
  r->free = int64_t(s.f_bavail) * int64_t(s.f_frsize);
  r->room = int64_t(s.f_blocks) * int64_t(s.f_frsize);
}

}  // namespace

FolderReader::Read FolderReader::read = ReadFolder;

// One that is being read. The task and the main thread share it.
struct FolderReader::Waiting {
  std::string number;
  FolderReading reading;
  std::mutex lock;                 // of `reader` while the task runs
  FolderReader* reader = nullptr;  // null once nobody waits for it
};

// Under the lock, so that one that has been dropped never takes the place of a later one.
void FolderReader::Post(const std::shared_ptr<Waiting>& waiting) {
  const std::lock_guard<std::mutex> guard(waiting->lock);
  if (!waiting->reader) return;
  XwPost("folder", waiting->number.c_str(), Take, new std::shared_ptr<Waiting>(waiting));
}

void FolderReader::Take(void* data, int taken) {
  const std::unique_ptr<std::shared_ptr<Waiting>> posted(
      static_cast<std::shared_ptr<Waiting>*>(data));
  Waiting& w = **posted;
  FolderReader* reader = w.reader;
  if (!taken || !reader || reader->waiting_ != *posted) return;
  reader->Drop();
  reader->show_(&w.reading);
}

void FolderReader::Ask(FolderRequest request) {
  Drop();
  auto waiting = std::make_shared<Waiting>();
  waiting->number = std::to_string(++number_);
  waiting->reading.request = std::move(request);
  waiting->reading.error = EAGAIN;  // where no thread can be had
  waiting->reader = this;
  waiting_ = waiting;
  task_ = BackgroundTask([waiting, how = read] {
    how(&waiting->reading);
    Post(waiting);
  });
  if (task_.failed()) Post(waiting);
}

void FolderReader::Drop() {
  if (waiting_) {
    const std::lock_guard<std::mutex> guard(waiting_->lock);
    waiting_->reader = nullptr;
  }
  task_.Drop();
  waiting_.reset();
}

const FolderRequest* FolderReader::request() const {
  return waiting_ ? &waiting_->reading.request : nullptr;
}

}  // namespace console
