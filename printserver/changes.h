// What console and command line do to jobs and printers. Each call takes a greeted connection and
// returns the server's status byte (NC_STATUS_DONE: done), or -1, with errno, when the connection
// failed: it is of no use then (nc.h).
#ifndef QUORVIK_PRINTSERVER_CHANGES_H
#define QUORVIK_PRINTSERVER_CHANGES_H

#include <optional>
#include <string>

#include "printserver/records.h"

namespace nc {

// A document to be printed. Empty texts are left to the server.
struct Order {
  std::string document, owner, printer, profile, media;
  int32_t copies = 1, priority = 50;
  bool hold = false;
  int32_t colour = -1;  // 0xRRGGBB, -1: none
};

// What is to be set in a job; the rest stays.
struct Change {
  std::optional<std::string> document, owner, printer, profile, media;
  std::optional<int32_t> copies, priority;
  std::optional<bool> hold;
  std::optional<int32_t> colour;      // 0xRRGGBB, -1: none
  std::optional<std::string> before;  // 32 digits: the job before which it is to print
};

// The tickets of both; empty when a value is longer than any server takes. A document's name past
// the protocol's length is cut between characters instead: it is still worth printing.
std::string TicketOf(const Order& order);
std::string TicketOf(const Change& change);

// Changes a job in one step. A change that names nothing is NC_STATUS_BAD_TICKET, unsent.
int32_t ChangeJob(int fd, const uint8_t* id, const Change& change);

struct Moved {
  int32_t status;  // of the step that ended it, or -1
  // The job was not held before, and is, or may be, held now: somebody has to release it.
  bool left_held;
};
// Moves a job to the printer that `change` names, and sets what else is in it: holds the job, which
// takes it from its printer, changes it, and releases it unless it was held before, or is to be. A
// change that is refused is followed by the release too.
Moved MoveJob(int fd, const NC_Job& job, const Change& change);

// Whether a job that has ended can be printed again: the server still has its document.
bool CanPrintAgain(const NC_Job& job);
// Lets such a job wait again, from its beginning, with what `change` sets. NC_STATUS_WRONG_STATE,
// unsent, for one that cannot.
int32_t PrintAgain(int fd, const NC_Job& job, const Change& change);

// Sets a key of a printer: "paused" or "accepting" to 0 or 1, "paper-loaded" to 1.
// NC_STATUS_UNKNOWN_ID, unsent, when the server gave the printer no id.
int32_t ChangePrinter(int fd, const NC_Printer& printer, const char* key, int value);

}  // namespace nc

#endif
