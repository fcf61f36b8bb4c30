#include "app/panes/job_details.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "app/model/printers.h"
#include "app/panes/facts.h"
#include "app/panes/queue_cells.h"

namespace console {
namespace {

constexpr int kSwatchHeight = 14, kSwatchWidth = 44;

// A job that has not been printed, and asks for media that its printer has not, gets the usual
// ones.
bool GetsUsualMedia(const QueuePane& queue, const NC_Job& job) {
  if (job.state == NC_JOB_DONE || job.state == NC_JOB_FAILED) return false;
  const auto& printers = *queue.state.printers;
  return std::any_of(printers.begin(), printers.end(), [&job](const NC_Printer& p) {
    return !strcmp(p.name, job.printer) && !HasMedia(p, job.media);
  });
}

std::vector<Fact> FactsOf(const QueuePane& queue) {
  const std::vector<QueueId> ids = queue.Selected();
  if (ids.size() > 1) return FactsOfSeveral(queue.rows, ids);
  if (ids.empty()) return {};
  if (const NC_Job* job = queue.rows.JobOf(ids[0]))
    return FactsOfJob(*job, time(nullptr), GetsUsualMedia(queue, *job));
  const Outgoing* out = queue.rows.OutgoingOf(ids[0]);
  return out ? FactsOfOutgoing(*out, time(nullptr)) : std::vector<Fact>();
}

// As in the rows: what the server said last, unlike a document that waits to be sent.
bool AreOld(const QueuePane& queue) {
  const std::vector<QueueId> ids = queue.Selected();
  return queue.state.link != Link::kReady && !(ids.size() == 1 && queue.rows.OutgoingOf(ids[0]));
}

// Of the only one that is selected, -1: none.
int32_t ColourOf(const QueuePane& queue) {
  const std::vector<QueueId> ids = queue.Selected();
  if (ids.size() != 1) return -1;
  if (const NC_Job* job = queue.rows.JobOf(ids[0])) return job->colour;
  const Outgoing* out = queue.rows.OutgoingOf(ids[0]);
  return out ? out->colour : -1;
}

}  // namespace

int JobFactsHeight(const QueuePane& queue, int width) {
  return FactsHeight(FactsOf(queue), width) + (ColourOf(queue) < 0 ? 0 : kFactLine);
}

std::string JobCaption(const QueuePane& queue) {
  const std::vector<QueueId> ids = queue.Selected();
  const NC_Job* job = ids.size() == 1 ? queue.rows.JobOf(ids[0]) : nullptr;
  if (job && job->number > 0) return "JOB " + std::to_string(job->number);
  return ids.size() > 1 ? "JOBS" : "JOB";
}

void DrawJobFacts(const QueuePane& queue, Area a) {
  const Style& l = TheStyle();
  const std::vector<Fact> facts = FactsOf(queue);
  if (facts.empty())
    DrawLabel(l.view, Align::kLeft, a.TakeTop(kFactLine), "No job is selected", l.second);
  const bool old = AreOld(queue);
  for (const Fact& fact : facts)
    DrawFact(&a, fact.name.c_str(), fact.value, old ? Dimmed(l.ink, l.side) : InkOf(fact.tone));
  const int32_t colour = ColourOf(queue);
  if (colour < 0) return;
  Area row = a;
  DrawFact(&a, "Colour", "");
  row.TakeLeft(kFactName);
  XwRoundBox(row.x, row.y + (kFactLine - kSwatchHeight) / 2, kSwatchWidth, kSwatchHeight, 3,
             FromRgb(colour), l.line);
}

void AddJobFacts(const QueuePane& queue, const Area& a, const ScrolledArea& scroll, Hits* hits) {
  CoverFacts(FactsOf(queue), a, scroll, hits);
}

}  // namespace console
