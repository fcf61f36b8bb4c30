// Reads folders on threads of their own: a mount that does not answer holds up neither the window
// nor its end.
#pragma once
#include "app/model/folder.h"
#include "app/work/background_task.h"

namespace console {

struct FolderRequest {
  enum Kind : uint8_t {
    kEnter,     // another folder
    kUp,        // the same, or the nearest one above it that can be read
    kDocument,  // a document's folder, with it selected; a folder itself
    kAgain,     // the one that is shown
    kWatch      // the one that is shown, if it has changed since
  } kind = kEnter;
  std::string path, select;  // `select`: a name in it, "" for none
  FolderStamp since;         // kWatch
  bool operator==(const FolderRequest&) const = default;
};

// A request and what came of it.
struct FolderReading {
  FolderRequest request;
  int error;                     // of the system; 0 when it was read
  bool changed = true;           // kWatch: false when there is nothing new
  FolderListing listing;         // its path may differ from the request's
  std::string select;            // the name to select there
  int64_t free = -1, room = -1;  // bytes on its volume, -1 when not known
};

class FolderReader {
 public:
  // What looks at the file system. Tests put a slow one in its place.
  using Read = void (*)(FolderReading*);
  static Read read;

  // What was asked for before is dropped, and its result never shown.
  void Ask(FolderRequest request);
  void Drop();
  // What is being waited for; null when nothing is.
  const FolderRequest* request() const { return reading_ ? &reading_->request : nullptr; }
  // How many have been asked for, those that only watch left out.
  int number() const { return number_; }
  bool Done() const { return task_.Done(); }
  // Whether there is something to be shown, after at most that many milliseconds. A watch that has
  // found nothing new is dropped by that.
  bool WaitFor(int ms);
  // Of one that is done: hands it over.
  std::shared_ptr<FolderReading> Take();

 private:
  BackgroundTask task_;
  std::shared_ptr<FolderReading> reading_;
  int number_ = 0;
};

}  // namespace console
