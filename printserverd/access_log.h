// The access log: a line for each thing that happens to a job or a printer (docs/protocol.md,
// "Access log").
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "printserverd/disk.h"
#include "printserverd/folder.h"
#include "printserverd/job.h"

namespace printserverd {

class AccessLog {
 public:
  explicit AccessLog(Disk* disk) : disk_(disk) {}

  // Appends to the file `path` from now on; empty: to standard error. False with errno, and
  // nothing changed.
  bool Open(const std::string& path);

  // A line about a job. `peer` is empty where no client asked.
  void Tell(std::string_view event, std::string_view peer, const Job& job);
  // A client changed a printer.
  void TellPrinter(std::string_view peer, std::string_view name, const RequestId& id);

 private:
  struct Sink {
    Fd file;            // empty: standard error
    int64_t lost = 0;   // lines that could not be written; of the disk's thread
    bool torn = false;  // the last one perhaps in part
  };
  void Write(std::string line);

  Disk* disk_;
  std::shared_ptr<Sink> sink_ = std::make_shared<Sink>();
};

}  // namespace printserverd
