// Reads folders on threads of their own: a mount that does not answer holds up neither the window
// nor its end.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/model/folder_rows.h"
#include "app/work/background_task.h"

namespace console {

struct FolderRequest {
  enum Kind : uint8_t {
    kEnter,     // another folder
    kUp,        // the same, or the nearest one above it that can be read
    kDocument,  // a document's folder, with it selected; a folder itself
    kAgain      // the one that is shown
  } kind = kEnter;
  std::string path, select;              // `select`: a name in it, "" for none
  std::vector<std::string> others = {};  // paths of further documents to select there
  bool operator==(const FolderRequest&) const = default;
};

// A request and what came of it.
struct FolderReading {
  FolderRequest request;
  int error;                                     // of the system; 0 when it was read
  std::shared_ptr<const FolderContent> content;  // null when it was not; its path may differ
  FolderStamp stamp;                             // of the one that could not be read
  std::string select;                            // the name to select there
  std::vector<std::string> missing = {};         // of the documents: names that are not there
  int documents = 0;                             // those that are, without folders
  std::vector<std::string> devices = {};         // those that are neither: names
  int folders = 0;                               // that were named beside a first one
  int64_t free = -1, room = -1;                  // bytes on its volume, -1 when not known
};

class FolderReader {
 public:
  // What looks at the file system. Tests put a slow one in its place.
  using Read = void (*)(FolderReading*);
  static Read read;
  // Gets what was read, on the main thread, between two events.
  using Show = std::function<void(FolderReading*)>;

  explicit FolderReader(Show show) : show_(std::move(show)) {}
  ~FolderReader() { Drop(); }
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;

  // What was asked for before is dropped, and its result never shown.
  void Ask(FolderRequest request);
  void Drop();
  // What is being waited for; null when nothing is.
  const FolderRequest* request() const;

 private:
  struct Waiting;
  static void Post(const std::shared_ptr<Waiting>& waiting);
  static void Take(void* data, int taken);

  Show show_;
  BackgroundTask task_;
  std::shared_ptr<Waiting> waiting_;
  int number_ = 0;  // how many have been asked for
};

// The time of change of the folder; none where it cannot be looked at. May hang.
FolderStamp StampOf(const std::string& path);

}  // namespace console
