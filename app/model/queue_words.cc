#include "app/model/queue_words.h"

#include <cstring>
#include <utility>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "printserver/words.h"

namespace console {
namespace {

struct StateLook {
  Tone text, dot;
};
// By NC_JobState.
constexpr StateLook kLooks[] = {
    {Tone::kPlain, Tone::kMuted}, {Tone::kWarning, Tone::kWarning}, {Tone::kPlain, Tone::kBusy},
    {Tone::kBad, Tone::kBad},     {Tone::kGood, Tone::kGood},       {Tone::kBad, Tone::kBad},
};

// Pages of all copies where the server counts them, else bytes.
ProgressPart ProgressOf(const NC_Job& job) {
  if (job.pages > 0 && job.pages_printed >= 0)
    return {job.pages_printed, job.pages,
            NumberText(job.pages_printed) + " of " + NumberOf(job.pages, "page", "pages")};
  if (job.total <= 0) return {};
  return {job.printed, job.total, PartText(job.printed, job.total)};
}

// Beside another word there is no room for "pages".
std::string Shortened(const ProgressPart& progress, const NC_Job& job) {
  if (progress.whole != job.pages) return progress.text;
  return NumberText(progress.part) + " of " + NumberText(progress.whole);
}

}  // namespace

RowWords WordsOfJob(const NC_Job& job, std::optional<Verb> pending) {
  const StateLook& look = kLooks[job.state];
  RowWords words{nc::JobStateText(job.state), look.text, look.dot, {}};
  if (pending) {
    words.text = UnderWayText(*pending);
    words.tone = Tone::kMuted;
    return words;
  }
  if (IsAtPrinter(job.state)) words.progress = ProgressOf(job);
  if (job.state == NC_JOB_PAPER_OUT && words.progress.whole > 0)
    words.progress.text = Shortened(words.progress, job) + ", " + words.text;
  std::string why = Shown(nc::ReasonsText(job.reasons));
  // The server's own words for a failure say more than its keyword.
  if (job.state == NC_JOB_FAILED && why.empty()) why = Shown(job.text);
  if (!why.empty()) words.text += ": " + why;
  // A job that waits for somebody.
  if (!why.empty() && job.state == NC_JOB_WAITING) words.tone = words.dot = Tone::kWarning;
  return words;
}

RowWords WordsOfOutgoing(const Outgoing& out) {
  switch (out.state) {
    case OutgoingState::kWaiting:
      return {"to be sent", Tone::kMuted, Tone::kMuted, {}};
    case OutgoingState::kCancelling:
      return {"cancelling…", Tone::kMuted, Tone::kMuted, {}};
    case OutgoingState::kFailed:
      return {"not sent" + (out.trouble.empty() ? "" : ": " + Shown(out.trouble)),
              Tone::kBad,
              Tone::kBad,
              {}};
    case OutgoingState::kSending:
      break;
  }
  RowWords words{"sending", Tone::kPlain, Tone::kBusy, {}};
  if (out.silent_s > 0) {
    words.text = "its file does not answer, for " + NumberText(out.silent_s) + " s";
    words.tone = Tone::kWarning;
  } else if (out.total > 0) {
    const std::string part = PartText(out.sent, out.total);
    words.progress = {out.sent, out.total, "sending " + part, part};
  }
  return words;
}

std::string OrderedText(const char* verb, const char* preposition, const Ordered& ordered) {
  const bool one = ordered.documents == 1;
  std::string text = one && !ordered.document.empty()
                         ? Quoted(ordered.document)
                         : NumberOf(ordered.documents, "document", "documents");
  text += std::string(" ") + verb;
  if (!ordered.printer.empty())
    text += std::string(" ") + preposition + " " + Quoted(ordered.printer);
  if (ordered.copies > 1)
    text += ", " + NumberText(ordered.copies) + (one ? " copies" : " copies each");
  return text + (ordered.hold ? ", held" : "");
}

namespace {

// Of several documents: "they are not there any more".
std::string TroubleOfSeveral(std::string text) {
  constexpr std::pair<const char*, const char*> kBegins[] = {{"it is a folder", "they are folders"},
                                                             {"it is ", "they are "},
                                                             {"it does ", "they do "},
                                                             {"its ", "their "},
                                                             {"the file does ", "the files do "}};
  for (const auto& [one, several] : kBegins)
    if (text.starts_with(one)) return several + text.substr(strlen(one));
  if (text.ends_with(" it")) text.replace(text.size() - 2, 2, "them");
  return text;
}

}  // namespace

std::string NotSentText(size_t documents, const std::string& name, const std::string& trouble) {
  if (documents == 1) return Quoted(name) + " was not sent: " + trouble;
  return NumberText(int64_t(documents)) + " documents were not sent: " + TroubleOfSeveral(trouble);
}

std::string TakenBackText(const TakenBack& back) {
  const int all = back.waiting + back.arrived + back.sending + back.failed;
  if (all == back.waiting)
    return NumberOf(all, "document was taken back", "documents were taken back");
  std::string rest;
  const auto add = [&rest](int n, const char* what) {
    if (n > 0) rest += (rest.empty() ? "; " : ", ") + NumberText(n) + what;
  };
  add(back.arrived, " had been sent");
  add(back.sending, back.sending == 1 ? " is being sent" : " are being sent");
  add(back.failed, " could not be sent");
  return NumberText(back.waiting) + " of " + NumberOf(all, "document", "documents") +
         (back.waiting == 1 ? " was taken back" : " were taken back") + rest;
}

std::string UnsentText(const Unsent& unsent) {
  const std::string could_not = " could not be sent";
  const int documents = unsent.waiting + unsent.failed;
  if (unsent.changes > 0 && documents > 0)
    return NumberOf(documents, "document", "documents") + " and " +
           NumberOf(unsent.changes, "change", "changes") + " have not reached the server";
  if (unsent.changes > 0)
    return NumberOf(unsent.changes, "change of a job has", "changes of jobs have") +
           " not been made";
  if (unsent.waiting == 0) return NumberOf(unsent.failed, "document", "documents") + could_not;
  return NumberOf(unsent.waiting, "document has", "documents have") + " not been sent" +
         (unsent.failed ? ", " + NumberText(unsent.failed) + could_not : "");
}

namespace {

// What is not known is left out.
class Facts {
 public:
  void Add(const char* name, std::string value, Tone tone = Tone::kPlain) {
    if (!value.empty()) all_.push_back({name, std::move(value), tone});
  }
  std::vector<Fact> All() { return std::move(all_); }

 private:
  std::vector<Fact> all_;
};

// What has become of it, as far as the server tells.
void AddHistory(const NC_Job& job, int64_t now, Facts* facts) {
  facts->Add("Submitted", DayText(job.submitted, now));
  facts->Add("Begun", DayText(job.started, now));
  // By NC_JobState; what waits or prints is told already.
  constexpr const char* kNames[] = {"", "Held", "", "Paper out", "Printed", "Failed"};
  if (const char* name = kNames[job.state]; *name) facts->Add(name, DayText(job.since, now));
}

}  // namespace

std::vector<Fact> FactsOfJob(const NC_Job& job, int64_t now, bool usual_media) {
  Facts facts;
  const RowWords words = WordsOfJob(job, std::nullopt);
  facts.Add("Document", Shown(job.document));
  facts.Add("State", words.text, words.tone);
  facts.Add("Owner", Shown(job.owner));
  facts.Add("Printer", Shown(job.printer));
  facts.Add("Profile", Shown(job.profile));
  if (usual_media)
    facts.Add("Media", "Usual, not " + Shown(job.media), Tone::kWarning);
  else
    facts.Add("Media", Shown(job.media));
  facts.Add("Copies", NumberText(job.copies));
  facts.Add("Priority", NumberText(job.priority));
  facts.Add("Pages", job.pages >= 0 ? NumberText(job.pages) : "");
  facts.Add("Size", SizeText(job.size));
  if (IsAtPrinter(job.state)) facts.Add("Printed", ProgressOf(job).text);
  AddHistory(job, now, &facts);
  if (HasEnded(job.state))
    facts.Add("Kept", job.kept ? "yes, it can be printed again" : "no, it cannot be printed again");
  if (const std::string says = Shown(job.text); says != nc::JobStateText(job.state))
    facts.Add("Message", says);
  return facts.All();
}

std::vector<Fact> FactsOfOutgoing(const Outgoing& out, int64_t now) {
  Facts facts;
  const RowWords words = WordsOfOutgoing(out);
  facts.Add("Document", Shown(out.document));
  facts.Add("State", words.ShownText(), words.tone);
  facts.Add("Owner", Shown(out.owner));
  facts.Add("Printer", Shown(out.printer));
  facts.Add("Profile", Shown(out.profile));
  facts.Add("Media", Shown(out.media));
  facts.Add("Copies", NumberText(out.copies));
  facts.Add("Priority", NumberText(out.priority));
  facts.Add("Size", out.size > 0 ? SizeText(out.size) : "");
  if (out.total > 0) facts.Add("Begun", DayText(out.started, now));
  return facts.All();
}

std::vector<Fact> FactsOfSeveral(const QueueRows& rows, const std::vector<QueueId>& ids) {
  int64_t jobs = 0, sending = 0, failed = 0, bytes = 0, states[6] = {};
  for (const QueueId& id : ids) {
    const NC_Job* job = rows.JobOf(id);
    const Outgoing* out = rows.OutgoingOf(id);
    if (job) ++jobs, ++states[job->state];
    if (out) ++(out->state == OutgoingState::kFailed ? failed : sending);
    bytes += job ? job->size : out ? out->size : 0;
  }
  std::string text;
  auto part = [&text](int64_t n, const char* state) {
    if (n > 0) text += (text.empty() ? "" : ", ") + NumberText(n) + " " + state;
  };
  for (int state = 0; state < 6; ++state) part(states[state], nc::JobStateText(NC_JobState(state)));
  part(sending, "on the way");
  part(failed, "not sent");
  Facts facts;
  facts.Add("Selected", NumberOf(jobs + sending + failed, "job", "jobs"));
  facts.Add("State", text);
  facts.Add("Size", SizeText(bytes));
  return facts.All();
}

}  // namespace console
