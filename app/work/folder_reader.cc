#include "app/work/folder_reader.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>

namespace console {
namespace {

constexpr int kTypes = OS_LIST_FOLDERS | OS_LIST_FILES | OS_LIST_ALL_FOLDERS;

FolderStamp StampOf(const std::string& path) {
  struct stat s {};
  if (stat(path.c_str(), &s) != 0) return {};
  return {s.st_mtim.tv_sec, s.st_mtim.tv_nsec};
}

// 0, or the error.
int List(const std::string& path, FolderListing* out) {
  // Before it is read: what changes until then is seen by the next watch.
  out->path = path;
  out->stamp = StampOf(path);
  out->entries.reset(OS_ListDirN(path.c_str(), nullptr, &out->count, kTypes, 0));
  if (out->count >= 0) return 0;
  out->count = 0;
  return errno;
}

int ListUpwards(std::string path, FolderReading* r) {
  for (;;) {
    const int error = List(path, &r->listing);
    if (error == 0 || path == "/") return error;
    r->select = LastName(path);
    path = ParentPath(path);
  }
}

int ListAroundDocument(FolderReading* r) {
  const std::string& path = r->request.path;
  struct stat s {};
  if (stat(path.c_str(), &s) == 0 && S_ISDIR(s.st_mode)) return List(path, &r->listing);
  r->select = LastName(path);
  return List(ParentPath(path), &r->listing);
}

void ReadFolder(FolderReading* r) {
  const FolderRequest& w = r->request;
  r->select = w.select;
  if (w.kind == FolderRequest::kWatch && StampOf(w.path) == w.since) {
    r->changed = false;
    r->error = 0;
    return;
  }
  r->error = w.kind == FolderRequest::kUp         ? ListUpwards(w.path, r)
             : w.kind == FolderRequest::kDocument ? ListAroundDocument(r)
                                                  : List(w.path, &r->listing);
  struct statvfs s {};
  if (r->error != 0 || statvfs(r->listing.path.c_str(), &s) != 0) return;
  r->free = int64_t(s.f_bavail) * int64_t(s.f_frsize);
  r->room = int64_t(s.f_blocks) * int64_t(s.f_frsize);
}

}  // namespace

FolderReader::Read FolderReader::read = ReadFolder;

void FolderReader::Ask(FolderRequest request) {
  if (request.kind != FolderRequest::kWatch) ++number_;
  auto reading = std::make_shared<FolderReading>();
  reading->request = std::move(request);
  reading->error = EAGAIN;  // where no thread can be had
  reading_ = reading;
  task_ = BackgroundTask([reading, how = read] { how(reading.get()); });
}

void FolderReader::Drop() {
  task_.Drop();
  reading_.reset();
}

bool FolderReader::WaitFor(int ms) {
  if (!task_.WaitFor(ms)) return false;
  if (reading_->changed) return true;
  Drop();
  return false;
}

std::shared_ptr<FolderReading> FolderReader::Take() {
  auto reading = std::move(reading_);
  Drop();
  return reading;
}

}  // namespace console
