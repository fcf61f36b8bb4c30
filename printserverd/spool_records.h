// The small records at the root of the spool: counters, and what it knows of printers.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "printserverd/disk.h"
#include "printserverd/job.h"

namespace printserverd {

// 16 random bytes; false when the system has none.
bool NewId(RequestId* id);

// The numbers of jobs and of outputs. Neither comes back after it was seen, over restarts too.
class Counters {
 public:
  Counters(int root, Disk* disk) : root_(root), disk_(disk) {}

  // Takes what an earlier run stored. False when the file is there but cannot be understood (errno
  // 0) or read.
  bool Load();

  int64_t NextNumber() { return number_ = std::min(number_ + 1, kMaxNumber); }
  int64_t last_number() const { return number_; }
  // The number stood in a job file.
  void SawNumber(int64_t number) { number_ = std::max(number_, number); }
  // Before the job file with that number goes: from then on the counter alone remembers it.
  void KeepNumber(int64_t number);

  int64_t NextOutput();
  int64_t last_output() const { return output_; }
  void SawOutput(int64_t output) { output_ = std::max(output_, output); }

  // Stores both as they are.
  void Store();

 private:
  void StoreAs(int64_t number, int64_t output);

  int root_;
  Disk* disk_;
  int64_t number_ = 0, output_ = 0;
  std::string unknown_;  // lines that this version does not know
  int64_t stored_number_ = 0,
          stored_output_ = 0;  // no lower than what is on the disk or on its way
};

// What the spool keeps of one printer, by its name.
struct PrinterEntry {
  std::string name;
  RequestId id;
  bool paused = false;
  bool accepting = true;
  std::string unknown;  // lines that this version does not know
};

class PrinterEntries {
 public:
  PrinterEntries(int root, Disk* disk) : root_(root), disk_(disk) {}

  // As Counters::Load.
  bool Load();

  // The entry of a name; a new one gets its id. The reference holds until the next Add.
  const PrinterEntry& Of(std::string_view name) const;
  void Add(std::string_view name);
  // Null when no printer has that id.
  const PrinterEntry* Find(const RequestId& id) const;

  // Stores what Add has added.
  void StoreAdded();

  // Sets what the ticket names of the printer `id` once it is on the disk, then calls `done` with
  // whether it is. One change follows another.
  void Change(const RequestId& id, const PrinterTicket& ticket, std::function<void(bool)> done);

 private:
  struct PendingChange {
    RequestId id;
    PrinterTicket ticket;
    std::function<void(bool)> done;
  };
  void NextChange();

  int root_;
  Disk* disk_;
  std::vector<PrinterEntry> entries_;
  bool added_ = false;
  std::deque<PendingChange> pending_;  // the first is being stored
};

}  // namespace printserverd
