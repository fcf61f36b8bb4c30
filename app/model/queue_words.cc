#include "app/model/queue_words.h"

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

}  // namespace

RowWords WordsOfJob(const NC_Job& job, std::optional<Verb> pending) {
  const StateLook& look = kLooks[job.state];
  RowWords words{nc::JobStateText(job.state), look.text, look.dot, {}};
  if (pending) {
    words.text = UnderWayText(*pending);
    words.tone = Tone::kMuted;
    return words;
  }
  if (job.state == NC_JOB_PRINTING) words.progress = ProgressOf(job);
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
    words.progress = {out.sent, out.total, "sending " + PartText(out.sent, out.total)};
  }
  return words;
}

std::vector<Fact> FactsOfJob(const NC_Job& job, int64_t now) {
  std::vector<Fact> facts;
  auto add = [&](const char* name, std::string value) {
    if (!value.empty()) facts.push_back({name, std::move(value)});
  };
  add("Number", job.number > 0 ? std::to_string(job.number) : "");
  add("State", WordsOfJob(job, std::nullopt).text);
  add("Owner", Shown(job.owner));
  add("Printer", Shown(job.printer));
  add("Profile", Shown(job.profile));
  add("Media", Shown(job.media));
  add("Copies", NumberText(job.copies));
  add("Priority", NumberText(job.priority));
  add("Pages", job.pages >= 0 ? NumberText(job.pages) : "");
  add("Size", SizeText(job.size));
  if (job.state == NC_JOB_PRINTING || job.state == NC_JOB_PAPER_OUT)
    add("Printed", ProgressOf(job).text);
  add("Submitted", DayText(job.submitted, now));
  if (HasEnded(job.state)) add("Document", job.kept ? "kept by the server" : "no longer kept");
  add("Says", Shown(job.text));
  return facts;
}

}  // namespace console
