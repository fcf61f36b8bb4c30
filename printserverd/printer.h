// A printer that prints to a folder: it takes its time, uses paper, can run out of it, and stops
// when its folder cannot be written.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "printserverd/output.h"
#include "printserverd/queue.h"
#include "printserverd/settings.h"

namespace printserverd {

// What all printers use; it outlives them.
struct PrinterUses {
  int root;  // of the spool
  Disk* disk;
  Queue* queue;
  Counters* counters;
  const Faults& faults;
};

class Printer {
 public:
  // Prints to the folder of its own beneath `printed`.
  Printer(const PrinterSettings& settings, const PrinterEntry& entry, const PrinterUses& uses);

  // Does what is due at `now` (milliseconds of a steady clock): takes the next job, prints on.
  // Returns after how many milliseconds it wants to be called again, -1 when there is nothing to
  // do.
  int Tick(int64_t now);

  // Gives the job at the printer back to the queue.
  void Stop();

  // Other settings of the same printer. It tries again what it could not write.
  void Set(const PrinterSettings& settings);
  const PrinterSettings& settings() const { return settings_; }

  // What clients have set. With `resume` it also tries again what it could not write.
  void SetEntry(const PrinterEntry& entry, bool resume);
  const PrinterEntry& entry() const { return entry_; }
  void LoadPaper();

  // What the queue shows of it.
  Queue::PrinterView View() const;
  // Its record in the printer list.
  std::string Record(bool is_default) const;

 private:
  void Begin(const Job& job, int64_t now);
  void Abandon();
  bool HasPaper() const { return settings_.paper == 0 || paper_ > 0; }
  bool TakeSheet();
  void Print(const Job& job, int64_t goal);
  void Work(std::function<void(PrintRun*)> work);
  int AwaitJob(int64_t now);
  bool AwaitPaper(const Job& job, int64_t now);
  int PrintOn(const Job& job, int64_t now);
  void RunOut(const Job& job, int64_t now);
  void Complete(const Job& job);
  void EndRun(int64_t now);
  bool WantsSheet(int64_t size, int64_t printed) const;
  void CheckFolder(bool clean);

  PrinterSettings settings_;
  PrinterEntry entry_;
  const PrinterUses uses_;
  int64_t paper_;
  int64_t outputs_to_fail_;
  RequestId current_;  // empty: idle
  bool out_of_paper_ = false;
  bool paper_loaded_ = false;  // while it was out of paper
  bool has_sheet_ = false;     // the sheet for the byte at which it prints is taken
  int64_t since_ = 0;          // when it began to print, or ran out of paper
  int64_t base_ = 0;           // bytes printed then
  int64_t next_ = 0;           // when it prints on, or tries again
  std::string stopped_;        // keyword of why it begins nothing until then
  std::shared_ptr<PrintRun> run_;
};

}  // namespace printserverd
