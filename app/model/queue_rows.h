// The rows of the queue's table: documents on their way to the server, and its jobs, in the order
// and through the filter that are asked for.
#pragma once
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/model/name_filter.h"
#include "printserver/records.h"

namespace console {

using JobId = std::array<uint8_t, 16>;

// What a row is: a document on its way, by its number, or a job.
struct QueueId {
  int outgoing = 0;  // 0: a job
  JobId job{};
  bool operator==(const QueueId&) const = default;
};
struct QueueIdHash {
  size_t operator()(const QueueId& id) const;
};
inline QueueId QueueIdOf(const NC_Job& job) {
  return {0, std::to_array(job.id)};
}

enum class OutgoingState : uint8_t { kWaiting, kSending, kCancelling, kFailed };
// A document on its way to the server.
struct Outgoing {
  int number = 0;  // from 1 on
  std::string document, owner;
  std::string printer, profile, media;  // empty: the server's choice
  int32_t colour = -1;                  // 0xRRGGBB, -1: none
  OutgoingState state = OutgoingState::kWaiting;
  int64_t sent = 0, total = 0, size = 0;  // bytes; the total includes the ticket
  int silent_s = 0;                       // whole seconds that its file has not answered
  int64_t started = 0;                    // seconds since 1970
  int priority = 50, copies = 1;
  std::string trouble;  // of a failed one, why
};

enum class QueueOrder : uint8_t {
  kPrint,
  kName,
  kOwner,
  kPrinter,
  kState,
  kSize,
  kTime,
  kPriority,
  kNumber,
  kProfile  // the last; the numbers are written down
};

struct QueueFilter {
  enum Part : uint8_t { kAll, kActive, kEnded };
  bool mine = false;
  Part part = kAll;
  std::string text;  // as NameFilter has it; looked for in document, owner, printer and number
  bool operator==(const QueueFilter&) const = default;
};

class QueueRows {
 public:
  // `user` is the owner of what is "mine".
  explicit QueueRows(std::string user = "") : user_(std::move(user)) {}

  // The jobs in the server's order, which is the one in which they print; null: not known.
  void Show(std::shared_ptr<const std::vector<NC_Job>> jobs, std::vector<Outgoing> outgoing);
  // A document has become this job, which a list is still to show: until one has, it counts as
  // there, so that what was selected on its way is selected in the queue (Selection::Rename).
  void Expect(const JobId& job);
  void Sort(QueueOrder order, bool descending);
  void Filter(const QueueFilter& filter);

  // What Selection asks.
  int count() const { return int(rows_.size()); }
  QueueId IdAt(int row) const;
  int RowOf(const QueueId& id) const;
  bool Has(const QueueId& id) const;

  // One of them is null, and both for what is not there. They live until the next Show.
  const NC_Job* JobAt(int row) const;
  const Outgoing* OutgoingAt(int row) const;
  const NC_Job* JobOf(const QueueId& id) const;
  const Outgoing* OutgoingOf(const QueueId& id) const;
  // The document's name of a job, also of one that has left the list lately; "" when not known.
  std::string NameOf(const QueueId& id) const;
  // How many jobs have a document of that name, also those that a filter leaves out.
  int CountOf(std::string_view document) const;
  bool IsMine(const NC_Job& job) const { return user_ == job.owner; }

  QueueOrder order() const { return order_; }
  bool descending() const { return descending_; }
  const QueueFilter& filter() const { return filter_; }
  // Whether rows stand as they print, so that they can be moved.
  bool InPrintOrder() const { return order_ == QueueOrder::kPrint && !descending_; }

  // "5 waiting, 1 printing, 2 held", what needs someone, and how many a filter leaves; "empty".
  // Where `fits` is false for it, what nobody has to do anything about is left out first, and "…"
  // stands for that; what is out of paper or has failed is always there.
  std::string Summary(const std::function<bool(const std::string&)>& fits = {}) const;
  // As of FolderRows.
  bool leaves_out() const { return count() < int(row_of_.size()); }
  std::string NoteText() const;

 private:
  // What is sorted and searched.
  struct Item {
    std::string key;     // natural, of what the order asks for
    int64_t number = 0;  // the same for orders of numbers
    int place = 0;       // in the order in which they print
  };
  bool IsOutgoing(int place) const { return place < int(outgoing_.size()); }
  const NC_Job& Job(int place) const { return (*jobs_)[size_t(place) - outgoing_.size()]; }
  QueueId IdOfPlace(int place) const;
  bool Wanted(int place, const NameFilter& text) const;
  Item ItemOf(int place) const;
  void Arrange();
  void KeepNames(const std::vector<NC_Job>& before);

  std::string user_;
  std::shared_ptr<const std::vector<NC_Job>> jobs_;
  std::vector<Outgoing> outgoing_;
  // Places: documents on their way first, then the jobs.
  std::unordered_map<QueueId, int, QueueIdHash> places_;
  std::vector<QueueId> expected_;
  std::deque<std::pair<QueueId, std::string>> left_;  // those that were in a list before
  QueueOrder order_ = QueueOrder::kPrint;
  bool descending_ = false;
  QueueFilter filter_;
  std::vector<int> rows_;    // places
  std::vector<int> row_of_;  // by place, -1: not shown
};

// Printed, or given up.
bool HasEnded(NC_JobState state);
// At its printer, so that only its priority can be changed there.
bool IsAtPrinter(NC_JobState state);

}  // namespace console
