// The queue: documents on their way first, then the server's jobs.
#pragma once
#include <optional>
#include <vector>

#include "app/model/queue_verbs.h"
#include "app/panes/layout.h"
#include "app/panes/queue_head.h"
#include "app/server/server.h"
#include "app/table/table.h"

namespace console {

struct QueuePane {
  // Both are looked at for as long as the pane lives.
  QueuePane(const Layout& layout_of_all, const ServerState& state_now);

  void MakeControls(XwWindow* window);
  void Place();
  // What stands below the rows follows them.
  void Update();
  void Draw(const Hit& hover, bool focused);
  void AddHits(Hits* hits) const;
  void Enable(bool on);
  void SetTakesDrop(bool on);
  // After a new state.
  void Fill();
  // How far transfers have come.
  void ShowProgress();
  // Somebody has put the row with the keyboard elsewhere in the order: it is scrolled to when a
  // list shows it there.
  void FollowFocus();
  // Orders from this number on have been given here: each is scrolled to when it has become a job,
  // and the last one as long as it goes on, until somebody scrolls or goes to the queue (StayHere).
  void FollowSent(int first);
  void StayHere();

  void Sort(QueueOrder order, bool descending);
  // The head of a column was pressed: it sorts, then the other way round, then as the queue prints.
  void SortByHead(int column);
  void Filter(const QueueFilter& filter);

  // Those that verbs act on.
  std::vector<QueueId> Selected() const { return selection.Ids(); }
  VerbCheck Check(Verb verb) const;
  // What is selected of what is shown, in words; "" when there is no job.
  std::string SelectionText() const;

  const Layout& layout;
  const ServerState& state;
  QueueRows rows;
  SelectionOf<QueueRows, QueueId, QueueIdHash> selection{rows};
  QueueHead head;
  Table table;
  XwWindow* show_all = nullptr;  // of a command
  bool takes_drop = false;       // documents are dragged, and would go here

 private:
  std::vector<Outgoing> OutgoingNow() const;
  // The summary, as much of it as there is room for.
  std::string SummaryShown() const;
  // The rows are others: the table and the selection follow.
  void Renewed();
  void ShowFollowed();
  void ShowSent();

  QueueId followed_;
  int followed_row_ = -1;  // where it was, -1: none is followed
  int next_sent_ = 0;      // the first order that is followed, 0: none is
  QueueId sent_;           // the last one that has come
  std::optional<NC_JobState> sent_state_;
};

}  // namespace console
