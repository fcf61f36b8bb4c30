// A printer that prints to a folder: it takes its time, uses paper, and can run out of it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "printserverd/folder.h"
#include "printserverd/queue.h"
#include "printserverd/settings.h"

namespace printserverd {

// The files of a job at a printer. While `busy` they are the disk's, and so is `error`.
struct PrintRun {
  std::shared_ptr<const Fd> folder;
  std::string part;  // the output's name until it is whole
  Fd document, output;
  int64_t written = 0;  // bytes handed to the disk
  std::string error;    // why it cannot be printed; empty: nothing failed
  bool busy = false;
  bool whole = false;  // the output has got its name
};

class Printer {
 public:
  // Prints to the folder of its own beneath `printed`, which the caller keeps. With `no_paper` it
  // begins without paper, and has none again for each job.
  Printer(const PrinterSettings& settings, int printed, Disk* disk, bool no_paper);

  // Does what is due at `now` (milliseconds of a steady clock): takes the next job, prints on.
  // Returns after how many milliseconds it wants to be called again, -1 when there is nothing to
  // do.
  int Tick(int64_t now, Queue* queue);

  // Gives the job at the printer back to the queue.
  void Stop(Queue* queue);

  // Other settings of the same printer.
  void Set(const PrinterSettings& settings);
  const PrinterSettings& settings() const { return settings_; }

  // Removes unfinished outputs of an earlier run.
  void CleanUp();

  // Its record in the printer list.
  std::string Record(const Queue& queue, bool is_default) const;

 private:
  void Begin(Job* job, int64_t now, Queue* queue);
  void Abandon();
  bool HasPaper() const { return settings_.paper == 0 || paper_ > 0; }
  bool TakeSheet();
  void Print(Job* job, int64_t goal, Queue* queue);
  void Work(Queue* queue, std::function<void(PrintRun*)> work);
  int PrintOn(Job* job, int64_t now, Queue* queue);
  void RunOut(Job* job, int64_t now, Queue* queue);
  void Complete(Job* job, Queue* queue);
  void Fail(Job* job, Queue* queue, const std::string& why);
  bool WantsSheet(const Job& job) const;

  PrinterSettings settings_;
  std::shared_ptr<const Fd> folder_;
  Disk* disk_;
  bool no_paper_;
  int64_t paper_;
  RequestId current_;  // empty: idle
  bool out_of_paper_ = false;
  bool has_sheet_ = false;  // the sheet for the byte at which it prints is taken
  int64_t since_ = 0;       // when it began to print, or ran out of paper
  int64_t base_ = 0;        // bytes printed then
  int64_t next_ = 0;        // when it prints on
  std::shared_ptr<PrintRun> run_;
};

}  // namespace printserverd
