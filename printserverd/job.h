// A print job and its ticket, and both as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "printserverd/fields.h"
#include "printserverd/wire.h"

namespace printserverd {

struct Ticket {
  std::string document;
  std::string owner;
  std::string printer;
  std::string profile;
  std::string media;
  std::string colour;  // six hexadecimal digits as they were given, or empty
  int64_t copies = 1;
  int64_t priority = 50;
  int64_t hold = 0;
};

// Which keys of a ticket were given, a bit each.
using TicketKeys = uint32_t;
constexpr TicketKeys kDocumentKey = 1, kOwnerKey = 2, kPrinterKey = 4, kProfileKey = 8,
                     kMediaKey = 16, kColourKey = 32, kCopiesKey = 64, kPriorityKey = 128,
                     kHoldKey = 256, kBeforeKey = 512;

// What a ticket says beside the values of a Ticket.
struct Given {
  TicketKeys keys = 0;
  RequestId before;  // the job to stand before, with kBeforeKey
};

// Sets what the record `text` names in `ticket` and leaves the rest. kDone, or kBadTicket with
// both results in any state.
Status ParseTicket(std::string_view text, Ticket* ticket, Given* given);

// What a ticket under a printer's id asks for; -1: nothing.
struct PrinterTicket {
  int64_t paused = -1;
  int64_t accepting = -1;
  int64_t paper_loaded = -1;
};
Status ParsePrinterTicket(std::string_view text, PrinterTicket* ticket);

enum class JobState { kWaiting, kHeld, kPrinting, kPaperOut, kDone, kFailed };

struct Job {
  RequestId id;
  Ticket ticket;
  JobState state = JobState::kWaiting;
  int64_t submitted = 0;  // seconds since 1970
  int64_t finished = 0;   // the same, of an ended job
  int64_t started = 0;    // the same, when it came to a printer last; 0: it has not yet
  int64_t since = 0;      // the same, when it came into its state; 0: not known
  int64_t number = 0;     // for people; counts up in the order of acceptance
  int64_t place = 0;      // order among the jobs of one priority
  int64_t outputs = 0;    // the last output's number when it began to wait: its own is higher
  int64_t size = 0;       // bytes of the document
  int64_t printed = 0;
  bool kept = true;           // the document is in the spool
  bool paper_loaded = false;  // the operator released it while it was out of paper
  bool finishing = false;     // its output is getting its name: too late to hold it
  bool removing = false;
  std::string reasons;  // keywords of a held or ended job
  std::string text;
  std::string unknown;  // lines of its stored record that this version does not know

  int64_t Total() const { return size * ticket.copies; }
  bool AtPrinter() const { return state == JobState::kPrinting || state == JobState::kPaperOut; }
  bool Ended() const { return state == JobState::kDone || state == JobState::kFailed; }
  bool Waits() const { return state == JobState::kWaiting || state == JobState::kHeld; }
};

// Where a job stands that nobody has moved.
inline int64_t PlaceOf(int64_t number) {
  return number << 32;
}

// The number whose place is the last one at or below `place`.
inline int64_t NumberBefore(int64_t place) {
  return place >> 32;
}

// The record that the job file holds.
std::string StoredRecord(const Job& job);

// What the list shows of a job beside the job itself.
struct Shown {
  std::string reasons;
  int64_t sheet_bytes = 0;  // of its printer, 0: unknown
};
void AppendListed(std::string* out, const Job& job, const Shown& shown);

// Fills a job from the record of a job file; false when it is not a whole one or holds a value
// that is not allowed (what could be read is filled in all the same). The id is not set.
bool ParseStoredRecord(std::string_view text, Job* job);

}  // namespace printserverd
