#include "app/model/queue_rows.h"

#include <algorithm>
#include <cstring>

#include "app/format/folding.h"
#include "app/format/words.h"
#include "printserver/words.h"

namespace console {
namespace {

// One that is printed and forgotten before a list comes is expected in vain.
constexpr size_t kMostExpected = 32;
// As many as somebody may have selected when others remove them.
constexpr size_t kMostLeft = 256;

// What goes on comes first, what has ended last.
int StateRank(NC_JobState state) {
  switch (state) {
    case NC_JOB_PRINTING:
      return 1;
    case NC_JOB_PAPER_OUT:
      return 2;
    case NC_JOB_WAITING:
      return 3;
    case NC_JOB_HELD:
      return 4;
    case NC_JOB_FAILED:
      return 5;
    case NC_JOB_DONE:
      return 6;
  }
  return 3;
}

}  // namespace

bool HasEnded(NC_JobState state) {
  return state == NC_JOB_DONE || state == NC_JOB_FAILED;
}

bool IsAtPrinter(NC_JobState state) {
  return state == NC_JOB_PRINTING || state == NC_JOB_PAPER_OUT;
}

// The server draws ids at random; a server that does not gets slow look-ups and nothing else.
size_t QueueIdHash::operator()(const QueueId& id) const {
  uint64_t half[2];
  memcpy(half, id.job.data(), sizeof half);
  return size_t((half[0] ^ half[1] * 0x9E3779B97F4A7C15u) +
                uint64_t(id.outgoing) * 0xBF58476D1CE4E5B9u);
}

void QueueRows::Show(std::shared_ptr<const std::vector<NC_Job>> jobs,
                     std::vector<Outgoing> outgoing) {
  const auto before = std::exchange(jobs_, std::move(jobs));
  outgoing_ = std::move(outgoing);
  places_.clear();
  const int all = int(outgoing_.size() + (jobs_ ? jobs_->size() : 0));
  for (int place = 0; place < all; ++place) places_.emplace(IdOfPlace(place), place);
  std::erase_if(expected_, [this](const QueueId& id) { return places_.count(id) != 0; });
  if (before && before != jobs_) KeepNames(*before);
  Arrange();
}

void QueueRows::KeepNames(const std::vector<NC_Job>& before) {
  for (const NC_Job& job : before)
    if (const QueueId id = QueueIdOf(job); places_.count(id) == 0)
      left_.emplace_back(id, job.document);
  while (left_.size() > kMostLeft) left_.pop_front();
}

std::string QueueRows::NameOf(const QueueId& id) const {
  if (const NC_Job* job = JobOf(id)) return job->document;
  for (const auto& [gone, name] : left_)
    if (gone == id) return name;
  return "";
}

int QueueRows::CountOf(std::string_view document) const {
  if (!jobs_) return 0;
  return int(std::count_if(jobs_->begin(), jobs_->end(),
                           [document](const NC_Job& job) { return document == job.document; }));
}

void QueueRows::Expect(const JobId& job) {
  if (expected_.size() == kMostExpected) expected_.erase(expected_.begin());
  if (places_.count({0, job}) == 0) expected_.push_back({0, job});
}

void QueueRows::Sort(QueueOrder order, bool descending) {
  order_ = order;
  descending_ = descending;
  Arrange();
}

void QueueRows::Filter(const QueueFilter& filter) {
  filter_ = filter;
  Arrange();
}

QueueId QueueRows::IdOfPlace(int place) const {
  return IsOutgoing(place) ? QueueId{outgoing_[size_t(place)].number, {}} : QueueIdOf(Job(place));
}

bool QueueRows::Wanted(int place, const NameFilter& text) const {
  const bool outgoing = IsOutgoing(place);
  const NC_Job* job = outgoing ? nullptr : &Job(place);
  const Outgoing* out = outgoing ? &outgoing_[size_t(place)] : nullptr;
  if (filter_.mine && job && !IsMine(*job)) return false;
  const bool ended = job && HasEnded(job->state);
  if (filter_.part != QueueFilter::kAll && ended != (filter_.part == QueueFilter::kEnded))
    return false;
  if (text.empty()) return true;
  if (job && text.Matches(std::to_string(job->number))) return true;
  for (const char* field :
       {job ? job->document : out->document.c_str(), job ? job->owner : out->owner.c_str(),
        job ? job->printer : out->printer.c_str()})
    if (text.Matches(field)) return true;
  return false;
}

QueueRows::Item QueueRows::ItemOf(int place) const {
  const bool outgoing = IsOutgoing(place);
  const NC_Job* job = outgoing ? nullptr : &Job(place);
  const Outgoing* out = outgoing ? &outgoing_[size_t(place)] : nullptr;
  switch (order_) {
    case QueueOrder::kPrint:
      return {"", 0, place};
    case QueueOrder::kName:
      return {NaturalKey(job ? job->document : out->document), 0, place};
    case QueueOrder::kOwner:
      return {NaturalKey(job ? job->owner : out->owner), 0, place};
    case QueueOrder::kPrinter:
      return {NaturalKey(job ? job->printer : out->printer), 0, place};
    case QueueOrder::kProfile:
      return {NaturalKey(job ? job->profile : out->profile), 0, place};
    case QueueOrder::kState:
      return {"", job ? StateRank(job->state) : 0, place};
    case QueueOrder::kSize:
      return {"", job ? job->size : out->size, place};
    case QueueOrder::kTime:
      return {"", job ? job->submitted : out->started, place};
    case QueueOrder::kPriority:
      return {"", job ? job->priority : out->priority, place};
    case QueueOrder::kNumber:  // what is still to be sent gets the last ones
      return {"", job ? job->number : INT64_MAX, place};
  }
  return {"", 0, place};
}

void QueueRows::Arrange() {
  const NameFilter text(filter_.text);
  std::vector<Item> items;
  const int all = int(outgoing_.size() + (jobs_ ? jobs_->size() : 0));
  for (int place = 0; place < all; ++place)
    if (Wanted(place, text)) items.push_back(ItemOf(place));
  std::sort(items.begin(), items.end(), [this](const Item& a, const Item& b) {
    int order = a.key.compare(b.key);
    if (order == 0) order = a.number < b.number ? -1 : a.number > b.number;
    // What is equal stays as it prints, in both directions.
    if (order == 0 && order_ != QueueOrder::kPrint) return a.place < b.place;
    if (order == 0) order = a.place - b.place;
    return descending_ ? order > 0 : order < 0;
  });
  rows_.clear();
  row_of_.assign(size_t(all), -1);
  for (const Item& item : items) {
    row_of_[size_t(item.place)] = int(rows_.size());
    rows_.push_back(item.place);
  }
}

bool QueueRows::Has(const QueueId& id) const {
  return places_.count(id) != 0 ||
         std::find(expected_.begin(), expected_.end(), id) != expected_.end();
}

QueueId QueueRows::IdAt(int row) const {
  return row < 0 || row >= count() ? QueueId{} : IdOfPlace(rows_[size_t(row)]);
}

int QueueRows::RowOf(const QueueId& id) const {
  const auto it = places_.find(id);
  return it == places_.end() ? -1 : row_of_[size_t(it->second)];
}

const NC_Job* QueueRows::JobAt(int row) const {
  if (row < 0 || row >= count() || IsOutgoing(rows_[size_t(row)])) return nullptr;
  return &Job(rows_[size_t(row)]);
}

const Outgoing* QueueRows::OutgoingAt(int row) const {
  if (row < 0 || row >= count() || !IsOutgoing(rows_[size_t(row)])) return nullptr;
  return &outgoing_[size_t(rows_[size_t(row)])];
}

const NC_Job* QueueRows::JobOf(const QueueId& id) const {
  const auto it = places_.find(id);
  return it == places_.end() || IsOutgoing(it->second) ? nullptr : &Job(it->second);
}

const Outgoing* QueueRows::OutgoingOf(const QueueId& id) const {
  const auto it = places_.find(id);
  if (it == places_.end() || !IsOutgoing(it->second)) return nullptr;
  return &outgoing_[size_t(it->second)];
}

namespace {

// Those of the highest rank are left out first, those of rank 0 never.
struct SummaryPart {
  int64_t count;
  std::string words;
  int rank;
};

std::string Joined(const std::vector<SummaryPart>& parts, bool all) {
  std::string text;
  for (const SummaryPart& p : parts)
    text += (text.empty() ? "" : ", ") + NumberText(p.count) + " " + p.words;
  return all ? text : text + (text.empty() ? "…" : ", …");
}

}  // namespace

std::string QueueRows::Summary(const std::function<bool(const std::string&)>& fits) const {
  std::vector<SummaryPart> parts;
  const auto add = [&parts](int64_t count, std::string words, int rank) {
    if (count) parts.push_back({count, std::move(words), rank});
  };
  if (jobs_) {
    int64_t counts[6] = {};
    for (const NC_Job& job : *jobs_) ++counts[job.state];
    constexpr std::pair<NC_JobState, int> kStates[] = {{NC_JOB_WAITING, 5},
                                                       {NC_JOB_PRINTING, 3},
                                                       {NC_JOB_HELD, 1},
                                                       {NC_JOB_PAPER_OUT, 0},
                                                       {NC_JOB_FAILED, 0}};
    for (const auto& [state, rank] : kStates) add(counts[state], nc::JobStateText(state), rank);
  }
  int64_t waiting = 0, failed = 0;
  for (const Outgoing& o : outgoing_) ++(o.state == OutgoingState::kFailed ? failed : waiting);
  add(waiting, "to be sent", 4);
  add(failed, "not sent", 0);
  const std::string all = NumberText(int64_t(row_of_.size()));
  if (leaves_out()) parts.push_back({count(), "of " + all + " shown", 2});
  std::string text = Joined(parts, true);
  const size_t without_counts = leaves_out() ? 1 : 0;  // how many are shown says no state
  if (jobs_ && waiting + failed == 0 && parts.size() == without_counts) {
    const std::string none = jobs_->empty() ? "empty" : "nothing waits";
    return text.empty() ? none : none + ", " + text;
  }
  for (int rank = 5; rank > 0 && fits && !fits(text); --rank)
    if (std::erase_if(parts, [rank](const SummaryPart& p) { return p.rank == rank; }))
      text = Joined(parts, false);
  return text;
}

std::string QueueRows::NoteText() const {
  if (leaves_out()) return HidesText(int(row_of_.size()), count(), "job", "jobs");
  if (count() > 0) return "";
  return jobs_ ? "Nothing is waiting" : "The queue is not known yet";
}

}  // namespace console
