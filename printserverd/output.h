// What a printer writes: the files of the job at it, and the outputs in its folder. All of it runs
// on the disk's thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "printserverd/folder.h"
#include "printserverd/job.h"

namespace printserverd {

// Whose fault it is that a job does not print.
enum class Fault { kNone, kDocument, kPrinter };

// The files of a job at a printer. While `busy` everything from `folder` on is the disk's.
struct PrintRun {
  int root = -1;          // the spool
  std::string subfolder;  // the printer's, beneath `printed`
  std::string part;       // the output's name until it is whole
  bool busy = false;
  bool abandoned = false;  // nobody wants to know how it ends
  Fd folder, document, output;
  int64_t written = 0;  // bytes handed to the disk
  bool whole = false;   // the output has got its name
  Fault fault = Fault::kNone;
  std::string reason;  // keyword of the fault
  std::string error;   // the same for people
};

// Opens a printer's folder beneath `printed` of the spool; it is made when it is missing.
Fd OpenOutputFolder(int root, const std::string& subfolder);

std::string PartName(const RequestId& id);
// Removes unfinished outputs of an earlier run.
void RemoveParts(int folder);

void OpenRun(PrintRun* run, const std::function<Fd()>& open_document);

struct Stretch {
  int64_t from, count;
};
void CopyStretches(PrintRun* run, const std::vector<Stretch>& stretches);

// The output gets its name and is on the disk; then the oldest outputs beyond `keep` go.
void FinishRun(PrintRun* run, const std::string& name, int64_t keep);

// As if the system had said `error` while the output was written.
void FailOutput(PrintRun* run, int error);

// Names of outputs: COUNTER-TIME-ID-NAME.
std::string OutputName(const Job& job, int64_t counter);
struct OutputParts {
  int64_t counter = 0;  // 0: an older version's name, which has none
  std::string_view id;  // the first 8 digits of it
};
// False when `name` is none of the daemon's own.
bool ParseOutputName(std::string_view name, OutputParts* parts);

// Whether two files have the same bytes.
bool SameContent(int a, int b);

}  // namespace printserverd
