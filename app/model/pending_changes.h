// Changes of jobs that were asked for and that the lists do not show yet.
//
// A row says at once what is being done to it. That ends when the server refuses, with the first
// list that was asked for after the server's answer, or when no answer comes for a while; what
// the list says holds then.
#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "app/model/notices.h"
#include "app/model/queue_rows.h"

namespace console {

enum class Verb : uint8_t {
  kHold,
  kRelease,
  kPrintAgain,
  kRemove,
  kPriority,
  kCopies,
  kMedia,
  kProfile,
  kMove,
  kReorder
};

// "Hold", "Print again".
const char* VerbText(Verb verb);
// "removing…".
const char* UnderWayText(Verb verb);
// What a person is told of the server's answer to a change of the job `document`: NC_STATUS_DONE
// and the other status bytes, below 0 when the connection failed. What somebody else did first is
// told and is no error.
Message AnswerMessage(Verb verb, int status, const std::string& document);

// How far a change of several jobs is.
struct ChangeProgress {
  Verb verb = Verb::kHold;
  int done = 0, total = 0;  // jobs; 0: none is under way
};
// "Setting the priority: 120 of 300 jobs"; "" for a few, which take no while.
std::string ProgressText(const ChangeProgress& progress);

// What has come of one change of several jobs.
struct ChangeOutcome {
  Verb verb = Verb::kHold;
  int done = 0, refused = 0;
  std::string document;  // of the first one that was done
  std::string printer;   // of kMove: to which they were moved
  std::string lacks;     // the media of a moved one that it does not have; "": it has all of them
  Message refusal;       // the first one
  std::string was_on;    // of kMove: where somebody else had moved one of them; "": nobody had
  // Of kReorder: how many have got another priority with their place, and which; -1: several.
  int with_new_priority = 0, new_priority = 0;
  // A job among them that was not moved itself; "": all of them were.
  std::string passed = "";
};
// In one line, however many jobs they were.
Message OutcomeMessage(const ChangeOutcome& outcome);

class PendingChanges {
 public:
  void Begin(const JobId& job, Verb verb, int64_t now_ms);
  // The server's answer, as above.
  void Answered(const JobId& job, int status, int64_t now_ms);
  // A list has come that was asked for at that time. True when a row changes by it.
  bool ListCame(int64_t asked_ms);
  // Drops what has waited too long. How many.
  int Expire(int64_t now_ms);
  // The server is gone: what has no answer is given up. How many.
  int Lose();

  // Changes that the server has not answered; a job may have several.
  int Unanswered() const;
  std::optional<Verb> Of(const JobId& job) const;
  bool empty() const { return changes_.empty(); }
  size_t size() const { return changes_.size(); }

 private:
  struct Change {
    Verb verb;
    int64_t begun_ms;
    int64_t answered_ms = -1;  // the last of them; -1: not yet
    int unanswered = 0;
  };
  std::map<JobId, Change> changes_;
};

}  // namespace console
