// What the queue's rows say of their state.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "app/model/notices.h"
#include "app/model/pending_changes.h"
#include "app/model/queue_rows.h"

namespace console {

struct ProgressPart {
  int64_t part = 0, whole = 0;  // whole 0: there is no bar
  std::string text;             // "3 of 12 pages", "sending 2.1 of 4.2 MB"
  std::string brief = "";       // where that has no room; "": there is nothing shorter
};

struct RowWords {
  std::string text;
  Tone tone = Tone::kPlain;  // of the text
  Tone dot = Tone::kMuted;
  ProgressPart progress;  // of what is at a printer or being sent: stands for the text

  bool HasBar() const { return progress.whole > 0; }
  const std::string& ShownText() const { return HasBar() ? progress.text : text; }
};
// `pending` is what is being done to it.
RowWords WordsOfJob(const NC_Job& job, std::optional<Verb> pending);
RowWords WordsOfOutgoing(const Outgoing& out);

// What was printed together, with the same options.
struct Ordered {
  int documents = 1;
  std::string document;  // the name of a single one; "": it is not told
  std::string printer;   // "": the server chooses it
  int copies = 1;
  bool hold = false;
};
// "“a.pdf” sent to “Proof”", "3 documents queued on “Proof”, 2 copies each, held".
std::string OrderedText(const char* verb, const char* preposition, const Ordered& ordered);

// What has not reached the server: documents that will be sent, those whose sending failed, and
// changes of jobs.
struct Unsent {
  int waiting = 0, failed = 0, changes = 0;
  bool any() const { return waiting + failed + changes > 0; }
};
// "2 documents have not been sent, 1 could not be sent", "37 changes of jobs have not been made".
std::string UnsentText(const Unsent& unsent);

// “a.pdf” was not sent: it is not there any more; of several: "2 documents were not sent: they …".
std::string NotSentText(size_t documents, const std::string& name, const std::string& trouble);

// What came of taking back the documents that waited to be sent: of those that were ordered
// together with them some may be at the server, on their way, or not sent by a failure.
struct TakenBack {
  int waiting = 0;  // those that were taken back
  int arrived = 0, sending = 0, failed = 0;
};
// "3 documents were taken back", "3 of 5 documents were taken back; 2 had been sent".
std::string TakenBackText(const TakenBack& back);

// A fact of a job, for the list of its details.
struct Fact {
  std::string name, value;
  Tone tone = Tone::kPlain;
};
// What is known of it, each once, without what is not. `usual_media`: its printer has not the media
// that it asks for.
std::vector<Fact> FactsOfJob(const NC_Job& job, int64_t now, bool usual_media);
std::vector<Fact> FactsOfOutgoing(const Outgoing& out, int64_t now);
// Of several together.
std::vector<Fact> FactsOfSeveral(const QueueRows& rows, const std::vector<QueueId>& ids);

}  // namespace console
