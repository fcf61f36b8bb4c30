// Words in English for what the server's records, status bytes and failures mean, shared by
// console and command line.
#ifndef QUORVIK_PRINTSERVER_WORDS_H
#define QUORVIK_PRINTSERVER_WORDS_H

#include <string>

#include "printserver/records.h"

namespace nc {

// "waiting", "out of paper", "printed". Never null.
const char* JobStateText(NC_JobState state);
// "idle", "out of paper". Never null.
const char* PrinterStateText(NC_PrinterState state);

// Keywords with commas between, as records have them: "the printer is paused, the disk is full".
// A keyword that is not known is shown with blanks for its hyphens; null is "".
std::string ReasonsText(const char* reasons);

// What a status byte refuses.
enum class Asked { kPrint, kJob, kPrinter };
// A status byte of command 3 or 6 in words: what a number means depends on what was asked.
const char* RefusalText(int status, Asked asked);

// A result below 0 of NC_ConnectN and its relatives, with the errno it left.
std::string ConnectText(int code, int error);
// The errno of a call that failed on a connection.
std::string FailureText(int error);

}  // namespace nc

#endif
