#include "app/model/pending_changes.h"

#include "app/format/words.h"
#include "app/model/printers.h"
#include "printserver/words.h"

namespace console {
namespace {

constexpr int kLongestMs = 30000;
// Changes of fewer jobs are over before they are read of.
constexpr int kToldFrom = 10;

struct Words {
  const char* verb;
  const char* under_way;
  const char* done;      // before the name
  const char* not_done;  // behind the name
  const char* progress;
};
// By Verb.
constexpr Words kWords[] = {
    {"Hold", "holding…", "Held: ", "was not held", "Holding"},
    {"Release", "releasing…", "Released: ", "was not released", "Releasing"},
    {"Print again", "printing again…", "Will be printed again: ", "will not be printed again",
     "Printing again"},
    {"Remove", "removing…", "Removed: ", "was not removed", "Removing"},
    {"Priority", "changing priority…", "Priority changed: ", "keeps its priority",
     "Setting the priority"},
    {"Copies", "changing copies…", "Copies changed: ", "keeps its copies", "Setting the copies"},
    {"Media", "changing media…", "Media changed: ", "keeps its media", "Setting the media"},
    {"Profile", "changing profile…", "Profile changed: ", "keeps its profile",
     "Setting the profile"},
    {"Move to printer", "moving…", "Moved: ", "was not moved", "Moving"},
    {"Move in the queue", "moving…", "Moved in the queue: ", "was not moved", "Moving"},
};

const Words& WordsOf(Verb verb) {
  return kWords[int(verb)];
}

}  // namespace

const char* VerbText(Verb verb) {
  return WordsOf(verb).verb;
}

const char* UnderWayText(Verb verb) {
  return WordsOf(verb).under_way;
}

std::string ProgressText(const ChangeProgress& progress) {
  if (progress.total < kToldFrom) return "";
  return std::string(WordsOf(progress.verb).progress) + ": " + NumberText(progress.done) + " of " +
         NumberOf(progress.total, "job", "jobs");
}

Message AnswerMessage(Verb verb, int status, const std::string& document) {
  const std::string name = document.empty() ? "The job" : Quoted(document);
  const std::string not_done = name + " " + WordsOf(verb).not_done + ": ";
  switch (status) {
    case NC_STATUS_DONE:
      return {Tone::kGood, WordsOf(verb).done + name};
    case NC_STATUS_UNKNOWN_ID:
      if (verb == Verb::kRemove)
        return {Tone::kWarning, name + " had been removed already, by somebody else"};
      if (verb == Verb::kReorder)
        return {Tone::kWarning, not_done + "one of the two jobs has been removed by somebody else"};
      return {Tone::kWarning, not_done + "somebody else has removed it"};
    case NC_STATUS_WRONG_STATE:
      return {Tone::kWarning, not_done + "its state has changed since"};
    default:
      break;
  }
  if (status < 0)
    return {Tone::kBad, name + ": the connection broke before the server answered, see the queue"};
  return {Tone::kBad, not_done + nc::RefusalText(status, nc::Asked::kJob)};
}

namespace {

// What a place in the queue has brought beside the place.
std::string NewPriorityText(const ChangeOutcome& outcome) {
  const int n = outcome.with_new_priority;
  if (n == 0) return "";
  const std::string priority = outcome.new_priority > 0
                                   ? "priority " + NumberText(outcome.new_priority) + " now"
                                   : "other priorities now";
  if (!outcome.passed.empty())
    return "; " + (n == 1 ? Quoted(outcome.passed) + " has " : NumberText(n) + " jobs have ") +
           priority;
  const bool all = n == outcome.done;
  return (all ? ", with " : ", " + NumberText(n) + " of them with ") + priority;
}

Message DoneMessage(const ChangeOutcome& outcome) {
  if (outcome.done == 0) return {Tone::kGood, ""};
  const std::string what = outcome.done > 1           ? NumberOf(outcome.done, "job", "jobs")
                           : outcome.document.empty() ? "The job"
                                                      : Quoted(outcome.document);
  if (outcome.verb != Verb::kMove || outcome.printer.empty())
    return {Tone::kGood, WordsOf(outcome.verb).done + what + NewPriorityText(outcome)};
  std::string where = "Moved to " + Quoted(outcome.printer);
  if (!outcome.was_on.empty())
    where += ", though somebody else had moved it to " + Quoted(outcome.was_on);
  if (outcome.lacks.empty())
    return {outcome.was_on.empty() ? Tone::kGood : Tone::kWarning, where + ": " + what};
  return {Tone::kWarning, where + ": " + what + ". " + NoMediaText(outcome.printer, outcome.lacks)};
}

}  // namespace

Message OutcomeMessage(const ChangeOutcome& outcome) {
  Message message = DoneMessage(outcome);
  if (outcome.refused == 0) return message;
  message.tone = outcome.refusal.tone;
  message.text += (outcome.done ? "; " : "") + outcome.refusal.text;
  if (outcome.refused > 1)
    message.text +=
        "; " + NumberOf(outcome.refused - 1, "more job was", "more jobs were") + " refused";
  return message;
}

void PendingChanges::Begin(const JobId& job, Verb verb, int64_t now_ms) {
  Change& change = changes_[job];
  change = {verb, now_ms, -1, change.unanswered + 1};
}

void PendingChanges::Answered(const JobId& job, int status, int64_t now_ms) {
  const auto it = changes_.find(job);
  if (it == changes_.end()) return;
  if (it->second.unanswered > 1) {
    --it->second.unanswered;
    return;
  }
  it->second.unanswered = 0;
  if (status == NC_STATUS_DONE)
    it->second.answered_ms = now_ms;
  else
    changes_.erase(it);
}

bool PendingChanges::ListCame(int64_t asked_ms) {
  return std::erase_if(changes_, [asked_ms](const auto& c) {
           return c.second.answered_ms >= 0 && c.second.answered_ms <= asked_ms;
         }) > 0;
}

int PendingChanges::Expire(int64_t now_ms) {
  return int(std::erase_if(
      changes_, [now_ms](const auto& c) { return now_ms - c.second.begun_ms >= kLongestMs; }));
}

int PendingChanges::Lose() {
  return int(std::erase_if(changes_, [](const auto& c) { return c.second.answered_ms < 0; }));
}

int PendingChanges::Unanswered() const {
  int n = 0;
  for (const auto& [job, change] : changes_) n += change.unanswered;
  return n;
}

std::optional<Verb> PendingChanges::Of(const JobId& job) const {
  const auto it = changes_.find(job);
  return it == changes_.end() ? std::nullopt : std::optional<Verb>(it->second.verb);
}

}  // namespace console
