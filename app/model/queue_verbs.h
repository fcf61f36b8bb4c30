// What can be done to rows of the queue, and what a person is asked before.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "app/model/pending_changes.h"
#include "app/model/queue_rows.h"

namespace console {

// Whether a verb is possible, and for which of the rows.
struct VerbCheck {
  std::vector<QueueId> on;
  std::string why_not;  // when there are none: a sentence without its full stop
  // When there are some: how many of the others are not as was asked for anyway, and why the first
  // of those is left out, in the same way.
  int left_out = 0;
  std::string why_left_out;
  bool possible() const { return !on.empty(); }
};

// `connected`: the server is there. Of the rows those are taken for which the verb is possible; a
// reason is told that all of them share. Of a document on its way Remove cancels the sending, and
// Release sends one that failed again. While changes of some of the jobs are under way it is
// possible for none: what it would leave out would not be told.
VerbCheck CheckVerb(Verb verb, const QueueRows& rows, const std::vector<QueueId>& selected,
                    const PendingChanges& pending, bool connected);

// One step of a reordering: `job` is to stand directly before `before`.
struct Reordering {
  JobId job, before;
  std::string document;  // of the job that the person moves
  std::string passed;    // that of `job`, where another one is moved behind it; else ""
};
// What a drag of rows to the gap before row `gap` (count(): behind the last) asks of the server: a
// step for each job, in order. Empty when nothing is to be done; then *why_not says why, if there
// is something to say.
std::vector<Reordering> PlanReordering(const QueueRows& rows, const std::vector<QueueId>& dragged,
                                       int gap, std::string* why_not);

// A question with two answers; the harmless one is the first button, which Escape presses too.
struct Question {
  std::string text;
  std::string harmless, act;
};
// Before these are removed: none for one's own single job that is at no printer, and for documents
// that are still being sent.
std::optional<Question> RemovalQuestion(const QueueRows& rows, const std::vector<QueueId>& ids);

}  // namespace console
